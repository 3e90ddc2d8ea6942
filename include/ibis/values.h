#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ibis {

/// Indices of the corners of a triple, a table or a waveform; the file's columns are typ, min, max.
namespace corner {
inline constexpr int typ = 0;
inline constexpr int max = 1;
inline constexpr int min = 2;
inline constexpr int count = 3;
}  // namespace corner

/// The corners that a line of the file leaves out, by NA or by ending early.
struct MissingCorners {
  std::uint8_t bits = 0;  ///< Bit i for the corner of index i.

  bool at(int corner) const { return (bits >> corner & 1) != 0; }
  bool any() const { return bits != 0; }
  void set(int corner) { bits = static_cast<std::uint8_t>(bits | 1 << corner); }
};

/// A typ-min-max value, in the unit of the field that holds it.
///
/// Each corner holds the number that a load uses, also where the file has none.
struct IBISTriple {
  bool present = false;  ///< Whether the file has the value.
  double typ = 0.0;
  double max = 0.0;
  double min = 0.0;
  MissingCorners missing = {};  ///< The corners whose number is not from the file.

  /// The value at the index of a corner; any other index means typ.
  double at(int index) const {
    return index == corner::max ? max : index == corner::min ? min : typ;
  }

  /// Compares what a load uses, which is all but `missing`.
  friend bool operator==(const IBISTriple& a, const IBISTriple& b) {
    return a.present == b.present && a.typ == b.typ && a.max == b.max && a.min == b.min;
  }
};

/// A value that a file may leave out, in the unit of the field that holds it.
struct IBISOptional {
  bool present = false;  ///< Whether the file has the value, if only as NA.
  double value = 0.0;
  bool isNA = false;  ///< The file has the word NA instead of a number.
};

/// The cells of a table that the file leaves out, by NA or by ending a row early.
class MissingCells {
 public:
  /// Whether the cell of a row, from 0, is missing at the index of a corner.
  bool at(std::int32_t row, int corner) const {
    const auto index = static_cast<std::size_t>(row);
    return index < rows_.size() && rows_[index].at(corner);
  }

  /// Whether any cell is missing.
  bool any() const {
    for (const MissingCorners row : rows_) {
      if (row.any()) return true;
    }
    return false;
  }

  /// Sets the missing corners of a row, from 0.
  void set(std::int32_t row, MissingCorners corners) {
    const auto index = static_cast<std::size_t>(row);
    if (index >= rows_.size()) {
      if (!corners.any()) return;
      rows_.resize(index + 1);
    }
    rows_[index] = corners;
  }

  /// The missing corners of a row, from 0.
  MissingCorners row(std::int32_t row) const {
    const auto index = static_cast<std::size_t>(row);
    return index < rows_.size() ? rows_[index] : MissingCorners();
  }

  /// Drops this row, from 0, and all rows after it.
  void shorten(std::int32_t row) {
    if (static_cast<std::size_t>(row) < rows_.size()) rows_.resize(static_cast<std::size_t>(row));
  }

 private:
  std::vector<MissingCorners> rows_;  // up to the last row with a missing cell
};

}  // namespace ibis
