#pragma once

#include <cstdint>
#include <vector>

#include "ibis/ibis_string.h"

namespace ibis {

/// One value of a matrix.
struct IBISMatrixEntry {
  std::int32_t row = 0;     ///< Number of a pin, from 1 in the order of [Pin Numbers].
  std::int32_t column = 0;  ///< Likewise.
  double value = 0.0;       ///< In the unit of the matrix.
  bool isNA = false;        ///< The file has the word NA, which a load reads as 0.
};

/// One [Define Package Model] section.
///
/// A matrix keeps its entries in file order, repeated ones included. A sparse matrix has both
/// triangles, although the file has one.
struct IBISPackageModel {
  /// More pins than any package has; a larger number is refused, since each costs output lines.
  static constexpr std::int32_t maxPins = 1'000'000;

  std::int32_t line = 0;                     ///< Line of [Define Package Model], from 1.
  IBISString name;                           ///< [Define Package Model]
  IBISString manufacturer;                   ///< [Manufacturer]
  IBISString oem;                            ///< [OEM]
  IBISString description;                    ///< [Description]
  std::int32_t numberOfSections = 0;         ///< [Number Of Sections], never read from a file.
  std::int32_t numberOfPins = 0;             ///< [Number Of Pins]
  std::vector<IBISString> pinNames;          ///< [Pin Numbers], at most numberOfPins.
  std::vector<IBISMatrixEntry> resistance;   ///< [Resistance Matrix], in ohms.
  std::vector<IBISMatrixEntry> inductance;   ///< [Inductance Matrix], in henries.
  std::vector<IBISMatrixEntry> capacitance;  ///< [Capacitance Matrix], in farads.
};

}  // namespace ibis
