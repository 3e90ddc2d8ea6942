#include "harness/harness.h"
#include "model/model_reader.h"

namespace ibis::testing {
namespace {

// One [Model] section read by itself; its [Model] is line 1 of the text.
struct Section {
  explicit Section(std::string_view text)
      : scanned(text), result(readModelSection(model, scanned.records(), cursor, names, sink)) {}

  Scanned scanned;
  IBISNameTable names;
  IBISModel model;
  std::int32_t cursor = 0;
  Recorder sink;
  int result;
};

std::string modelAnd(const std::string& rest) { return "[Model] M\nModel_type Input\n" + rest; }

IBISTriple typOnly(double typ) { return {.present = true, .typ = typ}; }

const IBISTriple absent;

// The values of both blocks of series elements, the on block first.
void expectSeries(const Section& section, const IBISTriple& on, const IBISTriple& off) {
  EXPECT_EQ(section.model.seriesOn.rSeries, on);
  EXPECT_EQ(section.model.seriesOff.rSeries, off);
}

std::vector<double> drainVoltages(const std::vector<IBISSeriesMosfet>& list) {
  std::vector<double> voltages;
  for (const IBISSeriesMosfet& mosfet : list) voltages.push_back(mosfet.vds);
  return voltages;
}

TEST(ModelSection, EndsAheadOfAKeywordThatClosesIt) {
  for (const std::string word : {"Component", "Model Selector", "Model", "Submodel",
                                 "Define Package Model", "End", "External Circuit"}) {
    Section section(modelAnd("[Rac] 1\n[" + word + "] x\n[Cac] 2\n"));
    EXPECT_EQ(section.result, 1) << word;
    EXPECT_EQ(section.cursor, 2) << word;
    EXPECT_EQ(section.model.rac, typOnly(1)) << word;
    EXPECT_EQ(section.model.cac, absent) << word;
    EXPECT_MESSAGES(section.sink.errors);
  }
}

TEST(ModelSection, EndsAheadOfAClosingKeywordBehindItsSubParameters) {
  Section section(modelAnd("[End]\n"));
  EXPECT_EQ(section.result, 1);
  EXPECT_EQ(section.cursor, 1);
}

TEST(ModelSection, EndsBehindTheLastRecord) {
  Section section(modelAnd("[Rac] 1\n"));
  EXPECT_EQ(section.result, 0);
  EXPECT_EQ(section.cursor, 3);
}

TEST(ModelSection, SkipsOtherKeywordsAndTheirLinesSilently) {
  for (const std::string word : {"IBIS Ver",
                                 "File Name",
                                 "Copyright",
                                 "Manufacturer",
                                 "Package",
                                 "Pin",
                                 "Diff Pin",
                                 "Receiver Thresholds",
                                 "External Reference",
                                 "Test Data",
                                 "Rising Waveform Near",
                                 "Test Load",
                                 "Submodel Spec",
                                 "GND Pulse Table",
                                 "OEM",
                                 "Row",
                                 "End Package Model",
                                 "Alternate Package Models",
                                 "External Model",
                                 "End External Model",
                                 "End External Circuit",
                                 "Node Declarations",
                                 "End Circuit Call"}) {
    Section section(modelAnd("[" + word + "] 9\nVinl 1\n5 5 5 5\n[Rac] 1\n"));
    EXPECT_EQ(section.result, 0) << word;
    EXPECT_EQ(section.model.vinl, absent) << word;
    EXPECT_EQ(section.model.rac, typOnly(1)) << word;
    EXPECT_MESSAGES(section.sink.errors);
    EXPECT_MESSAGES(section.sink.warnings);
  }
}

TEST(ModelSection, WithoutADataLineIsReadOnWithItsKeywords) {
  Section section("[Model] M\n[Rac] 1\n[Cac] 2\n[Model] N\n");
  EXPECT_EQ(section.result, 1);
  EXPECT_EQ(section.cursor, 2);
  EXPECT_EQ(section.model.rac, typOnly(1));
  EXPECT_EQ(section.model.cac, typOnly(2));
}

TEST(ModelSection, WithoutAnyContentEndsWhereTheNextBegins) {
  Parsed parsed("[Component] U\n[Model] A\n[Model] B\nModel_type Input\n[Model] C\n");
  ASSERT_EQ(parsed.data().models.size(), 6U);
  EXPECT_EQ(parsed.model(0).name, "A");
  EXPECT_EQ(parsed.model(1).name, "B");
  EXPECT_EQ(parsed.model(1).type, ModelType::input);
  EXPECT_EQ(parsed.model(2).name, "C");
  EXPECT_MESSAGES(parsed.errors());
}

TEST(ModelSection, KeepsWaveformsOfEachEdgeInTheOrderOfTheFile) {
  Section section(
      modelAnd("[Rising Waveform]\nR_fixture 4\n[Falling Waveform]\nR_fixture 3\n"
               "[Falling Waveform]\nR_fixture 2\n[Rising Waveform]\nR_fixture 1\n"));
  ASSERT_EQ(section.model.risingWaveforms.size(), 2U);
  ASSERT_EQ(section.model.fallingWaveforms.size(), 2U);
  EXPECT_EQ(section.model.risingWaveforms[0].rFixture.value, 4.0);
  EXPECT_EQ(section.model.risingWaveforms[1].rFixture.value, 1.0);
  EXPECT_EQ(section.model.fallingWaveforms[0].rFixture.value, 3.0);
  EXPECT_EQ(section.model.fallingWaveforms[1].rFixture.value, 2.0);
}

TEST(ModelSection, ReadsEachTableIntoItsField) {
  Section section(
      modelAnd("[Pulldown]\n1 0\n[Pullup]\n2 0\n[GND Clamp]\n3 0\n[POWER Clamp]\n4 0\n"));
  EXPECT_EQ(section.model.pulldown.voltage, YVector<double>{1.0});
  EXPECT_EQ(section.model.pullup.voltage, YVector<double>{2.0});
  EXPECT_EQ(section.model.gndClamp.voltage, YVector<double>{3.0});
  EXPECT_EQ(section.model.powerClamp.voltage, YVector<double>{4.0});
}

TEST(SeriesState, DecidesTheBlockOfSeriesElements) {
  expectSeries(Section(modelAnd("[R Series] 1\n")), absent, typOnly(1));
  expectSeries(Section(modelAnd("[On]\n[R Series] 1\n")), typOnly(1), absent);
  expectSeries(Section(modelAnd("[Off]\n[R Series] 1\n")), absent, typOnly(1));
  expectSeries(Section(modelAnd("[Off]\n[R Series] 1\n[On]\n[R Series] 2\n")), typOnly(2),
               typOnly(1));
}

TEST(SeriesState, BeginsAnewWithEachModel) {
  Parsed parsed("[Component] U\n[Model] A\nVinl 1\n[On]\n[Model] B\nVinl 1\n[R Series] 1\n");
  EXPECT_EQ(parsed.model(1).seriesOn.rSeries, absent);
  EXPECT_EQ(parsed.model(1).seriesOff.rSeries, typOnly(1));
}

TEST(SeriesKeyword, ReadsATripleIntoItsField) {
  const std::pair<std::string, IBISTriple IBISSeriesElements::*> fields[] = {
      {"R Series", &IBISSeriesElements::rSeries},
      {"L Series", &IBISSeriesElements::lSeries},
      {"R1 Series", &IBISSeriesElements::r1Series},
      {"Lc Series", &IBISSeriesElements::lcSeries},
  };
  for (const auto& [word, field] : fields) {
    Section section(modelAnd("[On]\n[" + word + "] 3 1 NA\n"));
    EXPECT_EQ(section.model.seriesOn.*field, (IBISTriple{true, 3, 3, 1})) << word;
    EXPECT_MESSAGES(section.sink.errors);
  }
}

TEST(SeriesKeyword, OfACapacitanceIsNeverMatched) {
  for (const std::string word : {"C_Series", "C Series"}) {
    Section section(modelAnd("[On]\n[" + word + "] 3 1 2\n[Off]\n[" + word + "] 3 1 2\n"));
    EXPECT_EQ(section.model.seriesOn.cSeries, absent) << word;
    EXPECT_EQ(section.model.seriesOff.cSeries, absent) << word;
  }
}

TEST(SeriesCurrent, GoesToTheTableOfTheState) {
  Section section(
      modelAnd("[Series Current]\n1 0\n[On]\n[Series Current]\n2 0\n"
               "[Off]\n[Series Current]\n3 0\n"));
  EXPECT_EQ(section.model.seriesCurrentOn.voltage, YVector<double>{2.0});
  EXPECT_EQ(section.model.seriesCurrentOff.voltage, (YVector<double>{1.0, 3.0}));
}

TEST(SeriesMosfet, GoesToTheListOfTheStateAndIsDroppedWithoutOne) {
  Section section(
      modelAnd("[Series MOSFET]\nVds 1\n0 1\n[On]\n[Series MOSFET]\nVds 2\n0 1\n"
               "[Off]\n[Series MOSFET]\nVds 3\n0 1\n[Series MOSFET]\nVds 4\n0 1\n"));
  EXPECT_EQ(drainVoltages(section.model.seriesMosfetOn), (std::vector<double>{2}));
  EXPECT_EQ(drainVoltages(section.model.seriesMosfetOff), (std::vector<double>{3, 4}));
}

TEST(SeriesMosfet, ReadsItsDrainVoltageWithOrWithoutAnEqualSign) {
  for (const std::string line : {"Vds 500m", "Vds=500m", "Vds = 500m", "\tVds =500m x"}) {
    Section section(modelAnd("[On]\n[Series MOSFET]\n" + line + "\n0 1 NA 3\n"));
    ASSERT_EQ(section.model.seriesMosfetOn.size(), 1U) << line;
    const IBISSeriesMosfet& mosfet = section.model.seriesMosfetOn[0];
    EXPECT_EQ(mosfet.vds, 500 * 1e-3) << line;
    EXPECT_EQ(mosfet.table.voltage, YVector<double>{0.0}) << line;
    EXPECT_EQ(mosfet.table.min, YVector<double>{1.0}) << line;
    EXPECT_EQ(mosfet.table.max, YVector<double>{3.0}) << line;
  }
}

TEST(SeriesMosfet, TakesAnyOtherFirstLineForARow) {
  Section section(modelAnd("[On]\n[Series MOSFET]\n1 5\n2 6\n[Series MOSFET]\nvds 7\n2 6\n"));
  ASSERT_EQ(section.model.seriesMosfetOn.size(), 2U);
  EXPECT_EQ(drainVoltages(section.model.seriesMosfetOn), (std::vector<double>{0, 0}));
  EXPECT_EQ(section.model.seriesMosfetOn[0].table.voltage, (YVector<double>{1.0, 2.0}));
  EXPECT_EQ(section.model.seriesMosfetOn[0].table.typ, (YVector<double>{5.0, 6.0}));
  EXPECT_EQ(section.model.seriesMosfetOn[1].table.voltage, (YVector<double>{0.0, 2.0}));
  EXPECT_EQ(section.model.seriesMosfetOn[1].table.typ, (YVector<double>{7.0, 6.0}));
}

TEST(SeriesMosfet, WithoutLinesIsAnEmptyTableAndStaysOnItsKeyword) {
  Scanned scanned("[Series MOSFET]\n[Rac] 1\n");
  IBISModel model;
  Recorder sink;
  std::int32_t cursor = 0;
  readSeriesMosfet(model, scanned.records(), cursor, SeriesState::on, sink);
  EXPECT_EQ(cursor, 0);
  ASSERT_EQ(model.seriesMosfetOn.size(), 1U);
  EXPECT_EQ(model.seriesMosfetOn[0].vds, 0.0);
  EXPECT_TRUE(model.seriesMosfetOn[0].table.present);
  EXPECT_TRUE(model.seriesMosfetOn[0].table.voltage.empty());
  EXPECT_MESSAGES(sink.warnings);
}

TEST(SeriesMosfet, LeavesTheCursorOnItsLastRow) {
  Scanned scanned("[Series MOSFET]\nVds 1\n0 1\n1 2\n[Rac] 1\n");
  IBISModel model;
  Recorder sink;
  std::int32_t cursor = 0;
  readSeriesMosfet(model, scanned.records(), cursor, SeriesState::off, sink);
  EXPECT_EQ(cursor, 3);
  EXPECT_EQ(drainVoltages(model.seriesMosfetOff), (std::vector<double>{1}));
}

TEST(SeriesMosfet, CarriesAMissingDrainVoltageAsZero) {
  Section section(modelAnd("[On]\n[Series MOSFET]\nVds\n[Series MOSFET]\nVds NA\n0 1\n"));
  EXPECT_EQ(drainVoltages(section.model.seriesMosfetOn), (std::vector<double>{0, 0}));
  EXPECT_TRUE(section.model.seriesMosfetOn[0].table.voltage.empty());
}

}  // namespace
}  // namespace ibis::testing
