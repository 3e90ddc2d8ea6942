#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "ibis/diagnostic.h"

namespace ibis::cli {

/// What a check of one file brought.
struct CheckedFile {
  std::string name;
  std::string text;  ///< What was checked, for the lines below messages.
  std::vector<Diagnostic> diagnostics;

  std::size_t count(Severity severity) const;
};

/// Each finding with its line and a caret, five of a rule at most, and the notes below.
std::string checkText(const CheckedFile& file, bool isColored);

/// How often each rule was told, over all files.
std::string checkSummary(const std::vector<CheckedFile>& files);

/// Each file as an object on a line of its own, in an array.
void printCheckJson(std::ostream& out, const std::vector<CheckedFile>& files);

/// All files as one run of SARIF 2.1.0.
void printSarif(std::ostream& out, const std::vector<CheckedFile>& files);

}  // namespace ibis::cli
