#include "ibis/ibis_string.h"

#include "harness/harness.h"

namespace ibis::testing {
namespace {

TEST(FoldReservedName, RaisesTheFourWordsInAnyCase) {
  for (const char* word : {"NC", "Nc", "nC", "nc"}) EXPECT_EQ(foldReservedName(word), "NC");
  for (const char* word : {"NA", "Na", "nA", "na"}) EXPECT_EQ(foldReservedName(word), "NA");
  for (const char* word : {"GND", "Gnd", "gND", "gnd"}) EXPECT_EQ(foldReservedName(word), "GND");
  for (const char* word : {"POWER", "Power", "pOwEr", "power"}) {
    EXPECT_EQ(foldReservedName(word), "POWER");
  }
}

TEST(FoldReservedName, LeavesAnyOtherTextAsItIs) {
  for (const char* text : {"", "n", "N", "nd", "nb", "nac", "ncc", "gn", "gnd ", " gnd", "gnd_1",
                           "gnds", "vgnd", "powe", "powers", "power1", "vcc", "g\xEEnd"}) {
    EXPECT_EQ(foldReservedName(text), text);
  }
}

TEST(FoldReservedName, TakesANulForACharacter) {
  EXPECT_EQ(foldReservedName(std::string_view("nc\0", 3)), std::string_view("nc\0", 3));
}

TEST(FoldReservedName, GivesAnyOtherTextWithoutACopy) {
  const std::string_view text = "signal";
  EXPECT_EQ(foldReservedName(text).data(), text.data());
}

TEST(FoldReservedName, GivesAWordThatOutlivesTheText) {
  std::string text = "gnd";
  const std::string_view folded = foldReservedName(text);
  text = "xxx";
  EXPECT_EQ(folded, "GND");
}

TEST(IBISString, IsEmptyAtFirst) {
  EXPECT_TRUE(IBISString().empty());
  EXPECT_EQ(IBISString().view(), "");
  EXPECT_FALSE(IBISString("a").empty());
}

TEST(IBISString, FoldsWhateverItIsBuiltFrom) {
  EXPECT_EQ(IBISString("nc").view(), "NC");
  EXPECT_EQ(IBISString(std::string_view("powerful", 5)).view(), "POWER");
  const std::string text = "Gnd";
  EXPECT_EQ(IBISString(text).view(), "GND");
  IBISString assigned;
  assigned = std::string_view("na");
  EXPECT_EQ(assigned.str(), "NA");
}

TEST(IBISString, ComparesByteForByte) {
  EXPECT_TRUE(IBISString("gnd") == IBISString("GND"));
  EXPECT_TRUE(IBISString("gnd") == "GND");
  EXPECT_FALSE(IBISString("gnd") == "gnd");
  EXPECT_FALSE(IBISString("a") == IBISString("A"));
  EXPECT_TRUE(IBISString("a") == std::string_view("ab", 1));
  EXPECT_FALSE(IBISString("a") == "ab");
}

TEST(IBISString, IsNotFoldedAgainWhenTextsAreJoined) {
  EXPECT_EQ(IBISString("g").str() + IBISString("nd").str(), "gnd");
}

TEST(StringPool, KeepsACopyThatNoLaterOneMoves) {
  StringPool pool;
  std::string text = "0";
  std::vector<std::string_view> kept;
  for (int i = 0; i < 10'000; ++i) {
    text = std::to_string(i);
    kept.push_back(pool.store(text));
  }
  for (int i = 0; i < 10'000; ++i) {
    ASSERT_EQ(kept[static_cast<std::size_t>(i)], std::to_string(i));
  }
}

TEST(StringPool, KeepsTextsOfAnyLengthAndContent) {
  StringPool pool;
  const std::string_view empty = pool.store("");
  const std::string_view nul = pool.store(std::string_view("a\0b", 3));
  const std::string_view big = pool.store(std::string(1'000'000, 'x'));
  const std::string_view small = pool.store("gnd");
  EXPECT_EQ(empty, "");
  EXPECT_EQ(nul, std::string_view("a\0b", 3));
  EXPECT_EQ(big, std::string(1'000'000, 'x'));
  EXPECT_EQ(small, "gnd");
}

TEST(StringPool, GivesEachCallACopyOfItsOwn) {
  StringPool pool;
  EXPECT_NE(pool.store("same").data(), pool.store("same").data());
}

TEST(StringPool, KeepsItsTextsWhenItMoves) {
  StringPool first;
  const std::string_view text = first.store("kept");
  StringPool second = std::move(first);
  EXPECT_EQ(second.store("more"), "more");
  EXPECT_EQ(text, "kept");
}

TEST(EqualIgnoringCase, FoldsAsciiLettersAlone) {
  EXPECT_TRUE(equalIgnoringCase("", ""));
  EXPECT_TRUE(equalIgnoringCase("azAZ09_", "AZaz09_"));
  EXPECT_FALSE(equalIgnoringCase("a", "ab"));
  EXPECT_FALSE(equalIgnoringCase("a", "b"));
  EXPECT_FALSE(equalIgnoringCase("@", "`"));
  EXPECT_FALSE(equalIgnoringCase("[", "{"));
  EXPECT_FALSE(equalIgnoringCase("\xE9", "\xC9"));
}

TEST(UpperCase, RaisesAsciiLettersAlone) {
  EXPECT_EQ(upperCase('a'), 'A');
  EXPECT_EQ(upperCase('z'), 'Z');
  EXPECT_EQ(upperCase('A'), 'A');
  EXPECT_EQ(upperCase('`'), '`');
  EXPECT_EQ(upperCase('{'), '{');
  EXPECT_EQ(upperCase('\xE9'), '\xE9');
}

}  // namespace
}  // namespace ibis::testing
