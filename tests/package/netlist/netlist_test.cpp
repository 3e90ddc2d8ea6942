#include "package/netlist/netlist.h"

#include <cmath>
#include <random>
#include <sstream>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

using Nodes = std::vector<std::string_view>;
using Matrix = std::vector<IBISMatrixEntry>;

IBISPackageModel modelOf(std::int32_t pins) {
  IBISPackageModel model;
  model.numberOfPins = pins;
  return model;
}

// What a writer puts into a file, which takes it piece by piece.
template <class Writer>
std::string written(Writer write) {
  MemorySink sink;
  const std::unique_ptr<OutputStream> out = OutputStream::open(sink, "out");
  write(*out);
  EXPECT_TRUE(out->close());
  EXPECT_TRUE(sink.keep("out"));
  return sink.files().at("out");
}

std::string netlist(const IBISPackageModel& model, const Nodes& nodes) {
  return written([&](OutputStream& out) { writePackageNetlist(out, model, nodes); });
}

/// The lines of a matrix of two pins A and B in a form of which everything shows.
std::string shown(const Matrix& matrix, std::int32_t pins = 2, const Nodes& nodes = {"A", "B"}) {
  return written([&](OutputStream& out) {
    writeMatrix(out, matrix, modelOf(pins), nodes, "%value% at %column% %colnode%/%colnode%",
                "%row% %rownode%/%rownode%:");
  });
}

TEST(ReplaceFirst, ReplacesTheFirstOccurrenceAlone) {
  const struct {
    const char *text, *pattern, *replacement, *expected;
  } rows[] = {
      {"a%x%b%x%", "%x%", "1", "a1b%x%"},
      {"a%x%", "%x%", "%x%%x%", "a%x%%x%"},
      {"abc", "%x%", "1", "abc"},
      {"", "%x%", "1", ""},
      {"%x%", "%x%", "", ""},
      {"%X%", "%x%", "1", "%X%"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(replaceFirst(row.text, row.pattern, row.replacement), row.expected);
  }
}

TEST(WriteMatrix, GivesEachRowItsHeadAndItsEntriesInTheirOrder) {
  EXPECT_EQ(shown({{2, 2, 4}, {1, 2, 2}, {2, 1, 3}, {1, 1, 1}}),
            "1 A/A: 2 at 2 B/B + 1 at 1 A/A\n"
            "2 B/B: 4 at 2 B/B + 3 at 1 A/A\n");
}

TEST(WriteMatrix, KeepsRepeatedPlaces) {
  EXPECT_EQ(shown({{1, 1, 1}, {1, 1, 1}}), "1 A/A: 1 at 1 A/A + 1 at 1 A/A\n2 B/B:\n");
}

TEST(WriteMatrix, GivesARowWithoutEntriesItsHead) { EXPECT_EQ(shown({}), "1 A/A:\n2 B/B:\n"); }

TEST(WriteMatrix, PutsANegativeValueBehindABlank) {
  EXPECT_EQ(shown({{1, 1, 1}, {1, 2, -0.25}, {1, 1, 2}, {2, 1, -3}}),
            "1 A/A: 1 at 1 A/A -0.25 at 2 B/B + 2 at 1 A/A\n2 B/B: -3 at 1 A/A\n");
}

TEST(WriteMatrix, PutsAValueOfZeroBehindAPlusSign) {
  EXPECT_EQ(shown({{1, 1, 1}, {1, 2, 0}}), "1 A/A: 1 at 1 A/A + 0 at 2 B/B\n2 B/B:\n");
}

TEST(WriteMatrix, PrintsAValueAtFifteenDigits) {
  const std::pair<double, const char*> rows[] = {
      {0.1, "0.1"},
      {1.234567890123456, "1.23456789012346"},
      {0.30000000000000004, "0.3"},
      {123456789012345.0, "123456789012345"},
      {1234567890123456.0, "1.23456789012346e+15"},
      {1e-12, "1e-12"},
      {2.2 * 1e-9, "2.2e-09"},
      {0.0001, "0.0001"},
      {0.00001, "1e-05"},
      {1e300, "1e+300"},
      {0.0, "0"},
      {HUGE_VAL, "inf"},
      {std::nan(""), "nan"},
  };
  for (const auto& [value, text] : rows) {
    EXPECT_EQ(shown({{1, 1, value}}, 1), "1 A/A: " + std::string(text) + " at 1 A/A\n");
  }
}

TEST(WriteMatrix, DropsAnEntryWithoutARowOfItsOwn) {
  EXPECT_EQ(shown({{0, 0, 5}, {-1, 1, 6}, {1, 1, 1}, {3, 1, 7}}), "1 A/A: 1 at 1 A/A\n2 B/B:\n");
}

TEST(WriteMatrix, GivesANodeBeyondTheNamesTheEmptyName) {
  EXPECT_EQ(shown({{1, 3, 1}, {1, 0, 2}, {3, 1, 3}}, 3, {"A"}),
            "1 A/A: 1 at 3 / + 2 at 0 /\n2 /:\n3 /: 3 at 1 A/A\n");
}

// Field by field in their order, the first occurrence each time, names included.
TEST(WriteMatrix, ReplacesAFieldThatANameBringsIn) {
  EXPECT_EQ(shown({}, 1, {"<%rownode%>"}), "1 <<%rownode%>>/%rownode%:\n");
  EXPECT_EQ(shown({}, 1, {"%row%"}), "1 %row%/%row%:\n");
  EXPECT_EQ(shown({{1, 1, 1}}, 1, {"<%colnode%>"}),
            "1 <%colnode%>/<%colnode%>: 1 at 1 <<%colnode%>>/%colnode%\n");
}

TEST(WriteMatrix, HasNoLineForAModelWithoutPins) {
  EXPECT_EQ(shown({{1, 1, 1}}, 0), "");
  EXPECT_EQ(shown({{1, 1, 1}}, -3), "");
}

TEST(WritePackageNetlist, GivesEachPinThreeElementsBehindThePorts) {
  IBISPackageModel model = modelOf(2);
  model.resistance = {{1, 1, 0.5}, {2, 2, 0.25}};
  model.inductance = {{1, 1, 2}, {1, 2, -1}, {2, 1, -1}, {2, 2, 4}};
  model.capacitance = {{1, 1, 8}, {1, 2, 3}, {2, 1, 3}, {2, 2, 16}};
  EXPECT_EQ(
      netlist(model, Nodes{"D0", "D1"}),
      lines({" IN_D0 IN_D1 OUT_D0 OUT_D1", "BC_1 IN_D0 REF q= 8*V(IN_D0,REF) + 3*V(IN_D1,REF)",
             "BC_2 IN_D1 REF q= 3*V(IN_D0,REF) + 16*V(IN_D1,REF)",
             "BL_1 IN_D0 L_D0 flux= 2*I(BL_1) -1*I(BL_2)",
             "BL_2 IN_D1 L_D1 flux= -1*I(BL_1) + 4*I(BL_2)", "BR_1 L_D0 OUT_D0 v= 0.5*I(BL_1)",
             "BR_2 L_D1 OUT_D1 v= 0.25*I(BL_2)"}));
}

TEST(WritePackageNetlist, PutsTheMirroredTermAheadOfTheDiagonalOfItsRow) {
  const Parsed parsed(
      "[IBIS Ver] 4.2\n[Define Package Model] P\n[Number Of Pins] 2\n[Pin Numbers]\n1\n2\n"
      "[Model Data]\n[Capacitance Matrix] Sparse_matrix\n[Row] 1\n1 1e-12\n2 2e-13\n"
      "[Row] 2\n2 1e-12\n[End Model Data]\n");
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_EQ(
      netlist(*parsed.file.data().packageModels[0], Nodes{"A", "B"}),
      lines({" IN_A IN_B OUT_A OUT_B", "BC_1 IN_A REF q= 1e-12*V(IN_A,REF) + 2e-13*V(IN_B,REF)",
             "BC_2 IN_B REF q= 2e-13*V(IN_A,REF) + 1e-12*V(IN_B,REF)", "BL_1 IN_A L_A flux=",
             "BL_2 IN_B L_B flux=", "BR_1 L_A OUT_A v=", "BR_2 L_B OUT_B v="}));
}

TEST(WritePackageNetlist, GivesASingleLineFeedForAModelWithoutPins) {
  EXPECT_EQ(netlist(modelOf(0), Nodes{"A"}), "\n");
}

TEST(WritePackageNetlist, BuildsAModelOfMadeUpNamesLikeAnyOther) {
  IBISPackageModel model = modelOf(2);
  model.capacitance = {{1, 2, 1}};
  EXPECT_EQ(netlist(model, Nodes{"ERROR_1", "ERROR_2"}),
            lines({" IN_ERROR_1 IN_ERROR_2 OUT_ERROR_1 OUT_ERROR_2",
                   "BC_1 IN_ERROR_1 REF q= 1*V(IN_ERROR_2,REF)", "BC_2 IN_ERROR_2 REF q=",
                   "BL_1 IN_ERROR_1 L_ERROR_1 flux=", "BL_2 IN_ERROR_2 L_ERROR_2 flux=",
                   "BR_1 L_ERROR_1 OUT_ERROR_1 v=", "BR_2 L_ERROR_2 OUT_ERROR_2 v="}));
}

TEST(WritePackageNetlist, LeavesPinsBeyondTheNamesUnnamed) {
  EXPECT_EQ(
      netlist(modelOf(2), Nodes{"A"}),
      lines({" IN_A IN_ OUT_A OUT_", "BC_1 IN_A REF q=", "BC_2 IN_ REF q=", "BL_1 IN_A L_A flux=",
             "BL_2 IN_ L_ flux=", "BR_1 L_A OUT_A v=", "BR_2 L_ OUT_ v="}));
}

// One matrix as its description says it: for each pin the entries of its row, found by looking at
// all of them, joined by an operator unless the number brings its own.
std::string plainMatrix(const Matrix& matrix, const Nodes& nodes, const std::string& element) {
  std::ostringstream text;
  text.precision(15);
  for (std::size_t row = 1; row <= nodes.size(); ++row) {
    const std::string node(nodes[row - 1]);
    text << 'B' << element << '_' << row << ' ';
    if (element == "C") text << "IN_" << node << " REF q=";
    if (element == "L") text << "IN_" << node << " L_" << node << " flux=";
    if (element == "R") text << "L_" << node << " OUT_" << node << " v=";
    std::string sign = " ";
    for (const IBISMatrixEntry& entry : matrix) {
      if (entry.row != static_cast<std::int32_t>(row)) continue;
      text << (entry.value < 0 ? " " : sign) << entry.value << '*';
      if (element == "C") text << "V(IN_" << nodes[static_cast<std::size_t>(entry.column) - 1];
      text << (element == "C" ? ",REF)" : "I(BL_" + std::to_string(entry.column) + ")");
      sign = " + ";
    }
    text << '\n';
  }
  return text.str();
}

std::string plainNetlist(const IBISPackageModel& model, const Nodes& nodes) {
  std::string text;
  for (const std::string side : {"IN_", "OUT_"}) {
    for (const std::string_view node : nodes) text += ' ' + side + std::string(node);
  }
  return text + '\n' + plainMatrix(model.capacitance, nodes, "C") +
         plainMatrix(model.inductance, nodes, "L") + plainMatrix(model.resistance, nodes, "R");
}

// Entries in any order, repeated and of any size, those of rows that no pin has among them.
Matrix randomMatrix(std::mt19937& dice, std::size_t pins) {
  const auto below = [&](std::size_t limit) { return static_cast<std::int32_t>(dice() % limit); };
  Matrix matrix(dice() % 30);
  for (IBISMatrixEntry& entry : matrix) {
    entry.row = below(pins + 2);
    entry.column = 1 + below(pins);
    entry.value = (below(2000) - 1000) * std::pow(10.0, below(40) - 20) / 7.0;
  }
  return matrix;
}

TEST(WritePackageNetlist, AgreesWithItsDescriptionOnManyMatrices) {
  std::mt19937 dice(5);
  for (int round = 0; round < 1000; ++round) {
    const Texts names = {"A", "b_1", "", "IN_", "A", "longer_name", "7", "L_7"};
    const auto pins = static_cast<std::ptrdiff_t>(1 + dice() % names.size());
    const Nodes nodes(names.begin(), names.begin() + pins);
    IBISPackageModel model = modelOf(static_cast<std::int32_t>(nodes.size()));
    for (Matrix* matrix : {&model.capacitance, &model.inductance, &model.resistance}) {
      *matrix = randomMatrix(dice, nodes.size());
    }
    ASSERT_EQ(netlist(model, nodes), plainNetlist(model, nodes)) << "round " << round;
  }
}

}  // namespace
}  // namespace ibis::testing
