#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "spice_bench.h"

namespace ibis::cli {
namespace {

constexpr const char* fourTables = R"([IBIS Ver] 4.2
[Component] tables
[Package]
R_pkg 0 NA NA
L_pkg 0 NA NA
C_pkg 0 NA NA
[Pin] signal_name model_name
1 a dut
[Model] dut
Model_type I/O
Vinl = 1
Vinh = 2
C_comp 4p 3p 5p
[Voltage Range] 3 2.7 3.3
[Pulldown]
-3 -30m -21m -42m
0 0 0 0
1 20m 10m 30m
3 30m 20m 50m
[Pullup]
-3 30m 21m 45m
0 0 0 0
1 -16m -8m -24m
3 -26m -16m -40m
[GND Clamp]
-2 -100m -80m -120m
-1 -10m -8m -12m
0 0 0 0
1 0 0 0
[Power Clamp]
-2 80m 60m 100m
-1 8m 6m 10m
0 0 0 0
1 0 0 0
[Ramp]
dV/dt_r 0.9/1n 0.8/1.2n 1/0.8n
dV/dt_f 0.9/1n 0.8/1.2n 1/0.8n
[End]
)";

// Amperes out of the pad at a voltage of it, into rails at 3, 0.25, 3.5 and -0.5 V: the straight
// lines of the tables above at 3 - pad, pad - 0.25, 3.5 - pad and pad + 0.5. Every table is left at
// both of its ends, where its end segments go on.
struct CurrentsRow {
  const char* corner;
  double pad;
  double intoRails[4];  // pullup, pulldown, power clamp, ground clamp
};

constexpr CurrentsRow currentsRows[] = {
    {"typ", -10, {-0.076, -0.1025, 0, -0.775}},  {"typ", -2.25, {-0.03725, -0.025, 0, -0.0775}},
    {"typ", 0.5, {-0.0235, 0.005, 0, 0}},        {"typ", 2, {-0.016, 0.02375, 0, 0}},
    {"typ", 4.75, {0.0175, 0.0375, 0.026, 0}},   {"typ", 14, {0.11, 0.08375, 0.692, 0}},
    {"min", -10, {-0.056, -0.07175, 0, -0.62}},  {"min", -2.25, {-0.025, -0.0175, 0, -0.062}},
    {"min", 0.5, {-0.014, 0.0025, 0, 0}},        {"min", 2, {-0.008, 0.01375, 0, 0}},
    {"min", 4.75, {0.01225, 0.0275, 0.0195, 0}}, {"min", 14, {0.077, 0.07375, 0.519, 0}},
    {"max", -10, {-0.12, -0.1435, 0, -0.93}},    {"max", -2.25, {-0.058, -0.035, 0, -0.093}},
    {"max", 0.5, {-0.036, 0.0075, 0, 0}},        {"max", 2, {-0.024, 0.0375, 0, 0}},
    {"max", 4.75, {0.02625, 0.065, 0.0325, 0}},  {"max", 14, {0.165, 0.1575, 0.865, 0}},
};

struct StateRow {
  const char* title;
  int drive;
  int enable;
  double up;    // whether the pullup is on
  double down;  // whether the pulldown is on
};

constexpr StateRow stateRows[] = {
    {"high", 1, 1, 1, 0}, {"low", 0, 1, 0, 1}, {"off", 0, 0, 0, 0}, {"off", 1, 0, 0, 0}};

RawPlot sweptPad(const std::string& corner, const StateRow& state) {
  std::string deck("* sweep\n");
  deck.append(modelsOf(fourTables, corner));
  deck.append("Vp pad 0 0\nVpu pu 0 3\nVpd pd 0 0.25\nVpc pc 0 3.5\nVgc gc 0 -0.5\n");
  deck.append("Vdrv drv 0 ").append(std::to_string(state.drive));
  deck.append("\nVen en 0 ").append(std::to_string(state.enable));
  deck.append("\nX1 pad drv en mon pu pd pc gc dut_").append(corner);
  deck.append("\n.options reltol=1e-6 abstol=1e-15\n.save v(pad) i(vpu) i(vpd) i(vpc) i(vgc)\n");
  return runDeck(deck.append(".dc Vp -10 14 0.25\n"));
}

double currentAt(const RawPlot& plot, const char* source, double pad) {
  const std::vector<double>& pads = *plot.find("v(pad)");
  const auto found =
      std::ranges::find_if(pads, [&](double v) { return std::fabs(v - pad) < 1e-6; });
  return plot.find(source)->at(static_cast<std::size_t>(found - pads.begin()));
}

void expectTables(const RawPlot& plot, const CurrentsRow& row, const StateRow& state) {
  constexpr double digits = 1e-9;  // amperes
  constexpr double leak = 1e-9;    // siemens, from the pad to the pulldown's rail
  const double resting = leak * (row.pad - 0.25);
  const double expected[] = {state.up * row.intoRails[0], state.down * row.intoRails[1] + resting,
                             row.intoRails[2], row.intoRails[3]};
  const char* sources[] = {"i(vpu)", "i(vpd)", "i(vpc)", "i(vgc)"};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_NEAR(currentAt(plot, sources[i], row.pad), expected[i], digits)
        << state.title << ' ' << row.corner << ' ' << row.pad << ' ' << sources[i];
  }
}

TEST(PadCurrents, EachTermIsItsTableInEveryStateAndCorner) {
  SKIP_WITHOUT_NGSPICE();
  for (const char* corner : {"typ", "min", "max"}) {
    for (const StateRow& state : stateRows) {
      const RawPlot plot = sweptPad(corner, state);
      for (const CurrentsRow& row : currentsRows) {
        if (std::string_view(row.corner) == corner) expectTables(plot, row, state);
      }
    }
  }
}

}  // namespace
}  // namespace ibis::cli
