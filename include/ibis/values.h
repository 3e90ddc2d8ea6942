#pragma once

#include <cstdint>
#include <vector>

namespace ibis {

/// Corners of a triple, a table or a waveform by index; the file's columns are typ, min, max.
namespace corner {
inline constexpr int typ = 0;
inline constexpr int max = 1;
inline constexpr int min = 2;
inline constexpr int count = 3;
}  // namespace corner

/// Which corners a line of the file leaves out, by NA or by ending early; one bit a corner.
struct MissingCorners {
  std::uint8_t bits = 0;

  bool at(int corner) const { return (bits >> corner & 1) != 0; }
  bool any() const { return bits != 0; }
  void set(int corner) { bits = static_cast<std::uint8_t>(bits | 1 << corner); }
};

/// A typ-min-max value; `present` tells whether the file gave it.
///
/// Each corner holds the number that a load uses, also where the file has none; `missing` tells
/// where that is so.
struct IBISTriple {
  bool present = false;
  double typ = 0.0;
  double max = 0.0;
  double min = 0.0;
  MissingCorners missing = {};

  /// The value at a corner's index; any other index means typ.
  double at(int index) const {
    return index == corner::max ? max : index == corner::min ? min : typ;
  }

  /// Compares what a load uses.
  friend bool operator==(const IBISTriple& a, const IBISTriple& b) {
    return a.present == b.present && a.typ == b.typ && a.max == b.max && a.min == b.min;
  }
};

/// A value that a file may leave out.
struct IBISOptional {
  bool present = false;
  double value = 0.0;
  bool isNA = false;  ///< The file has the word NA in its place.
};

/// Which cells of a table's rows the file leaves out, by NA or by ending early.
class MissingCells {
 public:
  /// Whether the cell of a row, from 0, at a corner's index is missing.
  bool at(std::int32_t row, int corner) const {
    const auto place = static_cast<std::size_t>(row);
    return place < rows_.size() && rows_[place].at(corner);
  }

  /// Whether any cell is missing.
  bool any() const {
    for (const MissingCorners row : rows_) {
      if (row.any()) return true;
    }
    return false;
  }

  void set(std::int32_t row, MissingCorners corners) {
    const auto place = static_cast<std::size_t>(row);
    if (place >= rows_.size()) {
      if (!corners.any()) return;
      rows_.resize(place + 1);
    }
    rows_[place] = corners;
  }

  /// What a row lacks.
  MissingCorners row(std::int32_t row) const {
    const auto place = static_cast<std::size_t>(row);
    return place < rows_.size() ? rows_[place] : MissingCorners();
  }

  /// Drops the rows from a place on.
  void shorten(std::int32_t row) {
    if (static_cast<std::size_t>(row) < rows_.size()) rows_.resize(static_cast<std::size_t>(row));
  }

 private:
  std::vector<MissingCorners> rows_;  // up to the last row that lacks something
};

}  // namespace ibis
