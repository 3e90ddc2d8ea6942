#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

using nlohmann::json;

// A selector of two models, one of which no conversion takes.
const std::string mixedText = R"([IBIS Ver] 5.0
[File Name] mixed.ibs
[File Rev] 2
[Date] today
[Component] Mixed
[Manufacturer] Exemplary
[Package]
R_pkg 0.5 NA NA
[Pin] signal_name model_name
1 A in
2 B pick
3 C gone
[Model Selector] pick
in as it is
hold with a bus hold
[Model] in
Model_type Input
Vinl = 0.8
Vinh = 2.0
[Voltage Range] 3.3 3.0 NA
[Model] hold
Model_type Input
Vinl = 0.8
Vinh = 2.0
[Add Submodel]
keeper All
[Submodel] keeper
Submodel_type Bus_hold
[End]
)";

Outcome listText(const std::string& text, const std::vector<std::string>& options = {}) {
  const TemporaryFolder folder;
  folder.write("part.ibs", text);
  std::vector<std::string> words = {"list", "part.ibs"};
  words.insert(words.end(), options.begin(), options.end());
  return run(words, {.folder = folder.path()});
}

TEST(List, TellsWhatAFileHolds) {
  const Outcome result = listText(bufferText);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, R"(part.ibs: IBIS 4.2, revision 1.0, today

Components:
  name   pins  package model  manufacturer
  BUF-1  2     -              Exemplary

Models:
  name  type   supply  waveforms  pins
  in    Input  -       none       1
)");
}

TEST(List, TellsWhatCannotBeConvertedAndWhy) {
  const Outcome result = listText(mixedText);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, R"(part.ibs: IBIS 5.0, revision 2, today

Components:
  name   pins  package model  manufacturer
  Mixed  3     -              Exemplary

Models:
  name  type   supply  waveforms  pins
  in    Input  3.3 V   none       1, by pick
  hold  Input  -       none       by pick

Selectors:
  name  choice  description
  pick  in      as it is
        hold    with a bus hold
                pins: 2

Models that cannot be converted:
  hold  line 25: Model definition 'hold': Keyword 'Add Submodel' not currently
        supported

Refused or left out:
  line 1   Version '5.0' is read as far as version 4.2 goes
  line 12  Model referenced by pin '3' has not been defined
  line 27  Keyword 'Submodel' not supported
)");
}

TEST(List, TellsTheSameAsJson) {
  const Outcome result = listText(mixedText, {"--json"});
  EXPECT_EQ(result.status, 0);
  const json expected = json::parse(R"({
    "schema": 1, "file": "part.ibs", "status": 0, "version": "5.0", "fileName": "mixed.ibs",
    "revision": "2", "date": "today",
    "components": [{"name": "Mixed", "manufacturer": "Exemplary", "pins": 3, "diffPins": 0,
                    "packageModel": null, "pinsWithoutModel": ["3"]}],
    "models": [
      {"name": "in", "line": 16, "type": "Input", "supply": {"typ": 3.3, "min": 3.0, "max": null},
       "waveforms": "none", "risingWaveforms": 0, "fallingWaveforms": 0,
       "users": [{"component": "Mixed", "pins": ["1"]}], "selectors": ["pick"],
       "convertible": true, "reasons": []},
      {"name": "hold", "line": 21, "type": "Input", "supply": null,
       "waveforms": "none", "risingWaveforms": 0, "fallingWaveforms": 0,
       "users": [], "selectors": ["pick"], "convertible": false,
       "reasons": [{"id": "model-keyword-not-supported", "line": 25, "text":
         "Model definition 'hold': Keyword 'Add Submodel' not currently supported"}]}],
    "selectors": [{"name": "pick", "users": [{"component": "Mixed", "pins": ["2"]}],
                   "choices": [{"model": "in", "description": "as it is"},
                               {"model": "hold", "description": "with a bus hold"}]}],
    "packageModels": [],
    "leftOut": [
      {"id": "version-read-as-older", "line": 1,
       "text": "Version '5.0' is read as far as version 4.2 goes"},
      {"id": "pin-model-undefined", "line": 12,
       "text": "Model referenced by pin '3' has not been defined"},
      {"id": "model-keyword-not-supported", "line": 25, "text":
       "Model definition 'hold': Keyword 'Add Submodel' not currently supported"},
      {"id": "keyword-not-supported", "line": 27, "text": "Keyword 'Submodel' not supported"}],
    "errors": []})");
  EXPECT_EQ(json::parse(result.out), expected) << result.out;
}

TEST(List, TellsOfManyFilesInTheirOrder) {
  const TemporaryFolder folder;
  folder.write("b.ibs", bufferText);
  folder.write("a.ibs", bufferText);
  const std::string text = listText(bufferText).out;
  const std::string rest = text.substr(text.find(':'));
  const Outcome result = run({"list", "."}, {.folder = folder.path()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "./a.ibs" + rest + "\n./b.ibs" + rest);
  const json array = json::parse(run({"list", "--json", "."}, {.folder = folder.path()}).out);
  ASSERT_EQ(array.size(), 2U);
  EXPECT_EQ(array[1]["file"], "./b.ibs");
}

TEST(List, GoesOnBehindAFileThatCannotBeRead) {
  const TemporaryFolder folder;
  folder.write("a.ibs", bufferText);
  const Outcome result = run({"list", "none.ibs", "a.ibs"}, {.folder = folder.path()});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "none.ibs: error: Cannot open the file: No such file or directory\n");
  EXPECT_EQ(result.out.substr(0, 9), "a.ibs: IB");
  const Outcome asJson = run({"list", "none.ibs", "--json"}, {.folder = folder.path()});
  EXPECT_EQ(asJson.status, 1);
  EXPECT_EQ(asJson.out,
            R"({"schema":1,"file":"none.ibs","status":1,"errors":[{"id":"cannot-open-file",)"
            R"("line":null,"text":"Cannot open the file: No such file or directory"}]})"
            "\n");
}

TEST(List, TellsOfAFileThatHoldsNothing) {
  const Outcome result = listText("no IBIS at all\n");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err,
            "part.ibs: error: The file holds no component, model, selector or package model\n");
}

TEST(List, TellsOfAnOpenBracketThatHidesTheVersion) {
  const Outcome result =
      listText("[IBIS Ver 4.2\n[File Name] a\n[Component] X\n[Manufacturer] Y\n[Pin] s m\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, R"(part.ibs: no known version

Components:
  name  pins  package model  manufacturer
  X     0     -              Y

Refused or left out:
  -       The file gives no version
  line 1  note: the bracket of '[IBIS Ver 4.2' is not closed
)");
}

TEST(List, TellsWhatAFileIsThatIsNoIbisFile) {
  EXPECT_EQ(listText("%PDF-1.7\n").err,
            "part.ibs: error: The file holds no component, model, selector or package model\n"
            "part.ibs: note: it looks like a PDF document\n");
}

TEST(List, NeverHandsControlCharactersToTheTerminal) {
  const TemporaryFolder folder;
  folder.write("\x1b[2J.ibs",
               "[IBIS Ver] 4.2\n[Component] A\x1b[31mB\n[Manufacturer] \xa9 C\n[Pin] s m\n");
  const Outcome result = run({"list", "\x1b[2J.ibs"}, {.folder = folder.path()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, R"(\x1B[2J.ibs: IBIS 4.2

Components:
  name        pins  package model  manufacturer
  A\x1B[31mB  0     -              \xA9 C
)");
}

TEST(List, HelpTellsOfOptionsAndStatus) {
  const Outcome result = run({"list", "--help"});
  EXPECT_EQ(result.status, 0);
  for (const std::string text : {"Usage: ibis-load list [OPTIONS] FILE...\n", "\n  --json ",
                                 "\nExit status: 0 all listed", "\nExamples:\n"}) {
    EXPECT_THAT(result.out, ::testing::HasSubstr(text));
  }
  EXPECT_EQ(run({"list"}).status, 2);
}

}  // namespace
}  // namespace ibis::testing
