#include "checks/check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "checks/case_file.h"
#include "checks/findings.h"
#include "checks/number_word.h"
#include "checks/rules.h"
#include "checks/syntax/syntax.h"

namespace ibis::testing {
namespace {

using checks::NumberFault;
using ::testing::ElementsAre;

std::string example(const std::string& name) {
  return readText(std::string(IBIS_SOURCE_DIR) + "/examples/" + name);
}

std::vector<std::string> wordsOf(const checks::Syntax& syntax, std::size_t line) {
  std::vector<std::string> words;
  for (const checks::Word& word : syntax.words(syntax.lines()[line])) {
    words.push_back(std::string(word.text) + "@" + std::to_string(word.column));
  }
  return words;
}

TEST(Check, TellsNoErrorAndNoWarningOfTheSoundExamples) {
  for (const std::string name :
       {"push_pull_buffer.ibs", "differential_link.ibs", "package_60.ibs"}) {
    EXPECT_EQ(render(checks::check(example(name), {.fileName = name}), {}), "") << name;
  }
}

TEST(Check, TellsNotEvenANoteOfTheSoundBuffer) {
  for (const Diagnostic& each : checks::check(example("push_pull_buffer.ibs"))) {
    ADD_FAILURE() << each.id << ": " << each.text;
  }
}

TEST(Check, TakesAnEmptyText) {
  const auto findings = checks::check("");
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings[0].id, "syntax-not-ibis");
}

// Each word of the sound buffer that begins as a number does, and its length.
std::vector<std::pair<std::size_t, std::size_t>> numbersOf(const std::string& text) {
  std::vector<std::pair<std::size_t, std::size_t>> numbers;
  std::size_t end = 0;
  for (;;) {
    const std::size_t begin = text.find_first_not_of(" \t\n", end);
    if (begin == text.npos) return numbers;
    end = std::min(text.find_first_of(" \t\n", begin), text.size());
    if (std::string_view("-.0123456789").find(text[begin]) == std::string_view::npos) continue;
    numbers.emplace_back(begin, end - begin);
  }
}

// What is told matters less than that the check ends.
TEST(Check, TakesNumbersThatAreNotFiniteInEachPlace) {
  const std::string sound = example("push_pull_buffer.ibs");
  const auto numbers = numbersOf(sound);
  EXPECT_GT(numbers.size(), 500U);
  std::size_t silent = 0;
  for (const auto& [place, length] : numbers) {
    for (const std::string other : {"nan", "1e400"}) {
      std::string text = sound;
      if (checks::check(text.replace(place, length, other)).empty()) ++silent;
    }
  }
  EXPECT_LT(silent, numbers.size() / 2);
}

TEST(Syntax, KeepsWordsWithTheirColumns) {
  const checks::Syntax syntax("[Model] x | comment\nVmeas=1.5V  | two\n\tC_comp 1p\n");
  ASSERT_EQ(syntax.lines().size(), 3U);
  EXPECT_THAT(wordsOf(syntax, 0), ElementsAre("x@9"));
  EXPECT_THAT(wordsOf(syntax, 1), ElementsAre("Vmeas@1", "1.5V@7"));
  EXPECT_THAT(wordsOf(syntax, 2), ElementsAre("C_comp@2", "1p@9"));
  EXPECT_EQ(syntax.lines()[2].number, 3);
}

TEST(Syntax, ObeysTheCommentChar) {
  const checks::Syntax syntax("[Comment Char] #_char\n[Model] x # no\nVinl 1 | 2\n");
  EXPECT_EQ(syntax.blocks()[1].argument, "x");
  EXPECT_THAT(wordsOf(syntax, 2), ElementsAre("Vinl@1", "1@6", "|@8", "2@10"));
}

TEST(Syntax, KnowsWhatStandsBehindTheEnd) {
  const checks::Syntax syntax("[Model] a\n[End]\n[Model] b\n");
  ASSERT_EQ(syntax.sections().size(), 4U);
  EXPECT_FALSE(syntax.sections()[1].isAfterEnd);
  EXPECT_TRUE(syntax.sections()[3].isAfterEnd);
}

TEST(Syntax, TakesAMisspelledKeywordForItsOwn) {
  const checks::Syntax syntax("[Model] x\n[Pulldwon]\n0 0 0 0\n");
  EXPECT_TRUE(syntax.blocks()[1].isMisspelled);
  EXPECT_EQ(syntax.blocks()[1].keyword->name, "Pulldown");
}

TEST(Syntax, LeavesTheKeywordsOfOtherLanguagesAlone) {
  const checks::Syntax syntax(
      "[Model] x\n[External Model]\n[Foo] 1\n[End External Model]\n[Ramp]\n");
  ASSERT_EQ(syntax.blocks().size(), 3U);
  EXPECT_EQ(syntax.blocks()[2].keyword->name, "Ramp");
}

struct NumberRow {
  std::string_view word;
  NumberFault fault;
  double value;
};

TEST(NumberWord, TellsWhatIsOdd) {
  constexpr NumberRow rows[] = {
      {"4.5pF", NumberFault::none, 4.5e-12},
      {"-3", NumberFault::none, -3},
      {".5", NumberFault::none, 0.5},
      {"0.", NumberFault::none, 0},
      {"5A", NumberFault::none, 5},
      {"1e-3V", NumberFault::none, 1e-3},
      {"4,5pF", NumberFault::decimalComma, 4},
      {"7Kohms", NumberFault::suffixCase, 7},
      {"5PF", NumberFault::suffixCase, 5},
      {"0.8Vc", NumberFault::unknownSuffix, 0.8},
      {"1.y960V", NumberFault::digitInSuffix, 1},
      {"50Ohm", NumberFault::none, 50},
      {"2mOhm", NumberFault::none, 2e-3},
  };
  for (const NumberRow& row : rows) {
    const checks::NumberWord read = checks::readNumberWord(row.word);
    EXPECT_EQ(read.fault, row.fault) << row.word;
    EXPECT_DOUBLE_EQ(read.value, row.value) << row.word;
  }
  for (const std::string_view word : {"abc", "nan", "inf", "0x10", "-", "+p"}) {
    EXPECT_EQ(checks::readNumberWord(word).fault, NumberFault::notANumber) << word;
  }
  EXPECT_EQ(checks::readNumberWord("na").fault, NumberFault::notAvailable);
}

TEST(Quantity, IsWrittenWithAScaleLetter) {
  EXPECT_EQ(checks::quantity(4.5e-12, "F"), "4.5 pF");
  EXPECT_EQ(checks::quantity(-0.132, "A"), "-132 mA");
  EXPECT_EQ(checks::quantity(0.0, "V"), "0 V");
  EXPECT_EQ(checks::quantity(1e-18, "F"), "0.001 fF");
  EXPECT_EQ(checks::quantity(6.158e17, "A"), "6.158e+17 A");
  EXPECT_EQ(checks::quantity(0.9999999, "V"), "1 V");
}

TEST(ReadValue, EndsInTheUnitOfTheWord) {
  constexpr std::pair<std::string_view, std::string_view> rows[] = {
      {"4,5pF", "4 F"}, {"7Kohms", "7 ohms"}, {"50", "50"}, {"3.3V", "3.3 V"}, {"2Kx", "2"}};
  for (const auto& [word, text] : rows) {
    EXPECT_EQ(checks::readValue(checks::readNumberWord(word)), text) << word;
  }
}

TEST(PackageModels, AreLookedForBesideTheFile) {
  const std::string text =
      "[IBIS Ver] 4.2\n[Component] c\n[Package Model] frame\n[Pin] signal_name model_name\n[End]\n";
  const auto ofRule = [&](const checks::CheckOptions& options) {
    return render(checks::check(text, options), "package-model-undefined");
  };
  const std::string here = "3:17+5: ";
  const std::string remedy = " [package-model-undefined]\n  0: note: define it, or mend the name\n";
  const std::vector<std::string> beside =
      checks::packageModelsOf("[IBIS Ver] 4.2\n[Define Package Model] frame\n[End]\n");
  EXPECT_THAT(beside, ElementsAre("frame"));
  EXPECT_THAT(ofRule({}), ::testing::HasSubstr(
                              here + "error: [Package Model] 'frame' is not defined" + remedy));
  EXPECT_THAT(ofRule({.packageModels = beside}),
              ::testing::HasSubstr(here +
                                   "note: [Package Model] 'frame' is not defined here; the .pkg "
                                   "file beside this one has it" +
                                   remedy));
}

// A matrix of many pins would take too many steps.
TEST(PositiveDefinite, IsNotTestedOfAVeryLargeMatrix) {
  std::string text =
      "[IBIS Ver] 4.2\n[Define Package Model] p\n[Number Of Pins] 1201\n[Pin Numbers]\n";
  std::string rows;
  for (int i = 1; i <= 1201; ++i) {
    text.append(std::to_string(i)).append("\n");
    rows.append("[Row] ").append(std::to_string(i)).append("\n").append(std::to_string(i));
    rows.append(" 1n\n");
  }
  text.append("[Model Data]\n[Inductance Matrix] Sparse_matrix\n").append(rows).append("[End]\n");
  EXPECT_THAT(render(checks::check(text), "package-not-positive-definite"),
              ::testing::HasSubstr("1207:1+19: note: [Inductance Matrix] is not tested for being "
                                   "positive definite: it is too large "
                                   "[package-not-positive-definite]\n"));
}

TEST(EditDistance, CountsExchangedNeighboursOnce) {
  EXPECT_EQ(checks::editDistance("PULLDWON", "PULLDOWN", 3), 1U);
  EXPECT_EQ(checks::editDistance("ABC", "XYZ", 2), 3U);
}

TEST(Rules, HaveIdsOfTheirOwn) {
  for (const checks::RuleRow& row : checks::ruleTable()) {
    EXPECT_EQ(&checks::ruleRow(*checks::findRule(row.id)), &row) << row.id;
    EXPECT_FALSE(row.fires.empty()) << row.id;
    EXPECT_FALSE(row.clause.empty()) << row.id;
  }
}

TEST(Rules, AreAllInTheGuide) {
  EXPECT_EQ(readText(IBIS_SOURCE_DIR "/docs/checks.md"), checks::ruleGuide())
      << "run scripts/update-checks-guide";
}

}  // namespace
}  // namespace ibis::testing
