#include "analysis/switching.h"

#include <gtest/gtest.h>

#include <cmath>

#include "analysis/coefficient_solver.h"
#include "analysis/die_waveform.h"
#include "analysis/load_line.h"
#include "records.h"

namespace ibis {
namespace {

constexpr double supply = 3.0;        // volts
constexpr double conductance = 0.02;  // of both tables, in siemens

IBISModel straightDriver(ModelType type) {
  IBISModel model;
  model.name = "straight";
  model.type = type;
  model.voltageRange = same(supply);
  model.pullup = straight(-conductance);
  model.pulldown = straight(conductance);
  return model;
}

double step(double t) {
  const double s = std::clamp((t - 0.2) / 0.6, 0.0, 1.0);
  return s * s * s * (10.0 - s * (15.0 - 6.0 * s));
}

double upOf(double t) { return step(t); }
double downOf(double t) { return 1.0 - step(t + 0.05); }

// The pad of the straight driver without capacitance, from the sum of its currents.
double padVoltage(double up, double down, double resistance, double voltage) {
  const double g = 1.0 / resistance;
  return (up * conductance * supply + g * voltage) / ((up + down) * conductance + g);
}

IBISWaveform waveform(double resistance, double voltage, std::size_t count) {
  IBISWaveform wave;
  wave.present = true;
  wave.rFixture = {.present = true, .value = resistance};
  wave.vFixture = {.present = true, .value = voltage};
  for (std::size_t i = 0; i <= count; ++i) {
    const double t = static_cast<double>(i) / static_cast<double>(count);
    wave.time.append(t * 1e-9);
    wave.typ.append(padVoltage(upOf(t), downOf(t), resistance, voltage));
  }
  wave.min = wave.max = wave.typ;
  return wave;
}

EdgeCoefficients extract(const IBISModel& model, Findings& findings) {
  const Device device = makeDevice(model, corner::typ, findings);
  return extractEdge(model, device, Edge::rising, corner::typ, findings);
}

TEST(LoadLine, AStraightDriverDividesTheSupply) {
  Findings findings;
  const Device device = makeDevice(straightDriver(ModelType::output), corner::typ, findings);
  const auto low = operatingPoints(device, settled(DriverKind::pushPull, false), {50.0, supply});
  ASSERT_EQ(low.size(), 1u);
  EXPECT_NEAR(low[0], 1.5, 1e-12);
  const auto high = operatingPoints(device, settled(DriverKind::pushPull, true), {50.0, 0.0});
  ASSERT_EQ(high.size(), 1u);
  EXPECT_NEAR(high[0], 1.5, 1e-12);
}

TEST(LoadLine, ATableThatTurnsBackHasThreePoints) {
  IBISModel model = straightDriver(ModelType::openDrain);
  model.pulldown.voltage = {0.0, 1.0, 2.0, 3.0};
  model.pulldown.typ = {0.0, 0.05, 0.0, 0.06};
  Findings findings;
  const Device device = makeDevice(model, corner::typ, findings);
  const auto points = operatingPoints(device, {0.0, 1.0}, {100.0, 3.0});
  ASSERT_EQ(points.size(), 3u);
  EXPECT_NEAR(points[0], 0.5, 1e-12);
  // 0.05 - 0.05 (v - 1) = (3 - v) / 100
  EXPECT_NEAR(points[1], 1.75, 1e-12);
  // 0.06 (v - 2) = (3 - v) / 100
  EXPECT_NEAR(points[2], 15.0 / 7.0, 1e-12);
  EXPECT_NEAR(operatingPointNear(device, {0.0, 1.0}, {100.0, 3.0}, 1.7), 1.75, 1e-12);
}

TEST(Solver, TwoRowsGiveBothCoefficients) {
  // -0.02 u + 0.03 d = -0.005 and -0.04 u + 0.01 d = -0.02: u = 0.55, d = 0.2
  const Coefficients k = solvePair({-0.02, 0.03, -0.005}, {-0.04, 0.01, -0.02});
  EXPECT_NEAR(k.up, 0.55, 1e-6);
  EXPECT_NEAR(k.down, 0.2, 1e-6);
}

TEST(Solver, RowsThatSayTheSameTakeTheSumOfOne) {
  const Coefficients k = solvePair({-0.02, 0.02, 0.0}, {-0.02, 0.02, 0.0});
  EXPECT_NEAR(k.up, 0.5, 1e-9);
  EXPECT_NEAR(k.down, 0.5, 1e-9);
}

TEST(Solver, StaysInsideItsBounds) {
  const Coefficients k = solvePair({-0.01, 0.0, -1.0}, {0.0, 0.01, 0.005});
  EXPECT_EQ(k.up, largestCoefficient);
  EXPECT_NEAR(k.down, 0.5, 1e-6);
  EXPECT_EQ(solveComplement({-0.01, 0.01, -5.0}).up, largestCoefficient);
}

TEST(Solver, OneRowMakesComplements) {
  const Coefficients k = solveComplement({-0.03, 0.01, -0.02});
  EXPECT_NEAR(k.up, 0.75, 1e-12);
  EXPECT_NEAR(k.down, 0.25, 1e-12);
}

TEST(Solver, AnOpenDriverIsInterpolatedWhereItCarriesNothing) {
  const double time[] = {0.0, 1.0, 2.0};
  const CurrentRow rows[] = {{0.0, 0.1, 0.1}, {0.0, 0.0, 0.0}, {0.0, 0.1, 0.0}};
  const std::vector<double> k = solveOpen(rows, 1, time, DriverKind::openDrain);
  EXPECT_NEAR(k[0], 1.0, 1e-12);
  EXPECT_NEAR(k[1], 0.5, 1e-12);
  EXPECT_NEAR(k[2], 0.0, 1e-12);
}

TEST(DieWaveform, AnInductorDelaysTheCurrentOfARamp) {
  // V = a t into L and R: i = a / R (t - tau (1 - exp(-t / tau))), tau = L / R
  WaveformPoints points{{0.0, 1e-9}, {0.0, 1.0}, 0};
  const Fixture fixture{.resistance = 50.0, .voltage = 0.0, .inductance = 5e-9};
  std::vector<double> grid;
  for (int i = 0; i <= 1000; ++i) grid.push_back(i * 1e-12);
  const DieWaveform wave = dieWaveform(points, fixture, grid);
  const double tau = 1e-10;
  for (const std::size_t i : {100u, 500u, 1000u}) {
    const double t = grid[i];
    EXPECT_NEAR(wave.load[i], 2e7 * (t - tau * (1.0 - std::exp(-t / tau))), 1e-7);
  }
}

TEST(DieWaveform, LeadsOfTheDeviceRaiseThePad) {
  WaveformPoints points{{0.0, 1e-9}, {0.0, 1.0}, 0};
  const Fixture fixture{.resistance = 50.0, .voltage = 0.0, .rDut = 10.0, .lDut = 1e-9};
  std::vector<double> grid;
  for (int i = 0; i <= 100; ++i) grid.push_back(i * 1e-11);
  const DieWaveform wave = dieWaveform(points, fixture, grid);
  // i = V / 50, so the pad is V (1 + 10 / 50) + 1 nH V' / 50
  EXPECT_NEAR(wave.voltage[50], 0.5 * 1.2 + 0.02, 1e-9);
  EXPECT_NEAR(wave.slope[50], 1.2e9, 1.0);
}

TEST(Switching, TwoWaveformsGiveBackTheCoefficientsThatMadeThem) {
  IBISModel model = straightDriver(ModelType::output);
  model.risingWaveforms = {waveform(50.0, 0.0, 100), waveform(50.0, supply, 100)};
  Findings findings;
  const EdgeCoefficients edge = extract(model, findings);
  EXPECT_EQ(edge.method, EdgeMethod::twoWaveforms);
  EXPECT_TRUE(findings.empty());
  EXPECT_DOUBLE_EQ(edge.span, 1e-9);
  const Curve up{edge.table.time, edge.table.up};
  const Curve down{edge.table.time, edge.table.down};
  for (int i = 0; i <= 100; ++i) {
    const double t = i / 100.0;
    EXPECT_NEAR(valueAt(up, t * 1e-9), upOf(t), 1e-3) << t;
    EXPECT_NEAR(valueAt(down, t * 1e-9), downOf(t), 1e-3) << t;
  }
  EXPECT_EQ(edge.table.up.front(), 0.0);
  EXPECT_EQ(edge.table.down.front(), 1.0);
  EXPECT_EQ(edge.table.up.back(), 1.0);
  EXPECT_EQ(edge.table.down.back(), 0.0);
}

TEST(Switching, OfManyWaveformsThePairThatTellsMostIsTaken) {
  IBISModel model = straightDriver(ModelType::output);
  model.risingWaveforms = {waveform(50.0, 0.0, 100), waveform(51.0, 0.1, 100),
                           waveform(50.0, supply, 100)};
  Findings findings;
  EXPECT_EQ(extract(model, findings).used, (std::vector<std::size_t>{0, 2}));
}

TEST(Switching, ContradictingWaveformsLeaveTheLargerOne) {
  IBISModel model = straightDriver(ModelType::output);
  IBISWaveform late = waveform(50.0, supply, 100);
  for (double& t : late.time) t += 2e-9;
  late.time.at(0) = 0.0;
  model.risingWaveforms = {waveform(50.0, 0.0, 100), late};
  // A driver that pulls less from the second fixture makes its swing the smaller one.
  model.risingWaveforms[1].rFixture.value = 20.0;
  Findings findings;
  const EdgeCoefficients edge = extract(model, findings);
  EXPECT_EQ(edge.method, EdgeMethod::oneWaveform);
  EXPECT_EQ(edge.used.size(), 1u);
}

TEST(Switching, ACornerWithoutWaveformsTakesTheCoefficientsOfTyp) {
  IBISModel model = straightDriver(ModelType::output);
  model.risingWaveforms = {waveform(50.0, 0.0, 100), waveform(50.0, supply, 100)};
  MissingCorners missing;
  missing.set(corner::max);
  for (IBISWaveform& wave : model.risingWaveforms) {
    for (std::int32_t row = 0; row < wave.time.size(); ++row) wave.missing.set(row, missing);
  }
  for (IBISTable* table : {&model.pullup, &model.pulldown}) {
    for (double& current : table->max) current *= 2.0;
  }
  Findings findings;
  const EdgeCoefficients typ = extract(model, findings);
  const Device device = makeDevice(model, corner::max, findings);
  const EdgeCoefficients max = extractEdge(model, device, Edge::rising, corner::max, findings);
  EXPECT_TRUE(max.isFromTyp);
  EXPECT_EQ(max.table.up, typ.table.up);
  ASSERT_FALSE(findings.empty());
  EXPECT_EQ(findings.back().kind, FindingKind::cornerFromTyp);
}

TEST(Switching, CellsThatAFileLeavesOutAreNoPoints) {
  IBISModel model = straightDriver(ModelType::output);
  model.risingWaveforms = {waveform(50.0, 0.0, 200), waveform(50.0, supply, 200)};
  MissingCorners missing;
  missing.set(corner::typ);
  for (std::int32_t row = 1; row < 200; row += 2) {
    model.risingWaveforms[0].typ.at(row) = 0.0;
    model.risingWaveforms[0].missing.set(row, missing);
  }
  Findings findings;
  const EdgeCoefficients edge = extract(model, findings);
  EXPECT_NEAR(valueAt({edge.table.time, edge.table.up}, 0.5e-9), upOf(0.5), 1e-3);
  ASSERT_EQ(findings.size(), 1u);
  EXPECT_EQ(findings[0].kind, FindingKind::waveformCellsDropped);
  EXPECT_EQ(findings[0].count, 100u);
}

TEST(Switching, WithoutWaveformsTheRampMakesASmoothStep) {
  IBISModel model = straightDriver(ModelType::output);
  model.rampDtRise = same(1e-9);
  Findings findings;
  const EdgeCoefficients edge = extract(model, findings);
  EXPECT_EQ(edge.method, EdgeMethod::ramp);
  // The smoothstep 3 x^2 - 2 x^3 passes 0.2 and 0.8 at 0.287141 and 0.712859.
  EXPECT_NEAR(edge.span, 1e-9 / 0.4257185, 1e-15);
  const Curve up{edge.table.time, edge.table.up};
  EXPECT_NEAR(valueAt(up, 0.2871407 * edge.span), 0.2, 3e-4);
  EXPECT_NEAR(valueAt(up, 0.7128593 * edge.span), 0.8, 3e-4);
}

TEST(Switching, WithoutAnythingANanosecondIsAssumed) {
  Findings findings;
  const EdgeCoefficients edge = extract(straightDriver(ModelType::output), findings);
  EXPECT_EQ(edge.method, EdgeMethod::ramp);
  ASSERT_EQ(findings.size(), 1u);
  EXPECT_EQ(findings[0].kind, FindingKind::edgeAssumed);
}

TEST(Switching, AReceiverHasNone) {
  Findings findings;
  EXPECT_EQ(extract(straightDriver(ModelType::input), findings).method, EdgeMethod::none);
}

TEST(Device, NegativeCapacitanceAndSwappedThresholdsAreTold) {
  IBISModel model = straightDriver(ModelType::inputOutput);
  model.cComp = same(-1e-12);
  model.vinl = same(2.0);
  model.vinh = same(1.0);
  Findings findings;
  const Device device = makeDevice(model, corner::typ, findings);
  EXPECT_EQ(device.capacitances.total(), 0.0);
  EXPECT_EQ(device.thresholds.low, 1.5);
  ASSERT_EQ(findings.size(), 2u);
  EXPECT_EQ(findings[0].kind, FindingKind::negativeCapacitance);
  EXPECT_EQ(findings[1].kind, FindingKind::thresholdsSwapped);
}

TEST(Device, RailsThatDifferStayApart) {
  IBISModel model = straightDriver(ModelType::output);
  model.powerClampReference = same(5.0);
  model.gndClampReference = same(-1.0);
  EXPECT_EQ(railsOf(model, corner::typ), (Rails{3.0, 0.0, 5.0, -1.0}));
}

}  // namespace
}  // namespace ibis
