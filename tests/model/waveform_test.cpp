#include "model/waveform.h"

#include "harness/harness.h"

namespace ibis::testing {
namespace {

// One waveform keyword read by itself.
struct Read {
  explicit Read(const std::string& rows) : scanned("[Rising Waveform]\n" + rows) {
    readWaveform(scanned.records(), cursor, list);
  }

  const IBISWaveform& waveform() const { return list.at(0); }

  Scanned scanned;
  std::vector<IBISWaveform> list;
  std::int32_t cursor = 0;
};

// One [Ramp] read by itself.
struct Ramp {
  explicit Ramp(const std::string& rows) : scanned("[Ramp]\n" + rows) {
    readRamp(model, scanned.records(), cursor);
  }

  Scanned scanned;
  IBISModel model;
  std::int32_t cursor = 0;
};

// A ramp's triple in the file's order; it is never marked as present.
IBISTriple columns(double typ, double min, double max) {
  return {.present = false, .typ = typ, .max = max, .min = min};
}

constexpr IBISOptional IBISWaveform::*fixtureValues[] = {
    &IBISWaveform::rFixture,    &IBISWaveform::vFixture, &IBISWaveform::vFixtureMin,
    &IBISWaveform::vFixtureMax, &IBISWaveform::cFixture, &IBISWaveform::lFixture,
    &IBISWaveform::rDut,        &IBISWaveform::lDut,     &IBISWaveform::cDut,
};

constexpr const char* fixtureWords[] = {
    "R_fixture", "V_fixture", "V_fixture_min", "V_fixture_max", "C_fixture",
    "L_fixture", "R_dut",     "L_dut",         "C_dut",
};

TEST(Waveform, SetsTheOneValueThatAWordNames) {
  for (std::size_t word = 0; word < std::size(fixtureWords); ++word) {
    Read read(std::string(fixtureWords[word]) + " = 5n\n");
    for (std::size_t i = 0; i < std::size(fixtureValues); ++i) {
      const IBISOptional& value = read.waveform().*fixtureValues[i];
      EXPECT_EQ(value.present, i == word) << fixtureWords[word];
      EXPECT_EQ(value.value, i == word ? 5 * 1e-9 : 0.0) << fixtureWords[word];
    }
    EXPECT_TRUE(read.waveform().time.empty()) << fixtureWords[word];
  }
}

TEST(Waveform, WithoutRowsIsAppendedAndCounts) {
  Read read("[Rac] 5\n0 1\n");
  ASSERT_EQ(read.list.size(), 1U);
  EXPECT_TRUE(read.waveform().present);
  EXPECT_TRUE(read.waveform().time.empty());
  EXPECT_TRUE(read.waveform().typ.empty());
  EXPECT_TRUE(read.waveform().min.empty());
  EXPECT_TRUE(read.waveform().max.empty());
  EXPECT_EQ(read.cursor, 0);
}

TEST(Waveform, WithoutRowsKeepsTheModelFromBeingEstimated) {
  Parsed parsed(
      "[Component] U\n[Model] M\nModel_type Output\n[Voltage Range] 3 3 3\n"
      "[Pulldown]\n0 0\n1 1\n[Pullup]\n0 0\n1 -1\n[Ramp]\ndV/dt_r 1/1n\ndV/dt_f 1/1n\n"
      "[Rising Waveform]\n");
  parsed.resolve();
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_MESSAGES(parsed.warnings());
  EXPECT_EQ(parsed.model().risingWaveforms.size(), 1U);
  EXPECT_EQ(parsed.model().fallingWaveforms.size(), 0U);
}

TEST(Waveform, TakesTheLastOfRepeatedLines) {
  Read read("V_fixture 1\nV_fixture 2\n0 0\n");
  EXPECT_TRUE(read.waveform().vFixture.present);
  EXPECT_EQ(read.waveform().vFixture.value, 2.0);
}

TEST(Waveform, ReadsBlankAndEqualSignAlike) {
  for (const std::string line : {"R_fixture 50", "R_fixture=50", "R_fixture = 50", "R_fixture= 50",
                                 " \tR_fixture ==\t50 60"}) {
    Read read(line + "\n");
    EXPECT_TRUE(read.waveform().rFixture.present) << line;
    EXPECT_EQ(read.waveform().rFixture.value, 50.0) << line;
  }
}

TEST(Waveform, TakesAMissingValueForZero) {
  for (const std::string line : {"R_fixture", "R_fixture =", "R_fixture NA", "R_fixture x"}) {
    Read read(line + "\n");
    EXPECT_TRUE(read.waveform().rFixture.present) << line;
    EXPECT_EQ(read.waveform().rFixture.value, 0.0) << line;
  }
}

TEST(Waveform, PassesOverOtherSubParametersAheadOfItsRows) {
  Read read("Vref 1\nModel_type x\nVinh+ = 3\nR_fixture 50\n0 1\n");
  EXPECT_EQ(read.waveform().rFixture.value, 50.0);
  EXPECT_EQ(read.waveform().time, YVector<double>{0.0});
  EXPECT_EQ(read.waveform().typ, YVector<double>{1.0});
}

TEST(Waveform, ReadsRowsInTheOrderTypMinMax) {
  Read read("R_fixture 50\n0 1 2 3\n 5n\t4 5 6 7\n[Rac] 5\n");
  EXPECT_EQ(read.waveform().time, (YVector<double>{0.0, 5 * 1e-9}));
  EXPECT_EQ(read.waveform().typ, (YVector<double>{1.0, 4.0}));
  EXPECT_EQ(read.waveform().min, (YVector<double>{2.0, 5.0}));
  EXPECT_EQ(read.waveform().max, (YVector<double>{3.0, 6.0}));
  EXPECT_EQ(read.waveform().kind, 2);
  EXPECT_EQ(read.cursor, 3);
}

TEST(Waveform, TakesEveryLineBehindItsFirstRowForARow) {
  Read read("0 1 1 1\nR_fixture 50 4 5\nV_fixture = 3\n");
  EXPECT_FALSE(read.waveform().rFixture.present);
  EXPECT_EQ(read.waveform().time, (YVector<double>{0.0, 0.0, 0.0}));
  EXPECT_EQ(read.waveform().typ, (YVector<double>{1.0, 50.0, 0.0}));
  EXPECT_EQ(read.waveform().min, (YVector<double>{1.0, 4.0, 3.0}));
  EXPECT_EQ(read.waveform().max, (YVector<double>{1.0, 5.0, 0.0}));
}

TEST(Waveform, BeginsItsRowsAtAWordThatIsNoSubParameter) {
  Read read("r_fixture 50\nR_fixture 60\n");
  EXPECT_FALSE(read.waveform().rFixture.present);
  EXPECT_EQ(read.waveform().typ, (YVector<double>{50.0, 60.0}));
  Read equal("=\nR_fixture 60\n");
  EXPECT_EQ(equal.waveform().time, (YVector<double>{0.0, 0.0}));
}

TEST(Waveform, KeepsTimesThatRepeatOrFallBack) {
  Read read("0 1\n2 2\n2 3\n1 4\n");
  EXPECT_EQ(read.waveform().time, (YVector<double>{0.0, 2.0, 2.0, 1.0}));
  EXPECT_EQ(read.waveform().typ, (YVector<double>{1.0, 2.0, 3.0, 4.0}));
}

TEST(Waveform, TakesTypForNotAvailableAndZeroForMissing) {
  Read read("0 1\n1 2 NA NA\n2 3 na\n3 NA NA 4\n");
  EXPECT_EQ(read.waveform().typ, (YVector<double>{1.0, 2.0, 3.0, 0.0}));
  EXPECT_EQ(read.waveform().min, (YVector<double>{0.0, 2.0, 0.0, 0.0}));
  EXPECT_EQ(read.waveform().max, (YVector<double>{0.0, 2.0, 0.0, 4.0}));
}

TEST(FixtureVoltages, TakeTypForACornerThatIsMissing) {
  IBISWaveform waveform;
  waveform.vFixture = {true, 3.3};
  EXPECT_EQ(fixtureVoltages(waveform), (IBISTriple{true, 3.3, 3.3, 3.3}));
  waveform.vFixtureMin = {true, 3.0};
  EXPECT_EQ(fixtureVoltages(waveform), (IBISTriple{true, 3.3, 3.3, 3.0}));
  waveform.vFixtureMax = {true, 3.6};
  EXPECT_EQ(fixtureVoltages(waveform), (IBISTriple{true, 3.3, 3.6, 3.0}));
  waveform.vFixture = {};
  EXPECT_EQ(fixtureVoltages(waveform), (IBISTriple{false, 0.0, 3.6, 3.0}));
}

TEST(FixtureResistance, ComesWithItsFlag) {
  IBISWaveform waveform;
  EXPECT_FALSE(fixtureResistance(waveform).present);
  EXPECT_EQ(fixtureResistance(waveform).value, 0.0);
  waveform.rFixture = {true, 50.0};
  EXPECT_TRUE(fixtureResistance(waveform).present);
  EXPECT_EQ(fixtureResistance(waveform).value, 50.0);
}

TEST(Ramp, ReadsSwingAndTimeOfEachEdge) {
  Ramp ramp("dV/dt_r 1.5/2n 1/3n 2/1n\ndV/dt_f = 4/5 6/7 8/9\nR_load = 75\n[Rac] 5\n");
  EXPECT_EQ(ramp.model.rampDvRise, columns(1.5, 1, 2));
  EXPECT_EQ(ramp.model.rampDtRise, columns(2 * 1e-9, 3 * 1e-9, 1e-9));
  EXPECT_EQ(ramp.model.rampDvFall, columns(4, 6, 8));
  EXPECT_EQ(ramp.model.rampDtFall, columns(5, 7, 9));
  EXPECT_TRUE(ramp.model.rLoad.present);
  EXPECT_EQ(ramp.model.rLoad.value, 75.0);
  EXPECT_EQ(ramp.cursor, 3);
}

TEST(Ramp, TakesTypForNotAvailable) {
  Ramp ramp("dV/dt_r 1/2 NA NA/3\ndV/dt_f 4/5 6/NA NA\n");
  EXPECT_EQ(ramp.model.rampDvRise, columns(1, 1, 1));
  EXPECT_EQ(ramp.model.rampDtRise, columns(2, 2, 3));
  EXPECT_EQ(ramp.model.rampDvFall, columns(4, 6, 4));
  EXPECT_EQ(ramp.model.rampDtFall, columns(5, 5, 5));
}

TEST(Ramp, WithTypAloneLeavesTheOtherCornersZero) {
  Ramp ramp("dV/dt_r 1/2\n");
  EXPECT_EQ(ramp.model.rampDvRise, columns(1, 0, 0));
  EXPECT_EQ(ramp.model.rampDtRise, columns(2, 0, 0));
}

TEST(Ramp, WithNothingAvailableIsAllZero) {
  Ramp ramp("dV/dt_r 1/2 3/4 5/6\ndV/dt_r NA NA NA\n");
  EXPECT_EQ(ramp.model.rampDvRise, columns(0, 0, 0));
  EXPECT_EQ(ramp.model.rampDtRise, columns(0, 0, 0));
}

TEST(Ramp, KeepsItsUsualLoadUnlessGivenAnother) {
  const std::pair<std::string, double> lines[] = {
      {"", 50},      {"dV/dt_r 1/2", 50}, {"R_load NA", 50}, {"R_load 1k", 1e3},
      {"R_load", 0}, {"R_load x", 0},     {"r_load 60", 50}, {"R_load 60\nR_load 70", 70},
  };
  for (const auto& [line, load] : lines) {
    Ramp ramp(line + "\n");
    EXPECT_TRUE(ramp.model.rLoad.present) << line;
    EXPECT_EQ(ramp.model.rLoad.value, load) << line;
  }
}

TEST(Ramp, ComparesItsWordsExactly) {
  Ramp ramp("dV/dt 1/2\ndv/dt_r 1/2\nDV/DT_F 1/2\ndV/dt_r:1/2\n");
  EXPECT_EQ(ramp.model.rampDvRise, columns(0, 0, 0));
  EXPECT_EQ(ramp.model.rampDvFall, columns(0, 0, 0));
  EXPECT_EQ(ramp.cursor, 4);
}

// The fixture resistances of a selection; -1 for a waveform that is empty.
std::vector<double> selected(ModelType type, std::size_t rising, std::size_t falling) {
  IBISModel model;
  model.type = type;
  for (std::size_t i = 1; i <= rising; ++i) {
    model.risingWaveforms.emplace_back().rFixture = {true, static_cast<double>(i)};
  }
  for (std::size_t i = 1; i <= falling; ++i) {
    model.fallingWaveforms.emplace_back().rFixture = {true, static_cast<double>(10 * i)};
  }
  std::vector<double> resistances;
  for (const IBISWaveform* waveform : selectWaveforms(model)) {
    const bool isEmpty = !waveform->present && !waveform->rFixture.present;
    resistances.push_back(isEmpty ? -1.0 : waveform->rFixture.value);
  }
  return resistances;
}

using enum ModelType;
using Selected = std::vector<double>;

TEST(SelectWaveforms, GivesTwoOfEachEdgeForPushPullTypes) {
  for (ModelType type :
       {output, inputOutput, threeState, outputDiff, inputOutputDiff, threeStateDiff}) {
    EXPECT_EQ(selected(type, 3, 2), (Selected{1, 2, 10, 20}));
    EXPECT_EQ(selected(type, 1, 3), (Selected{1, -1, 10, 20}));
    EXPECT_EQ(selected(type, 0, 1), (Selected{-1, -1, 10, -1}));
    EXPECT_EQ(selected(type, 0, 0), (Selected{-1, -1, -1, -1}));
  }
}

TEST(SelectWaveforms, GivesOneOfEachEdgeForOpenAndEclTypes) {
  for (ModelType type : {openSource, inputOutputOpenSource, openDrain, inputOutputOpenDrain,
                         outputEcl, inputOutputEcl, threeStateEcl}) {
    EXPECT_EQ(selected(type, 2, 3), (Selected{1, 10}));
    EXPECT_EQ(selected(type, 1, 0), (Selected{1, -1}));
    EXPECT_EQ(selected(type, 0, 2), (Selected{-1, 10}));
    EXPECT_EQ(selected(type, 0, 0), (Selected{-1, -1}));
  }
}

TEST(SelectWaveforms, GivesNoneForOtherTypes) {
  for (ModelType type :
       {unknown, input, inputEcl, terminator, series, seriesSwitch, inputDiff, gnd, power, nc}) {
    EXPECT_EQ(selected(type, 2, 2), Selected{});
  }
}

}  // namespace
}  // namespace ibis::testing
