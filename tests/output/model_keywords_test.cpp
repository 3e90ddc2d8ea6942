#include "harness/harness.h"
#include "output/loop_objects.h"

namespace ibis::testing {
namespace {

// A component that uses the models a test adds, in that order.
class ModelLoop {
 public:
  IBISModel& add(ModelType type) {
    IBISModel& model = *models_.emplace_back(std::make_unique<IBISModel>());
    model.type = type;
    component_.models.push_back(&model);
    return model;
  }

  // The body starts a line of its own, the third of the text that messages count.
  std::string expand(const std::string& body) {
    return expandTemplate("%foreachmodel%\n" + body + "%endforeach%", file_, &component_, sink_);
  }

  Texts errors() const { return texts(sink_.errors); }

 private:
  IBISFile file_;
  IBISComponent component_;
  std::vector<std::unique_ptr<IBISModel>> models_;
  Recorder sink_;
};

IBISTable table(YVector<double> voltage, YVector<double> typ, YVector<double> min,
                YVector<double> max) {
  return {true, IBISTable::ascending, voltage, typ, max, min};
}

IBISWaveform waveform(double resistance, double voltage, YVector<double> time,
                      YVector<double> typ) {
  IBISWaveform result;
  result.rFixture = {true, resistance};
  result.vFixture = {true, voltage};
  result.time = time;
  result.typ = typ;
  return result;
}

// Lists of two, three, one and four points; a falling waveform is missing.
void fill(IBISModel& model) {
  model.name = "Fast-Buffer";
  model.spiceName = "Fast_Buffer";
  model.polarity = 1;
  model.cComp = {true, 5e-12, 7e-12, 3.123456789012345e-12};
  model.vinl = {true, 0.123456789012345, 3.0, 2.0};
  model.vinh = {true, 1234567.5, 1e-13, -2.0};
  model.pullupReference = {true, 3.1234567, 3.6, 3.0};
  model.pulldownReference = {true, 0.1234567, 2.0, -1.0};
  model.powerClampReference = {true, 1234567.5, 5.0, 4.0};
  model.gndClampReference = {false, -0.5, 0.25, -0.75};
  model.pulldown = table({-1.5, 0.123456789012345}, {1, 2}, {3, 4}, {5, 6});
  model.pullup = table({0, 1, 2}, {10, 11, 12}, {20, 21, 22}, {30, 31, 32});
  model.gndClamp = table({-2}, {7}, {8}, {9});
  model.powerClamp = table({0, 1, 2, 3}, {.1, .2, .3, .4}, {1, 2, 3, 4}, {5, 6, 7, 8});
  model.risingWaveforms = {waveform(50.1234567, 0.1234567, {0, 1e-9}, {0, 1}),
                           waveform(50, 3.3, {1e-10, 3e-9, 5e-9}, {0, 1, 2})};
  model.risingWaveforms[0].min = {0, 0.5};
  model.risingWaveforms[0].max = {0, 2};
  model.risingWaveforms[1].vFixtureMin = {true, 3.0};
  model.risingWaveforms[1].vFixtureMax = {true, 3.6};
  model.fallingWaveforms = {waveform(75, 1.8, {2e-10, 4e-9}, {1, 0})};
  model.fallingWaveforms[0].min = {2, 0};
  model.fallingWaveforms[0].max = {3, 0};
}

struct ValueCase {
  const char* keyword;
  bool keepsBlanks;
  const char* text;
};

constexpr ValueCase values[] = {
    {"name", true, "Fast-Buffer"},
    {"spicename", true, "Fast_Buffer"},
    {"type", true, "I_O"},
    {"alttype", true, "I_O"},
    {"diffsuffix", false, ""},
    {"pulldown", true, "-1.5, 1, 0.123456789012, 2"},
    {"npulldown", true, "2"},
    {"pullup", true, "0, 10, 1, 11, 2, 12"},
    {"npullup", true, "3"},
    {"ivdata", true,
     "0, 10, 1, 11, 2, 12, 0, 20, 1, 21, 2, 22, 0, 30, 1, 31, 2, 32, "
     "-1.5, 1, 0.123456789012, 2, -1.5, 3, 0.123456789012, 4, -1.5, 5, 0.123456789012, 6"},
    {"clampdata", true,
     "-2, 7, -2, 8, -2, 9, 0, 0.1, 1, 0.2, 2, 0.3, 3, 0.4, "
     "0, 1, 1, 2, 2, 3, 3, 4, 0, 5, 1, 6, 2, 7, 3, 8"},
    {"gndclamp", true, "-2, 7"},
    {"ngndclamp", true, "1"},
    {"powerclamp", true, "0, 0.1, 1, 0.2, 2, 0.3, 3, 0.4"},
    {"npowerclamp", true, "4"},
    {"vinl", true, "0.123456789012, 2, 3"},
    {"vinh", true, "1234567.5, -2, 1e-13"},
    {"ccomp", true, "5e-12, 3.12345678901e-12, 7e-12"},
    {"polarity", true, "1"},
    {"enable_polarity", true, "0"},
    {"waveforms", true,
     "\n+\n+   0, 0, 1e-09, 1, \n+\n+   0, 0, 1e-09, 0.5, \n+\n+   0, 0, 1e-09, 2, "
     "\n+\n+   1e-10, 0, 3e-09, 1, 5e-09, 2, \n+\n+   1e-10, 0, 3e-09, 1, 5e-09, 2, "
     "\n+\n+   1e-10, 0, 3e-09, 1, 5e-09, 2, "
     "\n+\n+   2e-10, 1, 4e-09, 0, \n+\n+   2e-10, 2, 4e-09, 0, \n+\n+   2e-10, 3, 4e-09, 0, "
     "\n+\n+   \n+\n+   \n+\n+   "},
    {"waveform_times", false, "start=2e-10, end=5e-09"},
    {"waveformsizes", true, "2, 3, 2, 0"},
    {"rfixture", true, "50.1235, 50.1235, 50.1235, 50, 50, 50, 75, 75, 75, 0, 0, 0"},
    {"vfixture", true, "0.123457, 0.123457, 0.123457, 3.3, 3, 3.6, 1.8, 1.8, 1.8, 0, 0, 0"},
    {"pullupref", true, "3.12346, 3, 3.6"},
    {"pulldownref", true, "0.123457, -1, 2"},
    {"powerclampref", true, "1.23457e+06, 4, 5"},
    {"gndclampref", true, "-0.5, -0.75, 0.25"},
};

TEST(ModelKeywords, WriteTheirValueBehindOrWithoutTheBlanksInFront) {
  ModelLoop loop;
  fill(loop.add(ModelType::inputOutput));
  for (const ValueCase& each : values) {
    SCOPED_TRACE(each.keyword);
    const std::string keyword = each.keyword;
    EXPECT_EQ(loop.expand("<   %" + keyword + "%>\n"),
              std::string(each.keepsBlanks ? "<   " : "<") + each.text + ">\n");
  }
  EXPECT_MESSAGES(loop.errors());
}

TEST(ModelKeywords, AreToldWithoutAStream) {
  const IBISModel model;
  const ForEachModel loop(model);
  TextBuffer text;
  for (const ValueCase& each : values) EXPECT_TRUE(loop.value(each.keyword, nullptr, {}, text));
  for (const char* word : {"", "Name", "name,", "name ", "ifhasinput", "spicemodel", "vdiff"}) {
    EXPECT_FALSE(loop.value(word, nullptr, {}, text)) << word;
  }
}

TEST(ModelKeywords, AreUnknownWithACommaBehindOrInAnotherCase) {
  ModelLoop loop;
  loop.add(ModelType::input);
  EXPECT_EQ(loop.expand("%name,%|%Name%\n"), "|\n");
  EXPECT_MESSAGES(loop.errors(), "Template error : Unknown keyword 'name,' at line 3\n",
                  "Template error : Unknown keyword 'Name' at line 3\n");
}

struct TypeCase {
  ModelType type;
  const char* text;
  const char* alternative;
};

constexpr TypeCase types[] = {
    {ModelType::unknown, "unknown", "unknown"},
    {ModelType::input, "Input", "Input"},
    {ModelType::output, "Output", "Output"},
    {ModelType::inputOutput, "I_O", "I_O"},
    {ModelType::threeState, "3_state", "3_state"},
    {ModelType::openSource, "Open_source", "Open_switch"},
    {ModelType::inputOutputOpenSource, "I_O_open_source", "I_O_open_switch"},
    {ModelType::openDrain, "Open_drain", "Open_switch"},
    {ModelType::inputOutputOpenDrain, "I_O_open_drain", "I_O_open_switch"},
    {ModelType::inputEcl, "Input_ECL", "Input_ECL"},
    {ModelType::outputEcl, "Output_ECL", "Output_ECL"},
    {ModelType::inputOutputEcl, "I_O_ECL", "I_O_ECL"},
    {ModelType::threeStateEcl, "3_state_ECL", "3_state_ECL"},
    {ModelType::terminator, "Terminator", "Terminator"},
    {ModelType::series, "Series", "Series"},
    {ModelType::seriesSwitch, "Series_switch", "Series_switch"},
    {ModelType::inputDiff, "Input_diff", "Input_diff"},
    {ModelType::outputDiff, "Output_diff", "Output_diff"},
    {ModelType::inputOutputDiff, "I_O_diff", "I_O_diff"},
    {ModelType::threeStateDiff, "3_state_diff", "3_state_diff"},
    {ModelType::gnd, "GND", "GND"},
    {ModelType::power, "POWER", "POWER"},
    {ModelType::nc, "NC", "NC"},
};

TEST(ModelKeywords, NameTheTypeAndItsDevice) {
  for (const TypeCase& each : types) {
    ModelLoop loop;
    loop.add(each.type);
    EXPECT_EQ(loop.expand("%type% IBIS_%alttype%\n"),
              std::string(each.text) + " IBIS_" + each.alternative + "\n");
  }
}

TEST(ModelKeywords, TellAnyPolarityButTheFirstAsOne) {
  ModelLoop loop;
  for (const std::int32_t word : {0, 1, 2}) {
    IBISModel& model = loop.add(ModelType::inputOutput);
    model.polarity = word;
    model.enable = 2 - word;
  }
  EXPECT_EQ(loop.expand("%polarity% %enable_polarity%\n"), lines({"0 1", "1 1", "1 0"}));
}

TEST(ModelKeywords, WriteNothingForEmptyTables) {
  ModelLoop loop;
  loop.add(ModelType::openDrain);
  EXPECT_EQ(loop.expand("[%ivdata%] [%clampdata%] [%pulldown%%pullup%%gndclamp%%powerclamp%]\n"),
            "[] [] []\n");
  EXPECT_EQ(loop.expand("%npulldown%%npullup%%ngndclamp%%npowerclamp%\n"), "0000\n");
}

TEST(ModelKeywords, BeginWithThePulldownForAnOpenDrain) {
  ModelLoop loop;
  loop.add(ModelType::openDrain).pulldown = table({0}, {1}, {2}, {3});
  EXPECT_EQ(loop.expand("[%ivdata%]\n"), "[0, 1, 0, 2, 0, 3]\n");
}

TEST(ModelKeywords, EndClampDataInACommaWithoutAPowerClamp) {
  ModelLoop loop;
  loop.add(ModelType::input).gndClamp = table({0}, {1}, {2}, {3});
  EXPECT_EQ(loop.expand("[%clampdata%]\n"), "[0, 1, 0, 2, 0, 3, ]\n");
}

// Five pairs of 18 characters fill a line.
const YVector<double> sixPoints = {0, 1, 2, 3, 4, 5};
const YVector<double> sixValues = {1.23456789012, 1.23456789012, 1.23456789012,
                                   1.23456789012, 1.23456789012, 1.23456789012};
const std::string fivePairs =
    "0, 1.23456789012, 1, 1.23456789012, 2, 1.23456789012, 3, 1.23456789012, 4, 1.23456789012, ";
const std::string sixthPair = "5, 1.23456789012";

TEST(ModelKeywords, FoldEachTableUnderTheirColumn) {
  ModelLoop loop;
  IBISModel& model = loop.add(ModelType::output);
  for (IBISTable* each : {&model.pulldown, &model.pullup, &model.gndClamp, &model.powerClamp}) {
    *each = table(sixPoints, sixValues, sixValues, sixValues);
  }
  for (const std::string keyword : {"pulldown", "pullup", "gndclamp", "powerclamp"}) {
    EXPECT_EQ(loop.expand("+       %" + keyword + "%\n"),
              "+       " + fivePairs + "\n+       " + sixthPair + "\n");
  }
  const std::string list = fivePairs + "\n+       " + sixthPair;
  const std::string six =
      list + ", " + list + ", " + list + ", " + list + ", " + list + ", " + list + "\n";
  EXPECT_EQ(loop.expand("+       %ivdata%\n"), "+       " + six);
  EXPECT_EQ(loop.expand("+\t\t%clampdata%\n"), "+\t\t" + six);
}

TEST(ModelKeywords, FoldEachCornerOfAWaveformUnderTheirColumn) {
  ModelLoop loop;
  loop.add(ModelType::openDrain).risingWaveforms = {waveform(50, 0, sixPoints, sixValues)};
  const std::string corner =
      "\n+\n+       " + fivePairs + "\n+       " + sixthPair + ", ";  // the falling one follows
  EXPECT_EQ(loop.expand("+\t\t%waveforms%\n"),
            "+\t\t" + corner + corner + corner + "\n+\n+       \n+\n+       \n+\n+       " + "\n");
}

const std::string waveformKeywords =
    "%waveforms%|%waveform_times%|%waveformsizes%|%rfixture%|%vfixture%\n";

TEST(ModelKeywords, OfferOneWaveformAnEdgeForAnOpenType) {
  ModelLoop loop;
  IBISModel& model = loop.add(ModelType::inputOutputOpenSource);
  model.risingWaveforms = {waveform(50, 1, {0}, {1}), waveform(60, 2, {0, 1}, {2, 3})};
  model.fallingWaveforms = {waveform(70, 3, {2, 3, 4}, {4, 5, 6})};
  EXPECT_EQ(loop.expand(waveformKeywords),
            "\n+\n+0, 1, \n+\n+0, 1, \n+\n+0, 1, "
            "\n+\n+2, 4, 3, 5, 4, 6, \n+\n+2, 4, 3, 5, 4, 6, \n+\n+2, 4, 3, 5, 4, 6"
            "|start=2, end=4|1, 3|50, 50, 50, 70, 70, 70|1, 1, 1, 3, 3, 3\n");
}

TEST(ModelKeywords, OfferNoWaveformsForATypeThatDoesNotDrive) {
  ModelLoop loop;
  loop.add(ModelType::input).risingWaveforms = {waveform(50, 1, {1}, {2})};
  EXPECT_EQ(loop.expand(waveformKeywords), "|start=0, end=0|||\n");
}

TEST(ModelKeywords, TellTheLatestStartAndTheLatestEnd) {
  ModelLoop loop;
  IBISModel& model = loop.add(ModelType::output);
  model.risingWaveforms = {waveform(50, 0, {1e-9, 2e-9}, {0, 1}),
                           waveform(50, 0, {1.23456789e-9, 1.5e-9}, {0, 1})};
  model.fallingWaveforms = {waveform(50, 0, {-1e-9, 7.654321987e-9}, {0, 1}),
                            waveform(50, 0, {5e-10}, {0})};
  EXPECT_EQ(loop.expand("%waveform_times%\n"), "start=1.23457e-09, end=7.65432e-09\n");
}

// Type texts of those of all types for which a condition holds.
std::string typesWith(const std::string& condition, void (*prepare)(IBISModel&)) {
  ModelLoop loop;
  for (const TypeCase& each : types) prepare(loop.add(each.type));
  const std::string text = loop.expand("%" + condition + "%%type%,%endif%");
  EXPECT_MESSAGES(loop.errors());
  return text;
}

void leaveEmpty(IBISModel&) {}
void addPullup(IBISModel& model) { model.pullup.present = true; }
void addPulldown(IBISModel& model) { model.pulldown.present = true; }

void addBoth(IBISModel& model) {
  addPullup(model);
  addPulldown(model);
}

const std::string allTypes =
    "unknown,Input,Output,I_O,3_state,Open_source,I_O_open_source,Open_drain,I_O_open_drain,"
    "Input_ECL,Output_ECL,I_O_ECL,3_state_ECL,Terminator,Series,Series_switch,Input_diff,"
    "Output_diff,I_O_diff,3_state_diff,GND,POWER,NC,";

struct ConditionCase {
  const char* condition;
  void (*prepare)(IBISModel&);
  std::string types;
};

// condition, what each of the models has, the types for which it holds
const ConditionCase conditions[] = {
    {"ifhaspullup", addPullup,
     "Output,I_O,3_state,Open_source,I_O_open_source,Output_ECL,I_O_ECL,3_state_ECL,Output_diff,"
     "I_O_diff,3_state_diff,"},
    {"ifhaspullup", addPulldown, ""},
    {"ifhaspulldown", addPulldown,
     "Output,I_O,3_state,Open_drain,I_O_open_drain,Output_ECL,I_O_ECL,3_state_ECL,Output_diff,"
     "I_O_diff,3_state_diff,"},
    {"ifhaspulldown", addPullup, ""},
    {"ifhasivdata", addPullup,
     "Output,I_O,3_state,Open_source,I_O_open_source,Output_ECL,I_O_ECL,3_state_ECL,Output_diff,"
     "I_O_diff,3_state_diff,"},
    {"ifhasivdata", addPulldown,
     "Output,I_O,3_state,Open_drain,I_O_open_drain,Output_ECL,I_O_ECL,3_state_ECL,Output_diff,"
     "I_O_diff,3_state_diff,"},
    {"ifhasivdata", addBoth,
     "Output,I_O,3_state,Open_source,I_O_open_source,Open_drain,I_O_open_drain,Output_ECL,I_O_ECL,"
     "3_state_ECL,Output_diff,I_O_diff,3_state_diff,"},
    {"ifhasivdata", leaveEmpty, ""},
    {"ifhasgndclamp", [](IBISModel& model) { model.gndClamp.present = true; }, allTypes},
    {"ifhasgndclamp", [](IBISModel& model) { model.powerClamp.present = true; }, ""},
    {"ifhaspowerclamp", [](IBISModel& model) { model.powerClamp.present = true; }, allTypes},
    {"ifhaspowerclamp", [](IBISModel& model) { model.gndClamp.present = true; }, ""},
    {"ifhasclamps", [](IBISModel& model) { model.gndClamp.present = true; }, allTypes},
    {"ifhasclamps", [](IBISModel& model) { model.powerClamp.present = true; }, allTypes},
    {"ifhasclamps", addBoth, ""},
    {"ifhasppoutput", leaveEmpty, "Output,I_O,3_state,Output_diff,I_O_diff,3_state_diff,"},
    {"ifhasspicemodel", leaveEmpty, allTypes.substr(0, allTypes.find("GND"))},
    {"ifhasinput", leaveEmpty,
     "Input,I_O,I_O_open_source,I_O_open_drain,Input_ECL,I_O_ECL,Input_diff,I_O_diff,"},
    {"ifhaspolarity", leaveEmpty,
     "unknown,Input,Output,I_O,3_state,Open_source,I_O_open_source,Open_drain,I_O_open_drain,"
     "Input_ECL,Output_ECL,I_O_ECL,3_state_ECL,Series,Series_switch,Input_diff,Output_diff,"
     "I_O_diff,3_state_diff,"},
    {"ifhasenable", leaveEmpty, "I_O,3_state,I_O_ECL,3_state_ECL,I_O_diff,3_state_diff,"},
    {"ifhaswaveforms", [](IBISModel& model) { model.risingWaveforms.resize(1); }, allTypes},
    {"ifhaswaveforms", [](IBISModel& model) { model.fallingWaveforms.resize(1); }, allTypes},
    {"ifhaswaveforms", leaveEmpty, ""},
};

TEST(ModelConditions, HoldForTheirTypesAndTables) {
  for (const ConditionCase& each : conditions) {
    SCOPED_TRACE(each.condition);
    EXPECT_EQ(typesWith(each.condition, each.prepare), each.types);
  }
}

TEST(ModelConditions, TakeNoArgument) {
  ModelLoop loop;
  loop.add(ModelType::input);
  loop.add(ModelType::output);
  EXPECT_EQ(loop.expand("%ifhasinput,Output%%type%;%endif%"), "Input;");
  EXPECT_MESSAGES(loop.errors());
}

TEST(ModelConditions, AreExactlyTheirWords) {
  const IBISModel model;
  const ForEachModel loop(model);
  for (const ConditionCase& each : conditions) EXPECT_TRUE(loop.isCondition(each.condition));
  for (const char* word : {"", "ifhasoutput", "ifisdiff", "iftype", "IfHasInput", "name"}) {
    EXPECT_FALSE(loop.isCondition(word)) << word;
    EXPECT_FALSE(loop.evaluate(word, {})) << word;
  }
}

TEST(ModelConditions, LookAtTheFilesWaveformsAndNotAtThoseOnOffer) {
  ModelLoop loop;
  loop.add(ModelType::input).risingWaveforms = {waveform(50, 1, {1}, {2})};
  loop.add(ModelType::openDrain);
  EXPECT_EQ(loop.expand("%ifhaswaveforms%yes%else%no%endif%:%waveformsizes%\n"),
            lines({"yes:", "no:0, 0"}));
}

}  // namespace
}  // namespace ibis::testing
