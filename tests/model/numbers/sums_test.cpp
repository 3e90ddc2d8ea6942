#include "model/numbers/sums.h"

#include <cmath>
#include <limits>
#include <random>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

std::int64_t countOneByOne(double start, double end, double step) {
  std::int64_t count = 0;
  for (double t = start; t < end; t += step) ++count;
  return count;
}

// Steps with every number of trailing zero bits, so that sums fall between two numbers too.
TEST(CountSums, AgreesWithSumsThatAreTakenOneByOne) {
  std::mt19937_64 random(1);
  const auto fraction = [&] { return static_cast<double>(random() >> 11) * 0x1p-53; };
  for (int i = 0; i < 20000; ++i) {
    const double whole = std::ldexp(1.0, static_cast<int>(random() % 54));
    const double step = (1.0 + std::floor(fraction() * whole) / whole) * (i % 7 == 0 ? 1e-12 : 1.0);
    const double start = i % 3 == 0 ? 0.0 : step * fraction() * (i % 3 == 1 ? 2.0 : 3e5);
    const double end = start + step * fraction() * (i % 500 == 0 ? 1e6 : 2e3);
    EXPECT_EQ(countSums(start, end, step), countOneByOne(start, end, step))
        << start << ' ' << end << ' ' << step;
  }
}

// Beyond 2^53 numbers are two apart.
TEST(CountSums, CountsSumsThatLieBetweenTwoNumbers) {
  const double start = 0x1p53 - 2.0;
  for (const double step : {1.5, 2.5, 3.0, 5.0, 7.0}) {
    EXPECT_EQ(countSums(start, start + 1e5, step), countOneByOne(start, start + 1e5, step)) << step;
  }
}

TEST(CountSums, CountsMoreSumsThanCouldBeTaken) {
  EXPECT_EQ(countSums(0.0, 1e15, 1.0), 1000000000000000);
  EXPECT_EQ(countSums(0.25, 1e14, 0.5), 200000000000000);
}

TEST(CountSums, IsNothingWithoutRoom) {
  EXPECT_EQ(countSums(1.0, 1.0, 1.0), 0);
  EXPECT_EQ(countSums(2.0, 1.0, 1.0), 0);
  EXPECT_EQ(countSums(0.0, std::numeric_limits<double>::quiet_NaN(), 1.0), 0);
  EXPECT_EQ(countSums(0.0, 0.5, 1.0), 1);
}

}  // namespace
}  // namespace ibis::testing
