#include "reader/file/parser.h"

#include "harness/harness.h"

namespace ibis::testing {
namespace {

const std::string goodHead = "[IBIS Ver] 4.2\n";

TEST(ParseFile, ReadsASmallFileWithoutMessage) {
  Parsed parsed("[IBIS Ver] 4.2\n[Component] Board\n[End]\n");
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_MESSAGES(parsed.warnings());
  EXPECT_EQ(parsed.data().version, 10);
  ASSERT_EQ(parsed.data().components.size(), 1u);
  EXPECT_EQ(parsed.component().name, "Board");
}

TEST(ParseFile, ReadsNothingFromAnEmptyFile) {
  Parsed parsed("");
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_EQ(parsed.data().version, 0);
  EXPECT_EQ(parsed.data().models.size(), 3u);
  EXPECT_EQ(parsed.index, 0);
}

TEST(IbisVer, IsAcceptedForEverySupportedVersion) {
  const Texts texts = {"1.0", "1.1", "2.0", "2.1", "3.0", "3.1", "3.2", "4.0", "4.1", "4.2"};
  std::int32_t id = 0;
  for (const std::string& text : texts) {
    Parsed parsed("[IBIS Ver] " + text + "\n[Model] m\n");
    EXPECT_MESSAGES(parsed.errors());
    EXPECT_EQ(parsed.data().version, ++id) << text;
    EXPECT_EQ(parsed.data().models.size(), 4u) << text;
  }
}

TEST(IbisVer, IsRefusedForEveryVersionThatIsNotSupported) {
  const std::vector<std::pair<std::string, std::int32_t>> cases = {
      {"5.0", 11}, {"5.1", 12}, {"6.0", 13}, {"6.1", 14},
      {"7.0", 15}, {"7.1", 16}, {"7.2", 17}, {"Unknown", 0}};
  for (const auto& [text, id] : cases) {
    Parsed parsed("[IBIS Ver] " + text + "\n[Component] c\n[Submodel]\n");
    EXPECT_MESSAGES(parsed.errors(), "Version '" + text + "' not supported. Aborting IBIS");
    EXPECT_EQ(parsed.data().version, id);
    EXPECT_TRUE(parsed.data().components.empty());
  }
}

TEST(IbisVer, IsRefusedForAnUnknownText) {
  Parsed parsed("[IBIS Ver] 4.3\n[Component] c\n");
  EXPECT_MESSAGES(parsed.errors(), "Unknown version '4.3'. Aborting IBIS");
  EXPECT_EQ(parsed.data().version, 0);
  EXPECT_TRUE(parsed.data().components.empty());
}

TEST(IbisVer, KeepsTheEarlierVersionWhenALaterOneIsUnknown) {
  Parsed parsed("[IBIS Ver] 4.2\n[Date] d\n[IBIS Ver] 4.3\n[Component] c\n");
  EXPECT_MESSAGES(parsed.errors(), "Unknown version '4.3'. Aborting IBIS");
  EXPECT_EQ(parsed.data().version, 10);
  EXPECT_EQ(parsed.data().date, "d");
  EXPECT_TRUE(parsed.data().components.empty());
}

TEST(IbisVer, MayBeRepeatedWithAnotherGoodOne) {
  Parsed parsed("[IBIS Ver] 4.2\n[IBIS Ver] 3.2\n[Model] m\n");
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_EQ(parsed.data().version, 7);
  EXPECT_EQ(parsed.data().models.size(), 4u);
}

TEST(IbisVer, IsReadWithoutCommentAndOuterBlanks) {
  Parsed parsed("[IBIS Ver] \t 4.2 \t| the version\n[Component] c\n");
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_EQ(parsed.data().version, 10);
}

TEST(IbisVer, IsUnknownWithAnyOtherText) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {" 4.2 draft", "4.2 draft"}, {" V4.2", "V4.2"},       {" 4.20", "4.20"}, {"", ""},
      {" unknown", "unknown"},     {" \"4.2\"", "\"4.2\""}, {" na", "NA"},     {" 4,2", "4,2"}};
  for (const auto& [text, named] : cases) {
    Parsed parsed("[IBIS Ver]" + text + "\n[Component] c\n");
    EXPECT_MESSAGES(parsed.errors(), "Unknown version '" + named + "'. Aborting IBIS");
  }
}

TEST(Header, KeepsEachKeywordInItsOwnField) {
  Parsed parsed(goodHead +
                "[File Name]  a b.ibs \n[File Rev] 1.0\n[Date] May 1\n[Source] s\n[Notes] n\n"
                "[Disclaimer] d\n[Copyright] c\n[Component] x\n");
  EXPECT_MESSAGES(parsed.errors());
  const IBISFileData& data = parsed.data();
  EXPECT_EQ(data.fileName, "a b.ibs");
  EXPECT_EQ(data.fileRev, "1.0");
  EXPECT_EQ(data.date, "May 1");
  EXPECT_EQ(data.source, " s");
  EXPECT_EQ(data.notes, " n");
  EXPECT_EQ(data.disclaimer, " d");
  EXPECT_EQ(data.copyright, " c");
}

TEST(Header, JoinsTheLinesOfATextWithItsBlanks) {
  Parsed parsed(goodHead + "[Notes] first\nsecond\n  third\n[Component] c\n");
  EXPECT_EQ(parsed.data().notes, " first\nsecond\n  third");
  EXPECT_EQ(parsed.data().components.size(), 1u);
}

TEST(Header, JoinsTheLinesOfEachTextKeyword) {
  Parsed parsed("[Source]\ns \n\n| gone\ns\n[Disclaimer] d|c\n\td\n[Copyright]c\nc");
  EXPECT_EQ(parsed.data().source, "\ns \ns");
  EXPECT_EQ(parsed.data().disclaimer, " d\n\td");
  EXPECT_EQ(parsed.data().copyright, "c\nc");
}

TEST(Header, LosesTextBelowAKeywordOfOneLine) {
  Parsed parsed(
      "stray\n[File Name] f\nlost\n[File Rev] r\nlost\n[Date] d\nlost\n"
      "[IBIS Ver] 4.2\nlost\n[Component] c\n");
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_EQ(parsed.data().fileName, "f");
  EXPECT_EQ(parsed.data().fileRev, "r");
  EXPECT_EQ(parsed.data().date, "d");
  EXPECT_EQ(parsed.data().components.size(), 1u);
}

TEST(Header, TakesTheLastOfTwoDates) {
  Parsed parsed("[Date] first\n[Date] second\n[Notes] a\nb\n[Notes] c\n[Component] c\n");
  EXPECT_EQ(parsed.data().date, "second");
  EXPECT_EQ(parsed.data().notes, " c");
}

TEST(Header, FoldsAReservedWordThatIsTheWholeText) {
  Parsed parsed("[File Name] nc\n[Source]gnd\n[Notes] gnd\n");
  EXPECT_EQ(parsed.data().fileName, "NC");
  EXPECT_EQ(parsed.data().source, "GND");
  EXPECT_EQ(parsed.data().notes, " gnd");
}

TEST(Header, NeedsNoVersionAheadOfAComponent) {
  Parsed parsed("[Date] d\n[Component] c\n[Model] m\n[End]\n");
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_EQ(parsed.data().version, 0);
  EXPECT_EQ(parsed.data().components.size(), 1u);
  EXPECT_EQ(parsed.data().models.size(), 4u);
}

TEST(Header, WithoutVersionEndsInSilenceAtAModel) {
  Parsed parsed("[Date] d\n[Model] m\nModel_type Input\n[Component] c\n");
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_EQ(parsed.data().models.size(), 3u);
  EXPECT_TRUE(parsed.data().components.empty());
  EXPECT_EQ(parsed.data().date, "d");
  EXPECT_EQ(parsed.index, 1);
}

TEST(Header, WithoutVersionEndsInSilenceAtAnyOtherKeyword) {
  for (const char* keyword : {"Model Selector", "Define Package Model", "End", "Submodel",
                              "External Model", "Manufacturer", "Pin", "Row", "Test Load"}) {
    Parsed parsed("[" + std::string(keyword) + "] x\n[Component] c\n");
    EXPECT_MESSAGES(parsed.errors());
    EXPECT_TRUE(parsed.data().components.empty()) << keyword;
    EXPECT_TRUE(parsed.data().modelSelectors.empty()) << keyword;
    EXPECT_TRUE(parsed.data().packageModels.empty()) << keyword;
  }
}

TEST(Header, WithoutVersionLeavesALoadWithoutMessage) {
  const Loaded loaded = loadText("[Model] m\nModel_type Input\n");
  EXPECT_MESSAGES(loaded.errors);
  EXPECT_MESSAGES(loaded.warnings);
  EXPECT_EQ(loaded.written, Texts());
}

TEST(Driver, ReadsAModelAheadOfAComponentBehindAVersion) {
  Parsed parsed(goodHead + "[Model] m\nModel_type Input\n[Component] c\n[End]\n");
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_EQ(parsed.model().name, "m");
  EXPECT_EQ(parsed.component().name, "c");
}

TEST(Driver, AppendsSectionsInFileOrder) {
  Parsed parsed(goodHead +
                "[Model] m1\n[Component] c1\n[Model Selector] s1\nm1 d\n[Define Package Model] p1\n"
                "[End Package Model]\n[Component] c2\n[Model Selector] s2\n[Model] m2\n"
                "[Define Package Model] p2\n[End Package Model]\n[End]\n");
  EXPECT_MESSAGES(parsed.errors());
  const IBISFileData& data = parsed.data();
  ASSERT_EQ(data.components.size(), 2u);
  EXPECT_EQ(data.components[0]->name, "c1");
  EXPECT_EQ(data.components[1]->name, "c2");
  ASSERT_EQ(data.modelSelectors.size(), 2u);
  EXPECT_EQ(data.modelSelectors[0].name, "s1");
  EXPECT_EQ(data.modelSelectors[1].name, "s2");
  ASSERT_EQ(data.models.size(), 5u);
  EXPECT_EQ(data.models[3]->name, "m1");
  EXPECT_EQ(data.models[4]->name, "m2");
  ASSERT_EQ(data.packageModels.size(), 2u);
  EXPECT_EQ(data.packageModels[0]->name, "p1");
  EXPECT_EQ(data.packageModels[1]->name, "p2");
}

TEST(Driver, EntersComponentsAndModelsInTheNameTable) {
  Parsed parsed(goodHead + "[Component] a-b\n[Model] a.b\n[Define Package Model] p-q\n");
  const IBISNameTable& names = *parsed.data().nameTable;
  EXPECT_EQ(names.spiceName("a-b"), "a_b");
  EXPECT_EQ(names.spiceName("a.b"), "a_b_1");
  EXPECT_EQ(names.spiceName("p-q"), "");
}

TEST(Driver, LooksAtNothingBehindEnd) {
  Parsed parsed(goodHead + "[Component] c\n[End]\nstray\n[Submodel]\n[Model] m\n[Date] d\n");
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_EQ(parsed.data().models.size(), 3u);
  EXPECT_EQ(parsed.data().date, "");
  EXPECT_EQ(parsed.index, 2);
}

TEST(Driver, NeedsNoEnd) {
  Parsed parsed(goodHead + "[Component] c\n[Model] m");
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_EQ(parsed.model().name, "m");
}

TEST(Driver, RefusesASubmodelAndDropsTheRest) {
  Parsed parsed(goodHead + "[Component] c\n[submodel] s\n[Submodel] t\n[Model] m\n");
  EXPECT_MESSAGES(parsed.errors(), "Line 3: Keyword 'Submodel' not supported");
  EXPECT_EQ(parsed.data().components.size(), 1u);
  EXPECT_EQ(parsed.data().models.size(), 3u);
}

TEST(Driver, RefusesAnExternalModelAndDropsTheRest) {
  Parsed parsed(goodHead + "[external_model] e\n[Component] c\n");
  EXPECT_MESSAGES(parsed.errors(), "Line 2: Keyword 'External Model' not supported");
  EXPECT_TRUE(parsed.data().components.empty());
}

TEST(Driver, RefusesEveryKeywordThatBeginsNoSection) {
  std::int32_t refused = 0;
  for (const KeywordRow& row : keywordTable()) {
    const std::string name(row.name);
    if (name == "Comment Char" || name.find('_') != std::string::npos) continue;
    Parsed parsed(goodHead + "[Model Selector] s\n| gap\n[" + name + "] x\n[End]\n");
    if (parsed.errors().empty()) continue;
    ++refused;
    if (name == "Submodel" || name == "External Model") continue;
    EXPECT_MESSAGES(parsed.errors(), "Line 4: Keyword '" + name + "' not expected in this context");
  }
  // All 92 but Comment Char, two never matched, four sections and End.
  EXPECT_EQ(refused, 84);
}

TEST(Driver, RefusesHeaderKeywordsBehindTheFirstSection) {
  Parsed parsed(goodHead + "[Model Selector] s\nm d\n[date] late\n[Component] c\n");
  EXPECT_MESSAGES(parsed.errors(), "Line 4: Keyword 'Date' not expected in this context");
  EXPECT_EQ(parsed.data().date, "");
  EXPECT_EQ(parsed.data().modelSelectors.size(), 1u);
  EXPECT_TRUE(parsed.data().components.empty());
}

TEST(Driver, NamesNoKeywordWhenItRefusesADataLine) {
  Parsed parsed(goodHead + "[Define Package Model] p\n[End Package Model]\nstray\n[Component] c\n");
  EXPECT_MESSAGES(parsed.errors(), "Line 4: Keyword '' not expected in this context");
  EXPECT_EQ(parsed.data().packageModels.size(), 1u);
  EXPECT_TRUE(parsed.data().components.empty());
}

TEST(Driver, GoesOnBehindAnErrorInsideASection) {
  Parsed parsed(goodHead + "[Component] c\n[Date] d\n[Model] m\n[End]\n");
  EXPECT_MESSAGES(parsed.errors(), "Line 3: Keyword 'Date' expected in header definition only");
  EXPECT_EQ(parsed.data().models.size(), 4u);
}

TEST(PostParse, HasNothingToSayOfTheBuiltInModels) {
  Parsed parsed("");
  parsed.resolve();
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_MESSAGES(parsed.warnings());
}

// Two components with one pin each, and a model that no pin names.
const std::string twoComponents = goodHead +
                                  "[Component] one\n[Pin] signal_name model_name\n1 a first\n"
                                  "[Component] two\n[Pin] signal_name model_name\n1 b second\n"
                                  "[Model] first\nModel_type Output\n"
                                  "[Model] second\nModel_type Open_drain\n"
                                  "[Model] third\nModel_type Open_source\n";

TEST(PostParse, PreparesTheNamedComponentAndChecksItsModels) {
  Parsed parsed(twoComponents);
  parsed.resolve("two");
  EXPECT_MESSAGES(parsed.errors(),
                  "Line 10: Model 'second' no pulldown definition has been provided");
  EXPECT_TRUE(parsed.component(0).pinEntries.empty());
  EXPECT_TRUE(parsed.component(0).models.empty());
  ASSERT_EQ(parsed.component(1).pinEntries.size(), 1u);
  EXPECT_EQ(parsed.component(1).models, std::vector<IBISModel*>{&parsed.model(1)});
}

TEST(PostParse, PreparesAllComponentsAndChecksAllModelsWithoutAName) {
  Parsed parsed(twoComponents);
  parsed.resolve();
  EXPECT_MESSAGES(parsed.errors(), "Line 8: Model 'first' no pulldown definition has been provided",
                  "Line 8: Model 'first' no pullup definition has been provided",
                  "Line 10: Model 'second' no pulldown definition has been provided",
                  "Line 12: Model 'third' no pullup definition has been provided");
  EXPECT_EQ(parsed.component(0).pinEntries.size(), 1u);
  EXPECT_EQ(parsed.component(1).pinEntries.size(), 1u);
}

TEST(PostParse, ChecksAllModelsOfAFileWithoutComponents) {
  Parsed parsed(goodHead + "[Model] m\nModel_type Open_drain\n");
  parsed.resolve();
  EXPECT_MESSAGES(parsed.errors(), "Line 2: Model 'm' no pulldown definition has been provided");
}

TEST(PostParse, HasNothingToSayOfANameThatNoComponentHas) {
  for (const char* name : {"three", "Two", "two "}) {
    Parsed parsed(twoComponents);
    parsed.resolve(name);
    EXPECT_MESSAGES(parsed.errors());
    EXPECT_TRUE(parsed.component(1).pinEntries.empty());
  }
}

TEST(PostParse, PreparesTheFirstOfTwoComponentsWithOneName) {
  Parsed parsed(goodHead +
                "[Component] c\n[Pin] signal_name model_name\n1 a GND\n"
                "[Component] c\n[Pin] signal_name model_name\n1 b GND\n");
  parsed.resolve("c");
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_EQ(parsed.component(0).models, std::vector<IBISModel*>{parsed.data().models[0].get()});
  EXPECT_TRUE(parsed.component(1).models.empty());
}

TEST(PostParse, ChecksTheUsersSelectionsFirst) {
  Parsed parsed(twoComponents);
  parsed.file.addUserModelSelector("missing");
  parsed.resolve("two");
  EXPECT_MESSAGES(parsed.errors(), "Model selector 'missing' not found in IBIS file",
                  "Line 10: Model 'second' no pulldown definition has been provided");
}

TEST(PostParse, KeepsToThePinFilter) {
  Parsed parsed(goodHead + "[Component] c\n[Pin] signal_name model_name\n1 a GND\n2 b POWER\n");
  parsed.resolve("c", {"2"});
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_EQ(parsed.component().models, std::vector<IBISModel*>{parsed.data().models[1].get()});
}

TEST(PostParse, IsLeftOutOfALoadWithErrors) {
  const Loaded loaded = loadText(goodHead + "[Component] c\n[Pin] signal_name model_name\n1 a m\n" +
                                     "[Model] m\nModel_type Open_drain\n[Submodel] s\n",
                                 {.selections = {"missing"}});
  EXPECT_MESSAGES(loaded.errors, "Line 7: Keyword 'Submodel' not supported");
}

}  // namespace
}  // namespace ibis::testing
