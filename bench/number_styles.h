#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ibis::bench {

/// The same numbers on every machine and in every run.
class Dice {
 public:
  /// A number from 0 up to, not including, 1.
  double fraction();

 private:
  std::uint64_t state_ = 0x9e3779b97f4a7c15;
};

/// The ways in which makers write the numbers of one table.
enum class NumberStyle {
  scientific,  ///< 1.234567e-03
  withUnit,    ///< -0.1532A
  scaled,      ///< 2.35mA
  plain,       ///< 0.001532
};

inline constexpr int numberStyleCount = 4;

/// Appends a number and, in the styles that have one, its unit.
void appendNumber(std::string& text, double value, NumberStyle style, std::string_view unit);

/// Appends a number with a fixed count of decimals.
void appendFixed(std::string& text, double value, int decimals);

}  // namespace ibis::bench
