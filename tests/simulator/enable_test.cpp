#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "analysis/curve.h"
#include "spice_bench.h"

namespace ibis::cli {
namespace {

constexpr const char* threeState = R"([IBIS Ver] 4.2
[Component] enables
[Package]
R_pkg 0 NA NA
L_pkg 0 NA NA
C_pkg 0 NA NA
[Pin] signal_name model_name
1 a dut
[Model] dut
Model_type 3-state
C_comp 1p NA NA
[Voltage Range] 3 NA NA
[Pulldown]
-3 -60m NA NA
6 120m NA NA
[Pullup]
-3 60m NA NA
6 -120m NA NA
[Ramp]
dV/dt_r 0.45/1n NA NA
dV/dt_f 0.45/1n NA NA
[End]
)";

constexpr double enableReturns = 30e-9;
constexpr double lowLevel = 0.75;  // volts, with 50 ohm to the middle of the supply
constexpr double loadLevel = 1.5;
constexpr double highLevel = 2.25;

// The drive rises at 10 ns. The enable falls at a time in nanoseconds and rises again after the pad
// has come to rest.
Curve padAfter(const std::string& models, double fall) {
  std::ostringstream deck;
  deck << "* enable\n"
       << models << "Vdrv drv 0 pwl(0 0 10n 0 10.001n 1)\nVen en 0 pwl(0 1 " << fall << "n 1 "
       << fall + 0.001 << "n 0 30n 0 30.001n 1)\nVhalf half 0 1.5\nRload pad half 50\n"
       << "X1 pad drv en 0 dut_typ_v\n.options reltol=1e-4 trtol=1 method=gear\n.save v(pad)\n"
       << ".tran 20p 40n 0 20p\n";
  const RawPlot plot = runDeck(deck.str());
  return {*plot.find("time"), *plot.find("v(pad)")};
}

// How far the pad goes back, added up from one time to another, when it should go one way only.
double backward(const Curve& pad, double from, double to, double direction) {
  double sum = 0.0;
  for (std::size_t i = 1; i < pad.size(); ++i) {
    const bool isWithin = pad.x[i - 1] >= from && pad.x[i] <= to;
    if (isWithin) sum += std::max(0.0, -direction * (pad.y[i] - pad.y[i - 1]));
  }
  return sum;
}

void expectLevels(const Curve& pad, double fall) {
  constexpr double exact = 2e-3;
  EXPECT_NEAR(valueAt(pad, 5e-9), lowLevel, exact) << fall;
  EXPECT_NEAR(valueAt(pad, 29e-9), loadLevel, exact) << fall;
  EXPECT_NEAR(pad.y.back(), highLevel, exact) << fall;
  EXPECT_NEAR(pad.x.back(), 40e-9, 1e-15) << fall;
  const auto [least, most] = std::ranges::minmax(pad.y);
  EXPECT_GT(least, lowLevel - exact) << fall;
  EXPECT_LT(most, highLevel + exact) << fall;
}

struct LeavingRow {
  double fall;       // of the enable, in nanoseconds
  double direction;  // 1 when the pad rises to the load's level
};

// Before the drive rises, while the pulldown lets go, and after the pad has come to its high level.
constexpr LeavingRow leavingRows[] = {{8.0, 1.0},  {9.9, 1.0},  {10.5, 1.0},
                                      {11.0, 1.0}, {11.5, 1.0}, {20.0, -1.0}};

TEST(Enable, ThePadLeavesForTheLoadOneWayAndComesBack) {
  SKIP_WITHOUT_NGSPICE();
  constexpr double noise = 1e-3;  // volts
  const std::string models = modelsOf(threeState, "typ");
  for (const LeavingRow& row : leavingRows) {
    const Curve pad = padAfter(models, row.fall);
    expectLevels(pad, row.fall);
    EXPECT_LT(backward(pad, row.fall * 1e-9, enableReturns, row.direction), noise) << row.fall;
    EXPECT_LT(backward(pad, enableReturns, 40e-9, 1.0), noise) << row.fall;
  }
}

// The pullup is turning on when it is told to let go. Both edges run to their end and add up, so it
// goes on for a moment, and what the two edges differ in shape is left over.
TEST(Enable, APullupThatIsTurningOnLetsGoWithinAFifthOfTheSwing) {
  SKIP_WITHOUT_NGSPICE();
  const Curve pad = padAfter(modelsOf(threeState, "typ"), 12.0);
  expectLevels(pad, 12.0);
  double most = 0.0;
  for (std::size_t i = 0; i < pad.size(); ++i) {
    if (pad.x[i] > 12e-9 && pad.x[i] < enableReturns) most = std::max(most, pad.y[i]);
  }
  EXPECT_LT(most, loadLevel + 0.2 * (highLevel - loadLevel));
}

}  // namespace
}  // namespace ibis::cli
