#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

using nlohmann::json;

struct Told {
  int status;
  std::string messages;
};

Told convertText(const std::string& text, const std::vector<std::string>& options = {}) {
  const TemporaryFolder folder;
  folder.write("part.ibs", text);
  std::vector<std::string> words = {"convert", "part.ibs", "-q"};
  words.insert(words.end(), options.begin(), options.end());
  const Outcome result = run(words, {.folder = folder.path()});
  return {result.status, result.err};
}

const std::string selectorText = "[Model Selector] pick\nin the slow one\n";

TEST(Advice, APinThatIsNotThereIsAnErrorWithNearNames) {
  const struct {
    std::string pin;
    std::string note;
  } cases[] = {
      {"A", "pin 1 has this signal"},
      {"1,2", "-p is given once for each pin"},
      {"12", "did you mean '1' or '2'?"},
      {"nowhere", "there are: 1, 2"},
  };
  for (const auto& [pin, note] : cases) {
    const Told told = convertText(bufferText, {"-p", pin, "-p", "1"});
    EXPECT_EQ(told.status, 1);
    EXPECT_EQ(told.messages, "part.ibs: error: Component 'BUF-1' has no pin '" + pin +
                                 "'\npart.ibs: note: " + note + '\n');
  }
}

TEST(Advice, AScriptTakesThePinsOfEveryComponent) {
  const std::string text =
      bufferText.substr(0, bufferText.find("[Model]")) +
      "[Component] B\n[Manufacturer] E\n[Pin] signal_name model_name\nB7 X in\nB8 X in\n" +
      receiverText;
  EXPECT_EQ(convertText(text, {"-m", "script", "-p", "B7", "-p", "1"}).messages, "");
  EXPECT_EQ(convertText(text, {"-m", "script", "-p", "X"}).messages,
            "part.ibs: error: No component has a pin 'X'\n"
            "part.ibs: note: pin B7 has this signal\n");
  EXPECT_EQ(convertText(text, {"-c", "B", "-p", "1"}).messages,
            "part.ibs: error: Component 'B' has no pin '1'\n"
            "part.ibs: note: there are: B7, B8\n");
}

TEST(Advice, AComponentThatIsNotThereIsNamed) {
  EXPECT_EQ(convertText(bufferText, {"-c", "buf-1"}).messages,
            "part.ibs: error: Component name 'buf-1' not found in IBIS file\n"
            "part.ibs: note: did you mean 'BUF-1'?\n");
  EXPECT_EQ(convertText(bufferText, {"-c", "OTHER"}).messages,
            "part.ibs: error: Component name 'OTHER' not found in IBIS file\n"
            "part.ibs: note: the file has BUF-1\n");
}

TEST(Advice, ASelectionThatIsNotThereTellsWhatThereIs) {
  const std::string text = partText + selectorText + receiverText + "[End]\n";
  EXPECT_EQ(convertText(text, {"--select", "the slow on"}).messages,
            "part.ibs: error: Model selector 'the slow on' not found in IBIS file\n"
            "part.ibs: note: did you mean 'the slow one'?\n");
  EXPECT_EQ(convertText(text, {"--select", "x"}).messages,
            "part.ibs: error: Model selector 'x' not found in IBIS file\n"
            "part.ibs: note: there are: the slow one\n");
  EXPECT_EQ(convertText(bufferText, {"--select", "x"}).messages,
            "part.ibs: error: Model selector 'x' not found in IBIS file\n"
            "part.ibs: note: the file has no model selectors\n");
}

TEST(Advice, AModelThatIsNotDefinedIsNamed) {
  const std::string error =
      "part.ibs:12: error: Model referenced by pin '1' has not been defined\n";
  const std::string other = "[Model] IN\nModel_type Terminator\n[End]\n";
  EXPECT_EQ(convertText(partText + other).messages,
            error + "part.ibs: note: the pin names model 'in'; did you mean 'IN'?\n");
  EXPECT_EQ(convertText(partText + "[Model] zzz\nModel_type Terminator\n").messages,
            error + "part.ibs: note: the pin names model 'in'; the file has zzz\n");
  EXPECT_EQ(convertText(partText).messages, error + "part.ibs: note: the pin names model 'in'\n");
}

TEST(Advice, AModelBehindTheEndIsFound) {
  EXPECT_EQ(convertText(partText + "[END]\n[ model ] in | here\n").messages,
            "part.ibs:12: error: Model referenced by pin '1' has not been defined\n"
            "part.ibs:15: note: model 'in' stands behind [End], where nothing is read\n");
}

TEST(Advice, AVersionThatIsNotReadTellsTheWayOn) {
  EXPECT_EQ(convertText("[IBIS Ver] 5.1\n").messages,
            "part.ibs:1: error: Version '5.1' not supported. Aborting IBIS\n"
            "part.ibs: note: versions 1.0 to 4.2 are read; --as-version 4.2 reads as far as that "
            "goes\n");
  EXPECT_EQ(convertText("[IBIS Ver] 9.9\n").messages,
            "part.ibs:1: error: Unknown version '9.9'. Aborting IBIS\n"
            "part.ibs: note: versions 1.0 to 4.2 are read\n");
}

TEST(Advice, ReferencesThatDifferAreTold) {
  const std::string model =
      "[Model] in\nModel_type Input\nVinl = 0.8\nVinh = 2\n[Voltage Range] 3.3 3.0 3.6\n";
  EXPECT_EQ(convertText(partText + model + "[POWER Clamp Reference] 5 4.5 NA\n").messages,
            "part.ibs:14: error: Model 'in': Pullup reference does not match Power clamp "
            "reference. This is legal but not currently supported\n"
            "part.ibs: note: pullup 3.3 V, 3 V, 3.6 V; power clamp 5 V, 4.5 V, -\n");
  EXPECT_EQ(convertText(partText + model + "[GND Clamp Reference] 1 1 1\n").messages,
            "part.ibs:14: error: Model 'in': Pulldown reference does not match GND clamp "
            "reference. This is legal but not currently supported\n"
            "part.ibs: note: pulldown 0 V, 0 V, 0 V; ground clamp 1 V, 1 V, 1 V\n");
}

TEST(Advice, AModelTypeThatIsMisspeltIsShown) {
  EXPECT_EQ(convertText(partText + "[Model] in\nModel_type input\n").messages,
            "part.ibs:15: error: Model type 'unknown' not currently supported\n"
            "part.ibs: note: the file says 'input'; did you mean 'Input'?\n");
  EXPECT_EQ(convertText(partText + "[Model] in\nModel_type = Frobnicator | no\n").messages,
            "part.ibs:15: error: Model type 'unknown' not currently supported\n"
            "part.ibs: note: the file says 'Frobnicator'\n");
}

TEST(Advice, WhatCanBeLeftOutIsToldOnce) {
  const std::string hold = "[Add Submodel]\nkeeper All\n";
  const std::string note =
      "part.ibs: note: --keep-going leaves out what cannot be converted, "
      "with its pins\n";
  const std::string error =
      "Model definition 'in': Keyword 'Add Submodel' not currently supported\n";
  EXPECT_EQ(convertText(partText + receiverText + hold + hold).messages,
            "part.ibs:19: error: " + error + note + "part.ibs:19: error: " + error +
                "part.ibs:21: error: " + error + "part.ibs:21: error: " + error);
  EXPECT_EQ(convertText(partText + "[Model] in\nModel_type Series\n").messages,
            "part.ibs:15: error: Model type 'Series' not currently supported\n" + note);
  EXPECT_EQ(convertText(partText + receiverText + "[Submodel] x\n").messages,
            "part.ibs:19: error: Keyword 'Submodel' not supported\n" + note);
  EXPECT_EQ(
      convertText(partText + "[Series Pin Mapping] pin_2 model_name\n" + receiverText).messages,
      "part.ibs:14: error: Series Pin Mapping is not currently supported\n" + note);
}

TEST(Advice, AKeywordInTheWrongPlaceTellsItsPlace) {
  const struct {
    std::string keyword;
    std::string place;
  } cases[] = {
      {"Temperature Range", "it belongs to a [Model]"},
      {"Pin", "it belongs to a [Component]"},
      {"File Rev", "it belongs to the header, in front of the first [Component]"},
      {"Number Of Pins", "it belongs to a [Define Package Model]"},
  };
  for (const auto& [keyword, place] : cases) {
    EXPECT_EQ(
        convertText("[IBIS Ver] 4.2\n[Model Selector] a\nb c\n[" + keyword + "] 1\n").messages,
        "part.ibs:4: error: Keyword '" + keyword +
            "' not expected in this context\npart.ibs: note: " + place + '\n');
  }
}

TEST(Advice, WordsInTheWrongCaseAreShown) {
  EXPECT_EQ(convertText("[IBIS Ver] 4.2\n[Component] a\nSi_location PIN\n").messages,
            "part.ibs:3: error: Unexpected location name 'PIN'\n"
            "part.ibs: note: 'Pin' or 'Die' is expected, in this case of letters\n");
  const std::string package = "[Define Package Model] P\n[Model Data]\n";
  EXPECT_EQ(convertText(bufferText.substr(0, bufferText.find("[End]")) + package +
                        "[Resistance Matrix] Sparse_Matrix\n[End Model Data]\n")
                .messages,
            "part.ibs:21: error: Unknown matrix type 'Sparse_Matrix' at line 21\n"
            "part.ibs: note: did you mean 'Sparse_matrix'?\n");
}

TEST(Advice, APackageModelThatIsMissingTellsWhatThereIs) {
  std::string text = bufferText;
  text.insert(text.find("[Package]"), "[Package Model] frame\n");
  const std::string error =
      "part.ibs: error: Component 'BUF-1' specifies package model 'frame', but a definition for "
      "that package could not be found\n";
  const std::vector<std::string> options = {"-m", "package", "-c", "BUF-1"};
  EXPECT_EQ(convertText(text, options).messages,
            error +
                "part.ibs: note: the file defines no package model; vendors put them into a "
                ".pkg file\n");
  text.insert(text.find("[End]"), "[Define Package Model] other\n[End Package Model]\n");
  EXPECT_EQ(convertText(text, options).messages,
            error + "part.ibs: note: the file defines other\n");
}

TEST(Advice, AFileThatIsNoIbisFileTellsWhatItIs) {
  const struct {
    std::string text;
    std::string note;
  } cases[] = {
      {"", "it is empty"},
      {"%PDF-1.4\n", "it looks like a PDF document"},
      {"  <!DOCTYPE html>\n", "it looks like an HTML or XML document"},
      {"\xff\xfe[\0I\0", "it looks like UTF-16 text"},
      {std::string("[\0I\0B\0I\0S\0", 10), "it looks like UTF-16 text or other binary data"},
      {"BZh91AY", "it looks like bzip2 data"},
      {"\x7f"
       "ELF\x02",
       "it looks like a program"},
  };
  for (const auto& [text, note] : cases) {
    EXPECT_EQ(convertText(text).messages,
              "part.ibs: error: The file has no component\npart.ibs: note: " + note + '\n');
  }
}

TEST(Advice, ABracketThatIsNotClosedIsShown) {
  EXPECT_EQ(convertText("[IBIS Ver 4.2 | no ]\n[File Name] a\n[Component A\n").messages,
            "part.ibs: error: The file has no component\n"
            "part.ibs:1: note: the bracket of '[IBIS Ver 4.2' is not closed\n"
            "part.ibs:3: note: the bracket of '[Component A' is not closed\n");
}

TEST(Advice, JsonHasTheNotes) {
  const TemporaryFolder folder;
  folder.write("part.ibs", bufferText);
  const Outcome result =
      run({"convert", "part.ibs", "-p", "A", "--json"}, {.folder = folder.path()});
  EXPECT_EQ(json::parse(result.out)["errors"], json::parse(R"([
    {"id": "pin-not-found", "line": null, "text": "Component 'BUF-1' has no pin 'A'",
     "notes": [{"line": null, "text": "pin 1 has this signal"}]}])"));
}

}  // namespace
}  // namespace ibis::testing
