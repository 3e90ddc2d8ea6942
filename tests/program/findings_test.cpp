#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;

const std::string name = "part.ibs";
const std::string supply = "[Voltage Range] 3.3 3.0 3.6\n";

// A sound file but for the capacitance, which a load reads as 4 farads.
std::string withComma() {
  std::string text = bufferText;
  text.replace(text.find("C_comp 1p 1p"), 12, "C_comp 4,5pF 1p");
  return text.insert(text.find("[End]"), supply);
}

Outcome convertTold(const std::string& text, std::vector<std::string> options) {
  const TemporaryFolder folder;
  folder.write(name, text);
  options.insert(options.begin(), {"convert", name, "-m", "package"});
  return run(options, {.folder = folder.path(), .tellsFindings = true});
}

const std::string commaText =
    "part.ibs:18:8: error: C_comp: '4,5pF' has a decimal comma; it is read as 4 F (expected 4.5pF) "
    "[numeric-decimal-comma]\n"
    "part.ibs:18: note: write a point\n";

TEST(Findings, OfACheckAreToldAndKeepNoFileFromBeingWritten) {
  const Outcome result = convertTold(withComma(), {});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, commaText);
  EXPECT_EQ(result.out, "./BUF_1.lb\n0 warnings, 0 errors, 1 error of a check\n");
}

TEST(Findings, FailTheRunWhereWarningsDo) {
  EXPECT_EQ(convertTold(withComma(), {"--werror"}).status, 1);
}

TEST(Findings, AreLeftOutWhenTheyAreNotWanted) {
  const Outcome result = convertTold(withComma(), {"--no-check", "--werror"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, "./BUF_1.lb\n0 warnings, 0 errors\n");
}

TEST(Findings, OfASoundFileAreNone) {
  std::string text = bufferText;
  const Outcome result = convertTold(text.insert(text.find("[End]"), supply), {"--werror"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
}

TEST(Findings, AreInTheJsonWithTheirIds) {
  const json result = json::parse(convertTold(withComma(), {"--json"}).out);
  EXPECT_EQ(result["status"], 0);
  EXPECT_EQ(result["errors"], json::array());
  const json expected = json::array(
      {{{"id", "numeric-decimal-comma"},
        {"line", 18},
        {"text", "C_comp: '4,5pF' has a decimal comma; it is read as 4 F (expected 4.5pF)"},
        {"notes", json::array({{{"line", nullptr}, {"text", "write a point"}}})}}});
  EXPECT_EQ(result["findings"], expected);
}

TEST(Findings, OfTheWholeFileHaveTheirIdToo) {
  std::string text = bufferText;
  text.insert(text.find("[End]"), supply);
  EXPECT_EQ(convertTold(text.substr(text.find('\n') + 1), {}).err,
            "part.ibs:1: error: [IBIS Ver] is missing [header-ibis-ver-missing]\n"
            "part.ibs:1: note: begin the file with [IBIS Ver]\n");
}

// The load's own error has the note.
TEST(Findings, AreNoneOfATextThatIsNoIbisFile) {
  EXPECT_EQ(convertTold("%PDF-1.4\n", {}).err,
            "part.ibs: error: The file has no component\n"
            "part.ibs: note: it looks like a PDF document\n");
}

// An error of the load names the pin's line already.
TEST(Findings, OnALineThatAnErrorNamesAreNotTold) {
  std::string text = bufferText;
  text.insert(text.find("[End]"), supply);
  text.replace(text.find("1 A in"), 6, "1 A on");
  const Outcome result = convertTold(text, {});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err,
            "part.ibs:12: error: Model referenced by pin '1' has not been defined\n"
            "part.ibs: note: the pin names model 'on'; did you mean 'in'?\n");
}

TEST(Findings, OfOneRuleAreToldFiveTimes) {
  std::string text = bufferText;
  std::string models;
  for (int i = 0; i < 8; ++i) {
    models += "[Model] m" + std::to_string(i) + "\nModel_type Input\nVinl = 0.8\nVinh = 2.0\n" +
              "C_comp 4,5pF 1p 1p\n" + supply;
  }
  text.insert(text.find("[End]"), supply + models);
  const Outcome result = convertTold(text, {});
  EXPECT_THAT(result.err, HasSubstr("part.ibs:48:8: error: C_comp: '4,5pF'"));
  EXPECT_THAT(result.err, Not(HasSubstr("part.ibs:54:8: error: C_comp: '4,5pF'")));
  EXPECT_THAT(result.err, HasSubstr("part.ibs: note: 3 more of numeric-decimal-comma\n"));
  EXPECT_THAT(result.out, HasSubstr("0 warnings, 0 errors, 8 errors of a check\n"));
}

TEST(Findings, OfManyFilesAreCountedInTheLastLine) {
  const TemporaryFolder folder;
  folder.write("a.ibs", withComma());
  folder.write("b.ibs", withComma());
  const Outcome result = run({"convert", "a.ibs", "b.ibs", "-m", "package", "-o", "out"},
                             {.folder = folder.path(), .tellsFindings = true});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, HasSubstr("2 files, 0 warnings, 0 errors, 2 errors of a check\n"));
}

// Pins without a model, each of which is an error.
std::string withErrors(int count) {
  std::string text = "[IBIS Ver] 4.2\n[Component] X\n[Pin] signal_name model_name\n";
  for (int i = 0; i < count; ++i) text += std::to_string(i) + " A none\n";
  return text;
}

std::size_t linesOf(const std::string& text) {
  return static_cast<std::size_t>(std::ranges::count(text, '\n'));
}

TEST(MaxMessages, LimitsWhatIsPrintedAndCountsTheRest) {
  const std::string text = withErrors(1005);
  const Outcome result = convertTold(text, {"--no-check"});
  EXPECT_THAT(result.err, ::testing::EndsWith(
                              "part.ibs:1003: error: Model referenced by pin '999' has not been "
                              "defined\npart.ibs: note: 5 more messages; --max-messages 0 "
                              "prints all\n"));
  EXPECT_EQ(linesOf(result.err), 1002U);  // with the first error's note
  EXPECT_EQ(linesOf(convertTold(text, {"--no-check", "--max-messages", "3"}).err), 5U);
  EXPECT_EQ(linesOf(convertTold(text, {"--no-check", "--max-messages", "0"}).err), 1006U);
  const json whole = json::parse(convertTold(text, {"--no-check", "--json"}).out);
  EXPECT_EQ(whole["errors"].size(), 1005U);
}

// Three warnings, for which there is no room beside the error.
TEST(MaxMessages, NeverHideAnErrorBehindWarnings) {
  const std::string text =
      "[IBIS Ver] 4.2\n[Component] X\n[Pin] signal_name model_name\n"
      "1 A none\n1 B GND\n1 C GND\n1 D GND\n";
  const Outcome result = convertTold(text, {"--no-check", "--max-messages", "1"});
  EXPECT_EQ(result.err,
            "part.ibs:4: error: Model referenced by pin '1' has not been defined\n"
            "part.ibs: note: the pin names model 'none'\n"
            "part.ibs: note: 3 more messages; --max-messages 0 prints all\n");
}

TEST(MaxMessages, LimitWhatEveryOtherCommandTells) {
  TemporaryFolder folder;
  folder.write("part.ibs", withErrors(9));
  const auto told = [&](std::vector<std::string> words) {
    words.insert(words.end(), {"part.ibs", "--max-messages", "2"});
    return run(words, {.folder = folder.path()});
  };
  const std::string first = "Model referenced by pin '0' has not been defined";
  const std::string second = "Model referenced by pin '1' has not been defined";
  EXPECT_EQ(told({"show"}).err, "part.ibs:4: warning: " + first +
                                    "\npart.ibs:5: warning: " + second +
                                    "\npart.ibs: note: 7 more messages; --max-messages 0 prints "
                                    "all\n");
  EXPECT_THAT(
      told({"list"}).out,
      ::testing::EndsWith("Refused or left out:\n  line 4  " + first + "\n  line 5  " + second +
                          "\n  -       7 more messages; --max-messages 0 prints all\n"));
  EXPECT_EQ(told({"export"}).err,
            "part.ibs:4: warning: " + first +
                "\npart.ibs: error: Nothing to export: no driver, receiver or terminator is left\n"
                "part.ibs: note: 8 more messages; --max-messages 0 prints all\n");
}

}  // namespace
}  // namespace ibis::testing
