#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ibis/diagnostic.h"

namespace ibis::testing {

/// A fault that is planted into a text, and what a check tells of it.
struct CheckCase {
  std::string rule;
  std::string base;  ///< A file of examples, or empty for a text of its own.
  std::string fileName;
  std::vector<std::string> edits;  ///< As they stand in the file.
  std::string expected;            ///< Findings and notes, a line each.
  std::string origin;              ///< File and line.

  /// The base with all edits; an edit that finds nothing fails the test.
  std::string text() const;
};

/// All cases of a file of tests/checks/cases.
std::vector<CheckCase> readCases(const std::string& path);

/// The file of these cases, as it would be written.
std::string writeCases(std::string_view head, const std::vector<CheckCase>& cases);

/// Comment lines at the begin of a file of cases.
std::string headOf(const std::string& path);

/// Errors, warnings and a rule's own notes, a line each.
std::string render(const std::vector<Diagnostic>& diagnostics, std::string_view rule);

std::string readText(const std::string& path);

}  // namespace ibis::testing
