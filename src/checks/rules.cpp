#include "checks/rules.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

#include "checks/syntax/standard.h"

namespace ibis::checks {
namespace {

constexpr RuleRow rows[] = {
#define IBIS_RULE(identifier, severity, id, text, fires, remedy, clause) \
  {id, Severity::severity, text, fires, remedy, clause},
#include "checks/rules.def"
#undef IBIS_RULE
};

struct GroupRow {
  std::string_view name;
  std::string_view title;
};

constexpr GroupRow groups[] = {
    {"syntax", "How a file is written"},
    {"numeric", "Numbers"},
    {"header", "The header"},
    {"pin", "Pins"},
    {"selector", "Selectors"},
    {"model", "Models"},
    {"table", "I-V tables"},
    {"waveform", "Waveforms"},
    {"consistency", "Data that must agree with other data"},
    {"package", "Packages"},
    {"quality", "Style and completeness"},
    {"portability", "What other programs may trip over"},
};

constexpr std::string_view introduction = R"(# The rules of `ibis-load check`

This page is made from the table of rules by `scripts/update-checks-guide`; do not edit it.

An **error** is what a reader will misread or refuse. A **warning** is probably wrong, most often
electrically. A **note** is a matter of style or quality; notes are told with `-Wall` or `-WID`.
`-Wno-ID` and `-Wno-GROUP` leave rules out, `--werror=ID` makes errors of a rule's warnings, and
`ibis-load check --explain ID` prints a rule's part of this page.

In the texts `{}` stands for what a finding names. Clauses are those of the IBIS standard, by
version and keyword.
)";

}  // namespace

std::span<const RuleRow> ruleTable() { return rows; }

std::optional<Rule> findRule(std::string_view id) {
  static const auto byId = [] {
    std::unordered_map<std::string_view, Rule> names;
    for (const RuleRow& row : rows) names.emplace(row.id, static_cast<Rule>(&row - rows));
    return names;
  }();
  const auto found = byId.find(id);
  return found == byId.end() ? std::nullopt : std::optional(found->second);
}

std::string_view nearestRule(std::string_view id) {
  std::vector<std::string_view> ids = {"all"};
  for (const GroupRow& group : groups) ids.push_back(group.name);
  for (const RuleRow& row : rows) ids.push_back(row.id);
  return nearestWord(id, ids);
}

std::string_view severityWord(Severity severity) {
  return severity == Severity::error ? "error" : severity == Severity::note ? "note" : "warning";
}

std::string rulePage(const RuleRow& row) {
  std::string page = "### " + std::string(row.id) + "\n\n";
  page.append("*").append(severityWord(row.severity)).append("*: `").append(row.text);
  page.append("`\n\n").append(row.fires).append("\n");
  if (!row.remedy.empty()) page.append("Remedy: ").append(row.remedy).append(".\n");
  return page.append("Basis: ").append(row.clause).append(".\n");
}

std::string ruleGuide() {
  std::string guide(introduction);
  for (const GroupRow& group : groups) {
    guide.append("\n## ").append(group.title).append(" (`").append(group.name).append("`)\n");
    for (const RuleRow& row : rows) {
      if (row.group() == group.name) guide.append("\n").append(rulePage(row));
    }
  }
  return guide;
}

}  // namespace ibis::checks
