#pragma once

#include <cstdint>
#include <vector>

#include "ibis/ibis_string.h"

namespace ibis {

/// One value of a matrix; row and column count the package's pins from 1.
struct IBISMatrixEntry {
  std::int32_t row = 0;
  std::int32_t column = 0;
  double value = 0.0;
  bool isNA = false;  ///< The file has the word NA, which a load reads as 0.
};

/// One [Define Package Model] section.
///
/// The matrices keep their entries in file order, repeated ones included; ohms, henries, farads.
struct IBISPackageModel {
  /// More pins than any package has; a larger number is refused, since each costs output lines.
  static constexpr std::int32_t maxPins = 1'000'000;

  std::int32_t line = 0;
  IBISString name;
  IBISString manufacturer;
  IBISString oem;
  IBISString description;
  std::int32_t numberOfSections = 0;  ///< Never read from a file.
  std::int32_t numberOfPins = 0;
  std::vector<IBISString> pinNames;  ///< In file order, never more than numberOfPins.
  std::vector<IBISMatrixEntry> resistance;
  std::vector<IBISMatrixEntry> inductance;
  std::vector<IBISMatrixEntry> capacitance;
};

}  // namespace ibis
