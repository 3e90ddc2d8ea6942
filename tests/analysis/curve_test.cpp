#include "analysis/curve.h"

#include <gtest/gtest.h>

#include "analysis/iv_curve.h"
#include "analysis/monotone_cubic.h"
#include "analysis/thinning.h"

namespace ibis {
namespace {

IBISTable table(std::initializer_list<double> voltage, std::initializer_list<double> typ) {
  IBISTable table;
  table.present = true;
  table.voltage = voltage;
  table.typ = typ;
  table.min = typ;
  table.max = typ;
  const bool descends = voltage.size() > 1 && *(voltage.begin() + 1) < *voltage.begin();
  table.direction = descends ? IBISTable::descending : IBISTable::ascending;
  return table;
}

MissingCorners without(std::initializer_list<int> corners) {
  MissingCorners missing;
  for (const int each : corners) missing.set(each);
  return missing;
}

TEST(Curve, GoesOnOutsideItsPoints) {
  const Curve curve{{0.0, 1.0, 3.0}, {0.0, 2.0, 3.0}};
  EXPECT_DOUBLE_EQ(valueAt(curve, -1.0), -2.0);
  EXPECT_DOUBLE_EQ(valueAt(curve, 0.5), 1.0);
  EXPECT_DOUBLE_EQ(valueAt(curve, 1.0), 2.0);
  EXPECT_DOUBLE_EQ(valueAt(curve, 5.0), 4.0);
}

TEST(Curve, IsZeroWithoutPointsAndConstantWithOne) {
  EXPECT_EQ(valueAt({}, 7.0), 0.0);
  EXPECT_EQ(valueAt({{1.0}, {4.0}}, 7.0), 4.0);
}

TEST(Curve, AReaderFindsFarPlacesToo) {
  Curve curve;
  for (int i = 0; i <= 100; ++i) {
    curve.x.push_back(i);
    curve.y.push_back(i * i);
  }
  CurveReader reader(curve);
  for (const double x : {0.5, 99.5, 3.5, 50.5, 49.5, 0.5}) {
    EXPECT_DOUBLE_EQ(reader(x), (x - 0.5) * (x - 0.5) + 0.5 * (2.0 * (x - 0.5) + 1.0));
  }
}

TEST(IvCurve, AscendsAndGetsPointsFarOutside) {
  const IvCurve read =
      makeIvCurve(table({2.0, 1.0, 0.0}, {0.4, 0.2, 0.0}), corner::typ, Trend::rises);
  EXPECT_EQ(read.curve.x, (std::vector<double>{-100.0, 0.0, 1.0, 2.0, 102.0}));
  EXPECT_EQ(read.curve.y, (std::vector<double>{-20.0, 0.0, 0.2, 0.4, 20.4}));
  EXPECT_FALSE(read.holdsAnEnd);
  EXPECT_TRUE(read.isMonotonic);
}

TEST(IvCurve, HoldsAnEndOfTheWrongSlope) {
  const IvCurve read =
      makeIvCurve(table({0.0, 1.0, 2.0}, {0.0, 0.2, 0.1}), corner::typ, Trend::rises);
  EXPECT_EQ(read.curve.y.back(), 0.1);
  EXPECT_EQ(read.curve.y.front(), -20.0);
  EXPECT_TRUE(read.holdsAnEnd);
  EXPECT_FALSE(read.isMonotonic);
}

TEST(IvCurve, MissingCellsAreInterpolatedAndHeldAtTheEnds) {
  IBISTable read = table({0.0, 1.0, 2.0, 3.0}, {9.0, 1.0, 9.0, 3.0});
  read.missing.set(0, without({corner::typ}));
  read.missing.set(2, without({corner::typ}));
  const IvCurve curve = makeIvCurve(read, corner::typ, Trend::rises);
  EXPECT_EQ(curve.filledCells, 2u);
  EXPECT_DOUBLE_EQ(valueAt(curve.curve, 0.0), 1.0);
  EXPECT_DOUBLE_EQ(valueAt(curve.curve, 2.0), 2.0);
  EXPECT_DOUBLE_EQ(valueAt(curve.curve, 3.0), 3.0);
}

TEST(IvCurve, AColumnWithoutCellsTakesTyp) {
  IBISTable read = table({0.0, 1.0}, {0.0, 1.0});
  read.max = {5.0, 5.0};
  read.missing.set(0, without({corner::max}));
  read.missing.set(1, without({corner::max}));
  EXPECT_DOUBLE_EQ(valueAt(makeIvCurve(read, corner::max, Trend::rises).curve, 1.0), 1.0);
}

TEST(IvCurve, OnePointIsAConstant) {
  const IvCurve read = makeIvCurve(table({1.0}, {0.5}), corner::typ, Trend::falls);
  EXPECT_EQ(read.curve.size(), 3u);
  EXPECT_EQ(valueAt(read.curve, -50.0), 0.5);
}

TEST(IvCurve, AFarPointOfAHugeVoltageIsAnotherOne) {
  const IvCurve read = makeIvCurve(table({0.0, 1e12}, {0.0, 1.0}), corner::typ, Trend::rises);
  EXPECT_EQ(read.curve.x, (std::vector<double>{-100.0, 0.0, 1e12, 2e12}));
}

TEST(IvCurve, NumbersThatCannotBeCalculatedWithAreLeftOut) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const IvCurve read =
      makeIvCurve(table({0.0, 1.0, 2.0}, {0.0, nan, 2.0}), corner::typ, Trend::rises);
  EXPECT_DOUBLE_EQ(valueAt(read.curve, 1.0), 1.0);
  EXPECT_TRUE(makeIvCurve(table({0.0}, {nan}), corner::typ, Trend::rises).curve.empty());
}

// By hand: secants 1 and 1/2 over steps 1 and 2 make the slopes 7/6, 9/13 and 1/6.
TEST(MonotoneCubic, HasTheSlopesOfTheFormula) {
  const double x[] = {0.0, 1.0, 3.0};
  const double y[] = {0.0, 1.0, 2.0};
  MonotoneCubic cubic(x, y);
  EXPECT_NEAR(cubic.at(0.0).slope, 7.0 / 6.0, 1e-15);
  EXPECT_NEAR(cubic.at(1.0).slope, 9.0 / 13.0, 1e-15);
  EXPECT_NEAR(cubic.at(3.0).slope, 1.0 / 6.0, 1e-15);
  EXPECT_NEAR(cubic.at(0.5).value, 0.5 + (7.0 / 6.0 - 9.0 / 13.0) / 8.0, 1e-15);
}

TEST(MonotoneCubic, HoldsItsEndsAndNeverLeavesASegment) {
  const double x[] = {0.0, 1.0, 2.0, 3.0};
  const double y[] = {0.0, 0.0, 1.0, 1.0};
  MonotoneCubic cubic(x, y);
  EXPECT_EQ(cubic.at(-1.0).value, 0.0);
  EXPECT_EQ(cubic.at(4.0).slope, 0.0);
  for (double t = 0.0; t <= 3.0; t += 0.01) {
    EXPECT_GE(cubic.at(t).value, 0.0);
    EXPECT_LE(cubic.at(t).value, 1.0);
  }
}

TEST(Thinning, KeepsEveryRowWithinTheTolerance) {
  CoefficientTable table;
  for (int i = 0; i <= 2000; ++i) {
    const double t = i / 2000.0;
    table.add(t, t * t, 1.0 - t * t * t);
  }
  const CoefficientTable kept = thinned(table, 1e-3);
  EXPECT_LT(kept.size(), 40u);
  const Curve up{kept.time, kept.up};
  const Curve down{kept.time, kept.down};
  for (std::size_t i = 0; i < table.size(); ++i) {
    EXPECT_NEAR(valueAt(up, table.time[i]), table.up[i], 1e-3 * (1.0 + 1e-9));
    EXPECT_NEAR(valueAt(down, table.time[i]), table.down[i], 1e-3 * (1.0 + 1e-9));
  }
}

TEST(Thinning, KeepsTheEndsAndAStraightLineInBetweenGoes) {
  CoefficientTable table;
  for (int i = 0; i <= 50; ++i) table.add(i, i, -i);
  const CoefficientTable kept = thinned(table, 1e-9);
  EXPECT_EQ(kept.time, (std::vector<double>{0.0, 50.0}));
}

}  // namespace
}  // namespace ibis
