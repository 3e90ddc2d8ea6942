#include "model/model_reader.h"

#include "harness/harness.h"
#include "model/numbers/numbers.h"

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

// A triple in the file's order.
IBISTriple columns(double typ, double min, double max) {
  return {.present = true, .typ = typ, .max = max, .min = min};
}

const IBISTriple absent;

std::string componentAnd(std::string_view models) {
  return "[Component] U\n" + std::string(models);
}

TEST(PopToken, TakesOneWordAndOneSeparator) {
  struct Case {
    std::string_view line, token, rest;
  };
  for (const Case& row : std::initializer_list<Case>{
           {"Vinl 0.8", "Vinl", "0.8"},
           {" \t Vinl\t 0.8 ", "Vinl", " 0.8 "},
           {"Vinl=0.8", "Vinl", "0.8"},
           {"Vinl = 0.8", "Vinl", "= 0.8"},
           {"= 0.8", "", " 0.8"},
           {"==", "", "="},
           {"Vinl", "Vinl", ""},
           {"Vinl ", "Vinl", ""},
           {"", "", ""},
           {" \t", "", ""},
           {"a,b/c d", "a,b/c", "d"},
       }) {
    std::string_view rest = row.line;
    EXPECT_EQ(popToken(rest), row.token) << row.line;
    EXPECT_EQ(rest, row.rest) << row.line;
  }
}

TEST(PopToken, FoldsReservedWordsOfTheTokenAlone) {
  std::string_view rest = "gnd na";
  EXPECT_EQ(popToken(rest), "GND");
  EXPECT_EQ(rest, "na");
  EXPECT_EQ(popToken(rest), "NA");
  for (std::string_view line : {"Nc=", "nC x", "NC"}) EXPECT_EQ(popToken(line), "NC");
  std::string_view power = "powER";
  EXPECT_EQ(popToken(power), "POWER");
  std::string_view longer = "gnds";
  EXPECT_EQ(popToken(longer), "gnds");
}

TEST(Model, StartsEmptyButForTheLoadOfTheRamp) {
  const IBISModel model;
  EXPECT_EQ(model.type, ModelType::unknown);
  EXPECT_EQ(model.polarity, 0);
  EXPECT_EQ(model.enable, 0);
  EXPECT_TRUE(model.rLoad.present);
  EXPECT_EQ(model.rLoad.value, 50.0);
  EXPECT_EQ(model.vinl, absent);
  EXPECT_EQ(model.rampDvRise, absent);
  EXPECT_FALSE(model.pulldown.present);
  EXPECT_EQ(model.pulldown.direction, 0);
}

TEST(Model, IsBuiltInForGroundPowerAndNotConnected) {
  const IBISFile file;
  const auto& models = file.data().models;
  ASSERT_EQ(models.size(), 3U);
  const std::pair<const char*, ModelType> expected[] = {
      {"GND", ModelType::gnd}, {"POWER", ModelType::power}, {"NC", ModelType::nc}};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(models[i]->name, expected[i].first);
    EXPECT_EQ(models[i]->type, expected[i].second);
    EXPECT_EQ(file.data().nameTable->spiceName(expected[i].first), expected[i].first);
  }
}

TEST(ModelReader, TakesLineNameAndSpiceNameFromTheKeyword) {
  Parsed parsed(componentAnd("|\n[Model] \t A-1 \t\nModel_type Input\n"));
  EXPECT_EQ(parsed.model().lineNumber, 3);
  EXPECT_EQ(parsed.model().name, "A-1");
  EXPECT_EQ(parsed.model().spiceName, "A_1");
}

TEST(ModelReader, GivesNamesThatDifferInCaseAndReplacedCharactersTwoSpiceNames) {
  Parsed parsed(componentAnd("[Model] A-1\nModel_type Input\n[Model] a.1\nModel_type Input\n"));
  EXPECT_EQ(parsed.model(0).spiceName, "A_1");
  EXPECT_EQ(parsed.model(1).spiceName, "a_1_1");
}

TEST(ModelReader, SharesTheSpiceNameOfABuiltInModel) {
  Parsed parsed(componentAnd("[Model] gnd\nModel_type Input\n"));
  EXPECT_EQ(parsed.model().name, "GND");
  EXPECT_EQ(parsed.model().spiceName, "GND");
}

TEST(ModelType, TakesTheWordsThatHaveADevice) {
  const std::pair<std::string, ModelType> words[] = {
      {"Input", ModelType::input},
      {"Output", ModelType::output},
      {"I/O", ModelType::inputOutput},
      {"3-state", ModelType::threeState},
      {"Open_source", ModelType::openSource},
      {"I/O_open_source", ModelType::inputOutputOpenSource},
      {"Open_drain", ModelType::openDrain},
      {"I/O_open_drain", ModelType::inputOutputOpenDrain},
      {"Terminator", ModelType::terminator},
      {"GND", ModelType::gnd},
      {"power", ModelType::power},
      {"nc", ModelType::nc},
  };
  for (const auto& [word, type] : words) {
    Section section("[Model] M\nModel_type " + word + "\n");
    EXPECT_EQ(section.model.type, type) << word;
    EXPECT_MESSAGES(section.sink.errors);
  }
}

TEST(ModelType, ReportsWordsWithoutADeviceAndKeepsThem) {
  const std::pair<std::string, ModelType> words[] = {
      {"Input_ECL", ModelType::inputEcl},
      {"Output_ECL", ModelType::outputEcl},
      {"I/O_ECL", ModelType::inputOutputEcl},
      {"3-state_ECL", ModelType::threeStateEcl},
      {"Series", ModelType::series},
      {"Series_switch", ModelType::seriesSwitch},
      {"Input_diff", ModelType::inputDiff},
      {"Output_diff", ModelType::outputDiff},
      {"I/O_diff", ModelType::inputOutputDiff},
      {"3-state_diff", ModelType::threeStateDiff},
      {"unknown", ModelType::unknown},
  };
  for (const auto& [word, type] : words) {
    Section section("[Model] M\nModel_type " + word + "\n");
    EXPECT_EQ(section.model.type, type) << word;
    EXPECT_MESSAGES(section.sink.errors,
                    "Line 2: Model type '" + word + "' not currently supported");
  }
}

TEST(ModelType, TakesSinkForDrain) {
  Section sink("[Model] M\nModel_type=Open_sink\n");
  Section both("[Model] M\nModel_type\tI/O_open_sink\n");
  EXPECT_EQ(sink.model.type, ModelType::openDrain);
  EXPECT_EQ(both.model.type, ModelType::inputOutputOpenDrain);
  EXPECT_MESSAGES(sink.sink.errors);
  EXPECT_MESSAGES(both.sink.errors);
}

TEST(ModelType, NamesTheRowAndNotTheWordOfTheFile) {
  Section section("[Model] M\nC_comp 1p\nModel_type open_sink\nPolarity Inverting\n");
  EXPECT_EQ(section.model.type, ModelType::unknown);
  EXPECT_EQ(section.model.polarity, 1);
  EXPECT_MESSAGES(section.sink.errors, "Line 3: Model type 'unknown' not currently supported");
}

TEST(ModelType, IsEmptyBehindAnEqualSignWithBlanks) {
  Section section("[Model] M\nModel_type Input\nModel_type = Output\n");
  EXPECT_EQ(section.model.type, ModelType::unknown);
  EXPECT_MESSAGES(section.sink.errors, "Line 3: Model type 'unknown' not currently supported");
}

TEST(ModelType, OfASeriesModelGoesOnToTheChecks) {
  Parsed parsed(componentAnd("[Model] M\nModel_type Series\n"));
  parsed.resolve();
  EXPECT_EQ(parsed.model().type, ModelType::series);
  EXPECT_MESSAGES(parsed.errors(), "Line 3: Model type 'Series' not currently supported");
}

TEST(Polarity, ComparesItsWordsExactly) {
  const std::pair<std::string, int> words[] = {
      {" Non-Inverting", 0}, {" Inverting", 1}, {"=Inverting x", 1}, {" inverting", 2},
      {" Non-inverting", 2}, {"", 2},           {" = Inverting", 2}, {" Active-High", 2},
  };
  for (const auto& [word, expected] : words) {
    Section section("[Model] M\nPolarity" + word + "\n");
    EXPECT_EQ(section.model.polarity, expected) << word;
    EXPECT_MESSAGES(section.sink.errors);
  }
}

TEST(Enable, ComparesItsWordsExactly) {
  const std::pair<std::string, int> words[] = {
      {" Active-High", 0},  {" Active-Low", 1},  {"=Active-Low x", 1},
      {" active-low", 2},   {" Active-high", 2}, {"", 2},
      {" = Active-Low", 2}, {" Inverting", 2},
  };
  for (const auto& [word, expected] : words) {
    Section section("[Model] M\nEnable" + word + "\n");
    EXPECT_EQ(section.model.enable, expected) << word;
    EXPECT_MESSAGES(section.sink.errors);
  }
}

TEST(Enable, IsAnErrorForTypesWithAnEnableAlone) {
  const std::string rest = "Vinl 1\nVinh 2\nEnable Activ-Low\n";
  Parsed without(componentAnd("[Model] M\nModel_type Input\n" + rest));
  Parsed with(componentAnd("[Model] M\nModel_type I/O\n" + rest +
                           "[Voltage Range] 3 3 3\n[Pullup]\n0 0\n[Pulldown]\n0 0\n"));
  without.resolve();
  with.resolve();
  EXPECT_EQ(without.model().enable, 2);
  EXPECT_MESSAGES(without.errors());
  EXPECT_MESSAGES(with.errors(),
                  "Line 2: Model 'M' enable polarity type is invalid; expected 'Active-High' or "
                  "'Active-Low'");
}

// word, field
using TripleWord = std::pair<std::string, IBISTriple IBISModel::*>;

TEST(SubParameter, ReadsCapacitancesAsTriples) {
  for (const auto& [word, field] :
       std::initializer_list<TripleWord>{{"C_comp", &IBISModel::cComp},
                                         {"C_comp_pullup", &IBISModel::cCompPullup},
                                         {"C_comp_pulldown", &IBISModel::cCompPulldown},
                                         {"C_comp_power_clamp", &IBISModel::cCompPowerClamp},
                                         {"C_comp_gnd_clamp", &IBISModel::cCompGndClamp}}) {
    Section section("[Model] M\n" + word + " 3 1 NA\n");
    EXPECT_EQ(section.model.*field, columns(3, 1, 3)) << word;
    Section glued("[Model] M\n" + word + "=3 1 2\n");
    EXPECT_EQ(glued.model.*field, columns(3, 1, 2)) << word;
    Section spaced("[Model] M\n" + word + " = 3 1 2\n");
    EXPECT_EQ(spaced.model.*field, columns(0, 3, 1)) << word;
  }
}

TEST(SubParameter, ReadsThresholdsAndLoadsAsSingleValues) {
  for (const auto& [word, field] : std::initializer_list<TripleWord>{{"Vinl", &IBISModel::vinl},
                                                                     {"Vinh", &IBISModel::vinh},
                                                                     {"Vmeas", &IBISModel::vmeas},
                                                                     {"Cref", &IBISModel::cref},
                                                                     {"Rref", &IBISModel::rref},
                                                                     {"Vref", &IBISModel::vref}}) {
    Section section("[Model] M\n" + word + " = 3 1 2\n");
    EXPECT_EQ(section.model.*field, columns(3, 3, 3)) << word;
    Section missing("[Model] M\n" + word + " = NA\n");
    EXPECT_EQ(missing.model.*field, columns(0.8, 0.8, 0.8)) << word;
    Section lower("[Model] M\n" + word + " na\n");
    EXPECT_EQ(lower.model.*field, columns(0, 0, 0)) << word;
  }
}

TEST(SubParameter, IgnoresOtherWordsSilently) {
  Section section("[Model] M\nVinh+ 1\nRref_diff 1\nR_fixture 1\nvinl 1\nfoo\n== 1\nna\nVinh 2\n");
  EXPECT_EQ(section.model.vinhPlus, absent);
  EXPECT_EQ(section.model.rrefDiff, absent);
  EXPECT_EQ(section.model.vinl, absent);
  EXPECT_EQ(section.model.vinh, columns(2, 2, 2));
  EXPECT_MESSAGES(section.sink.errors);
  EXPECT_MESSAGES(section.sink.warnings);
}

TEST(SubParameter, IsReplacedByALaterLine) {
  Section section("[Model] M\nC_comp 3 1 2\nModel_type Input\nC_comp 4\nModel_type I/O\n");
  EXPECT_EQ(section.model.cComp, columns(4, 0, 0));
  EXPECT_EQ(section.model.type, ModelType::inputOutput);
}

TEST(SubParameter, EndsAtTheFirstKeyword) {
  Section section("[Model] M\nVinl 1\n[Voltage Range] 3.3 3 3.6\nVinh 2\n");
  EXPECT_EQ(section.model.vinl, columns(1, 1, 1));
  EXPECT_EQ(section.model.vinh, absent);
  EXPECT_MESSAGES(section.sink.errors);
}

TEST(ModelSpec, ReadsThreeCornersOfEveryWord) {
  for (const auto& [word, field] :
       std::initializer_list<TripleWord>{{"Vinl", &IBISModel::vinl},
                                         {"Vinh", &IBISModel::vinh},
                                         {"Rref_diff", &IBISModel::rrefDiff},
                                         {"Cref_diff", &IBISModel::crefDiff},
                                         {"Vmeas", &IBISModel::vmeas},
                                         {"Cref", &IBISModel::cref},
                                         {"Rref", &IBISModel::rref},
                                         {"Vref", &IBISModel::vref},
                                         {"Vinh+", &IBISModel::vinhPlus},
                                         {"Vinh-", &IBISModel::vinhMinus},
                                         {"Vinl+", &IBISModel::vinlPlus},
                                         {"Vinl-", &IBISModel::vinlMinus},
                                         {"S_overshoot_high", &IBISModel::sOvershootHigh},
                                         {"S_overshoot_low", &IBISModel::sOvershootLow},
                                         {"D_overshoot_high", &IBISModel::dOvershootHigh},
                                         {"D_overshoot_low", &IBISModel::dOvershootLow},
                                         {"D_overshoot_time", &IBISModel::dOvershootTime},
                                         {"Pulse_high", &IBISModel::pulseHigh},
                                         {"Pulse_low", &IBISModel::pulseLow},
                                         {"Pulse_time", &IBISModel::pulseTime}}) {
    Section section("[Model] M\nVinl 9\n[Model Spec]\n" + word + " 3 1 NA\n");
    EXPECT_EQ(section.model.*field, columns(3, 1, 3)) << word;
    EXPECT_EQ(section.cursor, 4) << word;
  }
}

TEST(ModelSpec, IgnoresOtherWordsSilently) {
  Section section(
      "[Model] M\nModel_type Input\n[Model Spec]\nModel_type Series\nPolarity x\nEnable x\n"
      "C_comp 1\nR_fixture 1\nfoo\nvinl 1\nVref 5 4 6\n");
  EXPECT_EQ(section.model.type, ModelType::input);
  EXPECT_EQ(section.model.polarity, 0);
  EXPECT_EQ(section.model.enable, 0);
  EXPECT_EQ(section.model.cComp, absent);
  EXPECT_EQ(section.model.vinl, absent);
  EXPECT_EQ(section.model.vref, columns(5, 4, 6));
  for (const IBISTriple& slot : section.model.reservedSpec) EXPECT_EQ(slot, absent);
  EXPECT_MESSAGES(section.sink.errors);
}

TEST(ModelSpec, LeavesTheCursorOnItsLastLine) {
  Scanned scanned("[Model Spec]\nVinl 1 2 3\nVinh 4 5 6\n[Pullup]\n");
  IBISModel model;
  std::int32_t cursor = 0;
  readModelSpec(model, scanned.records(), cursor);
  EXPECT_EQ(cursor, 2);
  EXPECT_EQ(model.vinl, columns(1, 2, 3));
  EXPECT_EQ(model.vinh, columns(4, 5, 6));
}

TEST(ModelKeyword, ReadsItsArgumentAsATriple) {
  for (const auto& [word, field] :
       std::initializer_list<TripleWord>{{"Temperature Range", &IBISModel::temperatureRange},
                                         {"Voltage Range", &IBISModel::voltageRange},
                                         {"Pullup Reference", &IBISModel::pullupReference},
                                         {"Pulldown Reference", &IBISModel::pulldownReference},
                                         {"POWER Clamp Reference", &IBISModel::powerClampReference},
                                         {"GND Clamp Reference", &IBISModel::gndClampReference},
                                         {"Rgnd", &IBISModel::rgnd},
                                         {"Rpower", &IBISModel::rpower},
                                         {"Rac", &IBISModel::rac},
                                         {"Cac", &IBISModel::cac}}) {
    Section section("[Model] M\nModel_type Input\n[" + word + "] \t3 1 NA\n");
    EXPECT_EQ(section.model.*field, columns(3, 1, 3)) << word;
    EXPECT_MESSAGES(section.sink.errors);
    EXPECT_MESSAGES(section.sink.warnings);
  }
}

TEST(ModelKeyword, ReportsTransitTimesAndReadsThem) {
  Section section("[Model] M\nModel_type Input\n[TTgnd] 3 1 2\n[TTpower] 6 4 5\n");
  EXPECT_EQ(section.model.ttgnd, columns(3, 1, 2));
  EXPECT_EQ(section.model.ttpower, columns(6, 4, 5));
  EXPECT_MESSAGES(section.sink.errors,
                  "Line 3: Model definition 'M': Keyword 'TTgnd' not currently supported",
                  "Line 4: Model definition 'M': Keyword 'TTpower' not currently supported");
}

TEST(ModelKeyword, ReportsSubmodelsAndSchedulesTwiceAndReadsThemAsTransitTime) {
  for (const std::string word : {"Add Submodel", "Driver Schedule"}) {
    Section section("[Model] M\nModel_type Input\n[" + word + "] 3 1 2\nBus_hold All\n");
    const std::string expected =
        "Line 3: Model definition 'M': Keyword '" + word + "' not currently supported";
    EXPECT_MESSAGES(section.sink.errors, expected, expected);
    EXPECT_EQ(section.model.ttgnd, columns(3, 1, 2));
    EXPECT_EQ(section.model.ttpower, absent);
  }
}

}  // namespace
}  // namespace ibis::testing
