// Each message of the program's own table that an export tells.

#include <algorithm>

#include "export_files.h"
#include "finding_messages.h"
#include "harness/harness.h"

namespace ibis::testing {
namespace {

using cli::Export;
using cli::ExportRequest;
using Diagnostics = std::vector<Diagnostic>;

// The model stands on line 2.
const std::string modelHead = "[IBIS Ver] 4.2\n[Model] m\n";
const std::string range = "[Voltage Range] 2 NA NA\n";
const std::string clamp = "[GND Clamp]\n-2 -0.2 NA NA\n0 0 NA NA\n";

// Drivers of 10 ohm to each rail, so that a load of 50 ohm to a rail takes 1/6 of the supply.
const std::string pulls =
    "[Pulldown]\n-2 -0.2 NA NA\n4 0.4 NA NA\n[Pullup]\n-2 0.2 NA NA\n4 -0.4 NA NA\n";
const std::string ramp = "[Ramp]\ndV/dt_r 1/1n NA NA\ndV/dt_f 1/1n NA NA\n";
const std::string output = "Model_type Output\nC_comp 0 0 0\n" + range + pulls + ramp;

std::string input(const std::string& more) {
  return "Model_type Input\nVinl = 0.8\nVinh = 1.2\nC_comp 1p NA NA\n" + range + more;
}

std::string waveform(const std::string& edge, const std::string& fixture, const std::string& rows) {
  return "[" + edge + " Waveform]\nR_fixture = 50\nV_fixture = " + fixture + "\n" + rows;
}

std::string onLow(const std::string& rows) { return waveform("Rising", "0", rows); }
std::string onHigh(const std::string& rows) { return waveform("Rising", "2", rows); }

// What the tables and coefficients that go straight from one level to the other make.
const std::string risingOnLow = "0 0 NA NA\n1n 0 NA NA\n2n 1.6666667 NA NA\n4n 1.6666667 NA NA\n";
const std::string risingOnHigh = "0 0.3333333 NA NA\n1n 0.3333333 NA NA\n2n 2 NA NA\n4n 2 NA NA\n";
const std::string goodRising = onLow(risingOnLow) + onHigh(risingOnHigh);
const std::string goodFalling =
    waveform("Falling", "0", "0 1.6666667 NA NA\n1n 1.6666667 NA NA\n2n 0 NA NA\n4n 0 NA NA\n") +
    waveform("Falling", "2", "0 2 NA NA\n1n 2 NA NA\n2n 0.3333333 NA NA\n4n 0.3333333 NA NA\n");

const std::string estimated =
    "Model m: Estimated waveform as no waveform data in model file. Waveform may deviate "
    "substantially from actual device";

const std::string receiver =
    "[Model] in\nModel_type Input\nVinl = 0.8\nVinh = 1.2\nC_comp 1p NA NA\n[Voltage Range] 2 NA "
    "NA\n";

// The component stands on line 2.
std::string component(const std::string& pins, const std::string& more = {}) {
  return "[IBIS Ver] 4.2\n[Component] part\n[Manufacturer] maker\n" + more +
         "[Package]\nR_pkg 1 NA NA\nL_pkg 1n NA NA\nC_pkg 1p NA NA\n[Pin] signal_name "
         "model_name\n" +
         pins;
}

// A package model of the pins 1 and 2 with these matrices.
std::string packageModel(const std::string& resistance, const std::string& inductance,
                         const std::string& capacitance) {
  return "[Define Package Model] pack\n[Manufacturer] maker\n[OEM] maker\n[Description] two pins\n"
         "[Number Of Pins] 2\n[Pin Numbers]\n1\n2\n[Model Data]\n[Resistance Matrix] "
         "Sparse_matrix\n" +
         resistance + "[Inductance Matrix] Sparse_matrix\n" + inductance +
         "[Capacitance Matrix] Sparse_matrix\n" + capacitance +
         "[End Model Data]\n[End Package Model]\n";
}

const std::string plainResistance = "[Row] 1\n1 0.1\n[Row] 2\n2 0.1\n";
const std::string plainInductance = "[Row] 1\n1 4n\n2 1n\n[Row] 2\n2 4n\n";
const std::string plainCapacitance = "[Row] 1\n1 2p\n2 -1p\n[Row] 2\n2 2p\n";

class ExportMessages : public ::testing::Test {
 protected:
  Export exported(const std::string& text, ExportRequest request) const {
    request.source = folder_.write("part.ibs", text + "[End]\n");
    if (request.folder == ".") request.folder = folder_.file("out");
    return cli::exportFile(request);
  }

  Diagnostics errorsOf(const std::string& text, const ExportRequest& request = {}) const {
    const Export result = exported(text, request);
    EXPECT_MESSAGES(result.warnings);
    EXPECT_EQ(result.files, Texts());
    for (const Diagnostic& each : result.errors) EXPECT_EQ(each.line, 0);
    return result.errors;
  }

  Diagnostics warningsOf(const std::string& text, const ExportRequest& request = {}) const {
    const Export result = exported(text, request);
    EXPECT_MESSAGES(result.errors);
    EXPECT_EQ(result.files.size(), 1u);
    for (const Diagnostic& each : result.warnings) EXPECT_EQ(each.severity, Severity::warning);
    return result.warnings;
  }

  // What is told of the component's coupled package.
  Diagnostics packageWarnings(const std::string& model,
                              const std::string& pins = "1 A in\n2 B in\n",
                              ExportRequest request = {}) const {
    request.package = cli::PackageKind::coupled;
    const Diagnostics warnings =
        warningsOf(component(pins, "[Package Model] pack\n") + receiver + model, request);
    for (const Diagnostic& each : warnings) EXPECT_EQ(each.line, 0);
    return warnings;
  }

  // What is told of a model alone; each message has the model's line.
  Diagnostics modelWarnings(const std::string& model, const std::string& corner = "typ") const {
    ExportRequest request;
    request.allModels = true;
    request.corners = {corner};
    const Diagnostics warnings = warningsOf(modelHead + model, request);
    for (const Diagnostic& each : warnings) EXPECT_EQ(each.line, 2) << each.text;
    return warnings;
  }

  TemporaryFolder folder_;
};

TEST_F(ExportMessages, TellOfAModelThatIsNotThere) {
  ExportRequest request;
  request.models = {"none", "m"};
  EXPECT_MESSAGES(errorsOf(modelHead + input(clamp), request),
                  "The file has no model 'none' that can be exported");
}

TEST_F(ExportMessages, TellOfAComponentThatIsNotThere) {
  ExportRequest request;
  request.component = "other";
  EXPECT_MESSAGES(errorsOf(component("1 A in\n") + receiver, request),
                  "The file has no component 'other'");
}

TEST_F(ExportMessages, TellOfAPinThatIsNotThere) {
  ExportRequest request;
  request.pins = {"1", "7"};
  EXPECT_MESSAGES(errorsOf(component("1 A in\n") + receiver, request),
                  "Component 'part' has no pin '7'");
}

TEST_F(ExportMessages, TellOfAPartWithoutDevices) {
  EXPECT_MESSAGES(errorsOf(component("1 A GND\n2 B POWER\n")),
                  "Nothing to export: no driver, receiver or terminator is left");
}

TEST_F(ExportMessages, TellOfAFileThatCannotBeWritten) {
  std::filesystem::create_directories(folder_.file("out/part_typ.inc/inside"));
  EXPECT_MESSAGES(errorsOf(component("1 A in\n") + receiver),
                  "Cannot write file '" + folder_.file("out/part_typ.inc") + "'");
}

TEST_F(ExportMessages, TellOfMoreCouplingsThanAnyoneWants) {
  constexpr int count = 25;
  std::string pins;
  std::string numbers;
  std::string inductance;
  for (int i = 1; i <= count; ++i) {
    const std::string name = std::to_string(i);
    pins += name + " S in\n";
    numbers += name + "\n";
    inductance += "[Row] " + name + "\n" + name + " 4n\n";
    if (i < count) inductance += std::to_string(i + 1) + " 1n\n";
  }
  const std::string model =
      "[Define Package Model] pack\n[Manufacturer] maker\n[OEM] maker\n[Description] many\n"
      "[Number Of Pins] 25\n[Pin Numbers]\n" +
      numbers + "[Model Data]\n[Inductance Matrix] Sparse_matrix\n" + inductance +
      "[End Model Data]\n[End Package Model]\n";
  ExportRequest request;
  request.package = cli::PackageKind::coupled;
  const std::string text = component(pins, "[Package Model] pack\n") + receiver + model;
  EXPECT_MESSAGES(errorsOf(text, request),
                  "The coupled package of 25 pins is too large (couplings: 24); choose pins with "
                  "-p, or the smallest coupling with --min-coupling");
  request.hasSmallestCoupling = true;
  EXPECT_MESSAGES(warningsOf(text, request));
}

// Whatever somebody chooses: the matrices of so many pins take too long.
TEST_F(ExportMessages, TellOfMorePinsThanCanBeCoupled) {
  constexpr int count = 1001;
  std::string pins;
  std::string numbers;
  for (int i = 1; i <= count; ++i) {
    pins += std::to_string(i) + " S in\n";
    numbers += std::to_string(i) + "\n";
  }
  const std::string model =
      "[Define Package Model] pack\n[Manufacturer] maker\n[OEM] maker\n[Description] many\n"
      "[Number Of Pins] 1001\n[Pin Numbers]\n" +
      numbers +
      "[Model Data]\n[Inductance Matrix] Sparse_matrix\n[Row] 1\n1 4n\n2 1n\n3 10p\n4 nan\n"
      "[Row] 2\n2 4n\n[Row] 3\n3 4n\n[End Model Data]\n[End Package Model]\n";
  ExportRequest request;
  request.package = cli::PackageKind::coupled;
  request.hasSmallestCoupling = true;
  EXPECT_MESSAGES(errorsOf(component(pins, "[Package Model] pack\n") + receiver + model, request),
                  "The coupled package of 1001 pins is too large (couplings: 1); choose pins with "
                  "-p, or the smallest coupling with --min-coupling");
}

TEST_F(ExportMessages, TellOfEntriesThatAreNotFinite) {
  EXPECT_MESSAGES(
      packageWarnings(packageModel("[Row] 1\n1 0.1\n2 nan\n[Row] 2\n2 0.1\n",
                                   "[Row] 1\n1 4n\n2 inf\n[Row] 2\n2 4n\n", plainCapacitance)),
      "Package model 'pack': entries that are not finite are left out: 2");
}

TEST_F(ExportMessages, TellOfPinsWithValuesThatNoPackageHas) {
  const std::string pins =
      "[Pin] signal_name model_name R_pin L_pin C_pin\n1 A in 1 1n 1p\n2 B in -1 1n 1p\n"
      "3 C in 1 nan 1p\n4 D in 1 1n -inf\n5 E in 0 0 0\n";
  const std::string text =
      "[IBIS Ver] 4.2\n[Component] part\n[Manufacturer] maker\n[Package]\nR_pkg 1 NA NA\n"
      "L_pkg 1n NA NA\nC_pkg 1p NA NA\n" +
      pins + receiver;
  EXPECT_MESSAGES(warningsOf(text),
                  "Component 'part': pins with a value that is negative or not finite, which is "
                  "left out: 3, first '2'");
  ExportRequest request;
  request.package = cli::PackageKind::none;
  EXPECT_MESSAGES(warningsOf(text, request));
}

TEST_F(ExportMessages, TellOfAPairWhoseThresholdIsNotFinite) {
  EXPECT_MESSAGES(
      warningsOf(component("1 A in\n2 B in\n3 C in\n4 D in\n") +
                 "[Diff Pin] inv_pin vdiff tdelay_typ\n1 2 0.2 1n\n3 4 nan 1n\n" + receiver),
      "Component 'part': pins with a value that is negative or not finite, which is left out: 1, "
      "first '3'");
}

// Each pair with a delay of its own takes a copy of the driver.
TEST_F(ExportMessages, TellOfAFileThatWouldBeTooLarge) {
  std::string pins;
  std::string pairs = "[Diff Pin] inv_pin vdiff tdelay_typ\n";
  for (int i = 0; i < 2500; ++i) {
    const std::string n = std::to_string(i);
    pins += n + "p S m\n" + n + "n S m\n";
    pairs += n + "p " + n + "n 0 " + n + "1p\n";
  }
  std::string rows = "[GND Clamp]\n";
  for (int i = 0; i < 4000; ++i) {
    rows +=
        "-" + std::to_string(4.0 - i * 0.001) + " -" + std::to_string(1.0 - i * i * 1e-9) + "\n";
  }
  const std::string text = component(pins) + pairs + "[Model] m\n" + output + rows;
  const std::size_t size = text.size() + std::string("[End]\n").size();
  EXPECT_MESSAGES(exported(text, {}).errors,
                  "The output would take more than " + std::to_string(200 * size + 100'000'000) +
                      " bytes, 200 for each of the file and 100 MB; --no-limit writes it");
  EXPECT_EQ(folder_.names(), Texts({"out", "part.ibs"}));
  EXPECT_TRUE(std::filesystem::is_empty(folder_.file("out")));
}

TEST_F(ExportMessages, TellOfABenchWithoutADriver) {
  ExportRequest request;
  request.hasBench = true;
  const Diagnostics warnings = warningsOf(component("1 A in\n") + receiver, request);
  EXPECT_MESSAGES(warnings, "No bench: none of the models is a driver");
  EXPECT_EQ(warnings.at(0).line, 0);
}

TEST_F(ExportMessages, TellOfAPackageModelThatIsNotThere) {
  ExportRequest request;
  request.package = cli::PackageKind::coupled;
  EXPECT_MESSAGES(warningsOf(component("1 A in\n") + receiver, request),
                  "Component 'part' has no package model; the pins' own values are used");
}

TEST_F(ExportMessages, TellOfAPinThatThePackageModelLacks) {
  EXPECT_MESSAGES(packageWarnings(packageModel(plainResistance, plainInductance, plainCapacitance),
                                  "1 A in\n2 B in\n3 C in\n"),
                  "Pin '3' is not in the package model; its own values are used");
}

TEST_F(ExportMessages, TellOfCouplingsThatAreSmall) {
  const std::string model =
      packageModel(plainResistance, "[Row] 1\n1 4n\n2 10p\n[Row] 2\n2 4n\n", plainCapacitance);
  EXPECT_MESSAGES(packageWarnings(model),
                  "Package model 'pack': couplings below 0.01 are left out: 1");
}

TEST_F(ExportMessages, TellOfResistancesThatNoNetworkHas) {
  EXPECT_MESSAGES(packageWarnings(packageModel("[Row] 1\n1 0.1\n2 0.3\n[Row] 2\n2 0.1\n",
                                               plainInductance, plainCapacitance)),
                  "Package model 'pack': the resistances are not those of a passive network; those "
                  "between pins are left out: 1");
}

TEST_F(ExportMessages, TellOfInductancesThatNoNetworkHas) {
  EXPECT_MESSAGES(
      packageWarnings(
          packageModel(plainResistance, "[Row] 1\n1 4n\n2 8n\n[Row] 2\n2 4n\n", plainCapacitance)),
      "Package model 'pack': the inductances are not those of a passive network; all couplings are "
      "multiplied by 0.4995");
}

TEST_F(ExportMessages, TellOfCapacitancesThatNoNetworkHas) {
  EXPECT_MESSAGES(
      packageWarnings(
          packageModel(plainResistance, plainInductance, "[Row] 1\n1 1p\n2 -2p\n[Row] 2\n2 1p\n")),
      "Package model 'pack': the capacitances are not those of a passive network; negative "
      "ones are left out: 2");
}

TEST_F(ExportMessages, TellOfAPinsOwnNegativeValue) {
  EXPECT_MESSAGES(packageWarnings(packageModel("[Row] 1\n1 -0.1\n[Row] 2\n2 0.1\n", plainInductance,
                                               plainCapacitance)),
                  "Package model 'pack': a pin's own value is negative and left out");
}

// A component whose pins 1 and 2 have the series model on this line 17.
std::string seriesPart(const std::string& type, const std::string& elements,
                       const std::string& groups = {}) {
  return component("1 A in\n2 B in\n3 C NC\n",
                   groups +
                       "[Series Pin Mapping] pin_2 model_name function_table_group\n1 2 link "
                       "g1\n") +
         receiver + "[Model] link\nModel_type " + type + "\n[Voltage Range] 2 NA NA\n" + elements;
}

TEST_F(ExportMessages, AreNotForASeriesElementThatIsWritten) {
  EXPECT_MESSAGES(warningsOf(seriesPart("Series", "[R Series] 100 NA NA\n")));
}

TEST_F(ExportMessages, TellOfASeriesRowThatLeadsNowhere) {
  std::string text = seriesPart("Series", "[R Series] 100 NA NA\n");
  text.replace(text.find("1 2 link"), 8, "1 2 link NA\n1 9 link NA\n2 3 in");
  EXPECT_MESSAGES(warningsOf(text),
                  "Component 'part': series model 'link' between the pins '1' and '9' is left out, "
                  "since one of the three is not in the file",
                  "Component 'part': series model 'in' between the pins '2' and '3' is left out, "
                  "since one of the three is not in the file");
}

TEST_F(ExportMessages, TellOfAValueThatNoSeriesElementHas) {
  EXPECT_MESSAGES(warningsOf(seriesPart("Series", "[R Series] -1 NA NA\n[C Series] 1p NA NA\n")),
                  "Model 'link', typ: a value of a series element is negative and left out");
}

TEST_F(ExportMessages, TellOfWhatNothingIsWrittenFor) {
  const std::string mosfet = "[On]\n[Series MOSFET]\nVds = 1\n5 0.2 NA NA\n0 0 NA NA\n";
  EXPECT_MESSAGES(warningsOf(seriesPart("Series_switch", mosfet)),
                  "Model 'link', typ: the switch is written in its On state",
                  "Model 'link', typ: [Series MOSFET] is left out",
                  "Model 'link', typ: no series element is left to be written");
}

TEST_F(ExportMessages, TellTheStateOfASwitch) {
  const std::string states = "[On]\n[R Series] 5 NA NA\n[Off]\n[R Series] 1M NA NA\n";
  const std::string on = "Model 'link', typ: the switch is written in its On state";
  const std::string off = "Model 'link', typ: the switch is written in its Off state";
  const auto told = [&](const std::string& groups) {
    return warningsOf(seriesPart("Series_switch", states, groups));
  };
  EXPECT_MESSAGES(told(""), on);
  EXPECT_MESSAGES(told("[Series Switch Groups]\nOn g1 /\nOff g1 /\n"), on);
  EXPECT_MESSAGES(told("[Series Switch Groups]\nOff g1 /\nOn g1 /\n"), off);
  EXPECT_MESSAGES(told("[Series Switch Groups]\nOn g2 /\n"), off);
}

TEST_F(ExportMessages, TellOfCellsThatATableLeavesOut) {
  EXPECT_MESSAGES(
      modelWarnings(input("[GND Clamp]\n-3 -3 -3 NA\n-2 -2 NA NA\n-1 -1 NA NA\n0 0 0 NA\n"), "min"),
      "Model 'm', min: cells that a table leaves out are interpolated: 2");
}

TEST_F(ExportMessages, TellOfATableThatIsNotMonotonic) {
  EXPECT_MESSAGES(
      modelWarnings(input("[GND Clamp]\n-3 -3 NA NA\n-2 -1 NA NA\n-1 -2 NA NA\n0 0 NA NA\n")),
      "Model 'm', typ: a table is not monotonic; there may be several operating points");
}

TEST_F(ExportMessages, TellOfATablesEndThatIsHeld) {
  EXPECT_MESSAGES(modelWarnings(input("[GND Clamp]\n-2 -2 NA NA\n0 0 NA NA\n1 -1e-7 NA NA\n")),
                  "Model 'm', typ: a table ends with a slope of the wrong sign; its end is held");
}

TEST_F(ExportMessages, TellOfAClampThatCarriesTooMuch) {
  EXPECT_MESSAGES(modelWarnings(input("[GND Clamp]\n-2 -250 NA NA\n0 0 NA NA\n")),
                  "Model 'm', typ: a clamp carries up to 250 A");
}

TEST_F(ExportMessages, TellOfADriverWithoutATable) {
  EXPECT_MESSAGES(
      modelWarnings("Model_type Output\nC_comp 0 0 0\n" + range +
                    "[Pulldown]\n-2 -0.2 NA NA\n4 0.4 NA NA\n" + ramp),
      "Line 2: Model 'm' no pullup definition has been provided",
      "Model 'm', typ: a driver lacks its pullup or pulldown table",
      "Model 'm', typ, rising edge: no usable waveform; a smooth step of 1e-09 s is used",
      "Model 'm', typ, falling edge: no usable waveform; a smooth step of 1e-09 s is used");
}

TEST_F(ExportMessages, AreNotForADriverWithNothingToTell) {
  EXPECT_MESSAGES(modelWarnings(output + goodRising + goodFalling));
}

TEST_F(ExportMessages, TellOfRowsWithoutAVoltage) {
  const std::string rows =
      "0 0 0 NA\n1n 0 0 NA\n1.5n 0.8333333 NA NA\n2n 1.6666667 1.6666667 NA\n"
      "3n 1.6666667 NA NA\n4n 1.6666667 1.6666667 NA\n";
  const std::string other =
      "0 0.3333333 0.3333333 NA\n1n 0.3333333 0.3333333 NA\n2n 2 2 NA\n"
      "4n 2 2 NA\n";
  EXPECT_MESSAGES(modelWarnings(output + onLow(rows) + onHigh(other), "min"),
                  "Model 'm', min, rising edge: waveform rows without a voltage are left out: 2",
                  "Model 'm', min, falling edge: no usable waveform; a smooth step of 1e-09 s is "
                  "used");
}

TEST_F(ExportMessages, TellOfWaveformsThatCannotBeUsed) {
  EXPECT_MESSAGES(
      modelWarnings(output + goodRising + waveform("Rising", "1", "0 1 NA NA\n4n 1 NA NA\n") +
                    waveform("Rising", "1", "0 1 NA NA\n") + goodFalling),
      "Model 'm', typ, rising edge: waveforms that are too short or too small to be used: 2");
}

TEST_F(ExportMessages, TellOfASingleWaveform) {
  EXPECT_MESSAGES(
      modelWarnings(output + onLow(risingOnLow) + goodFalling),
      "Model 'm', typ, rising edge: only one usable waveform; other loads may be far off");
}

TEST_F(ExportMessages, TellOfWaveformsThatContradictEachOther) {
  const std::string late =
      "0 0.3333333 NA NA\n1n 0.3333333 NA NA\n3n 0.3333333 NA NA\n4n 2 NA NA\n5n 2 NA NA\n";
  EXPECT_MESSAGES(modelWarnings(output + onHigh(late) + onLow(risingOnLow) + goodFalling),
                  "Model 'm', typ, rising edge: the waveforms contradict each other; only number 1 "
                  "is used",
                  "Model 'm', typ, rising edge: only one usable waveform; other loads may be far "
                  "off");
}

// Charge in a pad that 10 kohm hold makes coefficients that are no driver's for 2 % of the time in
// which the estimates move, but for less of their time with the tails.
TEST_F(ExportMessages, TellOfEstimatesThatContradictEachOtherWhileTheyMove) {
  EXPECT_MESSAGES(
      modelWarnings("Model_type Output\nC_comp 2.2p NA NA\n[Voltage Range] 3.3 NA NA\n"
                    "[Pulldown]\n-3.3 -110m NA NA\n0 0 NA NA\n1 30m NA NA\n2 45m NA NA\n"
                    "6.6 50m NA NA\n"
                    "[Pullup]\n-3.3 110m NA NA\n0 0 NA NA\n1 -30m NA NA\n2 -45m NA NA\n"
                    "6.6 -50m NA NA\n"
                    "[Ramp]\nR_load = 10k\ndV/dt_r 1.97/1n NA NA\ndV/dt_f 1.97/1n NA NA\n"),
      estimated,
      "Model 'm', typ, rising edge: the waveforms contradict each other; only number 1 is used",
      "Model 'm', typ, falling edge: the waveforms contradict each other; only number 2 is used");
}

TEST_F(ExportMessages, TellOfAWaveformThatJumps) {
  const std::string jump =
      "0 0 NA NA\n1p 0.8333333 NA NA\n1n 1.6666667 NA NA\n4n 1.6666667 NA NA\n";
  EXPECT_MESSAGES(
      modelWarnings(output + onLow(jump) + goodFalling),
      "Model 'm', typ, rising edge: a waveform passes 50.2491 % of its swing at once at "
      "its start",
      "Model 'm', typ, rising edge: only one usable waveform; other loads may be far "
      "off");
}

TEST_F(ExportMessages, TellOfACornerWithoutWaveforms) {
  EXPECT_MESSAGES(modelWarnings(output + goodRising + goodFalling, "max"),
                  "Model 'm', max, rising edge: no waveforms of this corner; the coefficients are "
                  "those of typ",
                  "Model 'm', max, falling edge: no waveforms of this corner; the coefficients are "
                  "those of typ");
}

TEST_F(ExportMessages, TellOfAnEstimateThatMissesTheTables) {
  const std::string clampInside = "[POWER Clamp]\n-4 1 NA NA\n2 0 NA NA\n";
  EXPECT_MESSAGES(
      modelWarnings(output + clampInside), estimated,
      "Model 'm', typ, rising edge: the estimated waveforms miss the tables by 69.7695 % of their "
      "swing and are not used",
      "Model 'm', typ, rising edge: no usable waveform; a smooth step of 1e-09 s is used",
      "Model 'm', typ, falling edge: the estimated waveforms miss the tables by 69.7703 % of their "
      "swing and are not used",
      "Model 'm', typ, falling edge: no usable waveform; a smooth step of 1e-09 s is used");
}

TEST_F(ExportMessages, TellOfAnEdgeThatNothingTells) {
  EXPECT_MESSAGES(
      modelWarnings("Model_type Output\nC_comp 0 0 0\n" + range + pulls), estimated,
      "Model 'm', typ, rising edge: neither waveform nor ramp; a smooth step of 1e-09 s is assumed",
      "Model 'm', typ, falling edge: neither waveform nor ramp; a smooth step of 1e-09 s is "
      "assumed");
}

TEST_F(ExportMessages, TellOfWaveformsThatDoNotEndAtTheTablesLevels) {
  const std::string low = "0 0 NA NA\n1n 0 NA NA\n2n 1.25 NA NA\n4n 1.25 NA NA\n";
  EXPECT_MESSAGES(
      modelWarnings(output + onLow(low) + onHigh(risingOnHigh) + goodFalling),
      "Model 'm', typ, rising edge: the coefficients end 0.666667 away from the settled "
      "ones; the waveforms have not settled, or the tables do not belong to them",
      "Model 'm', typ, rising edge: the levels of the waveforms miss the tables by "
      "33.3333 % of the swing");
}

TEST_F(ExportMessages, TellOfANegativeCapacitance) {
  EXPECT_MESSAGES(
      modelWarnings("Model_type Input\nVinl = 0.8\nVinh = 1.2\nC_comp -1p NA NA\n" + range + clamp),
      "Model 'm', typ: the capacitance -1e-12 F is negative and left out");
}

TEST_F(ExportMessages, TellOfThresholdsThatAreNotGiven) {
  EXPECT_MESSAGES(modelWarnings("Model_type Input\nC_comp 1p NA NA\n" + range + clamp),
                  "Model 'm': Vinl not defined using default 0.8V",
                  "Model 'm': Vinh not defined using default 2.0V",
                  "Model 'm', typ: input thresholds are not given; the usual ones are taken");
}

TEST_F(ExportMessages, TellOfThresholdsThatAreSwapped) {
  EXPECT_MESSAGES(
      modelWarnings("Model_type Input\nVinl = 1.5\nVinh = 1\nC_comp 1p NA NA\n" + range + clamp),
      "Model 'm', typ: Vinl is not below Vinh; the receiver switches at 1.25 V");
}

TEST_F(ExportMessages, TellOfAValueThatIsNotFinite) {
  const std::string told = "Model 'm', typ: a value that is not finite counts as not given";
  for (const char* line : {"C_comp nan 1p 1p\n", "C_comp 1p 1p 1p\nVinh = inf\n"}) {
    EXPECT_MESSAGES(modelWarnings("Model_type Input\nVinl = 0.8\nVinh = 1.2\n" + std::string(line) +
                                  range + clamp),
                    told);
  }
  EXPECT_MESSAGES(modelWarnings(output + "[Rising Waveform]\nR_fixture = nan\nV_fixture = 0\n" +
                                risingOnLow + onHigh(risingOnHigh) + goodFalling),
                  told);
  EXPECT_MESSAGES(modelWarnings(input(clamp)));
}

TEST_F(ExportMessages, TellOfATableWithoutAReference) {
  EXPECT_MESSAGES(modelWarnings("Model_type Input\nVinl = 0.8\nVinh = 1.2\nC_comp 1p NA NA\n"
                                "[POWER Clamp]\n-2 0.2 NA NA\n0 0 NA NA\n"),
                  "Model 'm': No power clamp reference or voltage range defined",
                  "Model 'm', typ: a table has neither a reference nor a voltage range; 0 V is "
                  "taken");
}

}  // namespace
}  // namespace ibis::testing
