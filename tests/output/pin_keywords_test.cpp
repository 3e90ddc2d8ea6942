#include "harness/harness.h"
#include "output/loop_objects.h"

namespace ibis::testing {
namespace {

// One entry of a component, a pair unless a test takes its other half away.
class PinLoop {
 public:
  PinLoop() {
    component_.name = "Widget";
    component_.models = {&model};
    pin.name = "A1";
    pin.signal_name = "D-0";
    pin.spiceName = "D_0";
    pin.model_name = "Choice";
    pin.model = &model;
    pin.package = &component_.package;
    component_.package.R_pkg = {true, 0.123456789012345, 3.0, 2.0};
    component_.package.L_pkg = {true, 5e-9, 7.123456789012345e-9, 6e-9};
    component_.package.C_pkg = {false, 1e-12, -3e-12, 1234567.5};
    inverted.name = "A2";
    inverted.spiceName = "D_1";
    model.name = "driver.1";
    model.spiceName = "driver_1";
    model.type = ModelType::threeState;
    row.vdiff = 0.123456789;
    component_.pinEntries = {{&pin, &inverted, &model, &model, &row}};
  }

  void makeSingle() { component_.pinEntries = {{.pin = &pin, .model = &model}}; }

  // The body starts a line of its own, the third of the text that messages count.
  std::string expand(const std::string& body, const std::string& loop = "foreachspicepin") {
    return expandTemplate("%" + loop + "%\n" + body + "%endforeach%", file_, &component_, sink_);
  }

  Texts errors() const { return texts(sink_.errors); }

  IBISPin pin;
  IBISPin inverted;
  IBISModel model;
  IBISDiffPin row;

 private:
  IBISFile file_;
  IBISComponent component_;
  Recorder sink_;
};

struct ValueCase {
  const char* keyword;
  bool keepsBlanks;
  const char* text;
};

constexpr ValueCase values[] = {
    {"pincomponentname", true, "Widget"},
    {"name", true, "A1"},
    {"signalname", false, "D-0"},
    {"spicename", false, "D_0"},
    {"spicename_inv", false, "D_1"},
    {"vdiff", false, "0.123457"},
    {"spicemodel", false, "driver_1"},
    {"type", false, "3_state"},
    {"pinmodelname", false, "Choice"},
    {"cap", true, "1e-12, 1234567.5, -3e-12"},
    {"ind", true, "5e-09, 6e-09, 7.12345678901e-09"},
    {"res", true, "0.123456789012, 2, 3"},
    {"polarity", false, "NonInverting"},
};

TEST(PinKeywords, WriteTheirValueBehindOrWithoutTheBlanksInFront) {
  PinLoop loop;
  for (const ValueCase& each : values) {
    SCOPED_TRACE(each.keyword);
    const std::string keyword = each.keyword;
    EXPECT_EQ(loop.expand("<   %" + keyword + "%>\n"),
              std::string(each.keepsBlanks ? "<   " : "<") + each.text + ">\n");
  }
  EXPECT_MESSAGES(loop.errors());
}

TEST(PinKeywords, AreToldWithoutAStream) {
  const IBISComponent component;
  const IBISPinEntry entry;
  const ForEachPin loop(entry, component);
  TextBuffer text;
  for (const ValueCase& each : values) EXPECT_TRUE(loop.value(each.keyword, nullptr, {}, text));
  for (const char* word : {"", "Name", "name,", "ifisdiff", "alttype", "packagemodel", "ccomp"}) {
    EXPECT_FALSE(loop.value(word, nullptr, {}, text)) << word;
  }
}

TEST(PinKeywords, AreUnknownWithACommaBehind) {
  PinLoop loop;
  EXPECT_EQ(loop.expand("%spicename,x%|\n"), "|\n");
  EXPECT_MESSAGES(loop.errors(), "Template error : Unknown keyword 'spicename,x' at line 3\n");
}

TEST(PinKeywords, WriteNothingOfTheOtherHalfOfASinglePin) {
  PinLoop loop;
  loop.makeSingle();
  EXPECT_EQ(loop.expand("<%spicename_inv%>< %vdiff%>\n"), "<><>\n");
  EXPECT_MESSAGES(loop.errors());
}

TEST(PinKeywords, LoseTheBlanksThatStandDirectlyInFront) {
  PinLoop loop;
  EXPECT_EQ(loop.expand("U_%spicename% T_%spicename% GND\n"), "U_D_0 T_D_0 GND\n");
  EXPECT_EQ(loop.expand("U_%spicename%  %spicename% GND\n"), "U_D_0D_0 GND\n");
}

TEST(PinKeywords, TellEveryPolarity) {
  const std::pair<std::int32_t, const char*> polarities[] = {
      {0, "NonInverting\n"}, {1, "Inverting\n"}, {2, "Undefined\n"}, {-1, "Undefined\n"}};
  PinLoop loop;
  for (const auto& [polarity, text] : polarities) {
    loop.model.polarity = polarity;
    EXPECT_EQ(loop.expand("%polarity%\n"), text);
  }
}

TEST(PinKeywords, TellAMisspeltPolarityOtherwiseThanTheModelDoes) {
  PinLoop loop;
  loop.model.polarity = 2;
  EXPECT_EQ(loop.expand("%polarity%\n"), "Undefined\n");
  EXPECT_EQ(loop.expand("%polarity%\n", "foreachmodel"), "1\n");
}

TEST(PinKeywords, CountAPinWithoutAModelAsOfUnknownType) {
  const IBISPin pin;
  IBISComponent component;
  component.pins = {pin};
  const IBISFile file;
  Recorder sink;
  EXPECT_EQ(expandTemplate("%foreachpin%<%spicemodel%>%type%,%polarity%\n%endforeach%", file,
                           &component, sink),
            "<>unknown,Undefined\n");
}

struct TypeCase {
  ModelType type;
  const char* text;
};

constexpr TypeCase types[] = {
    {ModelType::unknown, "unknown"},
    {ModelType::input, "Input"},
    {ModelType::output, "Output"},
    {ModelType::inputOutput, "I_O"},
    {ModelType::threeState, "3_state"},
    {ModelType::openSource, "Open_source"},
    {ModelType::inputOutputOpenSource, "I_O_open_source"},
    {ModelType::openDrain, "Open_drain"},
    {ModelType::inputOutputOpenDrain, "I_O_open_drain"},
    {ModelType::inputEcl, "Input_ECL"},
    {ModelType::outputEcl, "Output_ECL"},
    {ModelType::inputOutputEcl, "I_O_ECL"},
    {ModelType::threeStateEcl, "3_state_ECL"},
    {ModelType::terminator, "Terminator"},
    {ModelType::series, "Series"},
    {ModelType::seriesSwitch, "Series_switch"},
    {ModelType::inputDiff, "Input_diff"},
    {ModelType::outputDiff, "Output_diff"},
    {ModelType::inputOutputDiff, "I_O_diff"},
    {ModelType::threeStateDiff, "3_state_diff"},
    {ModelType::gnd, "GND"},
    {ModelType::power, "POWER"},
    {ModelType::nc, "NC"},
};

// Type texts of those of all types for whose pins a condition holds.
std::string typesWith(const std::string& condition) {
  IBISPin pins[std::size(types)];
  IBISModel models[std::size(types)];
  IBISComponent component;
  for (std::size_t i = 0; i < std::size(types); ++i) {
    models[i].type = types[i].type;
    pins[i].model = &models[i];
    component.pinEntries.push_back({.pin = &pins[i], .model = &models[i]});
  }
  const IBISFile file;
  Recorder sink;
  const std::string text = expandTemplate(
      "%foreachspicepin%%" + condition + "%%type%,%endif%%endforeach%", file, &component, sink);
  EXPECT_MESSAGES(sink.errors);
  return text;
}

TEST(PinConditions, HoldForTheirTypes) {
  const std::pair<const char*, const char*> conditions[] = {
      {"ifhasoutput",
       "Output,I_O,3_state,Open_source,I_O_open_source,Open_drain,I_O_open_drain,Output_ECL,"
       "I_O_ECL,3_state_ECL,Output_diff,I_O_diff,3_state_diff,"},
      {"ifhasinput",
       "Input,I_O,I_O_open_source,I_O_open_drain,Input_ECL,I_O_ECL,Input_diff,I_O_diff,"},
      {"ifhasenable", "I_O,3_state,I_O_ECL,3_state_ECL,I_O_diff,3_state_diff,"},
      {"ifhasenable,Input", "I_O,3_state,I_O_ECL,3_state_ECL,I_O_diff,3_state_diff,"},
  };
  for (const auto& [condition, text] : conditions) EXPECT_EQ(typesWith(condition), text);
}

TEST(PinConditions, NameOneTypeByItsText) {
  for (const TypeCase& each : types) {
    EXPECT_EQ(typesWith(std::string("iftype,") + each.text), std::string(each.text) + ",");
  }
}

TEST(PinConditions, CompareTheTypeExactlyAndWithTheFirstArgumentAlone) {
  const std::pair<const char*, const char*> conditions[] = {
      {"iftype,I_O,Input", "I_O,"},
      {"iftype,gnd", "GND,"},  // an argument that is a reserved word
                               // is upper-cased
      {"iftype,I/O", ""},
      {"iftype,3-state", ""},
      {"iftype,input", ""},
      {"iftype,Input ", ""},
      {"iftype,", ""},
      {"iftype", ""},
      {"iftype,,Input", ""},
  };
  for (const auto& [condition, text] : conditions) EXPECT_EQ(typesWith(condition), text);
}

TEST(PinConditions, TellAPairByItsInvertedPin) {
  PinLoop loop;
  EXPECT_EQ(loop.expand("%ifisdiff%pair%else%single%endif%"), "pair");
  loop.makeSingle();
  EXPECT_EQ(loop.expand("%ifisdiff%pair%else%single%endif%"), "single");
}

TEST(PinConditions, AreExactlyTheirWords) {
  const IBISComponent component;
  const IBISPinEntry entry;
  const ForEachPin loop(entry, component);
  for (const char* word : {"iftype", "ifhasoutput", "ifhasinput", "ifhasenable", "ifisdiff"}) {
    EXPECT_TRUE(loop.isCondition(word)) << word;
  }
  for (const char* word : {"", "IfType", "ifhaspullup", "ifhasspicemodel", "ifhaspolarity"}) {
    EXPECT_FALSE(loop.isCondition(word)) << word;
    EXPECT_FALSE(loop.evaluate(word, {})) << word;
  }
}

}  // namespace
}  // namespace ibis::testing
