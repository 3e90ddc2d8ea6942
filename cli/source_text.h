#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ibis/diagnostic.h"

namespace ibis::cli {

/// The lines of a text by number, and what a person sees in them that no reader keeps.
class SourceText {
 public:
  /// The text must outlive it.
  explicit SourceText(std::string_view text);

  /// A line by its number from 1, empty for one that is not there.
  std::string_view line(std::int32_t number) const;

  /// Each line that begins a keyword and does not close its bracket.
  std::vector<Note> unclosedBrackets() const;

  /// The line behind [End] on which a [Model] of this name begins, or 0.
  std::int32_t modelBehindEnd(std::string_view name) const;

  /// What the text is where it is no IBIS file, such as "gzip data"; empty for any other text.
  static std::string_view kindOf(std::string_view text);

 private:
  std::vector<std::string_view> lines_;
};

/// The word of a line at a place from 0, as blanks and "=" separate words.
std::string_view wordOf(std::string_view line, int place);

}  // namespace ibis::cli
