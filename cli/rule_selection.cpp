#include "rule_selection.h"

namespace ibis::cli {

RuleSelection::RuleSelection()
    : choices_(checks::ruleTable().size(), Choice::unset),
      errors_(checks::ruleTable().size(), false) {}

bool RuleSelection::apply(std::string_view word) {
  if (word == "all") {
    tellsNotes_ = true;
    return true;
  }
  constexpr std::string_view no = "no-";
  return word.starts_with(no) ? set(word.substr(no.size()), Choice::off) : set(word, Choice::on);
}

bool RuleSelection::set(std::string_view name, Choice choice) {
  bool isKnown = false;
  const auto rules = checks::ruleTable();
  for (std::size_t i = 0; i < rules.size(); ++i) {
    if (rules[i].id != name && rules[i].group() != name) continue;
    choices_[i] = choice;
    isKnown = true;
  }
  return isKnown;
}

bool RuleSelection::makeError(std::string_view name) {
  bool isKnown = false;
  const auto rules = checks::ruleTable();
  for (std::size_t i = 0; i < rules.size(); ++i) {
    if (name != "all" && rules[i].id != name && rules[i].group() != name) continue;
    errors_[i] = true;
    if (name != "all" && choices_[i] == Choice::unset) choices_[i] = Choice::on;
    isKnown = true;
  }
  return isKnown;
}

std::vector<Diagnostic> RuleSelection::select(std::vector<Diagnostic> diagnostics) const {
  std::vector<Diagnostic> selected;
  for (Diagnostic& each : diagnostics) {
    const auto rule = static_cast<std::size_t>(*checks::findRule(each.id));
    const Choice choice = choices_[rule];
    const bool isNote = each.severity == Severity::note;
    if (choice == Choice::off || (isNote && choice != Choice::on && !tellsNotes_)) continue;
    if (errors_[rule] && each.severity == Severity::warning) each.severity = Severity::error;
    selected.push_back(std::move(each));
  }
  return selected;
}

}  // namespace ibis::cli
