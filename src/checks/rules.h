#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "ibis/diagnostic.h"

namespace ibis::checks {

/// The rules of a check; see rules.def.
enum class Rule : std::uint16_t {
#define IBIS_RULE(identifier, severity, id, text, fires, remedy, clause) identifier,
#include "checks/rules.def"
#undef IBIS_RULE
};

/// What a rule is called, says and rests on.
struct RuleRow {
  std::string_view id;
  Severity severity;
  std::string_view text;    ///< With "{}" for each argument.
  std::string_view fires;   ///< When it is told, in a sentence.
  std::string_view remedy;  ///< What to do; empty where the text says it.
  std::string_view clause;  ///< Version and keyword of the standard, or what else it rests on.

  /// What stands in front of the id's first hyphen.
  std::string_view group() const { return id.substr(0, id.find('-')); }
};

/// All rules in the order of the guide; the index of a row is its rule.
std::span<const RuleRow> ruleTable();

inline const RuleRow& ruleRow(Rule rule) { return ruleTable()[static_cast<std::size_t>(rule)]; }

/// The rule of an id, if there is one.
std::optional<Rule> findRule(std::string_view id);

/// The id or group that a mistyped one may mean, or empty.
std::string_view nearestRule(std::string_view id);

/// One word of a severity: "error", "warning" or "note".
std::string_view severityWord(Severity severity);

/// A rule's page of the guide, as Markdown.
std::string rulePage(const RuleRow& row);

/// The whole guide, as Markdown.
std::string ruleGuide();

}  // namespace ibis::checks
