#include "harness/harness.h"

namespace ibis::testing {
namespace {

const std::string header =
    lines({"[IBIS Ver] 4.2", "[File Name] zoo.ibs", "[File Rev] 1.3", "[Date] 1 May 2024"});

/// The one output file of a load without a message.
std::string onlyFile(const std::string& text, const LoadOptions& options, const std::string& name) {
  const Loaded loaded = loadText(text, options);
  EXPECT_EQ(texts(loaded.errors), Texts());
  EXPECT_EQ(texts(loaded.warnings), Texts());
  EXPECT_EQ(loaded.written, Texts{name});
  EXPECT_EQ(loaded.files.size(), 1U);
  return loaded.files.at(name);
}

std::string packageFile(const std::string& text, const std::string& subcircuit = "dut") {
  return onlyFile(text, {.mode = "package", .subcircuit = subcircuit}, subcircuit + ".lb");
}

/// The page that a load writes beside its library.
std::string page(const std::string& text, const LoadOptions& options = {}) {
  const Loaded loaded = loadText(text, options);
  EXPECT_EQ(texts(loaded.errors), Texts());
  EXPECT_EQ(texts(loaded.warnings), Texts());
  EXPECT_EQ(loaded.written, (Texts{"dut.lb", "dut_INFO.html"}));
  return loaded.files.at("dut_INFO.html");
}

/// The script of a load from a file whose path is known.
std::string script(const std::string& text, const std::string& source,
                   const std::string& component = {}) {
  const TemporaryFolder output;
  writeWholeFile(source, text);
  Load load({.source = source,
             .mode = "script",
             .component = component,
             .rootDirectory = output.path(),
             .subcircuit = "dut",
             .pins = {},
             .selections = {}});
  load.read();
  EXPECT_EQ(texts(load.file().data().errors), Texts());
  EXPECT_EQ(load.write(), Texts{output.file("ibis_components.kvscr")});
  return output.contents().at("ibis_components.kvscr");
}

const std::string packageHead =
    lines({"", "*******************************************************************************",
           "** IBIS PACKAGE MODEL",
           "*******************************************************************************", "",
           "** IBIS original file: zoo.ibs", "** IBIS version:       4.2",
           "** Component:          Zoo-1", "** Manufacturer:       Bench & Co",
           "** File revision:      1.3", "** Date:               1 May 2024"});

const std::string noQuotes =
    lines({"** Source: ", "", "** Notes:", "", "** Disclaimer", "", "** Copyright", "", "", ""});

const std::string zoo = lines({"[Component] Zoo-1", "[Manufacturer] Bench & Co"});

TEST(PackageTemplate, BuildsASubcircuitFromThePinsOfAComponentWithoutPackageModel) {
  const std::string text =
      header +
      lines({"[Source] bench", "  two boards", "[Notes]", "untested", "[Disclaimer] as is",
             "[Copyright] free"}) +
      zoo +
      lines({"[Package]", "R_pkg 50m 40m 60m", "L_pkg 2n NA NA", "C_pkg 1p 0.5p 2p",
             "[Pin] signal_name model_name R_pin L_pin C_pin", "10 D-1 NC 0.1 1n NA", "2 D0 NC"});
  EXPECT_EQ(packageFile(text),
            packageHead + lines({"** Source: ",
                                 "**               bench",
                                 "**        two boards",  //
                                 "** Notes:",
                                 "**             untested",
                                 "** Disclaimer",
                                 "**                   as is",
                                 "** Copyright",
                                 "**                  free",  //
                                 "",
                                 "",  //
                                 "",  //
                                 ".SUBCKT dut REF",
                                 "+ IN_D_1",
                                 "+ IN_D0",
                                 "+ OUT_D_1",
                                 "+ OUT_D0",
                                 "+ PARAMS: CORNER=0",
                                 "",
                                 "** Package RLC",
                                 "URLC_D_1 IN_D_1 OUT_D_1 REF RLC L=[1e-09, 1e-09, 1e-09] "
                                 "C=[1e-12, 1e-12, 1e-12] R=[0.1, 0.1, 0.1]",
                                 "URLC_D0 IN_D0 OUT_D0 REF RLC L=[2e-09, 2e-09, 2e-09] "
                                 "C=[1e-12, 5e-13, 2e-12] R=[0.05, 0.04, 0.06]",
                                 "",
                                 ".model RLC IBIS_rlc_package N_CORNER=3 CORNER={corner}",
                                 ".ENDS IBIS_PKG_Zoo-1",
                                 ""}));
}

const std::string packageModel =
    lines({"[Define Package Model] case_a", "[Number Of Pins] 2", "[Pin Numbers]", "1 2",
           "[Model Data]", "[Inductance Matrix] Sparse_matrix", "[Row] 1", "1 2n", "2 0.5n",
           "[Row] 2", "2 3n", "[End Model Data]", "[End Package Model]"});

TEST(PackageTemplate, TakesPortsAndBodyFromAPackageModelDirectlyBehindThePlusSign) {
  const std::string text = header + zoo +
                           lines({"[Package Model] case_a", "[Pin] signal_name model_name",
                                  "1 D0 NC", "2 CLK NC", "3 D1 NC"}) +
                           packageModel;
  EXPECT_EQ(packageFile(text),
            packageHead + noQuotes +
                lines({"** Package Model: case_a", ".SUBCKT dut REF",  //
                       "+ IN_D0 IN_CLK OUT_D0 OUT_CLK",                //
                       "BC_1 IN_D0 REF q=", "BC_2 IN_CLK REF q=",
                       "BL_1 IN_D0 L_D0 flux= 2e-09*I(BL_1) + 5e-10*I(BL_2)",
                       "BL_2 IN_CLK L_CLK flux= 5e-10*I(BL_1) + 3e-09*I(BL_2)",
                       "BR_1 L_D0 OUT_D0 v=", "BR_2 L_CLK OUT_CLK v=", "", ".ENDS "}));
}

// A name of its own closes the subcircuit, and the parameter's case differs from its use.
TEST(PackageTemplate, KeepsItsOddNamesForASubcircuitOfAnyName) {
  const std::string text = header + zoo + lines({"[Pin] signal_name model_name", "1 GND GND"});
  EXPECT_EQ(packageFile(text, "sub"),
            packageHead + noQuotes +
                lines({"", ".SUBCKT sub REF", "+ IN_GND", "+ OUT_GND", "+ PARAMS: CORNER=0", "",
                       "** Package RLC",
                       "URLC_GND IN_GND OUT_GND REF RLC L=[0, 0, 0] C=[0, 0, 0] R=[0, 0, 0]", "",
                       ".model RLC IBIS_rlc_package N_CORNER=3 CORNER={corner}",
                       ".ENDS IBIS_PKG_Zoo-1", ""}));
}

TEST(PackageTemplate, WritesBothHalvesOfAPairAndPinsThatAreNotWanted) {
  const std::string text =
      header + zoo +
      lines({"[Pin] signal_name model_name", "1 P T", "2 N T", "3 X T", "[Diff Pin] inv_pin", "1 2",
             "[Model] T", "Model_type Terminator"});
  EXPECT_EQ(onlyFile(text, {.mode = "package", .pins = {"3"}}, "dut.lb"),
            packageHead + noQuotes +
                lines({"", ".SUBCKT dut REF", "+ IN_P", "+ IN_N", "+ IN_X", "+ OUT_P", "+ OUT_N",
                       "+ OUT_X", "+ PARAMS: CORNER=0", "", "** Package RLC",
                       "URLC_P IN_P OUT_P REF RLC L=[0, 0, 0] C=[0, 0, 0] R=[0, 0, 0]",
                       "URLC_N IN_N OUT_N REF RLC L=[0, 0, 0] C=[0, 0, 0] R=[0, 0, 0]",
                       "URLC_X IN_X OUT_X REF RLC L=[0, 0, 0] C=[0, 0, 0] R=[0, 0, 0]", "",
                       ".model RLC IBIS_rlc_package N_CORNER=3 CORNER={corner}",
                       ".ENDS IBIS_PKG_Zoo-1", ""}));
}

TEST(PackageTemplate, LosesTheFilesNameButNotTheSubcircuitsWithoutAName) {
  const std::string text = header + zoo + lines({"[Pin] signal_name model_name"});
  EXPECT_EQ(packageFile(text, ""),
            packageHead + noQuotes +
                lines({"", ".SUBCKT Zoo_1 REF", "+ PARAMS: CORNER=0", "", "** Package RLC", "",
                       ".model RLC IBIS_rlc_package N_CORNER=3 CORNER={corner}",
                       ".ENDS IBIS_PKG_Zoo-1", ""}));
}

/// The page's lines up to its first selector.
const std::string pageHead =
    "\n<html>\n\n<head>\n\n<style>\n\n"
    "h1, h2, h3, p { font-family: 'Open Sans',sans-serif; }\n"
    "h1 { font-size: 22px;}\n"
    "h2 { font-size: 19px;}\n"
    "h3 { font-size: 17px;}\n"
    ".datatable { margin-left: 80px; font-family: 'Open Sans',sans-serif; font-size: 15px}\n"
    ".datatable th { text-align: left;background-color: #bc2c0f;color: white;}\n"
    ".datatable td { width: 200px; font-size: 12px}\n"
    ".headertable { width: 100%; margin-left: 40px; font-family: 'Open Sans',sans-serif;}\n"
    ".headertable td { width: auto;}\n"
    "</style>\n\n</head>\n\n\n\n"
    "<h1>IBIS Information file</h1>\n\n"
    "<h2>IBIS File</h2>\n\n"
    "<table class=\"headertable\">\n"
    "<tr><td>IBIS original file</td><td>zoo.ibs</td></tr>\n"
    "<tr><td>IBIS version:</td><td>4.2</td></tr>\n"
    "<tr><td>Component</td><td>Zoo-1</td></tr>\n"
    "<tr><td>Manufacturer</td><td>Bench & Co</td></tr>\n"
    "<tr><td>File revision</td><td>1.3</td></tr>\n"
    "<tr><td>Date</td><td>1 May 2024</td></tr>\n"
    "</table>\n\n"
    "<h2>Subcircuit dut</h2>\n\n"
    "<h3>Model Selectors</h3>\n";

const std::string modelsHead =
    "\n<h3>Models</h3>\n\n"
    "<table class=\"datatable\">\n\n"
    "<tr><th colspan=\"6\">Model</th><th colspan=\"5\">Waveforms</th>"
    "<th colspan=\"2\">Inputs</th></tr>\n\n"
    "<tr><th>Name</th>  <th>Type</th>  <th>Spice Model Name</th><th>Spice Type</th>    "
    "<th>Polarity</th>  <th>Enable Polarity</th>  <th>Pullup ref</th> <th>Pulldown ref</th>"
    "<th>R Fixture</th>  <th>V fixture</th><th>Times</th>            <th>Low thresh.</th>"
    "<th>High thresh.</th></tr>\n";

const std::string pageEnd = "</table>\n\n</html>";

// "100%" is what the only escaped percent sign gives; no line feed ends the page.
TEST(InfoTemplate, WritesAPageWithoutModelsThatEndsInItsLastTag) {
  EXPECT_EQ(page(header + zoo + "[Pin] signal_name model_name\n"), pageHead + modelsHead + pageEnd);
}

const std::string tables = lines({"[Voltage Range] 3.3 3.0 3.6", "[Pulldown]", "0 0 0 0",
                                  "1 10m 5m 20m", "[Pullup]", "0 0 0 0", "1 -10m -5m -20m"});

const std::string waveforms = lines({"[Rising Waveform]",
                                     "R_fixture = 50",
                                     "V_fixture = 0",
                                     "0 0 0 0",
                                     "1n 3 2.5 3.5",
                                     "[Rising Waveform]",
                                     "R_fixture = 50",
                                     "V_fixture = 3.3",
                                     "V_fixture_min = 3.0",
                                     "V_fixture_max = 3.6",
                                     "0.1n 0 0 0",
                                     "2n 3 2.5 3.5",
                                     "[Falling Waveform]",
                                     "R_fixture = 75.5",
                                     "V_fixture = 0",
                                     "0 3 2.5 3.5",
                                     "1n 0 0 0",
                                     "[Falling Waveform]",
                                     "R_fixture = 75.5",
                                     "V_fixture = 3.3",
                                     "0 3 2.5 3.5",
                                     "1n 0 0 0"});

TEST(InfoTemplate, ShowsEachModelOfTheComponentInTheColumnsItHas) {
  const std::string text = header + zoo +
                           lines({"[Pin] signal_name model_name",
                                  "1 D0 Buf",
                                  "2 D1 In-1",
                                  "3 D2 Drv",
                                  "4 VSS GND",
                                  "[Model] Buf",
                                  "Model_type I/O_open_source",
                                  "Polarity Inverting",
                                  "Vinl 0.8",
                                  "Vinh 2.0",
                                  "[Voltage Range] 5 4.5 5.5",
                                  "[Pullup]",
                                  "0 0 0 0",  //
                                  "[Rising Waveform]",
                                  "[Model] In-1",
                                  "Model_type Input",
                                  "Vinl 0.7",
                                  "Vinh 1.7",
                                  "[Model] Drv",
                                  "Model_type 3-state",
                                  "Enable Active-Low"}) +
                           tables + waveforms + lines({"[Model] Unused", "Model_type Terminator"});
  EXPECT_EQ(page(text),
            pageHead + modelsHead +
                lines({"<tr><td>Buf</td><td>I_O_open_source</td><td>M_Buf</td>   "
                       "<td>IBIS_I_O_open_switch</td><td>1</td>",
                       "",
                       "\t<td>n/a</td>",
                       "",
                       "\t<td>5, 4.5, 5.5</td><td>0, 0, 0</td><td>0, 0, 0, 0, 0, 0</td>"
                       "<td>0, 0, 0, 0, 0, 0</td><td>start=0, end=0</td>",
                       "",
                       "\t<td>0.8, 0.8, 0.8</td><td>2, 2, 2</td>",
                       "</tr>",
                       "",
                       "<tr><td>In-1</td><td>Input</td><td>M_In_1</td>   "
                       "<td>IBIS_Input</td><td>0</td>",
                       "",
                       "\t<td>n/a</td>",
                       "",
                       "\t<td></td><td></td><td></td><td></td><td></td>",
                       "",
                       "\t<td>0.7, 0.7, 0.7</td><td>1.7, 1.7, 1.7</td>",
                       "</tr>",
                       "",
                       "<tr><td>Drv</td><td>3_state</td><td>M_Drv</td>   "
                       "<td>IBIS_3_state</td><td>0</td>",
                       "",
                       "\t<td>1</td>",
                       "",
                       "\t<td>3.3, 3, 3.6</td><td>0, 0, 0</td>"
                       "<td>50, 50, 50, 50, 50, 50, 75.5, 75.5, 75.5, 75.5, 75.5, 75.5</td>"
                       "<td>0, 0, 0, 3.3, 3, 3.6, 0, 0, 0, 3.3, 3.3, 3.3</td>"
                       "<td>start=1e-10, end=2e-09</td>",
                       "",
                       "\t<td></td><td></td>",
                       "</tr>",
                       "",
                       "<tr><td>GND</td><td>GND</td><td>M_GND</td>   <td>IBIS_GND</td><td>0</td>",
                       "",
                       "\t<td>n/a</td>",
                       "",
                       "\t<td></td><td></td><td></td><td></td><td></td>",
                       "",
                       "\t<td></td><td></td>",
                       "</tr>",
                       ""}) +
                pageEnd);
}

TEST(InfoTemplate, ListsTheSelectionsOfTheUser) {
  const std::string text =
      header + zoo +
      lines({"[Pin] signal_name model_name", "[Model Selector] S", "A fast one", "B slow one"});
  EXPECT_EQ(page(text, {.selections = {"slow\\sone", "fast\\sone"}}),
            pageHead + "slow one\nfast one\n" + modelsHead + pageEnd);
}

/// What the loops leave between the fixed lines of the script.
struct Script {
  std::string components = {};
  std::string selectors = {};
  std::string pins = {};
  std::string pairs = {};
  std::string gndClamps = {};
  std::string powerClamps = {};
  std::string names = {};
};

const std::string noVoltages =
    lines({"+\t0, 0, 0, 0, 0, 0,", "+\t0, 0, 0, 0, 0, 0,", "+\t0, 0, 0, 0, 0, 0,"});
const std::string builtInNames = lines({"+ 'GND',", "+ 'POWER',", "+ 'NC',"});

std::string text(const Script& script, const std::string& source) {
  return "** IBIS User interface script for zoo.ibs\n\nArguments mode schemPath\n\n"
         "Let components = [\n" +
         script.components + "+   '4']\n\n\nLet modelSelectors = [\n" + script.selectors +
         "+   '4']\n\nLet pinDefs = [\n" + script.pins + "+   '7']\n\nLet diffPins = [\n" +
         script.pairs + "+   '3']\n\n\nLet gndclamps = [\n" + noVoltages + script.gndClamps +
         "+ 6]\n\nLet powerclamps = [\n" + noVoltages + script.powerClamps +
         "+ 6]\n\nLet modelNames = [\n" + builtInNames + script.names +
         "+ '1']\n\n\nif mode='component' then\n"
         "\tibis_configure_model components pinDefs modelSelectors \"'" +
         source +
         "'\" schemPath\n"
         "elseif mode='package' then\n"
         "\tibis_build_package components pinDefs modelSelectors \"'" +
         source +
         "'\" schemPath\n"
         "elseif mode='debug' then\n"
         "\tibis_debug components pinDefs modelSelectors \"'" +
         source +
         "'\" gndclamps powerclamps modelNames\n"
         "else\t\n\tEcho {'Unknown MODE'}\nendif\n\n\n";
}

const std::string twoComponents =
    header + zoo +
    lines({"[Package Model] case_a", "[Pin] signal_name model_name", "1 D+ Drv", "2 D- Drv",
           "3 EN In-1", "4 VSS GND", "[Diff Pin] inv_pin vdiff", "1 2 0.15", "[Component] Zoo.2",
           "[Package Model] case_b", "[Pin] signal_name model_name", "A1 OUT Term", "[Model] Drv",
           "Model_type 3-state"}) +
    tables + waveforms +
    lines({"[Model] In-1", "Model_type Input", "Vinl 0.8", "Vinh 2", "[Voltage Range] 5 NA NA",
           "[Model] Term", "Model_type Terminator", "Polarity Inverting",
           "[Pulldown Reference] -2 -2.1 -1.9", "[GND Clamp Reference] -2 -2.1 -1.9"});

const Script twoComponentsScript = {
    .components = lines({"+   'Zoo-1', '2', 'case_a', 'Zoo_1',",  //
                         "+   'Zoo.2', '1', 'case_a', 'Zoo_2',"}),
    .pins = lines({"+   'Zoo-1', '1', 'D_', '3_state', 'Drv', 'D__1', 'NonInverting'",
                   "+   'Zoo-1', '3', 'EN', 'Input', 'In-1', '', 'NonInverting'",
                   "+   'Zoo-1', '4', 'VSS', 'GND', 'GND', '', 'NonInverting'",
                   "+   'Zoo.2', 'A1', 'OUT', 'Terminator', 'Term', '', 'Inverting'"}),
    .pairs = "+\t'1', '2', '0.15'\n",
    .gndClamps = lines(
        {"+\t0, 0, 0, 0, 0, 0,", "+\t0, 0, 0, 0, 0, 0,", "+\t-2, -2.1, -1.9, -2, -2.1, -1.9,"}),
    .powerClamps =
        lines({"+\t3.3, 3, 3.6, 3.3, 3, 3.6,", "+\t5, 5, 5, 5, 5, 5,", "+\t0, 0, 0, 0, 0, 0,"}),
    .names = lines({"+ 'Drv',", "+ 'In-1',", "+ 'Term',"}),
};

TEST(ScriptTemplate, HandsComponentsPinsPairsAndModelsOfTheFileOver) {
  const TemporaryFolder input;
  const std::string source = input.file("a b.ibs");
  EXPECT_EQ(script(twoComponents, source), text(twoComponentsScript, source));
}

TEST(ScriptTemplate, BeginsWithItsFirstLineOfText) {
  const TemporaryFolder input;
  const std::string source = input.file("input.ibs");
  EXPECT_EQ(script(header + "[Component] X\n", source),
            text({.components = "+   'X', '0', '', 'X',\n"}, source));
}

TEST(ScriptTemplate, ShowsThePackageModelOfTheRunsComponentInEveryRow) {
  const TemporaryFolder input;
  const std::string source = input.file("input.ibs");
  const std::string components =
      "[Component] X\n[Package Model] x\n"
      "[Component] Y\n[Package Model] y\n[Component] Z\n";
  EXPECT_EQ(script(header + components, source, "Y"),
            text({.components = lines({"+   'X', '0', 'y', 'X',", "+   'Y', '0', 'y', 'Y',",
                                       "+   'Z', '0', 'y', 'Z',"})},
                 source));
}

TEST(ScriptTemplate, WritesItsQuotesAroundDescriptionsWithoutQuotes) {
  const TemporaryFolder input;
  const std::string source = input.file("input.ibs");
  const std::string selector =
      "[Component] X\n[Model Selector] Sel\nT \"The 'fast' one\"\n"
      "T=slow one\nLost\n[Model] T\nModel_type Terminator\n";
  EXPECT_EQ(script(header + selector, source),
            text({.components = "+   'X', '0', '', 'X',\n",
                  .selectors = lines({"+   'Sel', 'T', \"'The fast one'\", 'Terminator',",
                                      "+   'Sel', 'T', \"'slow one'\", 'Terminator',",
                                      "+   'Sel', 'Lost', \"''\", 'unknown',"}),
                  .gndClamps = "+\t0, 0, 0, 0, 0, 0,\n",
                  .powerClamps = "+\t0, 0, 0, 0, 0, 0,\n",
                  .names = "+ 'T',\n"},
                 source));
}

TEST(OtherTemplates, SymbolModeWritesNothing) {
  const Loaded loaded = loadText(twoComponents, {.mode = "symbol"});
  EXPECT_MESSAGES(loaded.errors);
  EXPECT_MESSAGES(loaded.warnings);
  EXPECT_EQ(loaded.written, Texts());
  EXPECT_TRUE(loaded.files.empty());
}

TEST(OtherTemplates, WriteNoFileBesideAnError) {
  for (const char* mode : {"package", "script", "model"}) {
    const Loaded loaded = loadText("[Component] X\n[Pin]\n1 S none\n", {.mode = mode});
    EXPECT_MESSAGES(loaded.errors, "Line 3: Model referenced by pin '1' has not been defined");
    EXPECT_EQ(loaded.written, Texts());
    EXPECT_TRUE(loaded.files.empty());
  }
}

}  // namespace
}  // namespace ibis::testing
