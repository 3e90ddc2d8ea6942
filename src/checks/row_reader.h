#pragma once

#include "checks/value_reader.h"

namespace ibis::checks {

/// Reads the rows of I-V tables and waveforms.
class RowReader : private ValueReader {
 public:
  using ValueReader::ValueReader;

  /// Reads all rows of a table.
  Rows readRows(const Block& block);

  /// Makes room for so many rows.
  static void reserve(Rows& rows, std::size_t count);

  /// Reads one row.
  void readRow(Rows& rows, const SourceLine& line);

  /// Ends a table: tells of a scale letter M beside the small one.
  void tellMilli(Rows& rows);

 private:
  struct Cell {
    const SourceLine* line = nullptr;
    Word word = {};
    std::size_t column = 0;
  };

  void readCells(Rows& rows, const SourceLine& line, double (&values)[1 + corners]);
  void tellCell(Rows& rows, const NumberWord& read, const SourceLine& line, const Word& word,
                std::size_t column);
  std::span<const std::string_view> columnNames(const Rows& rows) const;
  std::string cellLabel(const Rows& rows, std::size_t column) const;
  void noteMilli(const SourceLine& line, const Word& word, std::string_view tail,
                 std::size_t column);
  std::string around(const Rows& rows, const SourceLine& line, std::size_t column) const;
  void tellShortRow(Rows& rows, const SourceLine& line, std::size_t count);

  Cell capital_;           // the first with a scale letter M that may say milli
  bool hasMilli_ = false;  // whether a small m stands in the same table
};

}  // namespace ibis::checks
