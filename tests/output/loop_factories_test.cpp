#include "output/loop_factories.h"

#include "harness/harness.h"
#include "output/stream/file_sink.h"

namespace ibis::testing {
namespace {

// Every model type, each with one pin; the rows stand in another order than the pins' numbers.
const std::string everyType = lines({"[IBIS Ver] 4.2",
                                     "[Component] Zoo",
                                     "[Pin] signal_name model_name",  //
                                     "24 s24 untyped",
                                     "2 s2 openSource",
                                     "1 s1 outputEcl",
                                     "4 s4 output",
                                     "3 s3 openDrain",
                                     "5 s5 output",
                                     "6 s6 threeStateEcl",
                                     "7 s7 threeState",
                                     "8 s8 ioEcl",
                                     "9 s9 ioOpenSource",
                                     "10 s10 ioOpenDrain",
                                     "11 s11 io",
                                     "12 s12 input",
                                     "13 s13 inputEcl",
                                     "14 s14 terminator",
                                     "15 s15 GND",
                                     "16 s16 POWER",
                                     "17 s17 NC",
                                     "18 s18 inputDiff",
                                     "19 s19 outputDiff",
                                     "20 s20 ioDiff",
                                     "21 s21 threeStateDiff",
                                     "22 s22 series",
                                     "23 s23 seriesSwitch",  //
                                     "[Model] outputEcl",
                                     "Model_type Output_ECL",  //
                                     "[Model] openSource",
                                     "Model_type Open_source",  //
                                     "[Model] openDrain",
                                     "Model_type Open_drain",  //
                                     "[Model] output",
                                     "Model_type Output",  //
                                     "[Model] threeStateEcl",
                                     "Model_type 3-state_ECL",  //
                                     "[Model] threeState",
                                     "Model_type 3-state",  //
                                     "[Model] ioEcl",
                                     "Model_type I/O_ECL",  //
                                     "[Model] ioOpenSource",
                                     "Model_type I/O_open_source",  //
                                     "[Model] ioOpenDrain",
                                     "Model_type I/O_open_drain",  //
                                     "[Model] io",
                                     "Model_type I/O",  //
                                     "[Model] input",
                                     "Model_type Input",  //
                                     "[Model] inputEcl",
                                     "Model_type Input_ECL",  //
                                     "[Model] terminator",
                                     "Model_type Terminator",  //
                                     "[Model] inputDiff",
                                     "Model_type Input_diff",  //
                                     "[Model] outputDiff",
                                     "Model_type Output_diff",  //
                                     "[Model] ioDiff",
                                     "Model_type I/O_diff",  //
                                     "[Model] threeStateDiff",
                                     "Model_type 3-state_diff",  //
                                     "[Model] series",
                                     "Model_type Series",  //
                                     "[Model] seriesSwitch",
                                     "Model_type Series_switch",  //
                                     "[Model] untyped",
                                     "Polarity Inverting",
                                     "[End]"});

// Two components; the second has a pair, a pair of two models, and rows that make no pair.
const std::string twoComponents = lines({"[IBIS Ver] 4.2",  //
                                         "[Component] First",
                                         "[Pin] signal_name model_name",
                                         "10 A sensor",
                                         "9 B GND",  //
                                         "[Component] Second",
                                         "[Pin] signal_name model_name",
                                         "4 Q sensor",
                                         "3 P sensor",
                                         "2 N input",
                                         "1 M sensor",
                                         "X X NC",  //
                                         "[Diff Pin] inv_pin vdiff",
                                         "3 4 0.25",
                                         "1 2 0.5",
                                         "7 8 0.75",  //
                                         "[Model] input",
                                         "Model_type Input",
                                         "Vinl 0.8",
                                         "Vinh 2.0",  //
                                         "[Model] unused",
                                         "Model_type Input",
                                         "Vinl 0.8",
                                         "Vinh 2.0",  //
                                         "[Model] sensor",
                                         "Model_type Input",
                                         "Vinl 0.8",
                                         "Vinh 2.0",
                                         "[End]"});

// A file whose components are ready for output; what was found wrong with it does not matter.
struct Device : Parsed {
  explicit Device(const std::string& text) : Parsed(text) { resolve(); }

  std::string expand(const std::string& text, std::size_t place = 0) {
    return expandTemplate(text, file, &component(place), sink);
  }

  Recorder sink;
};

std::string loopOf(const std::string& keyword, const std::string& body) {
  return "%" + keyword + "%" + body + "%endforeach%";
}

TEST(TypedPinLoops, WalkTheirTypesOneAfterTheOther) {
  Device device(everyType);
  const std::pair<const char*, const char*> loops[] = {
      {"foreachinput", "12,"},     {"foreachoutput", "4,5,3,2,1,"}, {"foreachtristate", "7,6,"},
      {"foreachio", "11,10,9,8,"}, {"foreachterminator", "14,"},    {"foreachgnd", "15,"},
      {"foreachpower", "16,"},
  };
  for (const auto& [keyword, pins] : loops) {
    EXPECT_EQ(device.expand(loopOf(keyword, "%name%,")), pins) << keyword;
  }
  EXPECT_MESSAGES(device.sink.errors);
}

TEST(ForEachSpicePin, WalksTheEntriesOfAllTypes) {
  Device device(everyType);
  EXPECT_EQ(device.expand(loopOf("foreachspicepin", "%name%,")),
            "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,24,");
}

TEST(ForEachPin, WalksTheRowsInFileOrder) {
  Device device(everyType);
  EXPECT_EQ(device.expand(loopOf("foreachpin", "%name%:%type%,")),
            "24:unknown,2:Open_source,1:Output_ECL,4:Output,3:Open_drain,5:Output,6:3_state_ECL,"
            "7:3_state,8:I_O_ECL,9:I_O_open_source,10:I_O_open_drain,11:I_O,12:Input,13:Input_ECL,"
            "14:Terminator,15:GND,16:POWER,17:NC,18:Input_diff,19:Output_diff,20:I_O_diff,"
            "21:3_state_diff,22:Series,23:Series_switch,");
}

const std::string halves = "%name%%ifisdiff%-%spicename_inv%(%vdiff%)%endif%:%spicemodel%,";

TEST(ForEachPin, ShowsTheHalvesOfAPairAsTwoPins) {
  Device device(twoComponents);
  EXPECT_EQ(device.expand(loopOf("foreachpin", halves), 1),
            "4:sensor,3:sensor,2:input,1:sensor,X:NC,");
}

TEST(ForEachSpicePin, ShowsAPairOnceWithTheInvertedPinInIt) {
  Device device(twoComponents);
  EXPECT_EQ(device.expand(loopOf("foreachspicepin", halves), 1),
            "3-Q(0.25):sensor,1:sensor,2:input,X:NC,");
}

TEST(ForEachInput, ShowsAPairOnceWithTheInvertedPinInIt) {
  Device device(twoComponents);
  EXPECT_EQ(device.expand(loopOf("foreachinput", halves), 1), "3-Q(0.25):sensor,1:sensor,2:input,");
}

TEST(ForEachFilePin, WalksAllComponentsEachWithItsOwnName) {
  Device device(twoComponents);
  for (const std::size_t place : {0u, 1u}) {
    EXPECT_EQ(device.expand(loopOf("foreachfilepin", "%pincomponentname%." + halves), place),
              "First.9:GND,First.10:sensor,Second.3-Q(0.25):sensor,Second.1:sensor,"
              "Second.2:input,Second.X:NC,");
  }
}

TEST(ForEachComponent, WalksAllComponents) {
  Device device(twoComponents);
  for (const std::size_t place : {0u, 1u}) {
    EXPECT_EQ(device.expand(loopOf("foreachcomponent", "%name%:%numpins%,"), place),
              "First:2,Second:3,");
  }
}

TEST(PinLoops, StayWithinTheComponentInHand) {
  const std::pair<const char*, std::pair<const char*, const char*>> loops[] = {
      {"foreachpin", {"10,9,", "4,3,2,1,X,"}},
      {"foreachspicepin", {"9,10,", "3,1,2,X,"}},
      {"foreachinput", {"10,", "3,1,2,"}},
      {"foreachgnd", {"9,", ""}},
      {"foreachoutput", {"", ""}},
  };
  Device device(twoComponents);
  for (const auto& [keyword, pins] : loops) {
    EXPECT_EQ(device.expand(loopOf(keyword, "%name%,"), 0), pins.first) << keyword;
    EXPECT_EQ(device.expand(loopOf(keyword, "%name%,"), 1), pins.second) << keyword;
  }
}

TEST(PinLoops, CountAPairWithoutItsPartnersModelAsSingle) {
  Device device(twoComponents);
  device.component(1).pinEntries[0].invertedModel = nullptr;
  EXPECT_EQ(device.expand(loopOf("foreachspicepin", halves), 1), "3:sensor,1:sensor,2:input,X:NC,");
  EXPECT_EQ(device.expand(loopOf("foreachinput", halves), 1), "3:sensor,1:sensor,2:input,");
}

TEST(PinLoops, LeaveOutTheRowOfAPairWithoutItsPartner) {
  Device device(twoComponents);
  device.component(1).pinEntries[0].invertedPin = nullptr;
  EXPECT_EQ(device.expand(loopOf("foreachspicepin", "%name%(%vdiff%),"), 1), "3(),1(),2(),X(),");
  EXPECT_EQ(device.expand(loopOf("foreachinput", "%name%(%vdiff%),"), 1), "3(),1(),2(),");
}

TEST(ForEachFilePin, TakesAHalfPairAsItStands) {
  Device device(twoComponents);
  IBISPinEntry& entry = device.component(1).pinEntries[0];
  entry.invertedModel = nullptr;
  EXPECT_EQ(device.expand(loopOf("foreachfilepin", halves)),
            "9:GND,10:sensor,3-Q(0.25):sensor,1:sensor,2:input,X:NC,");
  entry.invertedPin = nullptr;
  EXPECT_EQ(device.expand(loopOf("foreachfilepin", "%name%(%vdiff%),")),
            "9(),10(),3(0.25),1(),2(),X(),");
}

TEST(ForAllModels, WalksTheFilesModelsBuiltInOnesFirst) {
  Device device(twoComponents);
  for (const std::size_t place : {0u, 1u}) {
    EXPECT_EQ(device.expand(loopOf("forallmodels", "%name%,"), place),
              "GND,POWER,NC,input,unused,sensor,");
  }
}

TEST(ForEachModel, WalksTheModelsThatTheComponentUses) {
  Device device(twoComponents);
  EXPECT_EQ(device.expand(loopOf("foreachmodel", "%name%,"), 0), "sensor,GND,");
  EXPECT_EQ(device.expand(loopOf("foreachmodel", "%name%,"), 1), "sensor,input,NC,");
}

TEST(ForEachDiffPin, WalksTheRowsInFileOrderWhetherOrNotTheyMakeAPair) {
  Device device(twoComponents);
  const std::string text = loopOf("foreachdiffpin", "%noninvpin%-%invpin%(%diffv%),");
  EXPECT_EQ(device.expand(text, 1), "3-4(0.25),1-2(0.5),7-8(0.75),");
  EXPECT_EQ(device.expand(text, 0), "");
}

TEST(ForEachWaveform, CountsTheTablesOfEachEdgeFromZero) {
  Device device(twoComponents);
  device.model(0).risingWaveforms.resize(2);
  device.model(0).fallingWaveforms.resize(2);
  device.model(1).risingWaveforms.resize(1);
  device.model(2).fallingWaveforms.resize(1);
  const std::string text = loopOf("foreachwaveform", "%spicemodelname%.%transition%.%index%,");
  EXPECT_EQ(device.expand(text, 1),
            "sensor.falling.0,input.rising.0,input.rising.1,input.falling.0,input.falling.1,");
  EXPECT_EQ(device.expand(text, 0), "sensor.falling.0,");
}

// One model's name stands twice, one choice names no model, one differs in case.
const std::string selectors =
    lines({"[IBIS Ver] 4.2", "[Component] Any",                                                  //
           "[Model Selector] Drive", "strong strong choice", "lost no such model", "weak weak",  //
           "[Model Selector] Sense", "Strong another case", "gnd ground", "ioDrain open",        //
           "[Model] strong", "Model_type I/O",                                                   //
           "[Model] weak", "Model_type 3-state",                                                 //
           "[Model] strong", "Model_type Input",                                                 //
           "[Model] ioDrain", "Model_type I/O_open_drain", "[End]"});

TEST(ForEachModelSelector, TellsEachChoiceWithTheTypeOfItsModel) {
  Parsed parsed(selectors);
  Recorder sink;
  EXPECT_EQ(expandTemplate(loopOf("foreachmodelselector",
                                  "%pinmodel%|%ibismodel%|%selectorstring%|%modeltype%\n"),
                           parsed.file, &parsed.component(), sink),
            lines({"Drive|strong|strong choice|I_O", "Drive|lost|no such model|unknown",
                   "Drive|weak|weak|3_state", "Sense|Strong|another case|unknown",
                   "Sense|GND|ground|GND", "Sense|ioDrain|open|I_O_open_drain"}));
  EXPECT_MESSAGES(sink.errors);
}

TEST(ForEachModelSelector, FindsEachOfManyModels) {
  IBISFile file;
  IBISModelSelector selector{"Any", {}};
  std::string expected;
  for (std::int32_t i = 0; i < 40; ++i) {
    auto& model = *file.data().models.emplace_back(std::make_unique<IBISModel>());
    model.name = file.data().strings.store("m" + std::to_string(i));
    model.type = i % 2 == 0 ? ModelType::input : ModelType::openDrain;
    selector.rows.push_back({model.name, ""});
    expected += i % 2 == 0 ? "Input," : "Open_drain,";
  }
  file.data().modelSelectors = {selector};
  Recorder sink;
  EXPECT_EQ(expandTemplate(loopOf("foreachmodelselector", "%modeltype%,"), file, nullptr, sink),
            expected);
}

TEST(ForEachUserModelSelector, TellsTheUsersChoicesInOrder) {
  IBISFile file;
  for (const char* choice : {"slow", "fast", "slow"}) file.addUserModelSelector(choice);
  Recorder sink;
  EXPECT_EQ(expandTemplate(loopOf("foreachusermodelselector", "%username%,"), file, nullptr, sink),
            "slow,fast,slow,");
}

struct FactoryCase {
  LoopFactory factory;
  std::size_t count;
};

// For the second of two components.
constexpr FactoryCase factories[] = {
    {forAllModels, 6},       {forEachComponent, 2},  {forEachDiffPin, 3},
    {forEachFilePin, 6},     {forEachModel, 3},      {forEachModelSelector, 0},
    {forEachPin, 5},         {forEachSpicePin, 4},   {forEachUserModelSelector, 0},
    {forEachWaveform, 0},    {forEachGnd, 0},        {forEachInput, 3},
    {forEachInputOutput, 0}, {forEachOutput, 0},     {forEachPower, 0},
    {forEachTerminator, 0},  {forEachThreeState, 0},
};

std::size_t count(LoopItems& items) {
  if (items.empty()) return 0;
  std::size_t passes = 1;
  for (items.restart(); items.advance();) ++passes;
  return passes;
}

TEST(LoopFactories, FillTheListAndGiveTrue) {
  Device device(twoComponents);
  FileSink files;
  TemplateEngine engine(device.data(), &device.component(1), "", device.sink, files);
  for (const FactoryCase& each : factories) {
    LoopItems items;
    EXPECT_TRUE(each.factory(engine, items));
    EXPECT_EQ(count(items), each.count);
  }
}

TEST(LoopFactories, LeaveTheComponentsLoopsEmptyWithoutOne) {
  Device device(twoComponents);
  FileSink files;
  TemplateEngine engine(device.data(), nullptr, "", device.sink, files);
  for (const FactoryCase& each : factories) {
    LoopItems items;
    EXPECT_TRUE(each.factory(engine, items));
    const bool isOfTheFile = each.factory == forAllModels || each.factory == forEachComponent ||
                             each.factory == forEachFilePin;
    EXPECT_EQ(count(items), isOfTheFile ? each.count : 0);
  }
}

TEST(LoopFactories, WriteNothingBehindAClosedCondition) {
  Device device(twoComponents);
  EXPECT_EQ(device.expand("%ifhaspackagemodel%" + loopOf("foreachpin", "%name%,") + "%endif%;"),
            ";");
  EXPECT_MESSAGES(device.sink.errors);
}

}  // namespace
}  // namespace ibis::testing
