#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace ibis::cli {

/// The lines of a text by number, counted from 1; the text must outlive them.
class TextLines {
 public:
  explicit TextLines(std::string_view text);

  /// A line without its end; empty for a number that no line has.
  std::string_view at(std::int32_t number) const;

 private:
  std::string_view text_;
  std::vector<std::size_t> begins_;
  std::vector<std::size_t> ends_;
};

}  // namespace ibis::cli
