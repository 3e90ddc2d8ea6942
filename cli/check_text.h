#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "checked_file.h"

namespace ibis::cli {

/// Each finding with its line and a caret, five of a rule at most, and the notes below.
std::string checkText(const CheckedFile& file, bool isColored);

/// What is counted over all files; neither their texts nor their findings are kept.
class CheckTotals {
 public:
  void add(const CheckedFile& file);

  bool hasErrors() const { return errors_ > 0; }

  /// How often each rule was told, and how many files were checked.
  std::string summary() const;

 private:
  std::map<std::string, std::size_t, std::less<>> ofRule_;
  std::size_t files_ = 0;
  std::size_t errors_ = 0;
  std::size_t warnings_ = 0;
  std::size_t notes_ = 0;
};

}  // namespace ibis::cli
