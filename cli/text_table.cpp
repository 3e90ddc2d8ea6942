#include "text_table.h"

#include <algorithm>

#include "text_columns.h"
#include "text_pieces.h"

namespace ibis::cli {
namespace {

constexpr std::size_t lineColumns = 80;
constexpr std::size_t gap = 2;
constexpr std::size_t widestColumn = 24;

}  // namespace

std::string wrapped(const std::string& text, std::size_t begun, std::size_t indent) {
  std::string out;
  std::size_t column = begun;
  bool isFirst = true;
  for (const std::string_view word : wordsOf(text)) {
    const std::size_t width = columnsOf(word);
    if (!isFirst && column + 1 + width > lineColumns) {
      out += '\n' + std::string(indent, ' ');
      column = indent;
    } else if (!isFirst) {
      out += ' ';
      ++column;
    }
    out += word;
    column += width;
    isFirst = false;
  }
  return out;
}

// Where each column begins.
std::vector<std::size_t> TextTable::starts() const {
  std::vector<std::size_t> widths;
  for (const auto& row : rows_) {
    if (row.size() > widths.size()) widths.resize(row.size());
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::size_t width = columnsOf(row[i]);
      if (width <= widestColumn) widths[i] = std::max(widths[i], width);
    }
  }
  std::vector<std::size_t> starts;
  std::size_t start = indent_;
  for (const std::size_t width : widths) {
    starts.push_back(start);
    start += width + gap;
  }
  return starts;
}

std::string TextTable::text() const {
  const std::vector<std::size_t> starts = this->starts();
  std::string out;
  for (const auto& row : rows_) {
    std::size_t column = 0;
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (row[i].empty()) continue;
      if (column > 0 && column >= starts[i]) {
        out += '\n';
        column = 0;
      }
      out += std::string(starts[i] - column, ' ');
      const bool isLast = i + 1 == starts.size();
      out += isLast ? wrapped(row[i], starts[i], starts[i]) : row[i];
      column = starts[i] + columnsOf(row[i]);
    }
    out += '\n';
  }
  return out;
}

}  // namespace ibis::cli
