#include <gtest/gtest.h>

#include <numbers>

#include "spice_bench.h"

namespace ibis::cli {
namespace {

// A driver and a receiver with one capacitance each, and a transceiver with four; the one of the
// transceiver stands for those who cannot read the four.
constexpr const char* threeModels = R"([IBIS Ver] 4.2
[Component] caps
[Package]
R_pkg 0 NA NA
L_pkg 0 NA NA
C_pkg 0 NA NA
[Pin] signal_name model_name
1 a drives
2 b listens
3 c both
[Model] drives
Model_type Output
C_comp 4p 3p 5p
[Voltage Range] 3 2.7 3.3
[Pulldown]
-3 -60m -40m -80m
6 120m 80m 160m
[Pullup]
-3 60m 40m 80m
6 -120m -80m -160m
[Ramp]
dV/dt_r 0.9/1n 0.8/1.2n 1/0.8n
dV/dt_f 0.9/1n 0.8/1.2n 1/0.8n
[Model] listens
Model_type Input
Vinl = 1
Vinh = 2
C_comp 2p 1.5p 2.5p
[Voltage Range] 3 2.7 3.3
[Model] both
Model_type I/O
Vinl = 1
Vinh = 2
C_comp 9p 8p 10p
C_comp_pullup 1.25p 1p 1.5p
C_comp_pulldown 1.75p 1.375p 2p
C_comp_power_clamp 0.5p 0.375p 0.625p
C_comp_gnd_clamp 0.75p 0.6875p 0.875p
[Voltage Range] 3 2.7 3.3
[Pulldown]
-3 -60m -40m -80m
6 120m 80m 160m
[Pullup]
-3 60m 40m 80m
6 -120m -80m -160m
[Ramp]
dV/dt_r 0.9/1n 0.8/1.2n 1/0.8n
dV/dt_f 0.9/1n 0.8/1.2n 1/0.8n
[End]
)";

// From the pad of a model to each of its rails, in farads.
struct CapacitanceRow {
  const char* model;
  const char* corner;
  const char* logic;  // nodes between the pad and the rails
  double toRails[4];  // pu, pd, pc, gc
};

constexpr CapacitanceRow capacitanceRows[] = {
    {"drives", "typ", "drv", {0.0, 4e-12, 0.0, 0.0}},
    {"drives", "min", "drv", {0.0, 3e-12, 0.0, 0.0}},
    {"drives", "max", "drv", {0.0, 5e-12, 0.0, 0.0}},
    {"listens", "typ", "mon", {0.0, 0.0, 0.0, 2e-12}},
    {"listens", "min", "mon", {0.0, 0.0, 0.0, 1.5e-12}},
    {"listens", "max", "mon", {0.0, 0.0, 0.0, 2.5e-12}},
    {"both", "typ", "drv en mon", {1.25e-12, 1.75e-12, 0.5e-12, 0.75e-12}},
    {"both", "min", "drv en mon", {1e-12, 1.375e-12, 0.375e-12, 0.6875e-12}},
    {"both", "max", "drv en mon", {1.5e-12, 2e-12, 0.625e-12, 0.875e-12}},
};

std::string deckOf(const CapacitanceRow& row) {
  std::string deck("* capacitance\n");
  deck.append(modelsOf(threeModels, row.corner));
  deck.append("Vp pad 0 dc 1.2 ac 1\nVdrv drv 0 1\nVen en 0 1\n");
  deck.append("Vpu pu 0 3\nVpd pd 0 0\nVpc pc 0 3\nVgc gc 0 0\nX1 pad ");
  return deck.append(row.logic).append(" pu pd pc gc ").append(row.model) + '_' + row.corner + '\n';
}

// A volt at the pad and none at the rails: what flows into a rail is its admittance to the pad. The
// matrix is solved directly, without iteration, so no tolerance of the simulator counts; all
// capacitances have fewer than the seven digits of a netlist.
TEST(PadCapacitance, IsThatOfTheFileAtEachRailAndCorner) {
  SKIP_WITHOUT_NGSPICE();
  const std::vector<double> frequencies{1e6, 1e9};
  for (const CapacitanceRow& row : capacitanceRows) {
    const auto currents = runAc(deckOf(row), frequencies, "i(vpu) i(vpd) i(vpc) i(vgc)");
    for (std::size_t i = 0; i < frequencies.size(); ++i) {
      ASSERT_EQ(currents[i].size(), 4u);
      for (std::size_t rail = 0; rail < 4; ++rail) {
        const double farads = currents[i][rail].imag() / (2.0 * std::numbers::pi * frequencies[i]);
        EXPECT_NEAR(farads, row.toRails[rail], 1e-9 * row.toRails[rail])
            << row.model << ' ' << row.corner << ' ' << rail;
      }
    }
  }
}

}  // namespace
}  // namespace ibis::cli
