#include "analysis/load_line.h"

#include <gtest/gtest.h>

#include "analysis/switching.h"
#include "records.h"

namespace ibis {
namespace {

Device fourTables() {
  IBISModel model;
  model.name = "four";
  model.type = ModelType::output;
  model.voltageRange = same(3.0);
  model.pullup = table({-3.0, 0.0, 1.0, 3.0, 6.0}, {0.06, 0.0, -0.03, -0.045, -0.048});
  model.pulldown = table({-3.0, 0.0, 0.5, 2.0, 6.0}, {-0.05, 0.0, 0.02, 0.035, 0.04});
  model.powerClamp = table({-2.0, -1.0, -0.5, 0.0}, {0.07, 0.007, 0.0, 0.0});
  model.gndClamp = table({-2.0, -1.0, -0.5, 0.0}, {-0.09, -0.009, 0.0, 0.0});
  Findings findings;
  return makeDevice(model, corner::typ, findings);
}

struct RootRow {
  Coefficients k;
  ResistiveLoad load;
  double pad;  // volts
};

// The pad at which the four tables and the load add up to 0, by halving an interval of +-20 V
// seventy times in exact fractions. The third and fifth lie beyond the rails, where a clamp and the
// end of a table carry the current.
constexpr RootRow rootRows[] = {
    {{1.0, 0.0}, {50.0, 0.0}, 1.63636363636364},   {{0.0, 1.0}, {50.0, 3.0}, 1.5},
    {{0.0, 1.0}, {75.0, 8.0}, 4.11385606874329},   {{0.3, 0.9}, {60.0, 1.5}, 0.895522388059702},
    {{1.0, 0.0}, {25.0, -7.0}, -2.51639344262295}, {{1.0, 1.0}, {1e6, 0.0}, 1.71418776069939},
};

TEST(LoadLine, HasTheRootThatHalvingFinds) {
  const Device device = fourTables();
  for (const RootRow& row : rootRows) {
    const std::vector<double> points = operatingPoints(device, row.k, row.load);
    ASSERT_EQ(points.size(), 1u) << row.pad;
    EXPECT_NEAR(points[0], row.pad, 1e-12);
  }
}

TEST(LoadLine, ATerminatorDividesTheSupply) {
  IBISModel model;
  model.type = ModelType::terminator;
  model.voltageRange = same(3.0);
  model.rgnd = same(100.0);
  model.rpower = same(300.0);
  Findings findings;
  const Device device = makeDevice(model, corner::typ, findings);
  // v / 100 + (v - 3) / 300 + (v - 1) / 50 = 0
  const auto points = operatingPoints(device, {}, {50.0, 1.0});
  ASSERT_EQ(points.size(), 1u);
  EXPECT_NEAR(points[0], 0.9, 1e-12);
}

TEST(LoadLine, WithoutAPointTheVoltageAskedForStays) {
  EXPECT_EQ(nearestOf({}, 1.25), 1.25);
  EXPECT_EQ(nearestOf({-1.0, 2.0}, 0.4), -1.0);
}

TEST(Settled, KindsHaveTheirCoefficients) {
  const struct {
    DriverKind kind;
    Coefficients low, high;
  } rows[] = {{DriverKind::pushPull, {0.0, 1.0}, {1.0, 0.0}},
              {DriverKind::openDrain, {0.0, 1.0}, {0.0, 0.0}},
              {DriverKind::openSource, {0.0, 0.0}, {1.0, 0.0}},
              {DriverKind::none, {0.0, 0.0}, {0.0, 0.0}}};
  for (const auto& row : rows) {
    EXPECT_EQ(settled(row.kind, false).up, row.low.up);
    EXPECT_EQ(settled(row.kind, false).down, row.low.down);
    EXPECT_EQ(settled(row.kind, true).up, row.high.up);
    EXPECT_EQ(settled(row.kind, true).down, row.high.down);
  }
}

Device straightDriver() {
  IBISModel model;
  model.type = ModelType::output;
  model.voltageRange = same(3.0);
  model.pullup = table({-5.0, 5.0}, {0.1, -0.1});
  model.pulldown = table({-5.0, 5.0}, {-0.1, 0.1});
  Findings findings;
  return makeDevice(model, corner::typ, findings);
}

// 0.02 S at 3 V into 50 ohm to ground stands at 0 and 1.5 V; the waveform misses the second by 0.1
// of its swing of 1.55 V.
TEST(StaticMismatch, IsTheLargerMissOfTheTwoLevels) {
  const WaveformPoints points{{0.0, 1e-9}, {0.05, 1.6}, 0};
  EXPECT_NEAR(staticMismatch(straightDriver(), Edge::rising, points, {.voltage = 0.0}), 0.1 / 1.55,
              1e-12);
}

TEST(StaticMismatch, AFallingEdgeBeginsHigh) {
  const WaveformPoints points{{0.0, 1e-9}, {1.6, 0.05}, 0};
  EXPECT_NEAR(staticMismatch(straightDriver(), Edge::falling, points, {.voltage = 0.0}), 0.1 / 1.55,
              1e-12);
}

// With 10 ohm in the lead the pad is 1.2 times the pin: 18 / 11 V by the load line of 60 ohm, and
// 1.56 V by the waveform.
TEST(StaticMismatch, SeesThePadBehindItsLead) {
  const WaveformPoints points{{0.0, 1e-9}, {0.0, 1.3}, 0};
  EXPECT_NEAR(
      staticMismatch(straightDriver(), Edge::rising, points, {.voltage = 0.0, .rDut = 10.0}),
      (18.0 / 11.0 - 1.56) / 1.2 / 1.3, 1e-12);
}

}  // namespace
}  // namespace ibis
