#include "output/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

namespace ibis {

char* writeNumberText(char* begin, double value, int digits) {
  constexpr std::string_view notANumber = "nan";
  if (std::isnan(value)) return std::ranges::copy(notANumber, begin).out;
  return std::to_chars(begin, begin + longestNumberText, value, std::chars_format::general, digits)
      .ptr;
}

std::string numberText(double value, int digits) {
  char text[longestNumberText];
  return {text, writeNumberText(text, value, digits)};
}

}  // namespace ibis
