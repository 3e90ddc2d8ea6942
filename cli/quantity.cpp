#include "quantity.h"

#include <cmath>
#include <cstdio>

namespace ibis::cli {
namespace {

struct Prefix {
  double factor;
  const char* sign;
};

constexpr Prefix prefixes[] = {{1e12, "T"}, {1e9, "G"},  {1e6, "M"},  {1e3, "k"},   {1.0, ""},
                               {1e-3, "m"}, {1e-6, "u"}, {1e-9, "n"}, {1e-12, "p"}, {1e-15, "f"}};

std::string digits(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.4g", value);
  return text;
}

// Half of the last digit below the next factor would show as 1000.
constexpr double roundingUp = 0.99995;

const Prefix& prefixOf(double magnitude) {
  for (const Prefix& prefix : prefixes) {
    if (magnitude >= prefix.factor * roundingUp) return prefix;
  }
  return std::end(prefixes)[-1];
}

}  // namespace

std::string quantity(double value, const std::string& unit) {
  if (std::isnan(value)) return "nan " + unit;
  if (value == 0.0 || std::isinf(value)) return digits(value == 0.0 ? 0.0 : value) + ' ' + unit;
  const Prefix& prefix = prefixOf(std::fabs(value));
  return digits(value / prefix.factor) + ' ' + prefix.sign + unit;
}

std::vector<std::string> cornerTexts(const IBISTriple& triple, const std::string& unit) {
  std::vector<std::string> texts;
  for (const int corner : {corner::typ, corner::min, corner::max}) {
    texts.push_back(triple.missing.at(corner) ? "-" : quantity(triple.at(corner), unit));
  }
  return texts;
}

}  // namespace ibis::cli
