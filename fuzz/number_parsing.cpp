// Numbers against the C library: the same value to the last bit, the same end.

#include <locale.h>
#include <stdlib.h>

#include <cmath>
#include <cstring>
#include <string>

#include "fuzz.h"
#include "model/numbers/numbers.h"

namespace ibis::fuzz {
namespace {

bool sameNumber(double a, double b) {
  return std::isnan(a) ? std::isnan(b) : std::memcmp(&a, &b, sizeof a) == 0;
}

double factor(char unit) {
  constexpr std::string_view units = "TGMkmunpf";
  constexpr double factors[] = {1e12, 1e9, 1e6, 1e3, 1e-3, 1e-6, 1e-9, 1e-12, 1e-15};
  const std::size_t place = units.find(unit);
  return place != units.npos ? factors[place] : 1.0;
}

void check(std::string_view text) {
  static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
  const std::string copy(text);
  char* end = nullptr;
  const double expected = strtod_l(copy.c_str(), &end, cLocale);
  const NumberPrefix number = readNumber(text);
  REQUIRE(sameNumber(number.value, expected));
  REQUIRE(number.length == static_cast<std::size_t>(end - copy.c_str()));
  REQUIRE(sameNumber(parseNumber(text, 7.0), text == "NA" ? 7.0 : expected * factor(*end)));
  REQUIRE(parseInteger(text) == atoi(copy.c_str()));
}

}  // namespace
}  // namespace ibis::fuzz

// The whole input is one text; each of its lines is one more.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view text = ibis::fuzz::textOf(data, size);
  ibis::fuzz::check(text);
  for (std::size_t end = text.find('\n'); end != text.npos; end = text.find('\n')) {
    ibis::fuzz::check(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  return 0;
}
