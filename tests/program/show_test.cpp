#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

using nlohmann::json;

// A driver of 25 ohms up and down, on 4 volts; the column max of its pulldown is not given.
const std::string driverText = R"([Model] out
Model_type 3-state
Polarity Inverting
Enable Active-Low
Vmeas = 2.0
C_comp 1p 0.5p 2p
[Voltage Range] 4 4 4
[Pulldown]
-4 -160m -160m NA
8 320m 320m NA
[Pullup]
-4 160m 160m 160m
8 -320m -320m -320m
[Ramp]
dV/dt_r 1.2/1n 1.2/2n NA
dV/dt_f 1.2/1n 1.2/1n 1.2/1n
[Rising Waveform]
R_fixture = 50
V_fixture = 0
0 0 0 0
1n 2.5 2.5 NA
[Falling Waveform]
R_fixture = 50
V_fixture = 4
V_fixture_min = 3.5
0 4 4 4
1n 1 1 1
)";

const std::string packageText = R"([Define Package Model] frame
[Manufacturer] Exemplary
[OEM] Framer
[Description] two pins
[Number Of Pins] 2
[Pin Numbers]
1
2
[Model Data]
[Resistance Matrix] Banded_matrix
[Bandwidth] 0
[Row] 1
0.1
[Row] 2
0.2
[End Model Data]
[End Package Model]
)";

const std::string wholeText =
    partText + "3 OUT out 0.1 NA 1p\n" + receiverText + driverText + packageText + "[End]\n";

Outcome show(const std::string& text, const std::vector<std::string>& options) {
  const TemporaryFolder folder;
  folder.write("part.ibs", text);
  std::vector<std::string> words = {"show", "part.ibs"};
  words.insert(words.end(), options.begin(), options.end());
  return run(words, {.folder = folder.path()});
}

constexpr const char* modelShown = R"(Model out (line 20): 3-state, Inverting, Active-Low
  pins  BUF-1: 3

  value                  typ   min     max
  Voltage Range          4 V   4 V     4 V
  Pullup Reference       4 V   4 V     4 V
  POWER Clamp Reference  4 V   4 V     4 V
  C_comp                 1 pF  500 fF  2 pF
  Vmeas                  2 V   2 V     2 V

  ramp     typ           min           max
  rising   1.2 V/ns      600 mV/ns     -
           1.2 V / 1 ns  1.2 V / 2 ns  -
  falling  1.2 V/ns      1.2 V/ns      1.2 V/ns
           1.2 V / 1 ns  1.2 V / 1 ns  1.2 V / 1 ns
  R_load   50 Ohm

  table     rows  voltage      current (typ)
  pulldown  2     -4 V to 8 V  -160 mA to 320 mA  without max
  pullup    2     -4 V to 8 V  -320 mA to 160 mA

  waveform   rows  time         voltage (typ)  fixture
  rising_1   2     0 s to 1 ns  0 V to 2.5 V   50 Ohm to 0 V
  falling_1  2     0 s to 1 ns  1 V to 4 V     50 Ohm to 4 V

  driver                  typ      min      max
  high, half the swing    25 Ohm   25 Ohm   25 Ohm
  low, half the swing     25 Ohm   25 Ohm   -
  high, 50 Ohm to ground  2.667 V  2.667 V  2.667 V
  low, 50 Ohm to supply   1.333 V  1.333 V  -
)";

TEST(Show, TellsAModelInFull) {
  const Outcome result = show(wholeText, {"out"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, modelShown);
}

TEST(Show, TellsADefaultThatTheFileDoesNotGive) {
  const Outcome result = show(warningText, {"in"});
  EXPECT_EQ(result.out, R"(Model in (line 14): Input, Non-Inverting
  pins  BUF-1: 1

  value   typ   min   max
  C_comp  1 pF  1 pF  1 pF
  Vinl    2 V   2 V   0 V   not in the file
  Vinh    0 V   0 V   2 V   not in the file
)");
}

TEST(Show, TellsAPinByNameAndBySignal) {
  const std::string shown = R"(Pin 3 of BUF-1 (line 14)
  signal  OUT
  model   out

  own    typ       min       max
  R_pin  100 mOhm  100 mOhm  100 mOhm
  L_pin  2 nH      2 nH      2 nH
  C_pin  1 pF      1 pF      1 pF
)";
  std::string text = wholeText;
  text.replace(text.find("model_name"), 10, "model_name R_pin L_pin C_pin");
  EXPECT_EQ(show(text, {"3"}).out, shown);
  EXPECT_EQ(show(text, {"OUT"}).out, shown);
}

TEST(Show, TellsAComponent) {
  EXPECT_EQ(show(bufferText, {"BUF-1"}).out, R"(Component BUF-1
  manufacturer  Exemplary

  package  typ       min  max
  R_pkg    500 mOhm  -    -
  L_pkg    2 nH      -    -
  C_pkg    1 pF      -    -

  pin  signal  model  R_pin  L_pin  C_pin
  1    A       in     -      -      -
  2    VSS     GND    -      -      -
)");
}

TEST(Show, TellsASelector) {
  const std::string text =
      partText + "3 B pick\n[Model Selector] pick\nin as it is\n" + receiverText + "[End]\n";
  EXPECT_EQ(show(text, {"pick"}).out, R"(Selector pick
  pins  BUF-1: 3

  model  description
  in     as it is
)");
}

TEST(Show, TellsAPackageModel) {
  EXPECT_EQ(show(wholeText, {"frame"}).out, R"(Package model frame (line 47)
  manufacturer  Exemplary
  OEM           Framer
  description   two pins
  pins          2
  resistances   2
  inductances   0
  capacitances  0
)");
}

TEST(Show, WithoutANameTellsAllWithTheTextsOfTheHeader) {
  const std::string text =
      "[IBIS Ver] 4.2\n[File Name] a.ibs\n[File Rev] 1\n[Date] today\n[Source] one\ntwo\n"
      "[Notes] \x1b[1mbold\n[Disclaimer] none\n[Copyright] free\n" +
      partText.substr(partText.find("[Component]")) + receiverText + "[End]\n";
  const Outcome result = show(text, {});
  EXPECT_EQ(result.status, 0);
  const std::string head = R"(part.ibs: IBIS 4.2
  file name  a.ibs
  revision   1
  date       today
Source:
  one
  two
Notes:
  \x1B[1mbold
Disclaimer:
  none
Copyright:
  free

)";
  EXPECT_EQ(result.out, head + show(text, {"BUF-1"}).out + '\n' + show(text, {"in"}).out);
}

TEST(Show, NamesWhatIsLeftOut) {
  const Outcome result = show(partText + receiverText + "[Submodel] a\n[Submodel] a\n", {"in"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err,
            "part.ibs:19: warning: Keyword 'Submodel' not supported\n"
            "part.ibs:20: warning: Keyword 'Submodel' not supported\n");
}

TEST(Show, TellsWhyAModelIsRefused) {
  const Outcome result =
      show(partText + receiverText + "[Model] hold\nModel_type Input\n[Add Submodel]\n", {"hold"});
  EXPECT_THAT(result.out,
              ::testing::HasSubstr("  refused  line 21: Model definition 'hold': Keyword 'Add "
                                   "Submodel' not\n           currently supported\n"));
}

TEST(Show, ANameThatIsNotThereIsAnErrorWithNearNames) {
  const Outcome result = show(wholeText, {"uot"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err,
            "part.ibs: error: Nothing in the file is called 'uot'\n"
            "part.ibs: note: did you mean 'out' or 'OUT'?\n");
  EXPECT_EQ(show(wholeText, {"frobnicator", "--json"}).out,
            R"({"schema":1,"file":"part.ibs","status":1,"errors":[{"id":"nothing-called",)"
            R"("line":null,"text":"Nothing in the file is called 'frobnicator'"}]})"
            "\n");
}

TEST(Show, AFileThatCannotBeReadIsAnError) {
  const Outcome result = run({"show", "/none.ibs"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "/none.ibs: error: Cannot open the file: No such file or directory\n");
}

TEST(Show, WritesATableAsCsv) {
  EXPECT_EQ(show(wholeText, {"out", "--csv", "pulldown"}).out,
            "voltage,typ,min,max\n-4,-0.16,-0.16,\n8,0.32,0.32,\n");
  EXPECT_EQ(show(wholeText, {"out", "--csv", "rising_1"}).out,
            "time,typ,min,max\n0,0,0,0\n1e-09,2.5,2.5,\n");
}

TEST(Show, ATableThatIsNotThereIsAnError) {
  const Outcome result = show(wholeText, {"out", "--csv", "gnd_clamp"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err,
            "part.ibs: error: Model 'out' has no table or waveform 'gnd_clamp'\n"
            "part.ibs: note: it has pulldown, pullup, rising_1, falling_1\n");
  EXPECT_EQ(show(wholeText, {"in", "--csv", "pullup"}).err,
            "part.ibs: error: Model 'in' has no table or waveform 'pullup'\n"
            "part.ibs: note: it has no tables\n");
  EXPECT_EQ(show(wholeText, {"BUF-1", "--csv", "pullup"}).err,
            "part.ibs: error: No model is called 'BUF-1'\n");
}

TEST(Show, JsonHasEveryNumberOfAModel) {
  const json object = json::parse(show(wholeText, {"out", "--json"}).out);
  const json expected = json::parse(R"({
    "name": "out", "line": 20, "type": "3-state", "polarity": "Inverting",
    "enable": "Active-Low", "users": [{"component": "BUF-1", "pins": ["3"]}], "selectors": [],
    "convertible": true, "reasons": [],
    "values": {"Voltage Range": {"typ": 4.0, "min": 4.0, "max": 4.0},
               "Pullup Reference": {"typ": 4.0, "min": 4.0, "max": 4.0},
               "POWER Clamp Reference": {"typ": 4.0, "min": 4.0, "max": 4.0},
               "C_comp": {"typ": 1e-12, "min": 0.5e-12, "max": 2e-12},
               "Vmeas": {"typ": 2.0, "min": 2.0, "max": 2.0}},
    "defaults": {}, "series": {"on": {}, "off": {}},
    "ramp": {
      "rising": {"dV": {"typ": 1.2, "min": 1.2, "max": null},
                 "dt": {"typ": 1e-9, "min": 2e-9, "max": null},
                 "slope": {"typ": 1.2e9, "min": 0.6e9, "max": null}},
      "falling": {"dV": {"typ": 1.2, "min": 1.2, "max": 1.2},
                  "dt": {"typ": 1e-9, "min": 1e-9, "max": 1e-9},
                  "slope": {"typ": 1.2e9, "min": 1.2e9, "max": 1.2e9}},
      "R_load": 50.0},
    "tables": [
      {"name": "pulldown", "voltage": [-4.0, 8.0], "typ": [-0.16, 0.32], "min": [-0.16, 0.32],
       "max": [null, null]},
      {"name": "pullup", "voltage": [-4.0, 8.0], "typ": [0.16, -0.32], "min": [0.16, -0.32],
       "max": [0.16, -0.32]}],
    "waveforms": [
      {"name": "rising_1", "origin": "given", "R_fixture": 50.0,
       "V_fixture": {"typ": 0.0, "min": 0.0, "max": 0.0}, "C_fixture": null, "L_fixture": null,
       "R_dut": null, "L_dut": null, "C_dut": null, "time": [0.0, 1e-9], "typ": [0.0, 2.5],
       "min": [0.0, 2.5], "max": [0.0, null]},
      {"name": "falling_1", "origin": "given", "R_fixture": 50.0,
       "V_fixture": {"typ": 4.0, "min": 3.5, "max": 4.0}, "C_fixture": null, "L_fixture": null,
       "R_dut": null, "L_dut": null, "C_dut": null, "time": [0.0, 1e-9], "typ": [4.0, 1.0],
       "min": [4.0, 1.0], "max": [4.0, 1.0]}]})");
  ASSERT_EQ(object["models"].size(), 1U);
  json model = object["models"][0];
  const json driver = model["driver"];
  model.erase("driver");
  for (json* list : {&model["ramp"]["rising"]["slope"], &model["ramp"]["falling"]["slope"]}) {
    for (json& value : *list) {
      if (value.is_number()) value = 1e6 * std::round(value.get<double>() / 1e6);
    }
  }
  EXPECT_EQ(model, expected) << model;
  EXPECT_NEAR(driver["highImpedance"]["typ"].get<double>(), 25.0, 1e-9);
  EXPECT_NEAR(driver["lowImpedance"]["min"].get<double>(), 25.0, 1e-9);
  EXPECT_TRUE(driver["lowImpedance"]["max"].is_null());
  EXPECT_NEAR(driver["highLevel"]["max"].get<double>(), 8.0 / 3, 1e-9);
  EXPECT_NEAR(driver["lowLevel"]["typ"].get<double>(), 4.0 / 3, 1e-9);
  EXPECT_TRUE(driver["lowLevel"]["max"].is_null());
}

TEST(Show, JsonOfTheWholeFileHasAllKinds) {
  const json object = json::parse(show(wholeText, {"--json"}).out);
  EXPECT_EQ(object["schema"], 1);
  EXPECT_EQ(object["status"], 0);
  EXPECT_EQ(object["fileName"], "buffer.ibs");
  EXPECT_TRUE(object["source"].is_null());
  EXPECT_EQ(object["models"].size(), 2U);
  EXPECT_EQ(object["pins"], json::array());
  EXPECT_EQ(object["components"][0]["pins"][0], json::parse(R"({
    "name": "1", "line": 12, "signal": "A", "modelName": "in", "model": "in",
    "hasOwnValues": false, "R_pin": {"typ": 0.5, "min": null, "max": null},
    "L_pin": {"typ": 2e-9, "min": null, "max": null},
    "C_pin": {"typ": 1e-12, "min": null, "max": null}})"))
      << object["components"][0]["pins"][0];
  EXPECT_EQ(object["packageModels"], json::parse(R"([{
    "name": "frame", "line": 47, "manufacturer": "Exemplary", "oem": "Framer",
    "description": "two pins", "numberOfPins": 2, "pins": ["1", "2"],
    "resistance": [[1, 1, 0.1], [2, 2, 0.2]], "inductance": [], "capacitance": []}])"));
  EXPECT_EQ(object["leftOut"], json::array());
  EXPECT_EQ(object["errors"], json::array());
}

TEST(Show, WrongUseSaysWhy) {
  const std::string seeHelp = "Run with --help for more information.\n";
  const struct {
    std::vector<std::string> words;
    std::string reason;
  } cases[] = {
      {{"show"}, "FILE is required"},
      {{"show", "a.ibs", "--csv"}, "--csv: 1 required TABLE missing"},
      {{"show", "a.ibs", "--csv", "pullup"}, "--csv: A table needs the NAME of a model"},
      {{"show", "a.ibs", "out", "--json", "--csv", "pullup"},
       "--csv: A table is written as CSV or as JSON"},
      {{"show", "a.ibs", "out", "in"}, "The following argument was not expected: in"},
  };
  for (const auto& [words, reason] : cases) {
    const Outcome result = run(words);
    EXPECT_EQ(result.status, 2) << reason;
    EXPECT_EQ(result.err, reason + '\n' + seeHelp);
  }
}

}  // namespace
}  // namespace ibis::testing
