#pragma once

#include <string>
#include <vector>

namespace ibis::cli {

/// Rows of cells in columns for a terminal of 80 columns.
///
/// A cell that is too wide for its column pushes what follows into the next line; the last column
/// is broken between words.
class TextTable {
 public:
  /// Each row stands so many columns to the right.
  explicit TextTable(std::size_t indent) : indent_(indent) {}

  /// Adds a row of printable cells.
  void add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

  bool empty() const { return rows_.empty(); }

  /// All rows, each with a line end.
  std::string text() const;

 private:
  std::vector<std::size_t> starts() const;

  std::size_t indent_;
  std::vector<std::vector<std::string>> rows_;
};

/// A text broken between words into lines of 80 columns at most, all but the first indented.
///
/// The first line begins where something of so many columns ends.
std::string wrapped(const std::string& text, std::size_t begun, std::size_t indent);

}  // namespace ibis::cli
