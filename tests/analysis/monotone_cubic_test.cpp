#include "analysis/monotone_cubic.h"

#include <gtest/gtest.h>

namespace ibis {
namespace {

// Steps of 1, 1/2, 5/2, 1 and 2: rising, rising steeply, rising, falling, level.
constexpr double xs[] = {0.0, 1.0, 1.5, 4.0, 5.0, 7.0};
constexpr double ys[] = {0.0, 0.25, 2.0, 3.0, 2.5, 2.5};

struct CubicRow {
  double x, value, slope;
};

// Hermite's basis with Butland's slopes, in exact fractions: the slopes at the points are 0 (the
// three-point formula points down there), 63/122, 252/289, 0, 0 and 0.
constexpr CubicRow cubicRows[] = {
    {0.0, 0.0, 0.0},           {0.5, 59.0 / 976.0, 15.0 / 61.0},
    {1.0, 0.25, 63.0 / 122.0}, {1.25, 622107.0 / 564128.0, 691467.0 / 141032.0},
    {1.5, 2.0, 252.0 / 289.0}, {2.0, 86087.0 / 36125.0, 23952.0 / 36125.0},
    {4.0, 3.0, 0.0},           {4.5, 2.75, -0.75},
    {6.0, 2.5, 0.0},           {7.0, 2.5, 0.0},
};

TEST(MonotoneCubic, HasTheValuesAndSlopesOfExactFractions) {
  MonotoneCubic cubic(xs, ys);
  for (const CubicRow& row : cubicRows) {
    EXPECT_NEAR(cubic.at(row.x).value, row.value, 1e-14) << row.x;
    EXPECT_NEAR(cubic.at(row.x).slope, row.slope, 1e-13) << row.x;
  }
}

TEST(MonotoneCubic, IsReadBackwardsToo) {
  MonotoneCubic cubic(xs, ys);
  EXPECT_NEAR(cubic.at(4.5).value, 2.75, 1e-14);
  EXPECT_NEAR(cubic.at(0.5).value, 59.0 / 976.0, 1e-14);
}

TEST(MonotoneCubic, TwoPointsAreAStraightLine) {
  const double x[] = {1.0, 3.0};
  const double y[] = {2.0, 1.0};
  MonotoneCubic cubic(x, y);
  EXPECT_DOUBLE_EQ(cubic.at(1.5).value, 1.75);
  EXPECT_DOUBLE_EQ(cubic.at(2.5).slope, -0.5);
}

// Where the secants turn round, the three-point formula can exceed three times the end's own
// secant: of the secants 1 and -5 it makes 4, which becomes 3; of 1/10 and 39/10 it makes -9/5,
// which becomes 0, and 29/5 at the other end, which stays.
TEST(MonotoneCubic, AnEndSlopeIsBoundedWhereTheCurveTurns) {
  const double x[] = {0.0, 1.0, 2.0};
  const double turns[] = {0.0, 1.0, -4.0};
  EXPECT_DOUBLE_EQ(MonotoneCubic(x, turns).at(0.0).slope, 3.0);
  EXPECT_DOUBLE_EQ(MonotoneCubic(x, turns).at(2.0).slope, -8.0);
  const double bends[] = {0.0, 0.1, 4.0};
  EXPECT_DOUBLE_EQ(MonotoneCubic(x, bends).at(0.0).slope, 0.0);
  EXPECT_DOUBLE_EQ(MonotoneCubic(x, bends).at(1.0).slope, 0.195);
  EXPECT_DOUBLE_EQ(MonotoneCubic(x, bends).at(2.0).slope, 5.8);
}

}  // namespace
}  // namespace ibis
