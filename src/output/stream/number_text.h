#pragma once

#include <cstddef>
#include <string>

namespace ibis {

/// Digits of the numbers in the output.
inline constexpr int valueDigits = 12;   ///< Of tables, waveforms, models and pins.
inline constexpr int shortDigits = 6;    ///< Of references, fixtures and what a page shows.
inline constexpr int matrixDigits = 15;  ///< Of a package's matrices.

/// Room for any number at up to 17 digits: sign, digits, point and exponent.
inline constexpr std::size_t maxNumberText = 32;

/// Writes a number as printf's %.{digits}g does in the "C" locale and returns its end.
///
/// There must be room for maxNumberText characters; no NUL is written. A not-a-number is "nan"
/// whatever its sign bit, which comes from the compiler and not from the file.
char* writeNumberText(char* begin, double value, int digits);

/// The same as a string.
std::string numberText(double value, int digits);

}  // namespace ibis
