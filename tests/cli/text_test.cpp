#include <gtest/gtest.h>

#include <limits>

#include "printable.h"
#include "quantity.h"
#include "text_table.h"

namespace ibis::cli {
namespace {

TEST(Printable, ShowsControlCharactersAndBytesThatAreNotUtf8) {
  const struct {
    std::string text;
    std::string shown;
  } cases[] = {
      {"", ""},
      {"plain ~", "plain ~"},
      {"a\tb\nc\x1b[31m\x7f", R"(a\x09b\x0Ac\x1B[31m\x7F)"},
      {std::string("\0", 1), R"(\x00)"},
      {"gr\xc3\xb6\xc3\x9f"
       "e",
       "gr\xc3\xb6\xc3\x9f"
       "e"},
      {"\xe6\x97\xa5 \xf0\x9f\x98\x80", "\xe6\x97\xa5 \xf0\x9f\x98\x80"},
      {"\xa9 2007", R"(\xA9 2007)"},
      {"\xc2\x9b", R"(\xC2\x9B)"},
      {"\xc0\xaf\xed\xa0\x80\xf4\x90\x80\x80", R"(\xC0\xAF\xED\xA0\x80\xF4\x90\x80\x80)"},
      {"\xe2\x80\xae", R"(\xE2\x80\xAE)"},
      {"\xe6\x97", R"(\xE6\x97)"},
  };
  for (const auto& [text, shown] : cases) EXPECT_EQ(printable(text), shown);
}

TEST(Quantity, HasFourDigitsAndAPrefix) {
  const struct {
    double value;
    std::string text;
  } cases[] = {
      {0.0, "0 V"},      {-0.0, "0 V"},       {3.3, "3.3 V"},       {-0.0123456, "-12.35 mV"},
      {999.96, "1 kV"},  {999.94, "999.9 V"}, {4.5e-12, "4.5 pV"},  {1e-18, "0.001 fV"},
      {2e15, "2000 TV"}, {0.001, "1 mV"},     {1.0 / 0.0, "inf V"}, {-1.0 / 0.0, "-inf V"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(quantity(value, "V"), text);
  EXPECT_EQ(quantity(-std::numeric_limits<double>::quiet_NaN(), "V"), "nan V");
}

TEST(CornerTexts, ComeInTheOrderOfTheFile) {
  IBISTriple triple{.present = true, .typ = 1.0, .max = 3.0, .min = 2.0};
  EXPECT_EQ(cornerTexts(triple, "V"), (std::vector<std::string>{"1 V", "2 V", "3 V"}));
  triple.missing.set(corner::min);
  EXPECT_EQ(cornerTexts(triple, "V"), (std::vector<std::string>{"1 V", "-", "3 V"}));
}

TEST(TextTable, AlignsColumnsByCharacters) {
  TextTable table(2);
  EXPECT_TRUE(table.empty());
  table.add({"name", "n", "what"});
  table.add({"gr\xc3\xb6\xc3\x9f", "10", "x"});
  EXPECT_FALSE(table.empty());
  EXPECT_EQ(table.text(), "  name  n   what\n  gr\xc3\xb6\xc3\x9f  10  x\n");
}

TEST(TextTable, GoesOnInTheNextLineBehindACellThatIsTooWide) {
  TextTable table(2);
  table.add({"name", "pins"});
  table.add({"a_name_that_is_far_too_wide_for_it", "1"});
  table.add({"", "2"});
  EXPECT_EQ(table.text(),
            "  name  pins\n  a_name_that_is_far_too_wide_for_it\n        1\n        2\n");
}

TEST(TextTable, BreaksTheLastColumnBetweenWords) {
  TextTable table(0);
  std::string words;
  for (int i = 0; i < 20; ++i) words += "word ";
  table.add({"a", words});
  std::string first = "a  word";
  for (int i = 1; i < 15; ++i) first += " word";
  EXPECT_EQ(table.text(), first + "\n   word word word word word\n");
}

TEST(Wrapped, NeverBreaksAWord) {
  const std::string longWord(100, 'x');
  EXPECT_EQ(wrapped("a " + longWord + " b", 0, 2), "a\n  " + longWord + "\n  b");
}

}  // namespace
}  // namespace ibis::cli
