// What the program warns of in files that a load wrote as the file has it.

#include "written_checks.h"

#include "conversion.h"
#include "harness/harness.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

class WrittenChecks : public ::testing::Test {
 protected:
  std::vector<Diagnostic> warningsOf(const std::string& text, const std::string& mode = "model",
                                     const std::string& name = "part.ibs") const {
    cli::ConversionRequest request;
    request.source = folder_.write(name, text);
    request.mode = mode;
    request.folder = folder_.path();
    request.subcircuit = "dut";
    const cli::Conversion conversion = cli::convert(request);
    EXPECT_MESSAGES(conversion.errors);
    return conversion.warnings;
  }

  // The end of a warning of numbers that are not finite.
  std::string held(const std::string& file = "dut.lb") const {
    return "not finite; '" + folder_.file(file) + R"(' holds "nan" or "inf")";
  }

  TemporaryFolder folder_;
};

std::string receiver(const std::string& lines) {
  return partText + "[Model] in\nModel_type Input\n" + lines + "[End]\n";
}

std::string driver(const std::string& reference, const std::string& fixture) {
  return partText + "[Model] in\nModel_type Output\nC_comp 1p 1p 1p\n[Voltage Range] 4 4 4\n" +
         reference + "[Pulldown]\n0 0\n4 1\n[Pullup]\n0 0\n4 -1\n[Rising Waveform]\n" + fixture +
         "0 0\n1n 4\n[Falling Waveform]\nR_fixture = 50\nV_fixture = 0\n0 4\n1n 0\n[End]\n";
}

// Of a table and of the clamp on its side, which have to be equal.
const std::string lowReferences = "[Pulldown Reference] inf 0 0\n[GND Clamp Reference] inf 0 0\n";
const std::string highReferences = "[Pullup Reference] inf 4 4\n[POWER Clamp Reference] inf 4 4\n";
const std::string fixture = "R_fixture = 50\nV_fixture = 0\n";

TEST_F(WrittenChecks, NameTheValuesOfAModelThatAreNotFinite) {
  const std::string thresholds = "Vinl = 0.8\nVinh = 2\n";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {receiver(thresholds + "C_comp nan 1p 1p\n"), "C_comp is "},
      {receiver(thresholds + "C_comp 1p 1p 1e400\n"), "C_comp is "},
      {receiver("Vinl = -inf\nVinh = 2\nC_comp 1p 1p 1p\n"), "Vinl is "},
      {receiver("Vinl = 0.8\nVinh = inf\nC_comp 1p 1p 1p\n"), "Vinh is "},
      {receiver("Vinl = nan\nVinh = nan\nC_comp inf 1p 1p\n"), "C_comp, Vinl and Vinh are "},
      {driver("", "R_fixture = inf\nV_fixture = 0\n"), "R_fixture is "},
      {driver("", "R_fixture = 50\nV_fixture = nan\n"), "V_fixture is "},
      {driver(lowReferences, fixture), "the pulldown reference is "},
      {driver(highReferences, fixture), "the pullup reference is "},
  };
  for (const auto& [text, what] : cases) {
    const std::vector<Diagnostic> warnings = warningsOf(text);
    EXPECT_MESSAGES(warnings, "Model 'in': " + what + held());
    EXPECT_EQ(warnings.at(0).line, 14);
  }
}

TEST_F(WrittenChecks, TellOfTablesAndValuesOfAModelAtOnce) {
  EXPECT_MESSAGES(warningsOf(receiver("Vinl = 0.8\nVinh = 2\nC_comp nan 1p 1p\n"
                                      "[GND Clamp]\n-1 inf\n0 0\n[Voltage Range] 0\n")),
                  "Model 'in': a table or waveform value and C_comp are " + held());
}

TEST_F(WrittenChecks, PassOverValuesThatNoLibraryHolds) {
  EXPECT_MESSAGES(warningsOf(driver("", fixture)));
  EXPECT_MESSAGES(
      warningsOf(receiver("Vinl = 0.8\nVinh = 2\nC_comp 1p 1p 1p\n"
                          "C_comp_pullup nan nan nan\nCref = inf\n")));
}

// A pair whose threshold is given, of pins with R, L and C of their own.
std::string pairText(const std::string& vdiff, const std::string& values = "1 1n 1p",
                     const std::string& manufacturer = "Exemplary") {
  return "[IBIS Ver] 4.2\n[Component] pair\n[Manufacturer] " + manufacturer +
         "\n[Pin] signal_name model_name R_pin L_pin C_pin\n1 A in " + values +
         "\n2 B in 1 1n 1p\n[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max\n1 2 " +
         vdiff + " 0 0 0\n" + receiverText + "[End]\n";
}

TEST_F(WrittenChecks, TellOfTheThresholdOfAPair) {
  EXPECT_MESSAGES(warningsOf(pairText("nan")),
                  "Component 'pair': the vdiff of a pair is " + held());
  EXPECT_MESSAGES(warningsOf(pairText("0.2")));
  EXPECT_MESSAGES(warningsOf(pairText("inf"), "script"),
                  "Component 'pair': the vdiff of a pair is " + held("ibis_components.kvscr"));
}

TEST_F(WrittenChecks, TellOfThePinsOfAPackageWithoutAModel) {
  EXPECT_MESSAGES(warningsOf(pairText("0.2", "nan 1n 1p"), "package"),
                  "Component 'pair': the R of a pin is " + held());
  EXPECT_MESSAGES(
      warningsOf(pairText("0.2", "-inf inf 1e400"), "package"),
      "Component 'pair': the L of a pin, the C of a pin and the R of a pin are " + held());
  EXPECT_MESSAGES(warningsOf(pairText("nan"), "package"));
}

TEST_F(WrittenChecks, TellOfReferencesInAScript) {
  EXPECT_MESSAGES(warningsOf(driver(highReferences, fixture), "script"),
                  "Model 'in': the POWER clamp reference and the pullup reference are " +
                      held("ibis_components.kvscr"));
}

std::string packageText(const std::string& signal, const std::string& matrices) {
  return "[IBIS Ver] 4.2\n[Component] part\n[Manufacturer] Exemplary\n[Package Model] P\n"
         "[Pin] signal_name model_name\n1 " +
         signal + " GND\n2 B GND\n[Define Package Model] P\n[Number Of Pins] 2\n" +
         "[Pin Numbers]\n1\n2\n[Model Data]\n" + matrices + "[End Model Data]\n[End]\n";
}

std::string matrix(const std::string& kind, const std::string& value) {
  return "[" + kind + " Matrix] Sparse_matrix\n[Row] 1\n1 " + value + "\n[Row] 2\n2 1p\n";
}

TEST_F(WrittenChecks, TellOfTheMatricesOfAPackageModel) {
  const std::vector<Diagnostic> warnings =
      warningsOf(packageText("A", matrix("Inductance", "nan")), "package");
  EXPECT_MESSAGES(warnings, "Package model 'P': an inductance is " + held());
  EXPECT_EQ(warnings.at(0).line, 8);
  EXPECT_MESSAGES(
      warningsOf(packageText("A", matrix("Inductance", "inf") + matrix("Capacitance", "-inf") +
                                      matrix("Resistance", "1e400")),
                 "package"),
      "Package model 'P': a capacitance, an inductance and a resistance are " + held());
  EXPECT_MESSAGES(warningsOf(packageText("A", matrix("Inductance", "1n")), "package"));
  EXPECT_MESSAGES(warningsOf(packageText("A", matrix("Inductance", "nan"))));
}

TEST_F(WrittenChecks, TellOfNodesThatAreCalledByMoreThanAName) {
  const std::vector<Diagnostic> warnings =
      warningsOf(packageText("x,REF)*{f()}", matrix("Inductance", "1n")), "package");
  EXPECT_MESSAGES(warnings,
                  "Package model 'P': signal names with more than letters, digits and '_' "
                  "name nodes of '" +
                      folder_.file("dut.lb") + "': 1 of them, first 'x,REF)*{f()}'");
  EXPECT_EQ(warnings.at(0).line, 8);
  EXPECT_MESSAGES(warningsOf(packageText("Aa_09", matrix("Inductance", "1n")), "package"));
}

TEST_F(WrittenChecks, TellOfMarkupInAPage) {
  EXPECT_MESSAGES(warningsOf(pairText("0.2", "1 1n 1p", "<b>A&B</b>")),
                  "Page '" + folder_.file("dut_INFO.html") +
                      "' shows texts of the file with '<', '>' or '&' as they stand: 1 of them, "
                      "first '<b>A&B</b>'");
  EXPECT_MESSAGES(warningsOf(pairText("0.2", "1 1n 1p", "<b>"), "package"));
}

TEST_F(WrittenChecks, TellOfQuotesInAScript) {
  const auto warning = [&](const std::string& count, const std::string& first) {
    return "Script '" + folder_.file("ibis_components.kvscr") +
           "' puts texts that hold quotes between quotes: " + count + " of them, first '" + first +
           "'";
  };
  const std::string text =
      "[IBIS Ver] 4.2\n[Component] it's\n[Manufacturer] it's\n"
      "[Pin] signal_name model_name\n1\" A GND\n[End]\n";
  EXPECT_MESSAGES(warningsOf(text, "script"), warning("2", "it's"));
  EXPECT_MESSAGES(warningsOf(bufferText, "script", "o'part.ibs"),
                  warning("1", folder_.file("o'part.ibs")));
  EXPECT_MESSAGES(warningsOf(bufferText, "script"));
}

}  // namespace
}  // namespace ibis::testing
