#include "model/numbers/sums.h"

#include <algorithm>
#include <cmath>

namespace ibis {
namespace {

// The power of two above a number.
double powerAbove(double number) {
  int exponent = 0;
  std::frexp(number, &exponent);
  return std::ldexp(1.0, exponent);
}

}  // namespace

// Between two powers of two every sum behind the second is rounded alike, by the same amount and
// exactly representable, so that all of them are taken at once.
std::int64_t countSums(double start, double end, double step) {
  std::int64_t count = 0;
  for (double t = start; t < end;) {
    const double next = t + step;
    const double second = next + step;
    const double rise = (second + step) - second;
    const double room = std::min(powerAbove(next), end) - second;
    const double whole = std::floor(room / rise) - 1.0;
    const bool isFar = whole >= 1.0;
    t = isFar ? second + whole * rise : next;
    count += isFar ? 2 + static_cast<std::int64_t>(whole) : 1;
  }
  return count;
}

}  // namespace ibis
