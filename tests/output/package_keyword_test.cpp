#include "harness/harness.h"

namespace ibis::testing {
namespace {

/// What "%buildpackagemodel%" makes of a component and the package models behind it.
struct Built {
  Built(const std::string& component, const std::string& packageModels,
        const std::string& text = "<%buildpackagemodel%>\n")
      : parsed("[IBIS Ver] 4.2\n[Component] U.1\n" + component + packageModels) {
    EXPECT_EQ(parsed.errors(), Texts());
    output = expandTemplate(text, parsed.file, &parsed.component(), told);
    EXPECT_EQ(texts(told.errors), Texts());
  }

  Parsed parsed;
  Recorder told;
  std::string output;
};

const std::string pins = "[Pin] signal_name model_name\n1 D0 NC\n2 D-1 NC\nA3 gnd NC\n";

std::string packageModel(const std::string& name, const std::string& pinNumbers,
                         const std::string& numberOfPins) {
  return "[Define Package Model] " + name + "\n[Number Of Pins] " + numberOfPins +
         "\n[Pin Numbers]\n" + pinNumbers + "\n[End Package Model]\n";
}

/// The netlist of a package model without matrices.
std::string emptyNetlist(const Texts& nodes) {
  std::string in, out, capacitors, inductors, resistors;
  int row = 0;
  for (const std::string& node : nodes) {
    const std::string number = std::to_string(++row);
    in += " IN_" + node;
    out += " OUT_" + node;
    capacitors += "BC_" + number + " IN_" + node + " REF q=\n";
    inductors += "BL_" + number + " IN_" + node + " L_" + node + " flux=\n";
    resistors += "BR_" + number + " L_" + node + " OUT_" + node + " v=\n";
  }
  return in + out + "\n" + capacitors + inductors + resistors;
}

TEST(BuildPackageModel, WritesTheNetlistAndALineFeedAndEatsItsOwn) {
  const Built built("[Package Model] P\n" + pins,
                    "[Define Package Model] P\n[Number Of Pins] 2\n[Pin Numbers]\n2\n1\n"
                    "[Model Data]\n[Resistance Matrix] Banded_matrix\n[Row] 2\n50m\n"
                    "[Capacitance Matrix] Sparse_matrix\n[Row] 2\n1 -3p\n[End Model Data]\n",
                    "<%buildpackagemodel%\n>\n");
  EXPECT_EQ(built.output,
            lines({"< IN_D-1 IN_D0 OUT_D-1 OUT_D0",  //
                   "BC_1 IN_D-1 REF q= -3e-12*V(IN_D0,REF)",
                   "BC_2 IN_D0 REF q= -3e-12*V(IN_D-1,REF)",  //
                   "BL_1 IN_D-1 L_D-1 flux=", "BL_2 IN_D0 L_D0 flux=",
                   "BR_1 L_D-1 OUT_D-1 v= 0.05*I(BL_1)", "BR_2 L_D0 OUT_D0 v=", "", ">"}));
}

TEST(BuildPackageModel, LosesTheBlanksInFrontOfIt) {
  const Built built("[Package Model] P\n" + pins, packageModel("P", "1", "1"),
                    "+   %buildpackagemodel%");
  EXPECT_EQ(built.output, "+" + emptyNetlist({"D0"}) + "\n");
}

TEST(BuildPackageModel, WritesNothingForAComponentWithoutPackageModel) {
  const Built built(pins, packageModel("P", "1", "1"), "a %buildpackagemodel%\nb\n");
  EXPECT_EQ(built.output, "ab\n");
}

TEST(BuildPackageModel, WritesNothingForAFileWithoutPackageModels) {
  const Built built("[Package Model] P\n" + pins, "", "a %buildpackagemodel%\nb\n");
  EXPECT_EQ(built.output, "ab\n");
}

TEST(BuildPackageModel, WritesNothingForANameThatIsNotExactlyTheSame) {
  const Built built("[Package Model] P\n" + pins,
                    packageModel("p", "1", "1") + packageModel("P1", "1", "1"),
                    "a %buildpackagemodel%\nb\n");
  EXPECT_EQ(built.output, "ab\n");
}

TEST(BuildPackageModel, WritesNothingWithoutAComponent) {
  const IBISFile file;
  Recorder told;
  EXPECT_EQ(expandTemplate("a %buildpackagemodel%\nb\n", file, nullptr, told), "ab\n");
  EXPECT_MESSAGES(told.errors);
}

TEST(BuildPackageModel, TakesTheFirstOfTwoModelsOfOneName) {
  const Built built(
      "[Package Model] P\n" + pins,
      packageModel("Q", "1 2", "2") + packageModel("P", "2", "1") + packageModel("P", "1", "1"));
  EXPECT_EQ(built.output, "<" + emptyNetlist({"D-1"}) + "\n>\n");
}

TEST(BuildPackageModel, NamesPinsThatTheComponentLacksByARunningCount) {
  const Built built("[Package Model] P\n" + pins, packageModel("P", "X1 1 X2\n2 X3", "5"));
  EXPECT_EQ(built.output,
            "<" + emptyNetlist({"ERROR_1", "D0", "ERROR_2", "D-1", "ERROR_3"}) + "\n>\n");
}

TEST(BuildPackageModel, FindsPinsByTheExactNameAlone) {
  const Built built("[Package Model] P\n" + pins, packageModel("P", "a3 A3", "2"));
  EXPECT_EQ(built.output, "<" + emptyNetlist({"ERROR_1", "GND"}) + "\n>\n");
}

TEST(BuildPackageModel, NamesNodesByUniqueSignals) {
  const Built built("[Package Model] P\n[Pin] signal_name model_name\n1 VDD NC\n2 VDD NC\n",
                    packageModel("P", "2 1", "2"));
  EXPECT_EQ(built.output, "<" + emptyNetlist({"VDD_1", "VDD"}) + "\n>\n");
}

TEST(BuildPackageModel, TakesTheSignalOfTheFirstOfTwoPinsOfOneName) {
  const Built built("[Package Model] P\n[Pin] signal_name model_name\n1 A NC\n1 B NC\n",
                    packageModel("P", "1", "1"));
  EXPECT_EQ(built.output, "<" + emptyNetlist({"A"}) + "\n>\n");
}

TEST(BuildPackageModel, LeavesPinsWithoutANumberUnnamed) {
  const Built built("[Package Model] P\n" + pins, packageModel("P", "1", "2"));
  EXPECT_EQ(built.output, "<" + emptyNetlist({"D0", ""}) + "\n>\n");
}

TEST(BuildPackageModel, WritesTwoLineFeedsForAModelWithoutPins) {
  const Built built("[Package Model] P\n" + pins, packageModel("P", "1", "0"));
  EXPECT_EQ(built.output, "<\n\n>\n");
}

TEST(BuildPackageModel, TakesTheRunsComponentInsideALoopOverAll) {
  const Built built("[Package Model] P\n" + pins + "[Component] U2\n[Pin]\n1 S1 NC\n",
                    packageModel("P", "1", "1"),
                    "%foreachcomponent%\n<%buildpackagemodel%>\n%endforeach%\n");
  const std::string once = "<" + emptyNetlist({"D0"}) + "\n>\n";
  EXPECT_EQ(built.output, once + once);
}

}  // namespace
}  // namespace ibis::testing
