#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "spice_bench.h"

namespace ibis::cli {
namespace {

constexpr double supply = 3.0;        // volts
constexpr double conductance = 0.02;  // of both tables, in siemens
constexpr double span = 2e-9;         // of the waveforms, in seconds
constexpr int points = 80;            // of a waveform

// A coefficient that turns on, swings 37 % beyond 1 and settles; the time is a share of the span.
double ringing(double time) {
  const double t = std::max(0.0, time - 0.1);
  return 1.0 - std::exp(-10.0 * t) * std::cos(31.4159 * t);
}

// The pad of straight tables with 50 ohm to a voltage, from the sum of its currents.
double padVoltage(double up, double down, double fixture) {
  return (up * conductance * supply + fixture / 50.0) / ((up + down) * conductance + 1.0 / 50.0);
}

double waveformVoltage(bool rises, double time, double fixture) {
  const double on = ringing(time);
  return rises ? padVoltage(on, 1.0 - on, fixture) : padVoltage(1.0 - on, on, fixture);
}

void addWaveform(std::ostream& text, bool rises, double fixture) {
  text << (rises ? "[Rising Waveform]\n" : "[Falling Waveform]\n");
  text << "R_fixture = 50\nV_fixture = " << fixture << '\n';
  for (int i = 0; i <= points; ++i) {
    const double time = static_cast<double>(i) / points;
    const double voltage = waveformVoltage(rises, time, fixture);
    text << time * span << ' ' << voltage << " NA NA\n";
  }
}

std::string ringingDriver() {
  std::ostringstream text;
  text.precision(9);
  text << "[IBIS Ver] 4.2\n[Component] bits\n[Package]\nR_pkg 0 NA NA\nL_pkg 0 NA NA\n"
       << "C_pkg 0 NA NA\n[Pin] signal_name model_name\n1 a ringing\n[Model] ringing\n"
       << "Model_type Output\nC_comp 1p NA NA\n[Voltage Range] 3 NA NA\n"
       << "[Pulldown]\n-3 -60m NA NA\n6 120m NA NA\n[Pullup]\n-3 60m NA NA\n6 -120m NA NA\n"
       << "[Ramp]\ndV/dt_r 0.9/0.2n NA NA\ndV/dt_f 0.9/0.2n NA NA\n";
  for (const double fixture : {0.0, supply}) {
    addWaveform(text, true, fixture);
    addWaveform(text, false, fixture);
  }
  text << "[End]\n";
  return text.str();
}

// 127 bits of the shift register of x^7 + x^6 + 1, which holds every word of seven bits but zero.
std::vector<int> randomBits() {
  std::vector<int> bits;
  unsigned state = 0x7f;
  for (int i = 0; i < 127; ++i) {
    bits.push_back(static_cast<int>(state & 1u));
    const unsigned next = ((state >> 6) ^ (state >> 5)) & 1u;
    state = ((state << 1) | next) & 0x7f;
  }
  return bits;
}

std::string sourceOf(const std::vector<int>& bits, double bitTime) {
  std::ostringstream text;
  text.precision(9);
  text << "Vdrv drv 0 pwl(0 0\n";
  int level = 0;
  for (std::size_t i = 0; i < bits.size(); ++i) {
    if (bits[i] == level) continue;
    const double time = static_cast<double>(i + 1) * bitTime;
    text << "+ " << time << ' ' << level << ' ' << time + 1e-4 * span << ' ' << bits[i] << '\n';
    level = bits[i];
  }
  text << "+ )\n";
  return text.str();
}

struct Extremes {
  double low = 0.0;
  double high = 0.0;
  double lastTime = 0.0;
};

// The largest step is longer than the recommended one, so that the run is short.
Extremes runBits(const std::string& models, double bitTime, double stop) {
  std::ostringstream deck;
  deck.precision(9);
  deck << "* bits\n"
       << models << sourceOf(randomBits(), bitTime) << "Vhalf half 0 1.5\nRload pad half 50\n"
       << "X1 pad drv 0 ringing_typ_v\n.options trtol=1 method=gear\n.save v(pad)\n"
       << ".tran 2e-11 " << stop << " 0 2e-11\n";
  const RawPlot plot = runDeck(deck.str());
  const auto [low, high] = std::ranges::minmax(*plot.find("v(pad)"));
  return {low, high, plot.find("time")->back()};
}

TEST(RandomBits, HoldEveryWordOfSevenBitsOnce) {
  const std::vector<int> bits = randomBits();
  EXPECT_EQ(std::ranges::count(bits, 1), 64);
  EXPECT_EQ(std::ranges::count(bits, 0), 63);
}

// The pad's extremes where each edge has all its time: the coefficients pass 1 by exp(-1) half a
// period after they turn on, which is 0.196 and 2.804 V with 50 ohm to the middle.
TEST(RandomBits, LeaveThePadNearItsRailsWhateverTheirLength) {
  SKIP_WITHOUT_NGSPICE();
  const std::string models = modelsOf(ringingDriver(), "typ");
  for (const double share : {2.0, 1.0, 0.5}) {
    const double stop = 129.0 * share * span;
    const Extremes found = runBits(models, share * span, stop);
    EXPECT_NEAR(found.lastTime, stop, 1e-6 * stop) << share;
    EXPECT_GT(found.low, -1.0) << share;
    EXPECT_LT(found.high, supply + 1.0) << share;
    EXPECT_NEAR(found.low, 0.196, 0.04) << share;
    EXPECT_NEAR(found.high, 2.804, 0.04) << share;
  }
}

}  // namespace
}  // namespace ibis::cli
