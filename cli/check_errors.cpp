#include "check_errors.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

#include "checks/rules.h"
#include "messages.h"
#include "reader/text/text_buffer.h"

namespace ibis::cli {

namespace fs = std::filesystem;

namespace {

// The package models of the .pkg file beside a file, if there is one.
std::vector<std::string> packageModelsBeside(const std::string& source) {
  std::error_code fault;
  const fs::path path = fs::path(source).replace_extension(".pkg");
  TextBuffer buffer;
  if (path == fs::path(source) || !fs::is_regular_file(path, fault)) return {};
  if (!buffer.loadFile(path.string())) return {};
  return checks::packageModelsOf(buffer.text());
}

}  // namespace

checks::CheckOptions checkOptionsOf(const std::string& source) {
  return {.fileName = fs::path(source).filename().string(),
          .packageModels = packageModelsBeside(source)};
}

std::vector<Diagnostic> checkErrors(std::string_view text, const std::string& source,
                                    const std::vector<Diagnostic>& told) {
  std::set<std::int32_t> lines;
  for (const Diagnostic& each : told) lines.insert(each.line);
  const std::string_view noComponent = tell(Severity::error, message::noComponent).id;
  const bool hasNothing = std::ranges::find(told, noComponent, &Diagnostic::id) != told.end();
  std::vector<Diagnostic> found = checks::check(text, checkOptionsOf(source));
  std::erase_if(found, [&](const Diagnostic& each) {
    const bool isTold = (each.line > 0 && lines.contains(each.line)) ||
                        (hasNothing && each.id == checks::ruleRow(checks::Rule::syntaxNotIbis).id);
    return each.severity != Severity::error || isTold;
  });
  return found;
}

}  // namespace ibis::cli
