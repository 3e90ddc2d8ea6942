#include <functional>

#include "harness/harness.h"
#include "output/embedded_templates.h"
#include "output/stream/file_sink.h"

namespace ibis::testing {
namespace {

const std::string header =
    lines({"[IBIS Ver] 4.2", "[File Name] zoo.ibs", "[File Rev] 1.3", "[Date] 1 May 2024"});
const std::string component = lines({"[Component] Zoo-1", "[Manufacturer] Bench & Co"});
const std::string pinTable = "[Pin] signal_name model_name\n";

// Nothing of this is left to the defaults that later checks would fill in.
std::string model(const std::string& name, const std::string& type, const std::string& tables) {
  return lines({"[Model] " + name, "Model_type " + type, "C_comp 5pF 4pF 6pF", "Vinl = 0.8",
                "Vinh = 2.0", "[Voltage Range] 3.3 3.0 3.6", "[Pullup Reference] 3.3 3.0 3.6",
                "[POWER Clamp Reference] 3.3 3.0 3.6", "[Pulldown Reference] 0.1 0.05 0.15",
                "[GND Clamp Reference] 0.1 0.05 0.15"}) +
         tables;
}

const std::string pulldown = lines({"[Pulldown]", "0 0 0 0", "1 10mA 5mA 20mA"});
const std::string pullup = lines({"[Pullup]", "0 0 0 0", "1 -10mA -5mA -20mA", "2 -1 -1 -1"});
const std::string gndClamp = lines({"[GND Clamp]", "-1 -10mA -5mA -20mA"});
const std::string powerClamp = lines({"[POWER Clamp]", "-1 3 2 4", "0 0 0 0"});
const std::string rising = lines({"[Rising Waveform]", "R_fixture = 50", "V_fixture = 0",  //
                                  "0 0 0 0", "1n 3 2.5 3.5"});
const std::string falling = lines({"[Falling Waveform]", "R_fixture = 75.5", "V_fixture = 3.3",
                                   "V_fixture_min = 3.0", "V_fixture_max = 3.6",  //
                                   "0 3 2.5 3.5", "2n 0 0 0"});

// What the loops and conditions leave between the fixed lines of the library.
struct Library {
  std::string quotes = lines({"** Source: ", "", "** Notes:", "",  //
                              "** Disclaimer", "", "** Copyright", ""});
  std::string ports = {};
  std::string supplies = lines({"+ GND", "+ POWER"});
  std::string inputs = {};
  std::string outputs = {};
  std::string threeStates = {};
  std::string terminators = {};
  std::string inputOutputs = {};
  std::string models = {};
  std::string waveformPorts = {};
  std::string waveforms = {};
};

std::string text(const Library& library) {
  return lines({"", "** IBIS original file: zoo.ibs", "** IBIS version:       4.2",
                "** Component:          Zoo-1", "** Manufacturer:       Bench & Co",
                "** File revision:      1.3", "** Date:               1 May 2024"}) +
         library.quotes + "\n\n.SUBCKT dut\n" + library.ports + library.supplies +
         "\n+ PARAMS: corner=0\n"
         "\n** Input Instances\n" +
         library.inputs + "\n** Output Instances\n" + library.outputs +
         "\n** Tri-state Instances\n" + library.threeStates + "\n** Terminator Instances\n" +
         library.terminators + "\n** IO Instances\n" + library.inputOutputs + "\n\n" +
         library.models +
         "\n.ENDS\n\n\n"
         "** Waveform subcircuits\n"
         ".SUBCKT ibis_Zoo_1_waveform \n" +
         library.waveformPorts + "+ gnd\n\n" + library.waveforms + "\n\n.ENDS\n\n\n\n\n\n";
}

using Change = std::function<void(Parsed&)>;

void leaveAsItIs(Parsed&) {}

// The files that the template writes for the only component of a text.
std::map<std::string, std::string> filesOf(const std::string& content,
                                           const Change& change = leaveAsItIs) {
  Parsed parsed(content);
  parsed.resolve();
  EXPECT_MESSAGES(parsed.errors());
  parsed.file.setUserSubcircuitName("dut");
  change(parsed);
  const TemporaryFolder folder;
  Recorder sink;
  {
    FileSink files;
    TemplateEngine engine(parsed.data(), &parsed.component(), folder.path(), sink, files);
    TextBuffer buffer;
    EXPECT_TRUE(loadEmbedded(buffer, "component.tmpl"));
    engine.expand(buffer);
  }
  EXPECT_MESSAGES(sink.errors);
  return folder.contents();
}

std::string libraryOf(const std::string& content, const Change& change = leaveAsItIs) {
  const auto files = filesOf(content, change);
  EXPECT_EQ(files.size(), 1u);
  return files.at("dut.lb");
}

const std::string withoutPins = header + component + "[End]\n";

TEST(ComponentTemplate, WritesItsFrameForAComponentWithoutPins) {
  EXPECT_EQ(libraryOf(withoutPins),
            "\n"
            "** IBIS original file: zoo.ibs\n"
            "** IBIS version:       4.2\n"
            "** Component:          Zoo-1\n"
            "** Manufacturer:       Bench & Co\n"
            "** File revision:      1.3\n"
            "** Date:               1 May 2024\n"
            "** Source: \n\n** Notes:\n\n** Disclaimer\n\n** Copyright\n\n\n\n"
            ".SUBCKT dut\n"
            "+ GND\n"
            "+ POWER\n\n"
            "+ PARAMS: corner=0\n\n"
            "** Input Instances\n\n"
            "** Output Instances\n\n"
            "** Tri-state Instances\n\n"
            "** Terminator Instances\n\n"
            "** IO Instances\n\n\n\n"
            ".ENDS\n\n\n"
            "** Waveform subcircuits\n"
            ".SUBCKT ibis_Zoo_1_waveform \n"
            "+ gnd\n\n\n\n"
            ".ENDS\n\n\n\n\n\n");
  EXPECT_EQ(libraryOf(withoutPins), text({}));
}

TEST(ComponentTemplate, BeginsWithTheEmptyLineBehindTheOneThatOpensTheFile) {
  EXPECT_EQ(libraryOf(withoutPins).substr(0, 34), "\n** IBIS original file: zoo.ibs\n**");
}

TEST(ComponentTemplate, EndsInFiveEmptyLines) {
  const std::string library = libraryOf(withoutPins);
  EXPECT_EQ(library.substr(library.size() - 13), "\n\n.ENDS\n\n\n\n\n\n");
}

TEST(ComponentTemplate, QuotesTheHeadersTexts) {
  const std::string quoted = lines({"[Source] Bench", "[Notes]", "first", "  second", "", "third",
                                    "[Disclaimer] None", "at all", "[Copyright] Nobody"});
  const std::string expected = lines({
      "** Source: ",
      "**               Bench",
      "** Notes:",
      "**             first",
      "**        second",
      "**      third",
      "** Disclaimer",
      "**                   None",
      "**      at all",
      "** Copyright",
      "**                  Nobody",
  });
  EXPECT_EQ(libraryOf(header + quoted + component + "[End]\n"), text({.quotes = expected}));
}

TEST(ComponentTemplate, NamesTheFileDotLbAndTheCircuitByItsComponentWithoutAName) {
  std::string expected = text({});
  expected.replace(expected.find(".SUBCKT dut"), 11, ".SUBCKT Zoo_1");
  const auto files = filesOf(withoutPins, [](Parsed& it) { it.file.setUserSubcircuitName(""); });
  EXPECT_EQ(files, (std::map<std::string, std::string>{{".lb", expected}}));
}

TEST(ComponentTemplate, WritesNoDeviceForSuppliesAndOpenPins) {
  const std::string pins = pinTable + lines({"1 VSS GND", "2 VDD POWER", "3 OFF NC", "[End]"});
  EXPECT_EQ(libraryOf(header + component + pins),
            text({.ports = lines({"+ T_VSS ", "+ T_VDD ", "+ T_OFF "}), .supplies = ""}));
}

TEST(ComponentTemplate, AddsAPortForEachSupplyThatNoPinHas) {
  EXPECT_EQ(libraryOf(header + component + pinTable + "1 VSS gnd\n[End]\n"),
            text({.ports = "+ T_VSS \n", .supplies = "+ POWER\n"}));
  EXPECT_EQ(libraryOf(header + component + pinTable + "1 VDD Power\n[End]\n"),
            text({.ports = "+ T_VDD \n", .supplies = "+ GND\n"}));
}

const std::string cComp = "c_comp=[5e-12, 4e-12, 6e-12] N_CORNER=3 CORNER={corner}\n";
const std::string polarity = lines({"** 0: non-inverting, 1: inverting", "+ \tPOLARITY=0 "});
const std::string enable = lines({"** 0: active-high, 1: active-low", "+\tENABLE_POLARITY=0"});
const std::string pullupCorners =
    "0, 0, 1, -0.01, 2, -1, 0, 0, 1, -0.005, 2, -1, 0, 0, 1, -0.02, 2, -1, ";
const std::string pulldownCorners = "0, 0, 1, 0.01, 0, 0, 1, 0.005, 0, 0, 1, 0.02";
const std::string references =
    lines({"+   V_PULLUP_REF=[3.3, 3, 3.6]", "+   V_PULLDOWN_REF=[0.1, 0.05, 0.15]"});
const std::string drive = lines({"+\tIV_DATA=[", "+       " + pullupCorners + pulldownCorners,
                                 "+\t]", "+   N_IV=[3, 2]"}) +
                          references;
const std::string pulldownDrive =
    lines({"+\tIV_DATA=[", "+       " + pulldownCorners, "+\t]", "+   N_IV=[0, 2]"}) + references;
const std::string groundClamp = lines(
    {"+\tCLAMP_DATA=[", "+\t\t-1, -0.01, -1, -0.005, -1, -0.02, ", "+\t]", "+   N_CLAMP=[1, 0]"});
const std::string bothClamps =
    lines({"+\tCLAMP_DATA=[",
           "+\t\t-1, -0.01, -1, -0.005, -1, -0.02, -1, 3, 0, 0, -1, 2, 0, 0, -1, 4, 0, 0", "+\t]",
           "+   N_CLAMP=[1, 2]"});
const std::string thresholds = "+\tVINL=[0.8, 0.8, 0.8] VINH=[2, 2, 2]\n";
const std::string risingCorners =
    lines({"+", "+       0, 0, 1e-09, 3, ", "+", "+       0, 0, 1e-09, 2.5, ", "+",
           "+       0, 0, 1e-09, 3.5, "});
const std::string fallingCorners =
    lines({"+", "+       0, 3, 2e-09, 0, ", "+", "+       0, 2.5, 2e-09, 0, ", "+",
           "+       0, 3.5, 2e-09, 0, "});
const std::string lastFallingCorners =
    lines({"+", "+       0, 3, 2e-09, 0, ", "+", "+       0, 2.5, 2e-09, 0, ", "+",
           "+       0, 3.5, 2e-09, 0"});
const std::string missingCorners = lines({"+", "+       ", "+", "+       ", "+", "+       "});

std::string waveformData(const std::string& corners, const std::string& sizes,
                         const std::string& resistances, const std::string& voltages) {
  return "+\tWAVEFORM_DATA=[\n+\t\t\n" + corners +
         lines({"+\t]", "+\tN_WAVEFORM=[" + sizes + "]", "+\tR_FIXTURE=[" + resistances + "]",
                "+\tV_FIXTURE=[" + voltages + "]"});
}

// One waveform of two for each edge of a push-pull driver.
const std::string twoWaveforms = waveformData(
    risingCorners + missingCorners + fallingCorners + missingCorners, "2, 0, 2, 0",
    "50, 50, 50, 0, 0, 0, 75.5, 75.5, 75.5, 0, 0, 0", "0, 0, 0, 0, 0, 0, 3.3, 3, 3.6, 0, 0, 0");
const std::string openWaveforms =
    waveformData(risingCorners + lastFallingCorners, "2, 2", "50, 50, 50, 75.5, 75.5, 75.5",
                 "0, 0, 0, 3.3, 3, 3.6");

// A device's line, with the empty line that ends its statement.
std::string device(const std::string& name, const std::string& type, const std::string& rest) {
  return ".MODEL M_" + name + " IBIS_" + type + " " + cComp + rest + "\n";
}

std::string sourceOf(const std::string& name, const std::string& pairs) {
  return lines({"Vpwl_" + name + " T_" + name + " gnd PWL", "+ " + pairs});
}

std::string sourcesOf(const std::string& name) {
  return sourceOf(name + "_rising_50_0", "0, 0, 1e-09, 3") +
         sourceOf(name + "_falling_75_3", "0, 3, 2e-09, 0");
}

std::string waveformPortsOf(const std::string& name) {
  return lines({"+ T_" + name + "_rising_50_0", "+ T_" + name + "_falling_75_3"});
}

TEST(ComponentTemplate, WritesEachKindOfSinglePin) {
  const std::string pins =
      pinTable + lines({"1 IN in", "2 OUT out", "3 TRI tri", "4 TERM term", "5 IO-A io",  //
                        "6 OD od", "7 VSS GND", "8 VDD POWER", "9 OFF NC"});
  const std::string models = model("in", "Input", gndClamp) +
                             model("out", "Output", pulldown + pullup + rising + falling) +
                             model("tri", "3-state", pulldown + pullup + rising + falling) +
                             model("term", "Terminator", gndClamp + powerClamp) +
                             model("io", "I/O", pulldown + pullup + gndClamp + rising + falling) +
                             model("od", "I/O_open_drain", pulldown + rising + falling) + "[End]\n";
  const Library expected = {
      .ports = lines({"+ T_IN   MON_IN ", "+ T_OUT   CTL_OUT ", "+ T_TRI   CTL_TRI   EN_TRI ",
                      "+ T_TERM ", "+ T_IO_A   CTL_IO_A   MON_IO_A   EN_IO_A ",
                      "+ T_OD   CTL_OD   MON_OD ", "+ T_VSS ", "+ T_VDD ", "+ T_OFF "}),
      .supplies = "",
      .inputs = "U_IN T_IN GND MON_IN GND POWER M_in\n",
      .outputs = "U_OUT T_OUT GND CTL_OUT GND POWER M_out\n",
      .threeStates = "U_TRI T_TRI GND CTL_TRI EN_TRI GND POWER M_tri\n",
      .terminators = "U_TERM T_TERM GND GND POWER M_term \n",
      .inputOutputs = lines({"U_IO_A T_IO_A GND CTL_IO_A MON_IO_A  EN_IO_A  GND POWER M_io ",
                             "U_OD T_OD GND CTL_OD MON_OD  GND POWER M_od "}),
      .models =
          device("in", "Input", polarity + groundClamp + thresholds) +
          device("out", "Output", polarity + drive + twoWaveforms) +
          device("tri", "3_state", polarity + enable + drive + twoWaveforms) +
          device("term", "Terminator", bothClamps) +
          device("io", "I_O", polarity + enable + drive + twoWaveforms + groundClamp + thresholds) +
          device("od", "I_O_open_switch", polarity + pulldownDrive + openWaveforms + thresholds),
      .waveformPorts = waveformPortsOf("out") + waveformPortsOf("tri") + waveformPortsOf("io") +
                       waveformPortsOf("od"),
      .waveforms = sourcesOf("out") + sourcesOf("tri") + sourcesOf("io") + sourcesOf("od"),
  };
  EXPECT_EQ(libraryOf(header + component + pins + models), text(expected));
}

TEST(ComponentTemplate, WritesEachKindOfDifferentialPair) {
  const std::string pins =
      pinTable +
      lines({"1 INP in", "2 INN in", "3 OUTP out", "4 OUTN out", "5 TRIP tri", "6 TRIN tri",
             "7 TERMP term", "8 TERMN term", "9 IOP io", "10 ION io", "[Diff Pin] inv_pin vdiff",
             "9 10 0.15", "7 8", "5 6", "3 4", "1 2 1.23456789"});
  const std::string models =
      model("in", "Input", "") + model("out", "Output", pulldown + pullup + rising) +
      model("tri", "3-state", pulldown + pullup + rising) + model("term", "Terminator", "") +
      model("io", "I/O", pulldown + pullup + rising) + "[End]\n";
  const std::string oneWaveform =
      waveformData(risingCorners + missingCorners + missingCorners + missingCorners, "2, 0, 0, 0",
                   "50, 50, 50, 0, 0, 0, 0, 0, 0, 0, 0, 0", "0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0");
  const auto source = [](const std::string& name) {
    return sourceOf(name + "_rising_50_0", "0, 0, 1e-09, 3");
  };
  const Library expected = {
      .ports = lines({"+ T_INP  T_INN   MON_INP ", "+ T_OUTP  T_OUTN   CTL_OUTP ",
                      "+ T_TRIP  T_TRIN   CTL_TRIP   EN_TRIP ", "+ T_TERMP  T_TERMN ",
                      "+ T_IOP  T_ION   CTL_IOP   MON_IOP   EN_IOP "}),
      .inputs =
          "U_INP T_INP T_INN MON_INP GND POWER M_in VINH=[1.23457,1.23457,1.23457] "
          "VINL=[-1.23457,-1.23457,-1.23457]  DIFFERENTIAL=1\n",
      .outputs = "U_OUTP T_OUTP T_OUTN CTL_OUTP GND POWER M_out DIFFERENTIAL=1\n",
      .threeStates = "U_TRIP T_TRIP T_TRIN CTL_TRIP EN_TRIP GND POWER M_tri DIFFERENTIAL=1\n",
      .terminators = "U_TERMP T_TERMP T_TERMN GND POWER M_term DIFFERENTIAL=1\n",
      .inputOutputs =
          "U_IOP T_IOP T_ION CTL_IOP MON_IOP EN_IOP GND POWER  M_io DIFFERENTIAL=1 "
          "VINH=[0.15,0.15,0.15] VINL=[-0.15,-0.15,-0.15]\n",
      .models = device("io", "I_O", polarity + enable + drive + oneWaveform + thresholds) +
                device("term", "Terminator", "") +
                device("tri", "3_state", polarity + enable + drive + oneWaveform) +
                device("out", "Output", polarity + drive + oneWaveform) +
                device("in", "Input", polarity + thresholds),
      .waveformPorts = lines({"+ T_io_rising_50_0", "+ T_tri_rising_50_0", "+ T_out_rising_50_0"}),
      .waveforms = source("io") + source("tri") + source("out"),
  };
  EXPECT_EQ(libraryOf(header + component + pins + models), text(expected));
}

const std::string driver = header + component + pinTable + "1 OUT out\n" +
                           model("out", "Output", pulldown + pullup + rising + falling) + "[End]\n";

TEST(ComponentTemplate, LeavesNoTraceOfItsComments) {
  EXPECT_EQ(libraryOf(driver),
            text({.ports = "+ T_OUT   CTL_OUT \n",
                  .outputs = "U_OUT T_OUT GND CTL_OUT GND POWER M_out\n",
                  .models = device("out", "Output", polarity + drive + twoWaveforms),
                  .waveformPorts = waveformPortsOf("out"),
                  .waveforms = sourcesOf("out")}));
}

TEST(ComponentTemplate, WritesTheThresholdOfAPairThreeTimesInEachBracket) {
  const std::string pins = pinTable + lines({"1 A in", "2 B in", "3 C od", "4 D od",  //
                                             "[Diff Pin] inv_pin vdiff", "1 2 NA", "3 4 -25m"});
  const std::string models = model("in", "Input", "") +
                             model("od", "I/O_open_drain", pulldown + rising + falling) + "[End]\n";
  EXPECT_EQ(libraryOf(header + component + pins + models),
            text({.ports = lines({"+ T_A  T_B   MON_A ", "+ T_C  T_D   CTL_C   MON_C "}),
                  .inputs = "U_A T_A T_B MON_A GND POWER M_in VINH=[0.2,0.2,0.2] "
                            "VINL=[-0.2,-0.2,-0.2]  DIFFERENTIAL=1\n",
                  .inputOutputs = "U_C T_C T_D CTL_C MON_C EN_C GND POWER  M_od DIFFERENTIAL=1 "
                                  "VINH=[-0.025,-0.025,-0.025] VINL=[--0.025,--0.025,--0.025]\n",
                  .models = device("in", "Input", polarity + thresholds) +
                            device("od", "I_O_open_switch",
                                   polarity + pulldownDrive + openWaveforms + thresholds),
                  .waveformPorts = waveformPortsOf("od"),
                  .waveforms = sourcesOf("od")}));
}

// A type that no instance loop walks: the ports of a single pin and of a pair, and the device.
struct PortCase {
  ModelType type;
  const char* single;
  const char* pair;
  std::string device;
};

const PortCase portCases[] = {
    {ModelType::unknown, "+ T_A ", "+ T_A  T_B ", device("any", "unknown", polarity)},
    {ModelType::inputEcl, "+ T_A   MON_A ", "+ T_A  T_B   MON_A ",
     device("any", "Input_ECL", polarity + thresholds)},
    {ModelType::series, "+ T_A ", "+ T_A  T_B ", device("any", "Series", polarity)},
    {ModelType::seriesSwitch, "+ T_A ", "+ T_A  T_B ", device("any", "Series_switch", polarity)},
    {ModelType::inputDiff, "+ T_A   MON_A ", "+ T_A  T_B   MON_A ",
     device("any", "Input_diff", polarity + thresholds)},
    {ModelType::outputDiff, "+ T_A   CTL_A ", "+ T_A  T_B   CTL_A ",
     device("any", "Output_diff", polarity)},
    {ModelType::inputOutputDiff, "+ T_A   CTL_A   MON_A   EN_A ",
     "+ T_A  T_B   CTL_A   MON_A   EN_A ",
     device("any", "I_O_diff", polarity + enable + thresholds)},
    {ModelType::threeStateDiff, "+ T_A   CTL_A   EN_A ", "+ T_A  T_B   CTL_A   EN_A ",
     device("any", "3_state_diff", polarity + enable)},
};

TEST(ComponentTemplate, GivesPortsButNoInstanceToATypeWithoutALoop) {
  const std::string content =
      header + component + pinTable + "1 A any\n" + model("any", "Input", "") + "[End]\n";
  for (const PortCase& each : portCases) {
    EXPECT_EQ(libraryOf(content, [&](Parsed& it) { it.model().type = each.type; }),
              text({.ports = lines({each.single}), .models = each.device}));
  }
}

TEST(ComponentTemplate, SpacesEachPortLineByTheBranchesTaken) {
  const std::string content = header + component + pinTable +
                              lines({"1 A any", "2 B any", "[Diff Pin] inv_pin", "1 2"}) +
                              model("any", "Input", "") + "[End]\n";
  for (const PortCase& each : portCases) {
    EXPECT_EQ(libraryOf(content, [&](Parsed& it) { it.model().type = each.type; }),
              text({.ports = lines({each.pair}), .models = each.device}));
  }
}

TEST(ComponentTemplate, TellsThePolaritiesOfADevice) {
  Library expected = {.ports = "+ T_A   CTL_A   EN_A \n",
                      .threeStates = "U_A T_A GND CTL_A EN_A GND POWER M_tri\n",
                      .waveformPorts = waveformPortsOf("tri"),
                      .waveforms = sourcesOf("tri")};
  expected.models = device("tri", "3_state",
                           lines({"** 0: non-inverting, 1: inverting", "+ \tPOLARITY=1 ",
                                  "** 0: active-high, 1: active-low", "+\tENABLE_POLARITY=1"}) +
                               drive + twoWaveforms);
  EXPECT_EQ(libraryOf(header + component + pinTable + "1 A tri\n" +
                      model("tri", "3-state\nPolarity Inverting\nEnable Active-Low",
                            pulldown + pullup + rising + falling) +
                      "[End]\n"),
            text(expected));
}

TEST(ComponentTemplate, GivesFixturesThatDifferInAFractionTheSameNode) {
  const std::string other = lines({"[Rising Waveform]", "R_fixture = 50.9", "V_fixture = -0.9",  //
                                   "0 1 1 1"});
  const std::string corner = lines({"+", "+       0, 1, ", "+", "+       0, 1, ",  //
                                    "+", "+       0, 1, "});
  EXPECT_EQ(
      libraryOf(header + component + pinTable + "1 A out\n" +
                model("out", "Output", pulldown + pullup + rising + other) + "[End]\n"),
      text({.ports = "+ T_A   CTL_A \n",
            .outputs = "U_A T_A GND CTL_A GND POWER M_out\n",
            .models = device(
                "out", "Output",
                polarity + drive +
                    waveformData(risingCorners + corner + missingCorners + missingCorners,
                                 "2, 1, 0, 0", "50, 50, 50, 50.9, 50.9, 50.9, 0, 0, 0, 0, 0, 0",
                                 "0, 0, 0, -0.9, -0.9, -0.9, 0, 0, 0, 0, 0, 0")),
            .waveformPorts = lines({"+ T_out_rising_50_0", "+ T_out_rising_50_0"}),
            .waveforms = sourceOf("out_rising_50_0", "0, 0, 1e-09, 3") +
                         sourceOf("out_rising_50_0", "0, 1")}));
}

}  // namespace
}  // namespace ibis::testing
