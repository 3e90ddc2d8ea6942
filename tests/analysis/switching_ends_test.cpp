#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "analysis/curve.h"
#include "analysis/switching.h"
#include "records.h"

namespace ibis {
namespace {

constexpr double supply = 3.0;        // volts
constexpr double conductance = 0.02;  // of both tables, in siemens
constexpr double span = 1e-9;         // seconds

// A pullup that turns on in a straight line between two shares of the span, its pulldown likewise
// off, into 50 ohm to a voltage.
struct Shape {
  double from, to;
};

double padVoltage(Shape shape, double time, double fixture) {
  const double up = std::clamp((time - shape.from) / (shape.to - shape.from), 0.0, 1.0);
  return (up * conductance * supply + fixture / 50.0) / (conductance + 1.0 / 50.0);
}

IBISWaveform waveform(Shape shape, double fixture, double offset) {
  IBISWaveform wave;
  wave.present = true;
  wave.rFixture = {.present = true, .value = 50.0};
  wave.vFixture = {.present = true, .value = fixture};
  for (int i = 0; i <= 201; ++i) {
    // The second point is near the first.
    const double time = i == 1 ? 0.0005 : std::max(0, i - 1) / 200.0;
    wave.time.append(time * span);
    wave.typ.append(padVoltage(shape, time, fixture) + offset);
  }
  wave.min = wave.max = wave.typ;
  return wave;
}

EdgeCoefficients extract(Shape shape, double offset, Findings& findings) {
  IBISModel model;
  model.name = "straight";
  model.type = ModelType::output;
  model.voltageRange = same(supply);
  model.pullup = straight(-conductance);
  model.pulldown = straight(conductance);
  model.risingWaveforms = {waveform(shape, 0.0, offset), waveform(shape, supply, offset)};
  const Device device = makeDevice(model, corner::typ, findings);
  return extractEdge(model, device, Edge::rising, corner::typ, findings);
}

double upAt(const EdgeCoefficients& edge, double time) {
  return valueAt({edge.table.time, edge.table.up}, time);
}

double downAt(const EdgeCoefficients& edge, double time) {
  return valueAt({edge.table.time, edge.table.down}, time);
}

// A pair of waveforms 30 mV too high stands at Ku = 0.02 and Kd = 0.98 before it moves:
//   -0.0594 u + 0.0006 d = -0.0006 and -0.0294 u + 0.0306 d = 0.0294.
// The start is the settled one, and a smoothstep over the dead time leads to the waveforms' own.
TEST(SwitchingEnds, AMismatchIsTakenOutDuringTheDeadTime) {
  constexpr double thinning = 3e-4;
  Findings findings;
  const EdgeCoefficients edge = extract({0.4, 0.8}, 0.03, findings);
  EXPECT_NEAR(edge.deadTime, 0.404 * span, 0.003 * span);
  EXPECT_EQ(edge.table.up.front(), 0.0);
  EXPECT_EQ(edge.table.down.front(), 1.0);
  const struct {
    double share, step;
  } rows[] = {{0.25, 0.15625}, {0.5, 0.5}, {0.75, 0.84375}, {0.98, 0.998816}};
  for (const auto& row : rows) {
    const double time = row.share * edge.deadTime;
    EXPECT_NEAR(upAt(edge, time), 0.02 * row.step, thinning) << row.share;
    EXPECT_NEAR(downAt(edge, time), 1.0 - 0.02 * row.step, thinning) << row.share;
  }
}

// A waveform that ends half way: the coefficients are its own up to the span, and a straight line
// from there brings them to the settled ones within a tenth of it.
TEST(SwitchingEnds, WhatHasNotSettledDoesSoBehindTheSpan) {
  constexpr double thinning = 3e-4;
  Findings findings;
  const EdgeCoefficients edge = extract({0.2, 1.8}, 0.0, findings);
  EXPECT_DOUBLE_EQ(edge.span, span);
  EXPECT_NEAR(upAt(edge, span), 0.5, thinning);
  EXPECT_NEAR(upAt(edge, 1.05 * span), 0.75, thinning);
  EXPECT_NEAR(downAt(edge, 1.05 * span), 0.25, thinning);
  EXPECT_DOUBLE_EQ(edge.table.time.back(), 1.1 * span);
  EXPECT_EQ(edge.table.up.back(), 1.0);
  EXPECT_EQ(edge.table.down.back(), 0.0);
  ASSERT_EQ(findings.size(), 2u);
  EXPECT_EQ(findings[0].kind, FindingKind::endOffNominal);
  EXPECT_NEAR(findings[0].value, 0.5, 1e-3);
  EXPECT_EQ(findings[1].kind, FindingKind::staticMismatch);
  // 0.75 V is missing at the end of a swing of 0.75 V.
  EXPECT_NEAR(findings[1].value, 1.0, 1e-9);
}

TEST(SwitchingEnds, AWaveformThatBeginsWithAStepIsTold) {
  Findings findings;
  extract({0.0, 0.0005}, 0.0, findings);
  ASSERT_EQ(findings.size(), 1u);
  EXPECT_EQ(findings[0].kind, FindingKind::waveformJumps);
  EXPECT_NEAR(findings[0].value, 1.0, 1e-9);
}

// Whatever the rows: those kept are rows of the table, and straight lines through them stay within
// the tolerance of every row left out.
TEST(ThinnedTable, StaysWithinItsToleranceOfAnyRows) {
  std::mt19937 random(20231);
  std::normal_distribution<double> noise(0.0, 1.0);
  CoefficientTable table;
  double up = 0.0;
  for (int i = 0; i < 3000; ++i) {
    up += 1e-3 * noise(random);
    table.add(i * 1e-12 + 4e-13 * std::fabs(std::sin(i)), up,
              std::sin(0.01 * i) + 1e-4 * noise(random));
  }
  for (const double tolerance : {1e-2, 1e-3, 2e-4, 5e-6}) {
    const CoefficientTable kept = thinned(table, tolerance);
    EXPECT_EQ(kept.size() < table.size(), tolerance > 1e-5) << tolerance;
    const Curve ups{kept.time, kept.up};
    const Curve downs{kept.time, kept.down};
    double worst = 0.0;
    for (std::size_t i = 0; i < table.size(); ++i) {
      worst = std::max({worst, std::fabs(valueAt(ups, table.time[i]) - table.up[i]),
                        std::fabs(valueAt(downs, table.time[i]) - table.down[i])});
    }
    EXPECT_LE(worst, tolerance * (1.0 + 1e-9));
    EXPECT_TRUE(std::ranges::includes(table.time, kept.time));
  }
}

}  // namespace
}  // namespace ibis
