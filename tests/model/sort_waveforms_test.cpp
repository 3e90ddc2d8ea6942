#include "model/sort_waveforms.h"

#include <limits>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// A fixture, and the kind by which a waveform is told from another of the same fixture.
struct Entry {
  double rFixture = 0.0;
  std::int32_t kind = IBISWaveform::fromFile;
};

std::vector<IBISWaveform> waveforms(const std::vector<Entry>& entries) {
  std::vector<IBISWaveform> list;
  for (const Entry& entry : entries) {
    IBISWaveform waveform;
    waveform.rFixture = {true, entry.rFixture};
    waveform.kind = entry.kind;
    list.push_back(waveform);
  }
  return list;
}

std::vector<std::int32_t> kinds(const std::vector<IBISWaveform>& list) {
  std::vector<std::int32_t> kinds;
  for (const IBISWaveform& waveform : list) kinds.push_back(waveform.kind);
  return kinds;
}

/// The order that the waveforms of both edges take, each named by its place before.
std::vector<std::int32_t> sortedPlaces(ModelType type, const std::vector<double>& fixtures) {
  std::vector<Entry> entries;
  for (double fixture : fixtures) {
    entries.push_back({fixture, static_cast<std::int32_t>(entries.size())});
  }
  IBISModel model;
  model.type = type;
  model.risingWaveforms = model.fallingWaveforms = waveforms(entries);
  sortWaveforms(model);
  EXPECT_EQ(kinds(model.risingWaveforms), kinds(model.fallingWaveforms));
  return kinds(model.risingWaveforms);
}

using Places = std::vector<std::int32_t>;

constexpr ModelType pushPullTypes[] = {
    ModelType::output,     ModelType::inputOutput,     ModelType::threeState,
    ModelType::outputDiff, ModelType::inputOutputDiff, ModelType::threeStateDiff,
};

constexpr ModelType oneSidedTypes[] = {
    ModelType::openSource,    ModelType::inputOutputOpenSource,
    ModelType::openDrain,     ModelType::inputOutputOpenDrain,
    ModelType::outputEcl,     ModelType::inputOutputEcl,
    ModelType::threeStateEcl,
};

constexpr ModelType otherTypes[] = {
    ModelType::unknown,    ModelType::input,  ModelType::inputEcl,     ModelType::inputDiff,
    ModelType::terminator, ModelType::series, ModelType::seriesSwitch, ModelType::gnd,
    ModelType::power,      ModelType::nc,
};

TEST(SortWaveforms, KeepsTwoWaveformsOfAPushPullDriverInFileOrder) {
  for (ModelType type : pushPullTypes) EXPECT_EQ(sortedPlaces(type, {75, 50}), (Places{0, 1}));
}

TEST(SortWaveforms, SortsThreeWaveformsOfAPushPullDriver) {
  for (ModelType type : pushPullTypes) {
    EXPECT_EQ(sortedPlaces(type, {75, 50, 25}), (Places{2, 1, 0}));
  }
}

TEST(SortWaveforms, SortsTwoWaveformsOfAOneSidedDriver) {
  for (ModelType type : oneSidedTypes) EXPECT_EQ(sortedPlaces(type, {75, 50}), (Places{1, 0}));
}

TEST(SortWaveforms, LeavesOtherTypesAlone) {
  for (ModelType type : otherTypes) {
    EXPECT_EQ(sortedPlaces(type, {75, 50, 25}), (Places{0, 1, 2}));
  }
}

TEST(SortWaveforms, LeavesNoneAndOneAlone) {
  EXPECT_EQ(sortedPlaces(ModelType::openDrain, {}), Places());
  EXPECT_EQ(sortedPlaces(ModelType::openDrain, {50}), Places{0});
}

TEST(SortWaveforms, SortsEachEdgeByItsOwnLength) {
  IBISModel model;
  model.type = ModelType::output;
  model.risingWaveforms = waveforms({{75, 0}, {50, 1}});
  model.fallingWaveforms = waveforms({{75, 0}, {50, 1}, {60, 2}});
  sortWaveforms(model);
  EXPECT_EQ(kinds(model.risingWaveforms), (Places{0, 1}));
  EXPECT_EQ(kinds(model.fallingWaveforms), (Places{1, 2, 0}));
  std::swap(model.risingWaveforms, model.fallingWaveforms);
  model.risingWaveforms = waveforms({{75, 0}, {50, 1}, {60, 2}});
  model.fallingWaveforms = waveforms({{75, 0}, {50, 1}});
  sortWaveforms(model);
  EXPECT_EQ(kinds(model.risingWaveforms), (Places{1, 2, 0}));
  EXPECT_EQ(kinds(model.fallingWaveforms), (Places{0, 1}));
}

TEST(SortWaveforms, KeepsTheOrderOfEqualFixtures) {
  EXPECT_EQ(sortedPlaces(ModelType::output, {50, 50, 25, 50, 25, 25}), (Places{2, 4, 5, 0, 1, 3}));
}

TEST(SortWaveforms, PutsAWaveformWithoutFixtureFirst) {
  IBISModel model;
  model.type = ModelType::openDrain;
  model.risingWaveforms = waveforms({{50, 0}});
  model.risingWaveforms.emplace_back();
  sortWaveforms(model);
  EXPECT_EQ(kinds(model.risingWaveforms), (Places{IBISWaveform::fromFile, 0}));
}

TEST(SortWaveforms, PutsNegativeFixturesFirst) {
  EXPECT_EQ(sortedPlaces(ModelType::output, {0.5, -50, 0.25, -0.5}), (Places{1, 3, 2, 0}));
}

// Halves are sorted by themselves and merged; the right one goes ahead only if it is less.
TEST(SortWaveforms, TakesANotANumberForNeitherLessNorGreater) {
  const std::pair<std::vector<double>, Places> rows[] = {
      {{notANumber, 50}, {0, 1}},        {{50, notANumber}, {0, 1}},
      {{75, notANumber, 50}, {0, 1, 2}}, {{notANumber, 75, 50}, {0, 2, 1}},
      {{75, 50, notANumber}, {1, 0, 2}}, {{notANumber, notANumber, 50, 25}, {0, 1, 3, 2}},
  };
  for (const auto& [fixtures, places] : rows) {
    EXPECT_EQ(sortedPlaces(ModelType::openSource, fixtures), places);
  }
}

TEST(SortWaveforms, TellsTheTemplatesTheTwoSmallestFixtures) {
  Parsed parsed(
      "[Component] U1\n[Model] Drv\nModel_type Output\n[Voltage Range] 3.3 3.0 3.6\n"
      "[Pulldown]\n0 0 0 0\n[Pullup]\n0 0 0 0\n"
      "[Rising Waveform]\nR_fixture = 75\n[Rising Waveform]\nR_fixture = 60\n"
      "[Rising Waveform]\nR_fixture = 50\n");
  parsed.resolve();
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_MESSAGES(parsed.warnings());
  EXPECT_EQ(parsed.model().risingWaveforms[0].rFixture.value, 50.0);
  EXPECT_EQ(parsed.model().risingWaveforms[1].rFixture.value, 60.0);
  EXPECT_EQ(parsed.model().risingWaveforms[2].rFixture.value, 75.0);
}

}  // namespace
}  // namespace ibis::testing
