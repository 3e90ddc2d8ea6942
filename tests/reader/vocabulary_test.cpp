#include "reader/vocabulary.h"

#include <algorithm>
#include <cctype>
#include <string>
#include <tuple>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

using Version = std::tuple<int, std::string, bool>;
using Keyword = std::tuple<int, std::string, int>;
using SubParameter = std::tuple<int, std::string>;
using Type = std::tuple<int, std::string, bool>;

// id, text, whether such files are read
const std::vector<Version> versions = {
    {1, "1.0", true},   {2, "1.1", true},      {3, "2.0", true},   {4, "2.1", true},
    {5, "3.0", true},   {6, "3.1", true},      {7, "3.2", true},   {8, "4.0", true},
    {9, "4.1", true},   {10, "4.2", true},     {11, "5.0", false}, {12, "5.1", false},
    {13, "6.0", false}, {14, "6.1", false},    {15, "7.0", false}, {16, "7.1", false},
    {17, "7.2", false}, {0, "Unknown", false},
};

// id, name, flags
const std::vector<Keyword> keywords = {
    {2, "IBIS Ver", 1},
    {3, "Comment Char", 1},
    {4, "File Name", 1},
    {5, "File Rev", 1},
    {6, "Date", 1},
    {7, "Source", 1},
    {8, "Notes", 1},
    {9, "Disclaimer", 1},
    {10, "Copyright", 1},
    {11, "Component", 1},
    {12, "Manufacturer", 1},
    {13, "Package", 1},
    {14, "Pin", 1},
    {15, "Package Model", 3},
    {73, "Alternate Package Models", 8},
    {74, "End Alternate Package Models", 8},
    {16, "Pin Mapping", 3},
    {17, "Diff Pin", 3},
    {18, "Series Pin Mapping", 5},
    {19, "Series Switch Groups", 5},
    {90, "Node Declarations", 9},
    {91, "End Node Declarations", 9},
    {92, "Circuit Call", 9},
    {93, "End Circuit Call", 9},
    {20, "Model Selector", 5},
    {21, "Model", 1},
    {22, "Model Spec", 5},
    {75, "Receiver Thresholds", 8},
    {23, "Add Submodel", 7},
    {24, "Driver Schedule", 5},
    {25, "Temperature Range", 3},
    {26, "Voltage Range", 1},
    {27, "Pullup Reference", 3},
    {28, "Pulldown Reference", 3},
    {29, "POWER Clamp Reference", 3},
    {30, "GND Clamp Reference", 3},
    {72, "External Reference", 8},
    {31, "TTgnd", 5},
    {32, "TTpower", 5},
    {33, "Pulldown", 1},
    {34, "Pullup", 1},
    {35, "GND Clamp", 1},
    {36, "POWER Clamp", 1},
    {37, "Rgnd", 3},
    {38, "Rpower", 3},
    {39, "Rac", 3},
    {40, "Cac", 3},
    {41, "On", 5},
    {42, "Off", 5},
    {43, "R Series", 5},
    {44, "L Series", 5},
    {45, "R1 Series", 5},
    {46, "C_Series", 5},
    {47, "Lc Series", 5},
    {48, "Series Current", 5},
    {49, "Series MOSFET", 5},
    {50, "Ramp", 1},
    {51, "Rising Waveform", 3},
    {52, "Falling Waveform", 3},
    {76, "Test Data", 8},
    {77, "Rising Waveform Near", 8},
    {78, "Falling Waveform Near", 8},
    {79, "Rising Waveform Far", 8},
    {80, "Falling Waveform Far", 8},
    {81, "Diff Rising Waveform Near", 8},
    {82, "Diff Falling Waveform Near", 8},
    {83, "Diff Rising Waveform Far", 8},
    {84, "Diff Falling Waveform Far", 8},
    {85, "Test Load", 8},
    {88, "External Model", 9},
    {89, "End External Model", 9},
    {53, "Submodel", 7},
    {54, "Submodel Spec", 7},
    {56, "POWER_Pulse_Table", 7},
    {55, "GND Pulse Table", 7},
    {86, "External Circuit", 9},
    {87, "End External Circuit", 9},
    {57, "Define Package Model", 3},
    {58, "OEM", 3},
    {59, "Description", 3},
    {60, "Number Of Sections", 3},
    {61, "Number Of Pins", 3},
    {62, "Pin Numbers", 3},
    {63, "Model Data", 3},
    {65, "Resistance Matrix", 3},
    {66, "Inductance Matrix", 3},
    {67, "Capacitance Matrix", 3},
    {64, "End Model Data", 3},
    {68, "Row", 3},
    {69, "Bandwidth", 3},
    {70, "End Package Model", 3},
    {71, "End", 1},
};

// id, name
const std::vector<SubParameter> subParameters = {
    {0, "Model_type"},
    {1, "Polarity"},
    {2, "Enable"},
    {3, "Vinl"},
    {4, "Vinh"},
    {5, "C_comp"},
    {6, "C_comp_pullup"},
    {7, "C_comp_pulldown"},
    {8, "C_comp_power_clamp"},
    {9, "C_comp_gnd_clamp"},
    {10, "Rref_diff"},
    {11, "Cref_diff"},
    {12, "Vmeas"},
    {13, "Cref"},
    {14, "Rref"},
    {15, "Vref"},
    {16, "Vinh+"},
    {17, "Vinh-"},
    {18, "Vinl+"},
    {19, "Vinl-"},
    {20, "S_overshoot_high"},
    {21, "S_overshoot_low"},
    {22, "D_overshoot_high"},
    {23, "D_overshoot_low"},
    {24, "D_overshoot_time"},
    {25, "Pulse_high"},
    {26, "Pulse_low"},
    {27, "Pulse_time"},
    {36, "R_fixture"},
    {37, "V_fixture"},
    {38, "V_fixture_min"},
    {39, "V_fixture_max"},
    {40, "C_fixture"},
    {41, "L_fixture"},
    {42, "R_dut"},
    {43, "L_dut"},
    {44, "C_dut"},
};

// id, name, whether the simulator has a device for it
const std::vector<Type> modelTypes = {
    {1, "Input", true},
    {2, "Output", true},
    {3, "I/O", true},
    {4, "3-state", true},
    {5, "Open_source", true},
    {6, "I/O_open_source", true},
    {7, "Open_drain", true},
    {8, "I/O_open_drain", true},
    {13, "Terminator", true},
    {9, "Input_ECL", false},
    {10, "Output_ECL", false},
    {11, "I/O_ECL", false},
    {12, "3-state_ECL", false},
    {14, "Series", false},
    {15, "Series_switch", false},
    {16, "Input_diff", false},
    {17, "Output_diff", false},
    {18, "I/O_diff", false},
    {19, "3-state_diff", false},
    {20, "GND", true},
    {21, "POWER", true},
    {22, "NC", true},
    {0, "unknown", false},
};

constexpr int idOf(ModelType type) { return static_cast<int>(type); }

TEST(Vocabulary, HoldsTheVersionsInOrder) {
  std::vector<Version> rows;
  for (const VersionRow& row : versionTable()) rows.emplace_back(row.id, row.text, row.supported);
  EXPECT_EQ(rows, versions);
}

TEST(Vocabulary, HoldsTheKeywordsInOrder) {
  std::vector<Keyword> rows;
  for (const KeywordRow& row : keywordTable()) rows.emplace_back(row.id, row.name, row.flags);
  EXPECT_EQ(rows, keywords);
}

TEST(Vocabulary, HoldsTheSubParametersInOrder) {
  std::vector<SubParameter> rows;
  for (const SubParameterRow& row : subParameterTable()) rows.emplace_back(row.id, row.name);
  EXPECT_EQ(rows, subParameters);
}

TEST(Vocabulary, HoldsTheModelTypesInOrder) {
  std::vector<Type> rows;
  for (const ModelTypeRow& row : modelTypeTable()) {
    rows.emplace_back(idOf(row.id), row.name, row.supported);
  }
  EXPECT_EQ(rows, modelTypes);
}

TEST(Vocabulary, HasOneRowForEachKeywordId) {
  std::vector<int> ids;
  for (const auto& [id, name, flags] : keywords) ids.push_back(id);
  std::ranges::sort(ids);
  std::vector<int> expected;
  for (int id = 2; id <= 93; ++id) expected.push_back(id);
  EXPECT_EQ(ids, expected);
}

TEST(KeywordName, IsThatOfTheRow) {
  for (const auto& [id, name, flags] : keywords) EXPECT_EQ(keywordName(id), name) << id;
}

TEST(KeywordName, OfThreeIsCommentChar) { EXPECT_EQ(keywordName(3), "Comment Char"); }

TEST(KeywordName, IsEmptyForAnIdWithoutRow) {
  for (const int id : {-1, 0, 1, 94, 1000}) EXPECT_EQ(keywordName(id), "") << id;
}

TEST(KeywordId, IsFoundByTheNameInAnyCase) {
  for (const auto& [id, name, flags] : keywords) {
    std::string lower = name;
    for (char& c : lower) c = static_cast<char>(std::tolower(c));
    EXPECT_EQ(keywordId(name), id) << name;
    EXPECT_EQ(keywordId(lower), id) << lower;
  }
}

TEST(KeywordId, IsNoneForAnyOtherName) {
  for (const char* name : {"", "Pins", "Pi", " Pin", "Pin ", "Pin  Mapping", "PinMapping",
                           "C Series", "POWER Pulse Table", "End Component"}) {
    EXPECT_EQ(keywordId(name), keyword::none) << name;
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

TEST(VersionText, IsThatOfTheRow) {
  for (const auto& [id, text, supported] : versions) EXPECT_EQ(versionText(id), text) << id;
}

TEST(VersionText, OfZeroIsUnknown) { EXPECT_EQ(versionText(0), "Unknown"); }

TEST(VersionText, IsInvalidWithoutRow) {
  for (const int id : {-1, 18, 100}) EXPECT_EQ(versionText(id), "invalid") << id;
}

TEST(FindVersion, ComparesExactly) {
  for (const auto& [id, text, supported] : versions) {
    const VersionRow* row = findVersion(text);
    ASSERT_NE(row, nullptr) << text;
    EXPECT_EQ(Version(row->id, row->text, row->supported), Version(id, text, supported));
  }
  for (const char* text : {"", "4", "4.", "4.20", " 4.2", "4.2 ", "4.3", "unknown", "invalid"}) {
    EXPECT_EQ(findVersion(text), nullptr) << text;
  }
}

TEST(SubParameterId, IsThatOfTheWord) {
  for (const auto& [id, name] : subParameters) EXPECT_EQ(subParameterId(name), id) << name;
}

TEST(SubParameterId, Is45ForAWordInAnotherCase) { EXPECT_EQ(subParameterId("c_comp"), 45); }

TEST(SubParameterId, Is45ForAnyOtherWord) {
  for (const char* word : {"", "C_com", "C_comp_", "C_comp ", "Vinh +", "VINL", "model_type"}) {
    EXPECT_EQ(subParameterId(word), 45) << word;
  }
}

TEST(ModelTypeFromWord, GivesTypeAndSupport) {
  for (const auto& [id, name, isSupported] : modelTypes) {
    bool supported = !isSupported;
    EXPECT_EQ(idOf(modelTypeFromWord(name, supported)), id) << name;
    EXPECT_EQ(supported, isSupported) << name;
  }
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

TEST(ModelTypeRows, AreFoundById) {
  for (const auto& [id, name, supported] : modelTypes) {
    const ModelTypeRow& row = modelTypeRow(static_cast<ModelType>(id));
    EXPECT_EQ(Type(idOf(row.id), row.name, row.supported), Type(id, name, supported));
  }
}

}  // namespace
}  // namespace ibis::testing
