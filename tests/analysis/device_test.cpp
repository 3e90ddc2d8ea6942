#include "analysis/device.h"

#include <gtest/gtest.h>

#include "analysis/iv_curve.h"
#include "analysis/switching.h"
#include "records.h"

namespace ibis {
namespace {

MissingCorners withoutTyp() {
  MissingCorners missing;
  missing.set(corner::typ);
  return missing;
}

IBISModel driver() {
  IBISModel model;
  model.name = "driver";
  model.type = ModelType::output;
  model.voltageRange = same(3.0);
  model.pullup = table({-5.0, 5.0}, {0.1, -0.1});
  model.pulldown = table({-5.0, 5.0}, {-0.1, 0.1});
  return model;
}

Findings findingsOf(const IBISModel& model) {
  Findings findings;
  makeDevice(model, corner::typ, findings);
  return findings;
}

TEST(DeviceFindings, ATableWithMissingCellsIsTold) {
  IBISModel model = driver();
  model.pulldown = table({-5.0, 0.0, 5.0}, {-0.1, 7.0, 0.1});
  model.pulldown.missing.set(1, withoutTyp());
  const Findings findings = findingsOf(model);
  ASSERT_EQ(findings.size(), 1u);
  EXPECT_EQ(findings[0].kind, FindingKind::tableCellsFilled);
  EXPECT_EQ(findings[0].count, 1u);
}

TEST(DeviceFindings, AClampThatCarriesTooMuchIsTold) {
  IBISModel model = driver();
  model.gndClamp = table({-2.0, -1.0, 0.0}, {-600.0, -1.0, 0.0});
  const Findings findings = findingsOf(model);
  ASSERT_EQ(findings.size(), 1u);
  EXPECT_EQ(findings[0].kind, FindingKind::clampCurrentHuge);
  EXPECT_EQ(findings[0].value, 600.0);
}

TEST(DeviceFindings, ATableWithoutItsReferenceIsTold) {
  IBISModel model = driver();
  model.voltageRange.present = false;
  ASSERT_EQ(findingsOf(model).size(), 1u);
  EXPECT_EQ(findingsOf(model)[0].kind, FindingKind::referenceMissing);
  model.pullupReference = same(3.0);
  EXPECT_TRUE(findingsOf(model).empty());
  model.powerClamp = table({-1.0, 0.0}, {0.01, 0.0});
  EXPECT_EQ(findingsOf(model).size(), 1u);
}

TEST(DeviceFindings, ADriverWithoutATableIsTold) {
  IBISModel model = driver();
  model.pullup = IBISTable();
  ASSERT_EQ(findingsOf(model).size(), 1u);
  EXPECT_EQ(findingsOf(model)[0].kind, FindingKind::tableMissing);
}

// The missing cell at the upper end holds the last own value, and the end goes on level from there.
TEST(IvCurve, AMissingLastCellHoldsTheOneBefore) {
  IBISTable read = table({0.0, 1.0, 2.0}, {0.0, 1.0, 9.0});
  read.missing.set(2, withoutTyp());
  const IvCurve curve = makeIvCurve(read, corner::typ, Trend::rises);
  EXPECT_EQ(curve.curve.x, (std::vector<double>{-100.0, 0.0, 1.0, 2.0, 102.0}));
  EXPECT_EQ(curve.curve.y, (std::vector<double>{-100.0, 0.0, 1.0, 1.0, 1.0}));
}

IBISWaveform rising(double fixture, double low, double high, double delay) {
  IBISWaveform wave;
  wave.present = true;
  wave.rFixture = {.present = true, .value = 50.0};
  wave.vFixture = {.present = true, .value = fixture};
  wave.time = {0.0, delay, delay + 0.1e-9, 4e-9};
  wave.typ = {low, low, high, high};
  wave.min = wave.max = wave.typ;
  return wave;
}

EdgeCoefficients extract(const IBISModel& model, Findings& findings) {
  const Device device = makeDevice(model, corner::typ, findings);
  return extractEdge(model, device, Edge::rising, corner::typ, findings);
}

TEST(SwitchingFindings, AWaveformThatHardlyMovesIsLeftOut) {
  IBISModel model = driver();
  model.risingWaveforms = {rising(0.0, 0.0, 1.5, 1e-9), rising(3.0, 1.5, 1.54, 1e-9)};
  Findings findings;
  EXPECT_EQ(extract(model, findings).used, (std::vector<std::size_t>{0}));
  ASSERT_FALSE(findings.empty());
  EXPECT_EQ(findings[0].kind, FindingKind::waveformsUnusable);
  EXPECT_EQ(findings[0].count, 1u);
}

// The first fixture's pad moves 2 ns before the second's, which no driver can do.
TEST(SwitchingFindings, TheWaveformLeftByAContradictionIsTold) {
  IBISModel model = driver();
  model.risingWaveforms = {rising(0.0, 0.0, 1.5, 0.5e-9), rising(3.0, 1.4, 3.0, 2.5e-9)};
  Findings findings;
  const EdgeCoefficients edge = extract(model, findings);
  EXPECT_EQ(edge.method, EdgeMethod::oneWaveform);
  EXPECT_EQ(edge.used, (std::vector<std::size_t>{1}));
  ASSERT_FALSE(findings.empty());
  EXPECT_EQ(findings[0].kind, FindingKind::waveformsContradict);
  EXPECT_EQ(findings[0].count, 1u);
}

}  // namespace
}  // namespace ibis
