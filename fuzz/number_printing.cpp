// Numbers against printf at every precision in use, and read back at full precision.

#include <cmath>
#include <cstring>
#include <string>

#include "fuzz.h"
#include "model/numbers/numbers.h"
#include "output/stream/number_text.h"

namespace ibis::fuzz {
namespace {

constexpr int fullPrecision = 17;

std::string printed(double value, int digits) {
  char text[maxNumberText + 1];
  const int length = std::snprintf(text, sizeof text, "%.*g", digits, value);
  REQUIRE(length > 0 && static_cast<std::size_t>(length) < sizeof text);
  return std::isnan(value) ? "nan" : text;
}

void check(double value) {
  for (const int digits : {6, 12, 15, fullPrecision}) {
    REQUIRE(numberText(value, digits) == printed(value, digits));
  }
  const double again = readNumber(numberText(value, fullPrecision)).value;
  REQUIRE(std::isnan(value) ? std::isnan(again) : std::memcmp(&again, &value, sizeof value) == 0);
}

}  // namespace
}  // namespace ibis::fuzz

// Every eight bytes are a double as memory holds it. Files hold short decimals, though: those close
// to it are tried, too, some of which lie next to half way between two that are shorter yet.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (double value = 0.0; size >= sizeof value; data += sizeof value, size -= sizeof value) {
    std::memcpy(&value, data, sizeof value);
    ibis::fuzz::check(value);
    for (const int digits : {7, 13, 16}) {
      ibis::fuzz::check(ibis::readNumber(ibis::numberText(value, digits)).value);
    }
  }
  return 0;
}
