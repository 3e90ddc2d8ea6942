#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "spice_bench.h"

namespace ibis::cli {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* fourPins = R"([IBIS Ver] 4.2
[Component] quad
[Package]
R_pkg 1 NA NA
L_pkg 1n NA NA
C_pkg 1p NA NA
[Package Model] four
[Pin] signal_name model_name
1 a rx
2 b rx
3 c rx
4 d rx
[Model] rx
Model_type Input
Vinl = 1
Vinh = 2
C_comp 2p NA NA
[Voltage Range] 3 NA NA
[Define Package Model] four
[Manufacturer] nobody
[OEM] nobody
[Description] four pins
[Number Of Pins] 4
[Pin Numbers]
1
2
3
4
[Model Data]
[Resistance Matrix] Banded_matrix
[Bandwidth] 0
[Row] 1
0.10
[Row] 2
0.12
[Row] 3
0.15
[Row] 4
0.11
[Inductance Matrix] Sparse_matrix
[Row] 1
1 4.0n
2 1.2n
3 0.5n
4 0.2n
[Row] 2
2 4.4n
3 1.3n
4 0.6n
[Row] 3
3 4.8n
4 1.4n
[Row] 4
4 4.2n
[Capacitance Matrix] Sparse_matrix
[Row] 1
1 0.90p
2 -0.22p
3 -0.06p
4 -0.02p
[Row] 2
2 1.05p
3 -0.25p
4 -0.07p
[Row] 3
3 1.10p
4 -0.24p
[Row] 4
4 0.95p
[End Model Data]
[End Package Model]
[End]
)";

// Voltages at the four pins, then at the four dies, when 1 V drives pin 1 through 50 ohm and the
// other pins have 50 ohm to ground: the solution, by Gauss's elimination in complex numbers, of
//
//   j w 2 pF v_die + v_die / 1 Gohm + i = 0
//   j w C v_pin + (v_pin - v_source) / 50 ohm - i = 0
//   v_die - v_pin = (R + j w L) i.
struct SolutionRow {
  double frequency;
  std::complex<double> voltages[8];
};

constexpr SolutionRow solutionRows[] = {
    {1e8,
     {{0.991676177288, -0.0905354613472},
      {0.00124599617435, 0.00667723110007},
      {0.000290119711595, 0.00182641391804},
      {8.45199262712e-05, 0.000610143098791},
      {0.994809020809, -0.090940614487},
      {0.00219801583239, 0.00661585644382},
      {0.000688329635223, 0.00180467873065},
      {0.000244309543039, 0.000602876773268}}},
    {1e9,
     {{0.401400354948, -0.48767673269},
      {-0.0290888888618, 0.00884279557879},
      {-0.0234293775911, 0.00838337459102},
      {-0.0129271878324, 0.00484593823021},
      {0.591499593926, -0.731973679517},
      {0.0419708438781, -0.103365779787},
      {0.00639824398069, -0.0548433080335},
      {-0.00138776677998, -0.0264373437385}}},
    {5e9,
     {{0.560515702911, -0.482250812773},
      {0.0992635484417, 0.0095136967772},
      {0.0503369718961, 0.0134563316093},
      {0.0255974878715, 0.0130748180267},
      {-0.0860417918726, 0.0787016125666},
      {0.0137030945993, -0.0243060511062},
      {0.000326495310401, -0.00308756070763},
      {-0.00120083270989, -0.000937374078244}}},
};

ExportRequest coupledRequest(double smallestCoupling) {
  ExportRequest wanted;
  wanted.package = PackageKind::coupled;
  wanted.smallestCoupling = smallestCoupling;
  wanted.hasSmallestCoupling = true;
  return wanted;
}

TEST(CoupledPackage, IsThatOfItsMatricesAtEachFrequency) {
  SKIP_WITHOUT_NGSPICE();
  const ExportedText exported = exportText(fourPins, coupledRequest(0.0));
  ASSERT_THAT(exported.result.errors, IsEmpty());
  std::string deck("* coupled\n");
  deck.append(exported.text);
  deck.append("X1 p_1 p_2 p_3 p_4 m1 m2 m3 m4 0 quad_typ_v\nVs s 0 dc 0 ac 1\nR1 s p_1 50\n");
  deck.append("R2 p_2 0 50\nR3 p_3 0 50\nR4 p_4 0 50\n");
  std::vector<double> frequencies;
  for (const SolutionRow& row : solutionRows) frequencies.push_back(row.frequency);
  const auto found = runAc(deck, frequencies,
                           "v(p_1) v(p_2) v(p_3) v(p_4) v(x1.x1.die_1) v(x1.x1.die_2) "
                           "v(x1.x1.die_3) v(x1.x1.die_4)");
  // The seven digits of the couplings leave this much open, in shares of the source.
  constexpr double digits = 1e-6;
  for (std::size_t i = 0; i < frequencies.size(); ++i) {
    ASSERT_EQ(found[i].size(), 8u);
    for (std::size_t k = 0; k < 8; ++k) {
      EXPECT_LT(std::abs(found[i][k] - solutionRows[i].voltages[k]), digits)
          << frequencies[i] << ' ' << k;
    }
  }
}

// A component of many pins, each coupled to its neighbour by a share of its own inductance.
std::string manyPins(int count, double coupling) {
  std::string pins;
  std::string numbers;
  std::string rows[3];
  for (int i = 1; i <= count; ++i) {
    const std::string n = std::to_string(i);
    pins += n + " s" + n + " rx\n";
    numbers += n + '\n';
    const bool isLast = i == count;
    const std::string next = isLast ? "" : '\n' + std::to_string(i + 1) + ' ';
    rows[0] += "[Row] " + n + "\n0.1\n";
    rows[1] += "[Row] " + n + '\n' + n + " 4n" + next;
    rows[2] += "[Row] " + n + '\n' + n + " 1p" + next;
    if (!isLast) rows[1] += std::to_string(4 * coupling) + 'n';
    if (!isLast) rows[2] += "-0.2p";
    for (std::string* each : {&rows[1], &rows[2]}) *each += '\n';
  }
  std::string text(
      "[IBIS Ver] 4.2\n[Component] wide\n[Package]\nR_pkg 1 NA NA\nL_pkg 1n NA NA\nC_pkg 1p NA NA\n"
      "[Package Model] band\n[Pin] signal_name model_name\n");
  text.append(pins).append(
      "[Model] rx\nModel_type Input\nVinl = 1\nVinh = 2\nC_comp 2p NA NA\n"
      "[Voltage Range] 3 NA NA\n[Define Package Model] band\n[Manufacturer] n\n[OEM] n\n"
      "[Description] d\n[Number Of Pins] ");
  text.append(std::to_string(count)).append("\n[Pin Numbers]\n").append(numbers);
  text.append("[Model Data]\n[Resistance Matrix] Banded_matrix\n[Bandwidth] 0\n").append(rows[0]);
  text.append("[Inductance Matrix] Sparse_matrix\n").append(rows[1]);
  text.append("[Capacitance Matrix] Sparse_matrix\n").append(rows[2]);
  return text.append("[End Model Data]\n[End Package Model]\n[End]\n");
}

std::vector<std::string> textsOf(const std::vector<Diagnostic>& list) {
  std::vector<std::string> texts;
  for (const Diagnostic& each : list) texts.push_back(each.text);
  return texts;
}

TEST(CoupledPackage, OfManyPinsAsksForAChoice) {
  ExportRequest wanted = coupledRequest(0.01);
  wanted.hasSmallestCoupling = false;
  const ExportedText exported = exportText(manyPins(500, 0.3), wanted);
  EXPECT_THAT(
      textsOf(exported.result.errors),
      ElementsAre("The coupled package of 500 pins is too large (couplings: 499); choose pins "
                  "with -p, or the smallest coupling with --min-coupling"));
  EXPECT_THAT(exported.result.files, IsEmpty());
}

// 3 V behind 50 ohm at every pin: nothing but the gigohm of each receiver draws a current, so the
// pins stand at 3 V less 150 nV.
TEST(CoupledPackage, OfManyPinsRunsOnceItIsChosen) {
  SKIP_WITHOUT_NGSPICE();
  const ExportedText exported = exportText(manyPins(500, 0.3), coupledRequest(0.01));
  ASSERT_THAT(exported.result.errors, IsEmpty());
  std::string deck("* many pins\n");
  deck.append(exported.text).append("X1\n");
  for (const char* port : {"p_", "m"}) {
    for (int i = 1; i <= 500; ++i) deck.append("+ ").append(port).append(std::to_string(i)) += '\n';
  }
  deck.append("+ 0 wide_typ_v\nVs s 0 3\n");
  for (int i = 1; i <= 500; ++i) {
    const std::string n = std::to_string(i);
    deck.append("R" + n + " s p_" + n + " 50\n");
  }
  const RawPlot plot = runDeck(deck.append(".save v(p_1) v(p_500) v(m1) v(m500)\n.op\n"));
  for (const char* pin : {"v(p_1)", "v(p_500)"}) {
    EXPECT_NEAR(plot.find(pin)->front(), 3.0 - 150e-9, 1e-8) << pin;
  }
  for (const char* monitor : {"v(m1)", "v(m500)"}) {
    EXPECT_NEAR(plot.find(monitor)->front(), 1.0, 1e-9) << monitor;
  }
}

// A band of ones with k beside them is positive definite below k = 1 / (2 cos(pi / 501)), and the
// largest power of 0.999 that brings 0.9 below it is the 588th.
TEST(CoupledPackage, OfManyPinsThatIsNotPassiveIsScaled) {
  const ExportedText exported = exportText(manyPins(500, 0.9), coupledRequest(0.01));
  EXPECT_THAT(textsOf(exported.result.warnings),
              ElementsAre("Package model 'band': the inductances are not those of a passive "
                          "network; all couplings are multiplied by 0.555274"));
}

}  // namespace
}  // namespace ibis::cli
