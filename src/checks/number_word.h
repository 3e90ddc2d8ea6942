#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ibis::checks {

/// What may be wrong with a word that should be a number.
enum class NumberFault : std::uint8_t {
  none,
  notAvailable,   ///< NA
  notANumber,     ///< No digits, or nan, inf or hexadecimal.
  decimalComma,   ///< A comma and a digit behind the digits.
  suffixCase,     ///< A scale letter in the wrong case.
  unknownSuffix,  ///< Neither scale letter nor unit.
  digitInSuffix,  ///< The same with a digit in it.
};

/// A word read as a load reads it, and what is odd about it.
struct NumberWord {
  double value = 0.0;  ///< Not a number for NA and for a word without digits.
  NumberFault fault = NumberFault::none;
  std::string_view tail = {};  ///< Behind the digits.
};

NumberWord readNumberWord(std::string_view word);

/// Reads the word that a text begins with, and tells its length.
NumberWord takeNumberWord(std::string_view text, std::size_t& length);

/// A word that nothing can be told of.
struct PlainNumber {
  double value = 0.0;
  std::size_t length = 0;
  bool isMilli = false;  ///< Whether its scale letter is m.
};

/// Reads a number that a text begins with, bare or with m, u, n or p and with V, A or s behind it.
///
/// A length of 0 stands for every other word.
PlainNumber plainNumber(std::string_view text);

/// Whether a word is a unit alone, such as V, pF or mOhm.
bool isUnitWord(std::string_view word);

/// Whether a tail such as MA may mean milli, as mA does.
bool maySayMilli(std::string_view tail);

/// The unit that ends a tail such as ",5pF" or "Kohms"; empty where there is none.
std::string_view unitOf(std::string_view tail);

/// What a load reads, with the unit that the word ends in.
std::string readValue(const NumberWord& read);

}  // namespace ibis::checks
