#include "model/estimate_waveforms.h"

#include <cmath>
#include <limits>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nano = 1e-9;

const std::string estimated =
    "Model X: Estimated waveform as no waveform data in model file. Waveform may deviate "
    "substantially from actual device";

/// A triple in the file's order of columns.
IBISTriple triple(double typ, double min, double max) {
  return {.present = true, .typ = typ, .max = max, .min = min};
}

/// A table of one current for all corners.
IBISTable table(const YVector<double>& voltage, const YVector<double>& current) {
  return {.present = true,
          .direction = IBISTable::ascending,
          .voltage = voltage,
          .typ = current,
          .max = current,
          .min = current};
}

/// A driver between Vpd and Vpu with tables of 64 ohms on a load of 64 ohms: exact in binary.
IBISModel linearModel(double vpu, double vpd) {
  IBISModel model;
  model.name = "X";
  model.type = ModelType::output;
  model.pullupReference = triple(vpu, vpu, vpu);
  model.pulldownReference = triple(vpd, vpd, vpd);
  model.pulldown = table({-8, 0, 8}, {-0.125, 0, 0.125});
  model.pullup = table({-8, 0, 8}, {0.125, 0, -0.125});
  model.rLoad = {true, 64.0};
  model.rampDtRise = triple(1 * nano, 1 * nano, 1 * nano);
  model.rampDtFall = triple(2 * nano, 2 * nano, 2 * nano);
  return model;
}

Texts warningsOf(IBISModel& model) {
  Recorder told;
  estimateWaveforms(model, told);
  EXPECT_EQ(texts(told.errors), Texts());
  drawWaveforms(model);
  return texts(told.warnings);
}

std::vector<double> asVector(const YVector<double>& list) { return {list.begin(), list.end()}; }

/// Voltages with a mark instead of each not-a-number, which would not equal itself.
std::vector<double> withoutNumbers(std::vector<double> values) {
  for (double& value : values) {
    if (std::isnan(value)) value = -91.0;
  }
  return values;
}

std::vector<double> timePoints(std::int32_t kind, bool noDelay, const IBISTriple& rampTime) {
  IBISWaveform waveform;
  buildTimePoints(waveform, kind, noDelay, rampTime);
  EXPECT_EQ(waveform.kind, kind);
  return asVector(waveform.time);
}

/// The corner's voltages of a waveform with these times.
std::vector<double> voltages(const YVector<double>& time, const EstimatedEdge& edge) {
  IBISWaveform waveform;
  waveform.time = time;
  fillWaveform(waveform, edge);
  return asVector(waveform.typ);
}

TEST(BuildTimePoints, StepByAHundredthOfTheShortestRampFromZero) {
  std::vector<double> expected;
  const double end = 1.0 + 200.0 * 1.9999999999999998;
  for (double t = 0.0; t < end; t += 1.0) expected.push_back(t);
  EXPECT_EQ(timePoints(1, true, triple(150, 100, 200)), expected);
  EXPECT_EQ(expected.size(), 401U);
}

TEST(BuildTimePoints, BeginWithZeroAndGoOnAtTheDelay) {
  std::vector<double> expected{0.0};
  const double end = 1.0 + 200.0 * (1.6666666666666665 + 1.9999999999999998);
  for (double t = 100.0 * 1.6666666666666665; t < end; t += 1.0) expected.push_back(t);
  EXPECT_EQ(timePoints(0, false, triple(150, 100, 200)), expected);
  EXPECT_EQ(expected[1], 166.66666666666666);
}

/// The step that a ramp's corners lead to, which tells the shortest of them.
TEST(BuildTimePoints, TakeForTheShortestRampWhatIsBelowTheRunningMagnitude) {
  const std::pair<IBISTriple, double> rows[] = {
      {triple(3, 2, 5), 2.0},   {triple(2, 3, 5), 2.0},    {triple(5, 3, 2), 2.0},
      {triple(-3, 2, 5), 2.0},  {triple(5, -1, 0.5), 0.5}, {triple(5, notANumber, 2), 2.0},
      {triple(-4, -5, 3), 3.0},
  };
  for (const auto& [rampTime, shortest] : rows) {
    IBISWaveform waveform;
    buildTimePoints(waveform, 1, true, rampTime);
    EXPECT_EQ(waveform.time[0], 0.0);
    EXPECT_EQ(waveform.time[1], shortest / 100);
  }
}

TEST(BuildTimePoints, TakeForTheLongestRampTheLargestValue) {
  const std::vector<double> expected = timePoints(1, true, triple(150, 100, 200));
  EXPECT_EQ(timePoints(1, true, triple(-900, 100, 200)), expected);
  EXPECT_EQ(timePoints(1, true, triple(200, -900, 100)), expected);
  EXPECT_EQ(timePoints(1, true, triple(200, 100, notANumber)), expected);
}

// The end lies on a point but for the rounding, which thus decides the number of points.
TEST(BuildTimePoints, EndWhereTheRoundedSumsOfEqualRampsMeet) {
  for (int i = 1; i <= 200; ++i) {
    const double ramp = i * 0.05 * nano;
    std::vector<double> expected;
    const double end = ramp / 100 + ramp * 1.9999999999999998;
    for (double t = 0.0; t < end; t += ramp / 100) expected.push_back(t);
    EXPECT_EQ(timePoints(1, true, triple(ramp, ramp, ramp)), expected);
  }
}

TEST(BuildTimePoints, NeverTakeALongestRampBelowZero) {
  // All corners negative: the shortest is not above 0 either, and there is no step.
  EXPECT_EQ(timePoints(1, true, triple(-1, -2, -3)), std::vector<double>());
  EXPECT_EQ(timePoints(0, false, triple(-1, -2, -3)), std::vector<double>());
}

TEST(BuildTimePoints, AppendNothingForAStepOfZero) {
  EXPECT_EQ(timePoints(1, true, triple(nano, 0, 0)), std::vector<double>());
  EXPECT_EQ(timePoints(0, false, triple(nano, 0, 0)), std::vector<double>());
  EXPECT_EQ(timePoints(0, false, triple(0, 0, 0)), std::vector<double>());
}

TEST(BuildTimePoints, KeepTheZeroPointWhereARampIsTooShortForAStep) {
  const double least = std::numeric_limits<double>::denorm_min();
  EXPECT_EQ(timePoints(1, true, triple(least, least, least)), std::vector<double>());
  EXPECT_EQ(timePoints(0, false, triple(least, least, least)), std::vector<double>{0.0});
}

TEST(BuildTimePoints, AppendNothingForAStepThatIsNotFinite) {
  EXPECT_EQ(timePoints(1, true, triple(1, 1, -infinity)), std::vector<double>());
  EXPECT_EQ(timePoints(0, false, triple(1, 1, -infinity)), std::vector<double>());
}

TEST(BuildTimePoints, AppendNothingForARampWithoutEnd) {
  EXPECT_EQ(timePoints(1, true, triple(1, 1, infinity)), std::vector<double>());
  EXPECT_EQ(timePoints(0, false, triple(1, 1, infinity)), std::vector<double>{0.0});
}

// No corner is below the largest double, from which the shortest ramp starts.
TEST(BuildTimePoints, KeepOnePointForRampsOfNoNumber) {
  const IBISTriple noNumbers = triple(notANumber, notANumber, notANumber);
  EXPECT_EQ(timePoints(1, true, noNumbers), std::vector<double>{0.0});
  EXPECT_EQ(timePoints(0, false, noNumbers), std::vector<double>{0.0});
}

TEST(BuildTimePoints, GoUpToAMillionPoints) {
  EXPECT_EQ(timePoints(1, true, triple(100, 100, 499999.25)).size(), 1'000'000U);
  EXPECT_EQ(timePoints(1, true, triple(100, 100, 499999.75)), std::vector<double>());
}

TEST(BuildTimePoints, CountTheZeroPointAmongTheMillion) {
  const double delay = 166.66666666666666;
  const double share = 3.6666666666666661;
  const double fits = (999'998.5 + delay - 1.0) / share;
  const double exceeds = (999'999.5 + delay - 1.0) / share;
  EXPECT_EQ(timePoints(0, false, triple(100, 100, fits)).size(), 1'000'000U);
  EXPECT_EQ(timePoints(0, false, triple(100, 100, exceeds)), std::vector<double>{0.0});
}

TEST(BuildTimePoints, EndAtOnceForAnEnormousRamp) {
  EXPECT_EQ(timePoints(1, true, triple(1e-300, 1e300, 1e300)), std::vector<double>());
}

// As many points as additions of the step make, but few beyond a million.
std::int32_t countByAdding(bool noDelay, double shortest, double longest) {
  const double factor = noDelay ? 0.0 : 1.6666666666666665;
  const double step = shortest / 100.0;
  const double end = step + longest * (factor + 1.9999999999999998);
  std::int32_t count = shortest * factor > 0.0 ? 1 : 0;
  for (double t = shortest * factor; t < end && count < 1'000'010; t += step) ++count;
  return count;
}

IBISWaveform waveformOver(bool noDelay, const IBISTriple& rampTime) {
  IBISWaveform waveform;
  waveform.estimate = std::make_shared<IBISEstimate>();
  waveform.estimate->noDelay = noDelay;
  waveform.estimate->rampTime = rampTime;
  return waveform;
}

// Around the limit in steps of less than a point, where sums of steps are off by some.
TEST(HasTooManyPoints, IsExactNearTheLimit) {
  int tooMany = 0;
  int few = 0;
  for (const bool noDelay : {true, false}) {
    const double factor = noDelay ? 0.0 : 1.6666666666666665;
    for (const double shortest : {100.0, 1e-9, 3.3e-12, 0.7, 1e-300}) {
      for (int i = -12; i <= 12; ++i) {
        const double steps = 1e6 + i / 4.0;
        const double end = (steps - 1.0) * shortest / 100.0 + shortest * factor;
        const double longest = end / (factor + 1.9999999999999998);
        const std::int32_t count = countByAdding(noDelay, shortest, longest);
        const IBISWaveform waveform = waveformOver(noDelay, triple(shortest, shortest, longest));
        const bool isTooMany = count > 1'000'000;
        ++(isTooMany ? tooMany : few);
        EXPECT_EQ(hasTooManyPoints(waveform), isTooMany) << shortest << ' ' << i << ' ' << count;
        const std::int32_t points = isTooMany ? (noDelay ? 0 : 1) : count;
        EXPECT_EQ(estimatedTimes(*waveform.estimate).size(), points) << shortest << ' ' << i;
      }
    }
  }
  EXPECT_GT(tooMany, 50);
  EXPECT_GT(few, 50);
}

TEST(HasTooManyPoints, IsFalseWhereThereAreNoSteps) {
  EXPECT_FALSE(hasTooManyPoints(IBISWaveform()));
  EXPECT_FALSE(hasTooManyPoints(waveformOver(true, triple(0, 0, 1))));
  EXPECT_FALSE(hasTooManyPoints(waveformOver(true, triple(-1, 1, 1e9))));
  EXPECT_FALSE(hasTooManyPoints(waveformOver(false, triple(notANumber, notANumber, notANumber))));
}

TEST(HasTooManyPoints, IsTrueForARampWithoutEnd) {
  EXPECT_TRUE(hasTooManyPoints(waveformOver(true, triple(1, 1, infinity))));
  EXPECT_TRUE(hasTooManyPoints(waveformOver(false, triple(1e-300, 1e300, 1e300))));
}

TEST(FillWaveform, BendsALineIntoBothLevels) {
  const EstimatedEdge edge{.duration = 3.0, .delay = 5.0, .vStart = 0.5, .vEnd = 3.0};
  const double full = 3.0 / 0.6000000000000001 * 1.2;
  const double d = 3.0 - 0.5;
  const double k = 30.0 / d;
  const YVector<double> time{0.0, 5.0, 5.5, 6.0, 7.5, 8.0, 10.5, 40.0, 130.0};
  std::vector<double> expected;
  for (double t : time) {
    const double s = (t - 5.0) * 1.2 / full * d + 0.5 - d * 0.09999999999999998;
    const double u = (s - 0.5) * k;
    const double w = (s - 3.0) * k;
    const double p = std::fabs(u) > 50.0 ? std::fabs(u) - std::log(2.0) : std::log(std::cosh(u));
    const double q = std::fabs(w) > 50.0 ? std::fabs(w) - std::log(2.0) : std::log(std::cosh(w));
    expected.push_back(((p - q) / k + (0.5 + 3.0)) * 0.5);
  }
  EXPECT_EQ(voltages(time, edge), expected);
  EXPECT_NEAR(expected.front(), 0.5, 1e-9);
  EXPECT_NEAR(expected.back(), 3.0, 1e-9);
}

TEST(FillWaveform, LeavesTheStartAtASixthOfTheDurationAndMeetsTheEnd) {
  const EstimatedEdge edge{.duration = 6.0, .delay = 1.0, .vStart = 0.0, .vEnd = 3.0};
  const std::vector<double> values = voltages({2.0, 7.0, 12.0}, edge);
  const double bend = std::log(2.0) / 10 / 2;  // of a corner of the line, 30 to the swing
  EXPECT_NEAR(values[0], bend, 1e-12);
  EXPECT_NEAR(values[1], 1.5, 1e-12);
  EXPECT_NEAR(values[2], 3.0 - bend, 1e-12);
}

TEST(FillWaveform, GivesNoNumbersForEqualLevels) {
  const EstimatedEdge edge{.duration = 1.0, .vStart = 1.5, .vEnd = 1.5};
  const std::vector<double> values = voltages({0.0, 0.5, 100.0}, edge);
  EXPECT_EQ(withoutNumbers(values), (std::vector<double>{-91.0, -91.0, -91.0}));
}

TEST(FillWaveform, GivesNoNumbersForADurationOfZero) {
  const EstimatedEdge edge{.duration = 0.0, .vStart = 0.0, .vEnd = 3.0};
  EXPECT_EQ(withoutNumbers(voltages({0.0, 1.0}, edge)), (std::vector<double>{-91.0, -91.0}));
}

TEST(FillWaveform, ReplacesTheListOfItsCornerAlone) {
  IBISWaveform waveform;
  waveform.time = {0.0};
  waveform.typ = waveform.max = waveform.min = {7.0, 8.0};
  fillWaveform(waveform, {.duration = 1.0, .delay = 100.0, .vEnd = 2.0, .corner = corner::max});
  EXPECT_EQ(waveform.typ, (YVector<double>{7.0, 8.0}));
  EXPECT_EQ(waveform.min, (YVector<double>{7.0, 8.0}));
  EXPECT_EQ(waveform.max.size(), 1);
}

TEST(FillWaveform, SetsTheFixtureOfItsCorner) {
  constexpr IBISOptional IBISWaveform::*fixtures[] = {
      &IBISWaveform::vFixture, &IBISWaveform::vFixtureMax, &IBISWaveform::vFixtureMin};
  for (int index = 0; index < corner::count; ++index) {
    IBISWaveform waveform;
    fillWaveform(waveform, {.load = 75.0, .fixtureVoltage = 3.3, .corner = index});
    EXPECT_TRUE(waveform.rFixture.present);
    EXPECT_EQ(waveform.rFixture.value, 75.0);
    for (int other = 0; other < corner::count; ++other) {
      EXPECT_EQ((waveform.*fixtures[other]).present, other == index);
      EXPECT_EQ((waveform.*fixtures[other]).value, other == index ? 3.3 : 0.0);
    }
  }
}

/// What one edge of a linear model must look like, from levels that were worked out by hand.
struct Levels {
  double vStart, vEnd, fixtureVoltage;
};

void expectEdge(const IBISWaveform& waveform, const IBISTriple& rampTime, bool delayed,
                const Levels& levels) {
  EXPECT_EQ(waveform.vFixture.value, levels.fixtureVoltage);
  EXPECT_GT(waveform.time.size(), 200);
  const EstimatedEdge edge{.duration = rampTime.typ,
                           .delay = delayed ? rampTime.typ / 0.6000000000000001 : 0.0,
                           .vStart = levels.vStart,
                           .vEnd = levels.vEnd};
  const std::vector<double> expected = withoutNumbers(voltages(waveform.time, edge));
  EXPECT_EQ(withoutNumbers(asVector(waveform.typ)), expected);
  EXPECT_EQ(withoutNumbers(asVector(waveform.max)), expected);
  EXPECT_EQ(withoutNumbers(asVector(waveform.min)), expected);
}

TEST(EstimateWaveforms, DividesTheSupplyBetweenALinearTableAndTheLoad) {
  IBISModel model = linearModel(4.0, 0.0);
  EXPECT_MESSAGES(warningsOf(model), estimated);
  expectEdge(model.risingWaveforms[0], model.rampDtRise, true, {0.0, 2.0, 0.0});
  expectEdge(model.risingWaveforms[1], model.rampDtRise, false, {2.0, 4.0, 4.0});
  expectEdge(model.fallingWaveforms[0], model.rampDtFall, false, {2.0, 0.0, 0.0});
  expectEdge(model.fallingWaveforms[1], model.rampDtFall, true, {4.0, 2.0, 4.0});
}

// With the load to -2 V as well, the low level would be -2 V.
TEST(EstimateWaveforms, LoadsTheLowLevelToZeroVoltsWhateverThePulldownReference) {
  IBISModel model = linearModel(2.0, -2.0);
  EXPECT_MESSAGES(warningsOf(model), estimated);
  expectEdge(model.risingWaveforms[0], model.rampDtRise, true, {-1.0, 0.0, -2.0});
  expectEdge(model.risingWaveforms[1], model.rampDtRise, false, {0.0, 2.0, 2.0});
  expectEdge(model.fallingWaveforms[0], model.rampDtFall, false, {0.0, -1.0, -2.0});
  expectEdge(model.fallingWaveforms[1], model.rampDtFall, true, {2.0, 0.0, 2.0});
}

TEST(EstimateWaveforms, CreatesFourWaveformsForAnOpenDrainWithoutPullup) {
  IBISModel model = linearModel(4.0, 0.0);
  model.type = ModelType::openDrain;
  model.pullup = {};
  EXPECT_MESSAGES(warningsOf(model), estimated);
  ASSERT_EQ(model.risingWaveforms.size(), 2U);
  ASSERT_EQ(model.fallingWaveforms.size(), 2U);
  // Nothing pulls up, so both levels on the grounded load are 0 V: no numbers there.
  expectEdge(model.risingWaveforms[0], model.rampDtRise, true, {0.0, 0.0, 0.0});
  expectEdge(model.risingWaveforms[1], model.rampDtRise, false, {2.0, 4.0, 4.0});
  expectEdge(model.fallingWaveforms[0], model.rampDtFall, false, {0.0, 0.0, 0.0});
  expectEdge(model.fallingWaveforms[1], model.rampDtFall, true, {4.0, 2.0, 4.0});
  EXPECT_TRUE(std::isnan(model.risingWaveforms[0].typ[0]));
}

TEST(EstimateWaveforms, TakesNoCurrentOfAnOpenSourcesPulldown) {
  IBISModel model = linearModel(4.0, 0.0);
  model.type = ModelType::inputOutputOpenSource;
  model.pulldown = {};
  EXPECT_MESSAGES(warningsOf(model), estimated);
  expectEdge(model.risingWaveforms[0], model.rampDtRise, true, {0.0, 2.0, 0.0});
  expectEdge(model.risingWaveforms[1], model.rampDtRise, false, {4.0, 4.0, 4.0});
  expectEdge(model.fallingWaveforms[0], model.rampDtFall, false, {2.0, 0.0, 0.0});
  expectEdge(model.fallingWaveforms[1], model.rampDtFall, true, {4.0, 4.0, 4.0});
}

TEST(EstimateWaveforms, GivesEachCornerItsOwnLevelsOnSharedTimes) {
  IBISModel model = linearModel(4.0, 0.0);
  model.pullupReference = triple(4.0, 2.0, 6.0);
  model.rampDtRise = triple(4 * nano, 6 * nano, 3 * nano);
  warningsOf(model);
  const IBISWaveform& rising = model.risingWaveforms[1];
  EXPECT_EQ(rising.time[1], 3 * nano / 100);
  EXPECT_EQ(rising.vFixture.value, 4.0);
  EXPECT_EQ(rising.vFixtureMin.value, 2.0);
  EXPECT_EQ(rising.vFixtureMax.value, 6.0);
  EXPECT_EQ(asVector(rising.typ),
            voltages(rising.time, {.duration = 4 * nano, .vStart = 2.0, .vEnd = 4.0}));
  EXPECT_EQ(asVector(rising.min),
            voltages(rising.time, {.duration = 6 * nano, .vStart = 1.0, .vEnd = 2.0}));
  EXPECT_EQ(asVector(rising.max),
            voltages(rising.time, {.duration = 3 * nano, .vStart = 3.0, .vEnd = 6.0}));
}

TEST(EstimateWaveforms, GivesTheLastOfEachKindItsLevelsAndPassesOverOthers) {
  IBISModel model = linearModel(4.0, 0.0);
  for (std::int32_t kind : {0, 1, 0, IBISWaveform::fromFile}) {
    IBISWaveform waveform;
    waveform.time = {0.0};
    waveform.kind = kind;
    model.risingWaveforms.push_back(waveform);
    model.fallingWaveforms.push_back(waveform);
  }
  solveCorner(model, corner::typ);
  for (const auto* list : {&model.risingWaveforms, &model.fallingWaveforms}) {
    EXPECT_EQ((*list)[0].estimate, nullptr);
    EXPECT_NE((*list)[1].estimate, nullptr);
    EXPECT_NE((*list)[2].estimate, nullptr);
    EXPECT_EQ((*list)[3].estimate, nullptr);
  }
}

constexpr ModelType drivers[] = {
    ModelType::output,         ModelType::inputOutput,    ModelType::threeState,
    ModelType::openSource,     ModelType::openDrain,      ModelType::inputOutputOpenSource,
    ModelType::outputEcl,      ModelType::inputOutputEcl, ModelType::inputOutputOpenDrain,
    ModelType::threeStateEcl,  ModelType::outputDiff,     ModelType::inputOutputDiff,
    ModelType::threeStateDiff,
};

TEST(EstimateWaveforms, GivesEveryDriverFourWaveformsOfTheirKinds) {
  for (ModelType type : drivers) {
    IBISModel model = linearModel(4.0, 0.0);
    model.type = type;
    EXPECT_MESSAGES(warningsOf(model), estimated);
    for (const auto* list : {&model.risingWaveforms, &model.fallingWaveforms}) {
      ASSERT_EQ(list->size(), 2U);
      EXPECT_EQ((*list)[0].kind, 0);
      EXPECT_EQ((*list)[1].kind, 1);
    }
  }
}

TEST(EstimateWaveforms, GivesOtherTypesNone) {
  for (ModelType type : {ModelType::unknown, ModelType::input, ModelType::terminator,
                         ModelType::inputEcl, ModelType::series, ModelType::seriesSwitch,
                         ModelType::inputDiff, ModelType::gnd, ModelType::power, ModelType::nc}) {
    IBISModel model = linearModel(4.0, 0.0);
    model.type = type;
    EXPECT_MESSAGES(warningsOf(model));
    EXPECT_TRUE(model.risingWaveforms.empty());
    EXPECT_TRUE(model.fallingWaveforms.empty());
  }
}

TEST(EstimateWaveforms, EstimatesNothingBesideOneWaveformOfEitherEdge) {
  for (auto list : {&IBISModel::risingWaveforms, &IBISModel::fallingWaveforms}) {
    IBISModel model = linearModel(4.0, 0.0);
    (model.*list).resize(1);
    EXPECT_MESSAGES(warningsOf(model));
    EXPECT_EQ(model.risingWaveforms.size() + model.fallingWaveforms.size(), 1U);
  }
}

TEST(EstimateWaveforms, EstimatesNothingBesideOneRisingWaveformOfTheFile) {
  Parsed parsed(
      "[Component] U1\n[Model] X\nModel_type Open_drain\n[Voltage Range] 3.3 3.0 3.6\n"
      "[Pulldown]\n0 0\n[Ramp]\ndV/dt_r 1/1n 1/1n 1/1n\ndV/dt_f 1/1n 1/1n 1/1n\n"
      "[Rising Waveform]\n");
  parsed.resolve();
  EXPECT_MESSAGES(parsed.warnings());
  EXPECT_EQ(parsed.model().risingWaveforms.size(), 1U);
  EXPECT_TRUE(parsed.model().fallingWaveforms.empty());
}

TEST(EstimateWaveforms, LeavesTheWaveformsEmptyWithoutARamp) {
  IBISModel model = linearModel(4.0, 0.0);
  model.rampDtRise = model.rampDtFall = {};
  EXPECT_MESSAGES(warningsOf(model), estimated);
  for (const auto* list : {&model.risingWaveforms, &model.fallingWaveforms}) {
    ASSERT_EQ(list->size(), 2U);
    for (const IBISWaveform& waveform : *list) {
      EXPECT_TRUE(waveform.time.empty());
      EXPECT_TRUE(waveform.typ.empty());
      EXPECT_EQ(waveform.rFixture.value, 64.0);
    }
  }
}

TEST(EstimateWaveforms, SurvivesARampOfTheTypColumnAlone) {
  Parsed parsed(
      "[Component] U1\n[Model] X\nModel_type Output\n[Voltage Range] 3.3 3.0 3.6\n"
      "[Pulldown]\n0 0\n[Pullup]\n0 0\n[Ramp]\ndV/dt_r 1/1n\ndV/dt_f 1/1n 1/2n 1/3n\n");
  parsed.resolve();
  EXPECT_MESSAGES(parsed.warnings(), estimated);
  drawWaveforms(parsed.model());
  ASSERT_EQ(parsed.model().risingWaveforms.size(), 2U);
  EXPECT_TRUE(parsed.model().risingWaveforms[0].time.empty());
  EXPECT_TRUE(parsed.model().risingWaveforms[1].time.empty());
  EXPECT_EQ(parsed.model().fallingWaveforms[0].time[1], 1 * 1e-9 / 100);
}

TEST(EstimateWaveforms, TakesALoadOf50OhmsWithoutALineOfItsOwn) {
  IBISModel model = linearModel(4.0, 0.0);
  model.rLoad = IBISModel().rLoad;
  warningsOf(model);
  EXPECT_EQ(model.risingWaveforms[0].rFixture.value, 50.0);
}

// Both lists hold two waveforms of one fixture resistance: neither limit changes their order.
TEST(EstimateWaveforms, KeepTheirOrderInTheSortThatFollows) {
  for (const std::string type : {"I/O", "Open_drain"}) {
    Parsed parsed("[Component] U1\n[Model] X\nModel_type " + type +
                  "\nVinl 0.8\nVinh 2\n[Voltage Range] 3.3 3.0 3.6\n[Pulldown]\n0 0\n1 10m\n"
                  "[Pullup]\n0 0\n1 -10m\n[Ramp]\ndV/dt_r 1/1n NA NA\ndV/dt_f 1/1n NA NA\n");
    parsed.resolve();
    EXPECT_MESSAGES(parsed.warnings(), estimated);
    for (const auto* list : {&parsed.model().risingWaveforms, &parsed.model().fallingWaveforms}) {
      ASSERT_EQ(list->size(), 2U);
      EXPECT_EQ((*list)[0].kind, 0);
      EXPECT_EQ((*list)[1].kind, 1);
      EXPECT_EQ((*list)[0].rFixture.value, (*list)[1].rFixture.value);
    }
  }
}

}  // namespace
}  // namespace ibis::testing
