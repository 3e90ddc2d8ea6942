// Rows, whose numbers are read in place, against their fields one by one.

#include <cmath>
#include <cstring>

#include "fuzz.h"
#include "model/numbers/numbers.h"

namespace ibis::fuzz {
namespace {

bool sameNumber(double a, double b) {
  return std::isnan(a) ? std::isnan(b) : std::memcmp(&a, &b, sizeof a) == 0;
}

void check(std::string_view text, std::string_view filler) {
  const CornerRow row = readCornerRow(text, filler);
  const auto next = [&](double fallback) {
    const std::string_view field = takeField(text);
    return parseNumber(field.empty() ? filler : field, fallback);
  };
  REQUIRE(sameNumber(row.x, next(0.0)));
  REQUIRE(sameNumber(row.typ, next(0.0)));
  REQUIRE(sameNumber(row.min, next(row.typ)));
  REQUIRE(sameNumber(row.max, next(row.typ)));
}

}  // namespace
}  // namespace ibis::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = ibis::fuzz::textOf(data, size);
  for (std::string_view filler : {"NA", ""}) ibis::fuzz::check(text, filler);
  return 0;
}
