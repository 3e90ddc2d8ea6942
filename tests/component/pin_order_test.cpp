#include "component/pin_resolution.h"
#include "harness/harness.h"

namespace ibis::testing {
namespace {

/// Entries of single pins and pairs ("1+2") of one component, as its preparation leaves them.
struct Sorted {
  Sorted(const Texts& names, const Texts& pairs) {
    for (const std::string& name : names) addPin(name);
    for (const std::string& pair : pairs) addPair(pair);
    prepareComponent(component, ModelFinder(file.data()), PinFilter(), told);
  }

  void addPin(const std::string& name) {
    IBISPin pin;
    pin.name = file.data().strings.store(name);
    pin.signal_name = signals.makeUniqueName("S");
    pin.model_name = "NC";
    component.pins.push_back(pin);
  }

  void addPair(const std::string& pair) {
    const std::string_view text = file.data().strings.store(pair);
    const std::size_t plus = text.find('+');
    addPinOnce(pair.substr(0, plus));
    addPinOnce(pair.substr(plus + 1));
    component.diffPins.push_back({.pin = text.substr(0, plus), .inv_pin = text.substr(plus + 1)});
  }

  void addPinOnce(const std::string& name) {
    for (const IBISPin& pin : component.pins) {
      if (pin.name == name) return;
    }
    addPin(name);
  }

  Texts entries() const {
    Texts texts;
    for (const IBISPinEntry& entry : component.pinEntries) {
      texts.push_back(entry.pin->name.str());
      if (entry.isPair()) texts.back() += "+" + entry.invertedPin->name.str();
    }
    return texts;
  }

  IBISFile file;
  IBISNameTable signals;
  IBISComponent component;
  Recorder told;
};

Texts sorted(const Texts& names, const Texts& pairs = {}) { return Sorted(names, pairs).entries(); }

TEST(NaturalLess, ComparesDigitsByValueAndTheRestByBytes) {
  const struct {
    std::string_view a, b;
    bool less, greater;
  } rows[] = {
      {"1", "2", true, false},       {"9", "10", true, false},   {"007", "8", true, false},
      {"7", "007", false, false},    {"", "0", false, false},    {"", "", false, false},
      {"", "1", true, false},        {"", "A", true, false},     {"A1", "A10", true, false},
      {"A10", "A2", true, false},    {"A10", "A9", true, false}, {"10", "A", true, false},
      {"9", "1A", false, true},      {"10", "1A", true, false},  {"A", "a", true, false},
      {"A", "AB", true, false},      {"A", "A", false, false},   {"-1", "5", true, false},
      {"5", "+1", false, true},      {"1.5", "10", true, false}, {"z", "\xE9", true, false},
      {"\x7F", "\x80", true, false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(naturalLess(row.a, row.b), row.less) << row.a << " < " << row.b;
    EXPECT_EQ(naturalLess(row.b, row.a), row.greater) << row.b << " < " << row.a;
  }
}

TEST(NaturalLess, ReadsOverlongDigitsAsAtoiDoes) {
  EXPECT_TRUE(naturalLess("4294967297", "2"));            // wraps to 1
  EXPECT_TRUE(naturalLess("2147483648", "0"));            // wraps to the least integer
  EXPECT_TRUE(naturalLess("99999999999999999999", "0"));  // -1
}

TEST(EntryOrder, PutsDigitNamesInOrderOfTheirValue) {
  EXPECT_EQ(sorted({"10", "2", "1"}), (Texts{"1", "2", "10"}));
}

TEST(EntryOrder, PutsOtherNamesInOrderOfTheirBytes) {
  EXPECT_EQ(sorted({"A2", "A10", "A1", "a1", "B"}), (Texts{"A1", "A10", "A2", "B", "a1"}));
}

TEST(EntryOrder, SortsPairsByTheirPinAndThenByTheInvertingOne) {
  EXPECT_EQ(sorted({}, {"10+3", "2+4", "2+10", "2+9", "1+20"}),
            (Texts{"1+20", "2+4", "2+9", "2+10", "10+3"}));
}

TEST(EntryOrder, PutsPairsAheadOfSinglesEachSortedAmongThemselves) {
  EXPECT_EQ(sorted({"9", "5", "1"}, {"8+7", "3+4"}), (Texts{"3+4", "8+7", "1", "5", "9"}));
  EXPECT_EQ(sorted({"5"}, {"9+8", "7+6", "3+4"}), (Texts{"3+4", "7+6", "9+8", "5"}));
  EXPECT_EQ(sorted({"9", "5", "3", "2", "1"}, {"7+8"}), (Texts{"7+8", "1", "2", "3", "5", "9"}));
}

TEST(EntryOrder, KeepsTheOrderOfNamesThatAreNeitherLessNorEqual) {
  EXPECT_EQ(sorted({"1", "007", "7", "07"}), (Texts{"1", "007", "7", "07"}));
}

// No name counts as 0, and none of the three is less than another.
TEST(EntryOrder, KeepsTheOrderOfNoNameAndTheNamesOfZeroInEveryPermutation) {
  Texts names = {"", "0", "00", "1", "2"};
  int permutations = 0;
  do {
    Texts expected = names;
    std::erase_if(expected, [](const std::string& name) { return name == "1" || name == "2"; });
    expected.insert(expected.end(), {"1", "2"});
    EXPECT_EQ(sorted(names), expected);
    ++permutations;
  } while (std::ranges::next_permutation(names).found);
  EXPECT_EQ(permutations, 120);
}

// 9 < 10 by value, 10 < 1A and 1A < 9 by bytes: only the way of merging decides.
TEST(EntryOrder, IsThatOfTheMergeWhereTheComparisonGoesInACircle) {
  EXPECT_EQ(sorted({"9", "10", "1A"}), (Texts{"9", "10", "1A"}));
  EXPECT_EQ(sorted({"9", "1A", "10"}), (Texts{"9", "10", "1A"}));
  EXPECT_EQ(sorted({"10", "9", "1A"}), (Texts{"10", "1A", "9"}));
  EXPECT_EQ(sorted({"10", "1A", "9"}), (Texts{"10", "1A", "9"}));
  EXPECT_EQ(sorted({"1A", "9", "10"}), (Texts{"1A", "9", "10"}));
  EXPECT_EQ(sorted({"1A", "10", "9"}), (Texts{"1A", "9", "10"}));
}

// Halves of two and three names; three and two would give 10 1A 1B 2 9.
TEST(EntryOrder, SplitsAnOddListBehindItsSmallerHalf) {
  EXPECT_EQ(sorted({"9", "2", "1B", "10", "1A"}), (Texts{"2", "9", "10", "1A", "1B"}));
}

TEST(PostParse, PreparesTheNamedComponentAlone) {
  Parsed parsed(
      "[Component] U1\n[Pin]\n1 S1 X\n[Component] U2\n[Pin]\n1 S1 GND\n2 S2 NC\n"
      "[Component] U2\n[Pin]\n1 S1 X\n");
  parsed.resolve("U2", {"2"});
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_EQ(parsed.component(0).pinEntries.size(), 0U);
  EXPECT_EQ(parsed.component(1).pinEntries.size(), 1U);
  ASSERT_EQ(parsed.component(1).models.size(), 1U);
  EXPECT_EQ(parsed.component(1).models[0]->name, "NC");
  EXPECT_EQ(parsed.component(2).pinEntries.size(), 0U);
}

TEST(PostParse, PreparesEveryComponentForAnEmptyName) {
  Parsed parsed(
      "[Component] U1\n[Pin]\n1 S1 X\n[Component] U2\n[Pin]\n1 S1 GND\n"
      "[Component] U3\n[Pin]\n5 S1 Y\n");
  parsed.resolve();
  EXPECT_MESSAGES(parsed.errors(), "Line 3: Model referenced by pin '1' has not been defined",
                  "Line 9: Model referenced by pin '5' has not been defined");
  EXPECT_EQ(parsed.component(1).pinEntries.size(), 1U);
}

constexpr const char* untypedModels =
    "[Component] U1\n[Pin]\n1 S1 X\n2 S2 Y\n[Component] U2\n[Pin]\n1 S1 Z\n"
    "[Model] X\nVinl 1\n[Model] Y\nVinl 1\n[Model] Z\nVinl 1\n";

TEST(PostParse, ChecksTheModelsOfWantedPinsAloneForANamedComponent) {
  Parsed parsed(untypedModels);
  parsed.resolve("U1", {"2"});
  EXPECT_MESSAGES(parsed.errors(), "Line 10: Model 'Y' type is unknown");
}

TEST(PostParse, ChecksEveryModelForAnEmptyName) {
  Parsed parsed(untypedModels);
  parsed.resolve("", {"2"});
  EXPECT_MESSAGES(parsed.errors(), "Line 8: Model 'X' type is unknown",
                  "Line 10: Model 'Y' type is unknown", "Line 12: Model 'Z' type is unknown");
}

TEST(PostParse, PreparesNothingInSilenceForANameThatNoComponentBears) {
  Parsed parsed("[Component] U1\n[Pin]\n1 S1 X\n2 S2 GND\n");
  parsed.resolve("u1");
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_EQ(parsed.component().pinEntries.size(), 0U);
  EXPECT_EQ(parsed.component().pins[1].model, nullptr);
}

TEST(PostParse, ChecksTheSelectionsAheadOfThePins) {
  Parsed parsed("[Component] U1\n[Pin]\n1 S1 X\n");
  parsed.file.addUserModelSelector("fast");
  parsed.resolve();
  EXPECT_MESSAGES(parsed.errors(), "Model selector 'fast' not found in IBIS file",
                  "Line 3: Model referenced by pin '1' has not been defined");
}

}  // namespace
}  // namespace ibis::testing
