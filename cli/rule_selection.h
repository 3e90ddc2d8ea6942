#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "checks/rules.h"

namespace ibis::cli {

/// Which rules are told, and which of them as errors.
class RuleSelection {
 public:
  /// Errors and warnings; notes are left out.
  RuleSelection();

  /// Takes what stands behind -W: all, ID, GROUP, no-ID or no-GROUP; false for an unknown name.
  bool apply(std::string_view word);

  /// Makes an error of a rule's or a group's findings, or of all but notes for "all".
  bool makeError(std::string_view name);

  /// The findings that are told, with their final severity.
  std::vector<Diagnostic> select(std::vector<Diagnostic> diagnostics) const;

 private:
  enum class Choice : std::uint8_t { unset, on, off };

  bool set(std::string_view name, Choice choice);

  std::vector<Choice> choices_;  // by rule
  std::vector<bool> errors_;     // by rule
  bool tellsNotes_ = false;
};

}  // namespace ibis::cli
