#include "checks/check.h"

#include "checks/families.h"

namespace ibis::checks {
namespace {

// The curves of a model are made once for all families that read them.
void checkCurves(const View& view, Findings& findings) {
  for (const ModelView& model : view.models) {
    if (model.isAfterEnd) continue;
    const ModelCurves curves(model);
    checkTables(view, model, curves, findings);
    checkWaveforms(view, model, curves, findings);
    checkConsistency(view, model, curves, findings);
  }
}

}  // namespace

std::vector<Diagnostic> check(std::string_view text, const CheckOptions& options) {
  const Syntax syntax(text);
  Findings findings;
  if (isForeign(text, syntax, findings)) return findings.take();
  View view(syntax);
  view.fileName = options.fileName;
  view.packageModels = options.packageModels;
  readValues(view, findings);
  checkBytes(text, view, findings);
  checkKeywords(view, findings);
  checkHeader(view, findings);
  checkComponents(view, findings);
  checkSelectors(view, findings);
  checkModels(view, findings);
  checkCurves(view, findings);
  checkPackages(view, findings);
  checkStyle(view, findings);
  return findings.take();
}

std::vector<std::string> packageModelsOf(std::string_view text) {
  const Syntax syntax(text);
  std::vector<std::string> names;
  for (const Section& part : syntax.sections()) {
    if (part.kind == section::package && !part.isAfterEnd) names.emplace_back(part.name);
  }
  return names;
}

}  // namespace ibis::checks
