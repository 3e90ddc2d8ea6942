#include "component/model_selector.h"

#include "harness/harness.h"

namespace ibis::testing {
namespace {

using Rows = std::vector<Texts>;

Rows rowsOf(const IBISModelSelector& selector) {
  Rows rows;
  for (const IBISModelSelectorRow& row : selector.rows) {
    rows.push_back({row.modelName.str(), row.description.str()});
  }
  return rows;
}

// Two models, a selector over them, and whatever a test adds.
struct Library : Parsed {
  explicit Library(std::string_view more, const Texts& selections = {})
      : Parsed(lines({"[Component] X", "[Pin]", "1 S Speed", "[Model Selector] Speed",
                      "Slow slow edges", "Fast fast edges", "[Model] Slow", "Model_type Terminator",
                      "[Model] Fast", "Model_type Terminator"}) +
               std::string(more)) {
    for (const std::string& selection : selections) file.addUserModelSelector(selection);
  }

  // The place among the file's models, -1 for none; the first three are built in.
  std::ptrdiff_t found(std::string_view name) {
    const IBISModel* model = findModel(file.data(), name);
    const auto& models = data().models;
    const auto place =
        std::ranges::find_if(models, [&](const auto& item) { return item.get() == model; });
    return model == nullptr ? -1 : place - models.begin();
  }
};

constexpr std::ptrdiff_t nowhere = -1;
constexpr std::ptrdiff_t slow = 3;
constexpr std::ptrdiff_t fast = 4;

struct RowCase {
  const char* line;
  const char* modelName;
  const char* description;
};

TEST(ModelSelector, CutsRowsIntoModelAndDescription) {
  const RowCase cases[] = {
      {"Fast fast edges", "Fast", "fast edges"},
      {"\t Fast \t fast \t edges\t ", "Fast", "fast \t edges"},
      {"Fast=fast edges", "Fast", "fast edges"},
      {"Fast=  fast = edges", "Fast", "fast = edges"},
      {"Fast = fast edges", "Fast", "= fast edges"},
      {"Fast", "Fast", ""},
      {"Fast=", "Fast", ""},
      {"  Fast", "Fast", ""},
      {"=fast edges", "", "fast edges"},
      {"Fast \"fast edges\"", "Fast", "fast edges"},
      {"Fast 'fast' \"ed\"ges", "Fast", "fast edges"},
      {"Fast \" fast edges \"", "Fast", " fast edges "},
      {"Fast \"\"", "Fast", ""},
      {"'Fast' fast", "'Fast'", "fast"},
      {"gnd Power", "GND", "POWER"},
      {"nc \"n'a\"", "NC", "NA"},
  };
  for (const RowCase& item : cases) {
    SCOPED_TRACE(item.line);
    Parsed parsed(lines({"[Component] X", "[Model Selector] S", item.line}));
    EXPECT_EQ(rowsOf(parsed.data().modelSelectors[0]), (Rows{{item.modelName, item.description}}));
  }
}

TEST(ModelSelector, TakesItsTrimmedNameAndItsRowsInOrder) {
  Parsed parsed(lines({"[Component] X", "[Model Selector]  Speed of edges\t", "B second", "A first",
                       "[Model Selector] nc", "[Model Selector]", "C third"}));
  ASSERT_EQ(parsed.data().modelSelectors.size(), 3U);
  const IBISModelSelector& first = parsed.data().modelSelectors[0];
  EXPECT_EQ(first.name, "Speed of edges");
  EXPECT_EQ(rowsOf(first), (Rows{{"B", "second"}, {"A", "first"}}));
  EXPECT_EQ(parsed.data().modelSelectors[1].name, "NC");
  EXPECT_EQ(rowsOf(parsed.data().modelSelectors[1]), Rows{});
  EXPECT_EQ(parsed.data().modelSelectors[2].name, "");
  EXPECT_EQ(rowsOf(parsed.data().modelSelectors[2]), (Rows{{"C", "third"}}));
  EXPECT_MESSAGES(parsed.errors());
}

TEST(ModelSelector, LeavesTheIndexOnItsLastRow) {
  const Scanned scanned("[Model Selector] S\nA first\nB second\n[Model] A\n");
  IBISFile file;
  std::int32_t index = 0;
  readModelSelector(file.data(), scanned.records(), index);
  EXPECT_EQ(index, 2);
  EXPECT_EQ(file.data().modelSelectors.size(), 1U);
}

struct Choice {
  std::vector<IBISString> selections;
  const char* modelName;
};

TEST(ResolveSelector, TakesTheFirstSelectionThatARowDescribes) {
  const IBISModelSelector selector{
      .name = "S",
      .rows = {{"M0", "slow"}, {"M1", "fast"}, {"M2", "fast"}, {"", "nothing"}, {"M4", ""}}};
  const Choice cases[] = {
      {{}, "M0"},
      {{"slow"}, "M0"},
      {{"fast"}, "M2"},
      {{"Fast"}, "M0"},
      {{"medium"}, "M0"},
      {{"medium", "fast"}, "M2"},
      {{"fast", "slow"}, "M2"},
      {{"slow", "fast"}, "M0"},
      {{"M1"}, "M0"},
      {{""}, "M4"},
      {{"nothing"}, "M0"},
      {{"nothing", "fast"}, "M0"},
  };
  for (const Choice& item : cases) {
    EXPECT_EQ(resolveSelector(selector, item.selections), item.modelName)
        << (item.selections.empty() ? "" : item.selections[0].str());
  }
}

TEST(ResolveSelector, SelectorWithoutRowsGivesAnEmptyName) {
  const std::vector<IBISString> selections{"fast"};
  EXPECT_EQ(resolveSelector({.name = "S", .rows = {}}, {}), "");
  EXPECT_EQ(resolveSelector({.name = "S", .rows = {}}, selections), "");
}

TEST(FindModel, GivesTheModelOfTheExactName) {
  Library library("");
  EXPECT_EQ(library.found("Slow"), slow);
  EXPECT_EQ(library.found("Fast"), fast);
  EXPECT_EQ(library.found("fast"), nowhere);
  EXPECT_EQ(library.found("Fas"), nowhere);
  EXPECT_EQ(library.found(""), nowhere);
}

TEST(FindModel, FindsTheBuiltInModels) {
  Library library("");
  EXPECT_EQ(library.found("GND"), 0);
  EXPECT_EQ(library.found("POWER"), 1);
  EXPECT_EQ(library.found("NC"), 2);
  EXPECT_EQ(library.found("NA"), nowhere);
}

TEST(FindModel, GivesTheFirstOfModelsWithOneName) {
  Library library("[Model] Fast\nModel_type Terminator\n");
  EXPECT_EQ(library.found("Fast"), fast);
}

TEST(FindModel, GoesThroughTheSelector) {
  EXPECT_EQ(Library("").found("Speed"), slow);
  EXPECT_EQ(Library("").found("speed"), nowhere);
  EXPECT_EQ(Library("", {"fast edges"}).found("Speed"), fast);
  EXPECT_EQ(Library("", {"fast edges"}).found("Slow"), slow);
}

TEST(FindModel, SelectionWithoutARowFallsThroughToTheNextAndThenToTheFirstRow) {
  EXPECT_EQ(Library("", {"elsewhere", "fast edges"}).found("Speed"), fast);
  EXPECT_EQ(Library("", {"elsewhere"}).found("Speed"), slow);
}

TEST(FindModel, SelectorHidesTheModelOfItsName) {
  Library library("[Model Selector] Slow\nFast now\n[Model Selector] GND\nSlow now\n");
  EXPECT_EQ(library.found("Slow"), fast);
  EXPECT_EQ(library.found("GND"), slow);
}

TEST(FindModel, LaterSelectorOfANameCounts) {
  Library library("[Model Selector] Speed\nFast now\n");
  EXPECT_EQ(library.found("Speed"), fast);
}

TEST(FindModel, SelectorThatLeadsToNoModelFindsNothing) {
  Library library(lines({"[Model Selector] Lost", "Missing x", "[Model Selector] Empty",
                         "[Model Selector] Na", "NA x"}));
  EXPECT_EQ(library.found("Lost"), nowhere);
  EXPECT_EQ(library.found("Empty"), nowhere);
  EXPECT_EQ(library.found("NA"), nowhere);
}

TEST(FindModel, SelectorsDoNotLeadToOtherSelectors) {
  Library library("[Model Selector] Outer\nSpeed x\n[Model Selector] Fast\nFast x\n");
  EXPECT_EQ(library.found("Outer"), nowhere);
  EXPECT_EQ(library.found("Fast"), fast);
}

TEST(PinSelector, LosesItsQuotesSoThatAPlainSelectionMatches) {
  Library library("[Model Selector] Quoted\nSlow 'slow one'\nFast \"fast one\"\n", {"fast one"});
  EXPECT_EQ(library.found("Quoted"), fast);
}

TEST(PinSelector, GivesThePinTheChosenModelAndKeepsItsName) {
  Library library("", {"fast edges"});
  library.resolve("X");
  const IBISPin& pin = library.component().pins[0];
  EXPECT_EQ(pin.model, library.data().models[4].get());
  EXPECT_EQ(pin.model_name, "Speed");
  EXPECT_MESSAGES(library.errors());
}

TEST(PinSelector, WithoutAModelIsReportedAsAnUnknownModelIs) {
  Library library("[Model Selector] Speed\nMissing x\n");
  library.resolve("X");
  EXPECT_MESSAGES(library.errors(), "Line 3: Model referenced by pin '1' has not been defined");
  EXPECT_EQ(library.component().pins[0].model, nullptr);
}

TEST(UserSelectors, ThoseThatNoSelectorDescribesAreReportedInOrderAndIgnored) {
  Library library("[Model Selector] Other\nSlow far\nFast ''\n",
                  {"Fast edges", "far", "slow edges", "", "unknown", "unknown"});
  library.resolve("X");
  EXPECT_MESSAGES(library.errors(), "Model selector 'Fast edges' not found in IBIS file",
                  "Model selector 'unknown' not found in IBIS file",
                  "Model selector 'unknown' not found in IBIS file");
  EXPECT_EQ(library.component().pins[0].model, library.data().models[3].get());
}

TEST(UserSelectors, AreCheckedAgainstEveryRowOfEverySelector) {
  Library library("[Model Selector] Speed\nFast other edges\n",
                  {"slow edges", "fast edges", "other edges"});
  Recorder recorder;
  checkUserSelectors(library.file.data(), recorder);
  EXPECT_MESSAGES(recorder.errors);
  EXPECT_MESSAGES(recorder.warnings);
}

TEST(UserSelectors, ReservedWordsMatchInAnyCase) {
  Library library("[Model Selector] Level\nSlow nC\nFast 'g'nd\n", {"Gnd"});
  EXPECT_EQ(library.found("Level"), fast);
  library.resolve("X");
  EXPECT_MESSAGES(library.errors());
}

TEST(UserSelectors, AreReportedAsErrorsWithoutAnySelector) {
  IBISFile file;
  file.addUserModelSelector("fast");
  Recorder recorder;
  checkUserSelectors(file.data(), recorder);
  EXPECT_MESSAGES(recorder.errors, "Model selector 'fast' not found in IBIS file");
  EXPECT_MESSAGES(recorder.warnings);
}

TEST(UserSelectors, AreCheckedAheadOfThePinsAndForAnUnknownComponentToo) {
  Parsed parsed("[Component] X\n[Pin]\n1 S Missing\n");
  parsed.file.addUserModelSelector("fast");
  parsed.resolve("X");
  EXPECT_MESSAGES(parsed.errors(), "Model selector 'fast' not found in IBIS file",
                  "Line 3: Model referenced by pin '1' has not been defined");
  Parsed other("[Component] X\n");
  other.file.addUserModelSelector("fast");
  other.resolve("Y");
  EXPECT_MESSAGES(other.errors(), "Model selector 'fast' not found in IBIS file");
}

}  // namespace
}  // namespace ibis::testing
