#include "reader/vocabulary.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <string>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

// The words of a table, for looks at all of them.
template <class Row, class Word>
Texts wordsOf(std::span<const Row> table, Word Row::*word) {
  Texts words;
  for (const Row& row : table) words.emplace_back(row.*word);
  return words;
}

std::string lowerCase(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// None is empty, and none is another in another case.
void expectDistinct(const Texts& words) {
  std::set<std::string> seen;
  for (const std::string& word : words) {
    EXPECT_FALSE(word.empty());
    EXPECT_TRUE(seen.insert(lowerCase(word)).second) << word;
  }
}

// Each number from the first on, once.
void expectWithoutGap(std::vector<int> ids, int first) {
  std::ranges::sort(ids);
  for (std::size_t i = 0; i < ids.size(); ++i) EXPECT_EQ(ids[i], first + static_cast<int>(i));
}

constexpr int idOf(ModelType type) { return static_cast<int>(type); }

TEST(VersionTable, HoldsEachVersionOnce) {
  expectDistinct(wordsOf(versionTable(), &VersionRow::text));
  std::vector<int> ids;
  for (const VersionRow& row : versionTable()) ids.push_back(row.id);
  expectWithoutGap(ids, 0);
  EXPECT_EQ(ids.back(), 0);
}

TEST(VersionTable, HoldsTheOldestFirstAndTheReadOnesAheadOfTheOthers) {
  const std::span<const VersionRow> known = versionTable().first(versionTable().size() - 1);
  double last = 0.0;
  bool wasSupported = true;
  for (const VersionRow& row : known) {
    EXPECT_EQ(row.id, &row - known.data() + 1);
    EXPECT_GT(std::stod(row.text), last);
    EXPECT_TRUE(wasSupported || !row.supported) << row.text;
    last = std::stod(row.text);
    wasSupported = row.supported;
  }
  EXPECT_FALSE(versionTable().back().supported);
}

TEST(VersionTable, EndsTheReadVersionsBehindFourPointTwo) {
  for (const VersionRow& row : versionTable()) {
    const bool isKnown = row.id != 0;
    EXPECT_EQ(row.supported, isKnown && std::stod(row.text) < 4.3) << row.text;
  }
}

TEST(KeywordTable, HoldsEachKeywordOnce) {
  expectDistinct(wordsOf(keywordTable(), &KeywordRow::name));
  std::vector<int> ids;
  for (const KeywordRow& row : keywordTable()) ids.push_back(row.id);
  expectWithoutGap(ids, keyword::none + 1);
}

TEST(KeywordTable, HoldsNamesThatALineCanHold) {
  for (const KeywordRow& row : keywordTable()) {
    EXPECT_EQ(row.name.find_first_of("[]|\n\r\t"), row.name.npos) << row.name;
    EXPECT_EQ(row.name.find("  "), row.name.npos) << row.name;
    EXPECT_NE(row.name.front(), ' ') << row.name;
    EXPECT_NE(row.name.back(), ' ') << row.name;
  }
}

TEST(KeywordTable, IsFoundByIdAndByNameInAnyCase) {
  for (const KeywordRow& row : keywordTable()) {
    EXPECT_EQ(findKeyword(row.id), &row) << row.name;
    EXPECT_EQ(keywordName(row.id), row.name);
    std::string upper(row.name);
    for (char& c : upper) c = upperCase(c);
    for (const std::string& name :
         {std::string(row.name), lowerCase(std::string(row.name)), upper}) {
      EXPECT_EQ(keywordId(name), row.id) << name;
    }
  }
}

TEST(KeywordTable, HoldsNoOtherIdAndNoOtherName) {
  const int behind = static_cast<int>(keywordTable().size()) + keyword::none + 1;
  EXPECT_EQ(behind, keyword::rcSeries);
  EXPECT_EQ(findKeyword(behind), nullptr);
  EXPECT_EQ(keywordName(behind), "Rc Series");
  for (const int id : {-1, 0, 1, behind + 1, 1000}) {
    EXPECT_EQ(findKeyword(id), nullptr) << id;
    EXPECT_EQ(keywordName(id), "") << id;
  }
  for (const KeywordRow& row : keywordTable()) {
    const std::string name(row.name);
    for (const std::string& other : {' ' + name, name + ' ', name + 's'}) {
      EXPECT_EQ(keywordId(other), keyword::none) << other;
    }
  }
  for (const char* name : {"", "Pi", "Pin  Mapping", "PinMapping", "C Series", "Rc Series",
                           "POWER Pulse Table", "End Component"}) {
    EXPECT_EQ(keywordId(name), keyword::none) << name;
  }
}

// A name in brackets has blanks for its underscores, so that no line reaches a row that has some.
TEST(KeywordTable, IsReachedByEachNameWithoutUnderscores) {
  for (const KeywordRow& row : keywordTable()) {
    if (row.id == keyword::commentChar) continue;  // takes effect and leaves no record
    const Scanned scanned('[' + std::string(row.name) + "] x\n");
    const bool isReached = row.name.find('_') == row.name.npos;
    ASSERT_EQ(scanned.records().size(), isReached ? 1U : 0U) << row.name;
    if (!isReached) continue;
    EXPECT_EQ(scanned.records()[0].keyword, row.id) << row.name;
  }
}

TEST(SubParameterTable, HoldsEachWordOnceAndNoneOfTheReservedIds) {
  expectDistinct(wordsOf(subParameterTable(), &SubParameterRow::name));
  std::vector<int> ids;
  for (const SubParameterRow& row : subParameterTable()) ids.push_back(row.id);
  for (int id = subparameter::firstReserved; id <= subparameter::lastReserved; ++id) {
    ids.push_back(id);
  }
  ids.push_back(subparameter::none);
  expectWithoutGap(ids, 0);
}

TEST(SubParameterTable, HoldsWordsWithoutWhatSeparatesFields) {
  for (const SubParameterRow& row : subParameterTable()) {
    EXPECT_EQ(row.name.find_first_of(" \t="), row.name.npos) << row.name;
  }
}

TEST(SubParameterTable, IsFoundByTheExactWord) {
  for (const SubParameterRow& row : subParameterTable()) {
    EXPECT_EQ(subParameterId(row.name), row.id) << row.name;
    const std::string lower = lowerCase(std::string(row.name));
    const std::string name(row.name);
    EXPECT_NE(name, lower);
    for (const std::string& other : {lower, name + '_', name + ' ', ' ' + name}) {
      EXPECT_EQ(subParameterId(other), subparameter::none) << other;
    }
  }
  for (const char* word : {"", "C_com", "Vinh +", "VINL"}) {
    EXPECT_EQ(subParameterId(word), subparameter::none) << word;
  }
}

TEST(ModelTypeTable, HoldsEachTypeOnce) {
  expectDistinct(wordsOf(modelTypeTable(), &ModelTypeRow::name));
  std::vector<int> ids;
  for (const ModelTypeRow& row : modelTypeTable()) ids.push_back(idOf(row.id));
  expectWithoutGap(ids, 0);
  EXPECT_EQ(modelTypeTable().back().id, ModelType::unknown);
  EXPECT_FALSE(modelTypeTable().back().supported);
}

// The simulator has no device for a series element, a differential or an ECL buffer.
TEST(ModelTypeTable, TellsWhatTheSimulatorHasADeviceFor) {
  for (const ModelTypeRow& row : modelTypeTable()) {
    const std::string_view name = row.name;
    const bool isOther = name.ends_with("_ECL") || name.ends_with("_diff") ||
                         name.starts_with("Series") || row.id == ModelType::unknown;
    EXPECT_EQ(row.supported, !isOther) << name;
  }
}

TEST(ModelTypeTable, IsFoundByIdAndByTheExactWord) {
  for (const ModelTypeRow& row : modelTypeTable()) {
    const ModelTypeRow& found = modelTypeRow(row.id);
    EXPECT_EQ(found.id, row.id);
    EXPECT_STREQ(found.name, row.name);
    EXPECT_EQ(found.supported, row.supported) << row.name;
    bool supported = !row.supported;
    EXPECT_EQ(modelTypeFromWord(row.name, supported), row.id) << row.name;
    EXPECT_EQ(supported, row.supported) << row.name;
  }
}

TEST(KeywordIds, OfNoKeywordAreReserved) {
  EXPECT_EQ(keyword::dataLine, 0);
  EXPECT_EQ(keyword::none, 1);
}

TEST(EndsSection, HoldsForSevenKeywords) {
  std::vector<int> ending;
  for (int id = 0; id <= 94; ++id) {
    if (endsSection(id)) ending.push_back(id);
  }
  EXPECT_EQ(ending, std::vector<int>({11, 20, 21, 53, 57, 71, 86}));
}

TEST(FindVersion, ComparesExactly) {
  for (const VersionRow& row : versionTable()) {
    EXPECT_EQ(findVersion(row.text), &row) << row.text;
    EXPECT_EQ(versionText(row.id), row.text);
    const std::string text = row.text;
    for (const std::string& other : {' ' + text, text + ' ', text + '0'}) {
      EXPECT_EQ(findVersion(other), nullptr) << other;
    }
  }
  for (const char* text : {"", "4", "4.", "4.3", "unknown", "invalid"}) {
    EXPECT_EQ(findVersion(text), nullptr) << text;
  }
}

TEST(VersionText, OfZeroIsUnknown) { EXPECT_EQ(versionText(0), "Unknown"); }

TEST(VersionText, IsInvalidWithoutRow) {
  for (const int id : {-1, 18, 100}) EXPECT_EQ(versionText(id), "invalid") << id;
}

TEST(ModelTypeFromWord, TakesSinkForDrain) {
  bool supported = false;
  EXPECT_EQ(idOf(modelTypeFromWord("Open_sink", supported)), 7);
  EXPECT_TRUE(supported);
  supported = false;
  EXPECT_EQ(idOf(modelTypeFromWord("I/O_open_sink", supported)), 8);
  EXPECT_TRUE(supported);
}

TEST(ModelTypeFromWord, ComparesCaseAndLeavesSupportWithoutMatch) {
  for (const char* word :
       {"input", "", "Inputs", "open_sink", "OPEN_SINK", "I/O_Open_sink", "Unknown", "i/o"}) {
    for (const bool before : {false, true}) {
      bool supported = before;
      EXPECT_EQ(idOf(modelTypeFromWord(word, supported)), 0) << word;
      EXPECT_EQ(supported, before) << word;
    }
  }
}

}  // namespace
}  // namespace ibis::testing
