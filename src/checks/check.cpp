#include "checks/check.h"

#include "checks/families.h"

namespace ibis::checks {

std::vector<Diagnostic> check(std::string_view text, const CheckOptions& options) {
  const Syntax syntax(text);
  Findings findings;
  if (isForeign(text, syntax, findings)) return findings.take();
  View view(syntax);
  view.fileName = options.fileName;
  view.hasPackageFile = options.hasPackageFile;
  readValues(view, findings);
  checkBytes(text, view, findings);
  checkKeywords(view, findings);
  checkHeader(view, findings);
  checkComponents(view, findings);
  checkSelectors(view, findings);
  checkModels(view, findings);
  checkTables(view, findings);
  checkWaveforms(view, findings);
  checkConsistency(view, findings);
  checkPackages(view, findings);
  checkStyle(view, findings);
  return findings.take();
}

}  // namespace ibis::checks
