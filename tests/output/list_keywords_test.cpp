#include <cmath>

#include "harness/harness.h"
#include "output/loop_objects.h"

namespace ibis::testing {
namespace {

struct ValueCase {
  const char* keyword;
  const char* text;
};

// What an object writes; all keywords of these loops keep the blanks in front of them.
std::string written(const ForEachObject& object, std::string_view keyword,
                    std::int32_t blanks = 0) {
  MemorySink sink;
  const auto out = OutputStream::open(sink, "value");
  TextBuffer text;
  const KeywordPosition position{.line = 1, .column = 5, .pendingSpaces = blanks};
  EXPECT_FALSE(object.value(keyword, out.get(), position, text));
  EXPECT_TRUE(out->close());
  EXPECT_TRUE(sink.keep("value"));
  return sink.files().at("value");
}

void expectValues(const ForEachObject& object, std::initializer_list<ValueCase> values) {
  TextBuffer text;
  for (const ValueCase& each : values) {
    SCOPED_TRACE(each.keyword);
    EXPECT_TRUE(object.value(each.keyword, nullptr, {}, text));
    EXPECT_EQ(written(object, each.keyword, 3), "   " + std::string(each.text));
  }
}

void expectUnknown(const ForEachObject& object, std::initializer_list<const char*> words) {
  TextBuffer text;
  for (const char* word : words) {
    SCOPED_TRACE(word);
    EXPECT_FALSE(object.value(word, nullptr, {}, text));
    EXPECT_EQ(written(object, word, 3), "");
    EXPECT_FALSE(object.isCondition(word));
    EXPECT_FALSE(object.evaluate(word, {}));
  }
}

TEST(ComponentKeywords, WriteTheirValues) {
  const IBISPin pin;
  const IBISModel model;
  IBISComponent component;
  component.name = "Widget-1";
  component.spiceName = "Widget_1";
  component.packageModelName = "QFP";
  component.pinEntries = {{&pin, &pin, &model, &model, nullptr},
                          {.pin = &pin, .invertedPin = &pin, .model = &model},
                          {.pin = &pin, .model = &model, .invertedModel = &model},
                          {.pin = &pin, .model = &model}};
  const ForEachComponent loop(component);
  expectValues(
      loop,
      {{"name", "Widget-1"}, {"spicename", "Widget_1"}, {"numpins", "3"}, {"packagemodel", "QFP"}});
  expectUnknown(loop, {"", "Name", "name,", "manufacturer", "ifhasinput", "ifisdiff"});
}

TEST(ComponentKeywords, CountNoPinsOfPairsAlone) {
  const IBISPin pin;
  const IBISModel model;
  IBISComponent component;
  component.pinEntries = {{&pin, &pin, &model, &model, nullptr}};
  EXPECT_EQ(written(ForEachComponent(component), "numpins"), "0");
}

TEST(ComponentKeywords, AreHiddenByThePackageModelOfTheComponentInHand) {
  IBISFile file;
  for (const char* packageModel : {"First", "Second"}) {
    auto& component = *file.data().components.emplace_back(std::make_unique<IBISComponent>());
    component.packageModelName = packageModel;
    component.spiceName = packageModel;
  }
  Recorder sink;
  EXPECT_EQ(expandTemplate("%foreachcomponent%%spicename% %packagemodel%\n%endforeach%", file,
                           file.data().components[1].get(), sink),
            lines({"First Second", "Second Second"}));
  EXPECT_MESSAGES(sink.errors);
}

TEST(ModelSelectorKeywords, WriteTheirValues) {
  const IBISModelSelectorRow row{"drv_2", "2\"mA\" 'slow' \"'"};
  const ForEachModelSelector loop(row, "Drive", "I_O");
  expectValues(loop, {{"pinmodel", "Drive"},
                      {"ibismodel", "drv_2"},
                      {"selectorstring", "2mA slow "},
                      {"modeltype", "I_O"}});
  expectUnknown(loop, {"", "name", "username", "modeltype,", "ifhasinput", "iftype"});
}

TEST(UserModelSelectorKeywords, WriteTheirValue) {
  const ForEachUserModelSelector loop("2mA 'slow'");
  expectValues(loop, {{"username", "2mA 'slow'"}});
  expectUnknown(loop, {"", "name", "selectorstring", "Username", "ifhasinput"});
}

TEST(DiffPinKeywords, WriteTheirValues) {
  IBISDiffPin row;
  row.pin = "7";
  row.inv_pin = "8";
  row.vdiff = 0.123456789;
  const ForEachDiffPin loop(row);
  row = {};  // the loop has a copy
  expectValues(loop, {{"noninvpin", "7"}, {"invpin", "8"}, {"diffv", "0.123457"}});
  expectUnknown(loop, {"", "vdiff", "name", "diffv,", "ifisdiff"});
}

// A model with one rising waveform and two falling ones.
struct Driver {
  Driver() {
    model.name = "drv-1";
    model.spiceName = "drv_1";
    model.risingWaveforms.resize(1);
    model.risingWaveforms[0].rFixture = {true, 50.123456789012345};
    model.risingWaveforms[0].vFixture = {true, 3.123456789012345};
    model.risingWaveforms[0].vFixtureMin = {true, 7.0};
    model.risingWaveforms[0].time = {0, 1e-9};
    model.risingWaveforms[0].typ = {0.5, 0.123456789012345};
    model.risingWaveforms[0].min = {8, 8};
    model.risingWaveforms[0].max = {9, 9};
    model.fallingWaveforms.resize(2);
    model.fallingWaveforms[1].rFixture = {true, 1234567.5};
    model.fallingWaveforms[1].vFixture = {true, -0.75};
    model.fallingWaveforms[1].time = {2};
    model.fallingWaveforms[1].typ = {3};
  }

  IBISModel model;
};

TEST(WaveformKeywords, WriteTheirValuesOfARisingTable) {
  const Driver driver;
  const ForEachWaveform loop(driver.model, 0, 0);
  expectValues(loop, {{"transition", "rising"},
                      {"spicepairs", "0, 0.5, 1e-09, 0.123456789012"},
                      {"spicemodelname", "drv_1"},
                      {"vfixture", "3.12345678901"},
                      {"rfixture", "50.123456789"},
                      {"rfixturestring", "50"},
                      {"vfixturestring", "3"},
                      {"index", "0"}});
  expectUnknown(loop, {"", "name", "waveforms", "index,", "ifhaswaveforms", "iffirst"});
}

TEST(WaveformKeywords, WriteTheirValuesOfAFallingTable) {
  const Driver driver;
  expectValues(ForEachWaveform(driver.model, 1, 1), {{"transition", "falling"},
                                                     {"spicepairs", "2, 3"},
                                                     {"spicemodelname", "drv_1"},
                                                     {"vfixture", "-0.75"},
                                                     {"rfixture", "1234567.5"},
                                                     {"rfixturestring", "1234567"},
                                                     {"vfixturestring", "0"},
                                                     {"index", "1"}});
}

TEST(WaveformKeywords, WriteZeroForAFixtureThatTheFileLeftOut) {
  const Driver driver;
  expectValues(ForEachWaveform(driver.model, 0, 1), {{"spicepairs", ""},
                                                     {"vfixture", "0"},
                                                     {"rfixture", "0"},
                                                     {"rfixturestring", "0"},
                                                     {"vfixturestring", "0"},
                                                     {"index", "0"}});
}

TEST(WaveformKeywords, CallAnotherTransitionUnknown) {
  const Driver driver;
  EXPECT_EQ(written(ForEachWaveform(driver.model, 0, 2), "transition"), "unknown");
}

TEST(WaveformKeywords, FoldTheirPairsUnderTheirColumn) {
  Driver driver;
  driver.model.risingWaveforms[0].time = {0, 1, 2, 3, 4, 5};
  driver.model.risingWaveforms[0].typ = {1.23456789012, 1.23456789012, 1.23456789012,
                                         1.23456789012, 1.23456789012, 1.23456789012};
  EXPECT_EQ(written(ForEachWaveform(driver.model, 0, 0), "spicepairs"),
            "0, 1.23456789012, 1, 1.23456789012, 2, 1.23456789012, 3, 1.23456789012, "
            "4, 1.23456789012, \n+   5, 1.23456789012");
}

TEST(WaveformKeywords, CutFractionsOffFixtureValues) {
  const std::pair<double, const char*> cases[] = {
      {3.0, "3"},
      {3.3, "3"},
      {49.999999, "49"},
      {-3.7, "-3"},
      {-0.5, "0"},
      {1e-300, "0"},
      {2147483647.5, "2147483647"},
      {-2147483648.5, "-2147483648"},
  };
  Driver driver;
  IBISWaveform& waveform = driver.model.risingWaveforms[0];
  const ForEachWaveform loop(driver.model, 0, 0);
  for (const auto& [value, text] : cases) {
    waveform.rFixture.value = waveform.vFixture.value = value;
    EXPECT_EQ(written(loop, "rfixturestring"), text);
    EXPECT_EQ(written(loop, "vfixturestring"), text);
  }
}

TEST(WaveformKeywords, GiveTheSmallestIntegerForAFixtureValueBeyondAll) {
  Driver driver;
  IBISWaveform& waveform = driver.model.risingWaveforms[0];
  const ForEachWaveform loop(driver.model, 0, 0);
  for (const double value :
       {2147483648.0, -2147483649.0, 1e300, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
    waveform.rFixture.value = waveform.vFixture.value = value;
    EXPECT_EQ(written(loop, "rfixturestring"), "-2147483648") << value;
    EXPECT_EQ(written(loop, "vfixturestring"), "-2147483648") << value;
  }
}

TEST(WaveformKeywords, GiveFixturesThatDifferInAFractionTheSameText) {
  IBISFile file;
  IBISModel model;
  model.spiceName = "drv";
  for (const double voltage : {3.0, 3.3}) {
    IBISWaveform& waveform = model.risingWaveforms.emplace_back();
    waveform.rFixture = {true, 50.0};
    waveform.vFixture = {true, voltage};
  }
  IBISComponent component;
  component.models = {&model};
  Recorder sink;
  EXPECT_EQ(expandTemplate("%foreachwaveform%%spicemodelname%_%transition%_%rfixturestring%_"
                           "%vfixturestring% %vfixture%\n%endforeach%",
                           file, &component, sink),
            lines({"drv_rising_50_3 3", "drv_rising_50_3 3.3"}));
  EXPECT_MESSAGES(sink.errors);
}

TEST(ListLoops, HaveNoConditionsOfTheirOwn) {
  IBISFile file;
  file.data().components.push_back(std::make_unique<IBISComponent>());
  Recorder sink;
  EXPECT_EQ(expandTemplate("%foreachcomponent%\n%ifhasinput%;\n%ifisdiff%;\n%endforeach%", file,
                           nullptr, sink),
            lines({";", ";"}));
  EXPECT_MESSAGES(sink.errors, "Template error : Unknown keyword 'ifhasinput' at line 3\n",
                  "Template error : Unknown keyword 'ifisdiff' at line 4\n");
}

TEST(ListLoops, TellTheSpiceNameOfWhatTheyWalk) {
  IBISFile file;
  auto& component = *file.data().components.emplace_back(std::make_unique<IBISComponent>());
  component.spiceName = "Widget_1";
  IBISPin pin;
  pin.spiceName = "D_0";
  component.pins = {pin};
  IBISModel model;
  model.spiceName = "drv_1";
  component.models = {&model};
  Recorder sink;
  EXPECT_EQ(expandTemplate("%foreachpin%%spicename%\n%endforeach%\n"
                           "%foreachmodel%%spicename%\n%endforeach%\n"
                           "%foreachcomponent%%spicename%\n%endforeach%\n",
                           file, &component, sink),
            lines({"D_0", "drv_1", "Widget_1"}));
  EXPECT_MESSAGES(sink.errors);
}

}  // namespace
}  // namespace ibis::testing
