#include "component/names/name_table.h"

#include <algorithm>
#include <list>
#include <random>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

/// Registers the names in turn and gives their SPICE names.
Texts spiceNames(const Texts& names) {
  IBISNameTable table;
  for (const std::string& name : names) table.registerName(name);
  Texts result;
  for (const std::string& name : names) result.push_back(table.spiceName(name).str());
  return result;
}

/// What makeUniqueName gives for the names in turn.
Texts uniqueNames(const Texts& names) {
  IBISNameTable table;
  Texts result;
  for (const std::string& name : names) result.push_back(table.makeUniqueName(name).str());
  return result;
}

TEST(RegisterName, LeavesAFreeNameOfLegalCharactersAsItIs) {
  const Texts names = {"VCC",  "net_1", "9",   "1A",   "[A]",  "a&b",
                       "#!$%", "A,B",   "(x)", "\xE9", "\"q\""};
  EXPECT_EQ(spiceNames(names), names);
}

TEST(RegisterName, ReplacesEachCharacterThatSpiceCannotTake) {
  for (const char c : std::string_view("*/-+.:<>|\\;{} \t")) {
    EXPECT_EQ(spiceNames({std::string("A") + c + "B"}), Texts{"A_B"}) << c;
  }
  EXPECT_EQ(spiceNames({"-A..B+"}), Texts{"_A__B_"});
}

TEST(RegisterName, NumbersNamesThatBecomeAlike) {
  EXPECT_EQ(spiceNames({"A.B", "A-B", "A/B"}), (Texts{"A_B", "A_B_1", "A_B_2"}));
}

TEST(RegisterName, NumbersNamesThatDifferInCaseOnly) {
  EXPECT_EQ(spiceNames({"net", "NET", "Net"}), (Texts{"net", "NET_1", "Net_2"}));
}

TEST(RegisterName, GivesARegisteredNameNoNewEntry) {
  EXPECT_EQ(spiceNames({"A.B", "A.B", "A-B", "A.B"}), (Texts{"A_B", "A_B", "A_B_1", "A_B"}));
}

TEST(RegisterName, StartsToCountAtOneForEachName) {
  EXPECT_EQ(spiceNames({"A", "a", "B", "b"}), (Texts{"A", "a_1", "B", "b_1"}));
}

TEST(RegisterName, PassesOverNumberedNamesInUse) {
  EXPECT_EQ(spiceNames({"A_1", "A", "a", "A_2", "a_2", "A-3", "A.3"}),
            (Texts{"A_1", "A", "a_2", "A_2_1", "a_2_2", "A_3", "A_3_1"}));
}

TEST(RegisterName, DependsOnlyOnWhatTheTableHolds) {
  IBISNameTable table;
  for (const char* name : {"A", "a", "A.", "a_5"}) table.registerName(name);
  for (const char* name : {"A_3", "A-", "a."}) table.registerName(name);
  EXPECT_EQ(table.spiceName("a"), "a_1");
  EXPECT_EQ(table.spiceName("A."), "A_");
  EXPECT_EQ(table.spiceName("A_3"), "A_3");
  EXPECT_EQ(table.spiceName("A-"), "A__1");
  EXPECT_EQ(table.spiceName("a."), "a__2");
}

TEST(RegisterName, FoldsAReservedWord) {
  IBISNameTable table;
  for (const char* name : {"gnd", "power", "Nc", "nA"}) table.registerName(IBISString(name));
  EXPECT_EQ(table.spiceName(IBISString("gnd")), "GND");
  EXPECT_EQ(table.spiceName(IBISString("Power")), "POWER");
  EXPECT_EQ(table.spiceName(IBISString("nc")), "NC");
  EXPECT_EQ(table.spiceName(IBISString("na")), "NA");
}

TEST(RegisterName, NumbersAFoldedWord) {
  EXPECT_EQ(spiceNames({"GND", "gnd"}), (Texts{"GND", "GND_1"}));
}

TEST(RegisterName, TakesAnEmptyName) { EXPECT_EQ(spiceNames({"", "."}), (Texts{"", "_"})); }

TEST(SpiceName, IsEmptyForAnUnknownName) {
  IBISNameTable table;
  EXPECT_EQ(table.spiceName("A"), "");
  table.registerName("A.B");
  EXPECT_EQ(table.spiceName("a.b"), "");
  EXPECT_EQ(table.spiceName("A_B"), "");
}

TEST(SpiceName, StaysWhereItIsWhileTheTableGrows) {
  IBISNameTable table;
  table.registerName("first.name");
  const std::string_view first = table.spiceName("first.name");
  std::list<std::string> names;
  for (int i = 0; i < 10'000; ++i) {
    table.registerName(names.emplace_back("n." + std::to_string(i)));
  }
  EXPECT_EQ(table.spiceName("first.name").view().data(), first.data());
  EXPECT_EQ(first, "first_name");
}

TEST(ForgetNames, StartsAnewAndKeepsTheTexts) {
  IBISNameTable table;
  table.registerName("A.B");
  const std::string_view spice = table.spiceName("A.B");
  const std::string_view unique = table.makeUniqueName("A.B");
  table.forgetNames();
  EXPECT_EQ(spice, "A_B");
  EXPECT_EQ(unique, "A.B_1");
  EXPECT_EQ(table.spiceName("A.B"), "");
  EXPECT_EQ(table.makeUniqueName("A.B"), "A.B");
  EXPECT_EQ(table.spiceName("A.B"), "A_B");
}

TEST(MakeUniqueName, GivesTheNameThenNumberedOnes) {
  EXPECT_EQ(uniqueNames({"S", "S", "S", "T", "S"}), (Texts{"S", "S_1", "S_2", "T", "S_3"}));
}

TEST(MakeUniqueName, PassesOverNamesThatStandAlready) {
  EXPECT_EQ(uniqueNames({"S_1", "S", "S"}), (Texts{"S_1", "S", "S_2"}));
  EXPECT_EQ(uniqueNames({"S", "S_2", "S", "S", "S_1"}), (Texts{"S", "S_2", "S_1", "S_3", "S_1_1"}));
}

TEST(MakeUniqueName, SeesNamesThatWereRegisteredMeanwhile) {
  IBISNameTable table;
  EXPECT_EQ(table.makeUniqueName("S"), "S");
  EXPECT_EQ(table.makeUniqueName("S"), "S_1");
  table.registerName("S_2");
  EXPECT_EQ(table.makeUniqueName("S"), "S_3");
}

TEST(MakeUniqueName, TellsKeysApartByCaseButNotTheirSpiceNames) {
  IBISNameTable table;
  EXPECT_EQ(table.makeUniqueName("clk"), "clk");
  EXPECT_EQ(table.makeUniqueName("CLK"), "CLK");
  EXPECT_EQ(table.makeUniqueName("CLK"), "CLK_1");
  EXPECT_EQ(table.spiceName("clk"), "clk");
  EXPECT_EQ(table.spiceName("CLK"), "CLK_1");
  EXPECT_EQ(table.spiceName("CLK_1"), "CLK_1_1");
}

TEST(MakeUniqueName, GivesASecondEmptyNameAnUnderscoreAndANumber) {
  IBISNameTable table;
  EXPECT_EQ(table.makeUniqueName(""), "");
  EXPECT_EQ(table.makeUniqueName(""), "_1");
  EXPECT_EQ(table.spiceName(""), "");
  EXPECT_EQ(table.spiceName("_1"), "_1");
}

TEST(NameTable, SharesTheBuiltInEntryWithAComponentNamedGnd) {
  Parsed parsed("[Component] Gnd\n[Component] gnd.\n[Component] power\n");
  EXPECT_EQ(parsed.component(0).spiceName, "GND");
  EXPECT_EQ(parsed.component(1).spiceName, "gnd_");
  EXPECT_EQ(parsed.component(2).spiceName, "POWER");
}

TEST(NameTable, GivesContestedNamesToComponentsAndModelsInFileOrder) {
  Parsed parsed("[Component] buf-1\n[Model] BUF.1\nModel_type Input\n[Component] buf+1\n");
  EXPECT_EQ(parsed.component(0).spiceName, "buf_1");
  EXPECT_EQ(parsed.model().spiceName, "BUF_1_1");
  EXPECT_EQ(parsed.component(1).spiceName, "buf_1_2");
}

TEST(NameTable, FoldsSignalsOfPins) {
  Parsed parsed("[Component] U\n[Pin]\n1 gnd NC\n2 Gnd NC\n3 gnd_1 NC\n");
  const std::vector<IBISPin>& pins = parsed.component().pins;
  EXPECT_EQ(pins[0].signal_name, "GND");
  EXPECT_EQ(pins[0].spiceName, "GND");
  EXPECT_EQ(pins[1].signal_name, "GND_1");
  EXPECT_EQ(pins[1].spiceName, "GND_1");
  EXPECT_EQ(pins[2].signal_name, "gnd_1");
  EXPECT_EQ(pins[2].spiceName, "gnd_1_1");
}

/// The rules of a name table in their plainest form.
class PlainTable {
 public:
  void registerName(const std::string& name) {
    if (find(name) != nullptr) return;
    std::string base = name;
    for (char& c : base) {
      if (std::string_view("*/-+.:<>|\\;{} \t").find(c) != std::string_view::npos) c = '_';
    }
    std::string candidate = base;
    for (int i = 1; isTaken(candidate); ++i) candidate = base + "_" + std::to_string(i);
    entries_.push_back({name, candidate});
  }

  std::string makeUniqueName(const std::string& name) {
    std::string candidate = name;
    for (int i = 1; find(candidate) != nullptr; ++i) candidate = name + "_" + std::to_string(i);
    registerName(candidate);
    return candidate;
  }

  const std::string* find(std::string_view name) const {
    const auto entry = std::find_if(entries_.begin(), entries_.end(),
                                    [&](const auto& item) { return item.first == name; });
    return entry == entries_.end() ? nullptr : &entry->second;
  }

 private:
  bool isTaken(const std::string& spiceName) const {
    return std::any_of(entries_.begin(), entries_.end(), [&](const auto& item) {
      return strcasecmp(item.second.c_str(), spiceName.c_str()) == 0;
    });
  }

  std::vector<std::pair<std::string, std::string>> entries_;
};

TEST(NameTable, AgreesWithThePlainRulesOnManyNames) {
  std::mt19937 random(20'240'229);
  for (int round = 0; round < 20; ++round) {
    std::list<std::string> names;
    IBISNameTable table;
    PlainTable plain;
    for (int i = 0; i < 300; ++i) {
      std::string& name = names.emplace_back();
      for (auto length = random() % 5; length > 0; --length) name += "aA_.-12"[random() % 7];
      if (random() % 2 == 0) {
        table.registerName(name);
        plain.registerName(name);
      } else {
        const std::string unique = plain.makeUniqueName(name);
        ASSERT_EQ(table.makeUniqueName(name), unique);
        name = unique;
      }
      ASSERT_EQ(table.spiceName(name), *plain.find(name)) << name;
    }
  }
}

// Both would take minutes if every name tried all numbers before its own.
TEST(NameTable, Numbers100000EqualNamesAtOnce) {
  IBISNameTable table;
  Texts keys;
  for (int i = 0; i < 100'000; ++i) keys.push_back(table.makeUniqueName("S.").str());
  for (const int i : {1, 2, 9, 10, 999, 50'000, 99'999}) {
    const std::string number = std::to_string(i);
    EXPECT_EQ(keys[static_cast<std::size_t>(i)], "S._" + number);
    EXPECT_EQ(table.spiceName("S._" + number), "S__" + number);
  }
  EXPECT_EQ(keys[0], "S.");
  EXPECT_EQ(table.spiceName("S."), "S_");
}

TEST(NameTable, Numbers100000NamesThatDifferInCaseOnlyAtOnce) {
  const auto name = [](unsigned bits) {
    std::string text;
    for (unsigned i = 0; i < 17; ++i) text += (bits >> i & 1U) != 0 ? 'N' : 'n';
    return text;
  };
  IBISNameTable table;
  std::list<std::string> names;
  for (unsigned i = 0; i < 100'000; ++i) table.registerName(names.emplace_back(name(i)));
  for (const unsigned i : {1U, 2U, 9U, 10U, 999U, 50'000U, 99'999U}) {
    EXPECT_EQ(table.spiceName(name(i)), name(i) + "_" + std::to_string(i));
  }
  EXPECT_EQ(table.spiceName(name(0)), name(0));
}

}  // namespace
}  // namespace ibis::testing
