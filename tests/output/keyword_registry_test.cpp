#include "output/keyword_registry.h"

#include "harness/harness.h"
#include "output/file_keywords.h"
#include "output/loop_factories.h"

namespace ibis::testing {
namespace {

struct LoopRow {
  std::string_view name;
  LoopFactory factory;
};

const LoopRow loopRows[] = {
    {"forallmodels", forAllModels},
    {"foreachcomponent", forEachComponent},
    {"foreachdiffpin", forEachDiffPin},
    {"foreachfilepin", forEachFilePin},
    {"foreachgnd", forEachGnd},
    {"foreachinput", forEachInput},
    {"foreachio", forEachInputOutput},
    {"foreachmodel", forEachModel},
    {"foreachmodelselector", forEachModelSelector},
    {"foreachoutput", forEachOutput},
    {"foreachpin", forEachPin},
    {"foreachpower", forEachPower},
    {"foreachspicepin", forEachSpicePin},
    {"foreachterminator", forEachTerminator},
    {"foreachtristate", forEachThreeState},
    {"foreachusermodelselector", forEachUserModelSelector},
    {"foreachwaveform", forEachWaveform},
};

struct ValueRow {
  std::string_view name;
  ValueHandler handler;
};

const ValueRow valueRows[] = {
    {"buildpackagemodel", writePackageModel},
    {"componentname", writeComponentName},
    {"file", openFile},
    {"filepath", writeFilePath},
    {"ibiscopyright", writeCopyright},
    {"ibisdate", writeDate},
    {"ibisdisclaimer", writeDisclaimer},
    {"ibisfilename", writeFileName},
    {"ibisfilerev", writeFileRev},
    {"ibisnotes", writeNotes},
    {"ibissource", writeSource},
    {"ibisversion", writeVersion},
    {"manufacturer", writeManufacturer},
    {"packagemodel", writePackageModelName},
    {"rootdir", writeRootDirectory},
    {"spicecomponentname", writeSpiceComponentName},
    {"subcktname", writeSubcircuitName},
};

struct ConditionRow {
  std::string_view name;
  ConditionHandler handler;
};

const ConditionRow conditionRows[] = {
    {"ifhasmodeltype", hasModelType},
    {"ifhaspackagemodel", hasPackageModel},
};

// The name with one letter in upper case.
std::string withCapital(std::string_view name, std::size_t place) {
  std::string changed(name);
  changed[place] = upperCase(changed[place]);
  return changed;
}

void expectUnknown(std::string_view name) {
  EXPECT_EQ(valueKeyword(name), nullptr) << name;
  EXPECT_EQ(loopKeyword(name), nullptr) << name;
  EXPECT_EQ(conditionKeyword(name), nullptr) << name;
}

TEST(KeywordRegistry, KnowsEveryLoopKeyword) {
  EXPECT_EQ(std::size(loopRows), 17U);
  for (const LoopRow& row : loopRows) EXPECT_EQ(loopKeyword(row.name), row.factory) << row.name;
}

TEST(KeywordRegistry, KnowsEveryValueKeyword) {
  EXPECT_EQ(std::size(valueRows), 17U);
  for (const ValueRow& row : valueRows) EXPECT_EQ(valueKeyword(row.name), row.handler) << row.name;
}

// The engine calls those that open no file with an open one alone; they need none.
TEST(KeywordRegistry, HoldsValuesThatWriteNothingWithoutAnOpenFile) {
  Parsed parsed(
      "[IBIS Ver] 4.2\n[Notes] two\nlines\n[Component] C\n[Package Model] P\n"
      "[Pin] signal_name model_name\n1 A NC\n"
      "[Define Package Model] P\n[Number Of Pins] 1\n[Pin Numbers]\n1\n[End Package Model]\n");
  parsed.resolve();
  for (const IBISComponent* component : {static_cast<const IBISComponent*>(nullptr),
                                         static_cast<const IBISComponent*>(&parsed.component())}) {
    for (const ValueRow& row : valueRows) {
      if (std::string_view(row.name) == "file") continue;
      MemorySink sink;
      Recorder told;
      TemplateEngine engine(parsed.data(), component, "root", told, sink);
      TextBuffer text("left alone");
      const IBISString arguments[] = {row.name, "** "};
      const bool dropsLineEnd = row.handler(engine, nullptr, {.pendingSpaces = 3}, text, arguments);
      const bool isNetlist = std::string_view(row.name) == "buildpackagemodel";
      EXPECT_EQ(dropsLineEnd, isNetlist || std::string_view(row.name) == "rootdir") << row.name;
      engine.finish();
      EXPECT_EQ(text.position(), 0) << row.name;
      EXPECT_EQ(engine.generatedFiles(), Texts()) << row.name;
      EXPECT_MESSAGES(told.errors);
    }
  }
}

TEST(KeywordRegistry, KnowsEveryConditionKeyword) {
  EXPECT_EQ(std::size(conditionRows), 2U);
  for (const ConditionRow& row : conditionRows) {
    EXPECT_EQ(conditionKeyword(row.name), row.handler) << row.name;
  }
}

TEST(KeywordRegistry, KeepsTheThreeListsApart) {
  for (const LoopRow& row : loopRows) {
    EXPECT_EQ(valueKeyword(row.name), nullptr) << row.name;
    EXPECT_EQ(conditionKeyword(row.name), nullptr) << row.name;
  }
  for (const ValueRow& row : valueRows) {
    EXPECT_EQ(loopKeyword(row.name), nullptr) << row.name;
    EXPECT_EQ(conditionKeyword(row.name), nullptr) << row.name;
  }
  for (const ConditionRow& row : conditionRows) {
    EXPECT_EQ(loopKeyword(row.name), nullptr) << row.name;
    EXPECT_EQ(valueKeyword(row.name), nullptr) << row.name;
  }
}

TEST(KeywordRegistry, ComparesNamesWithTheirCase) {
  for (std::size_t place : {std::size_t{0}, std::size_t{3}}) {
    for (const LoopRow& row : loopRows) expectUnknown(withCapital(row.name, place));
    for (const ValueRow& row : valueRows) expectUnknown(withCapital(row.name, place));
    for (const ConditionRow& row : conditionRows) expectUnknown(withCapital(row.name, place));
  }
}

TEST(KeywordRegistry, ComparesWholeNames) {
  for (const std::string_view name : {"", "fil", "files", " file", "file ", "file,x"}) {
    expectUnknown(name);
  }
}

TEST(KeywordRegistry, HasNoEntryForTheEnginesOwnWords) {
  for (const std::string_view name :
       {"endforeach", "endforEach", "else", "endif", "iffirst", "append", "include"}) {
    expectUnknown(name);
  }
}

TEST(KeywordRegistry, HasNoEntryForTheWordsOfLoopObjects) {
  for (const std::string_view name : {"ifisdiff", "iftype", "ifhasinput", "name", "spicename"}) {
    expectUnknown(name);
  }
}

bool valueOne(OutputRun&, OutputStream*, const KeywordPosition&, TextBuffer&,
              const KeywordArguments&) {
  return true;
}
bool valueTwo(OutputRun&, OutputStream*, const KeywordPosition&, TextBuffer&,
              const KeywordArguments&) {
  return false;
}
bool loopOne(OutputRun&, LoopItems&) { return true; }
bool loopTwo(OutputRun&, LoopItems&) { return false; }
bool conditionOne(OutputRun&, TextBuffer&, const KeywordArguments&) { return true; }
bool conditionTwo(OutputRun&, TextBuffer&, const KeywordArguments&) { return false; }

TEST(KeywordRegistry, GivesTheFirstOfTwoEntriesOfOneName) {
  EXPECT_TRUE(addValueKeyword("twice", valueOne));
  EXPECT_TRUE(addValueKeyword("twice", valueTwo));
  EXPECT_TRUE(addLoopKeyword("twice", loopOne));
  EXPECT_TRUE(addLoopKeyword("twice", loopTwo));
  EXPECT_TRUE(addConditionKeyword("twice", conditionOne));
  EXPECT_TRUE(addConditionKeyword("twice", conditionTwo));
  EXPECT_EQ(valueKeyword("twice"), valueOne);
  EXPECT_EQ(loopKeyword("twice"), loopOne);
  EXPECT_EQ(conditionKeyword("twice"), conditionOne);
}

}  // namespace
}  // namespace ibis::testing
