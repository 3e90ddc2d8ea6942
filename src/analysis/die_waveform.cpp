#include "analysis/die_waveform.h"

#include "analysis/monotone_cubic.h"

namespace ibis {
namespace {

// Slopes of a list over the grid: the parabola through three neighbours, a secant at the ends.
std::vector<double> slopesOf(std::span<const double> grid, const std::vector<double>& values) {
  const std::size_t last = grid.size() - 1;
  std::vector<double> slopes(grid.size());
  const auto secant = [&](std::size_t i) {
    return (values[i + 1] - values[i]) / (grid[i + 1] - grid[i]);
  };
  for (std::size_t i = 1; i < last; ++i) {
    const double before = grid[i] - grid[i - 1];
    const double after = grid[i + 1] - grid[i];
    slopes[i] = (secant(i - 1) * after + secant(i) * before) / (before + after);
  }
  slopes[0] = secant(0);
  slopes[last] = secant(last - 1);
  return slopes;
}

// The current through L_fixture into C_fixture and R_fixture, by the trapezoidal rule:
//   L i' = V - v,  C v' = i - (v - V_fixture) / R.
std::vector<double> inductorCurrent(const std::vector<double>& pin, const Fixture& fixture,
                                    std::span<const double> grid) {
  const double g = 1.0 / fixture.resistance;
  std::vector<double> current(grid.size());
  double v = pin.front();
  current[0] = (v - fixture.voltage) * g;
  for (std::size_t n = 1; n < grid.size(); ++n) {
    const double half = 0.5 * (grid[n] - grid[n - 1]);
    const double a = half / fixture.inductance;
    const double known = current[n - 1] + a * (pin[n] + pin[n - 1] - v);
    const double c = fixture.capacitance;
    // C (v1 - v0) = half (i1 + i0 - g (v1 + v0 - 2 V_fixture)), i1 = known - a v1
    const double right = c * v + half * (known + current[n - 1] - g * (v - 2.0 * fixture.voltage));
    v = right / (c + half * (a + g));
    current[n] = known - a * v;
  }
  return current;
}

void readPin(DieWaveform& wave, const WaveformPoints& points, std::span<const double> grid) {
  MonotoneCubic cubic(points.time, points.voltage);
  for (const double time : grid) {
    const MonotoneCubic::Point point = cubic.at(time);
    wave.voltage.push_back(point.value);
    wave.slope.push_back(point.slope);
  }
}

void addFixture(DieWaveform& wave, const Fixture& fixture, std::span<const double> grid) {
  if (fixture.inductance > 0.0) {
    wave.load = inductorCurrent(wave.voltage, fixture, grid);
    return;
  }
  for (std::size_t i = 0; i < grid.size(); ++i) {
    wave.load.push_back((wave.voltage[i] - fixture.voltage) / fixture.resistance +
                        fixture.capacitance * wave.slope[i]);
  }
}

void moveToDie(DieWaveform& wave, const Fixture& fixture, std::span<const double> grid) {
  if (fixture.cDut > 0.0) {
    for (std::size_t i = 0; i < grid.size(); ++i) wave.load[i] += fixture.cDut * wave.slope[i];
  }
  if (fixture.rDut <= 0.0 && fixture.lDut <= 0.0) return;
  const std::vector<double> change = slopesOf(grid, wave.load);
  for (std::size_t i = 0; i < grid.size(); ++i) {
    wave.voltage[i] += fixture.rDut * wave.load[i] + fixture.lDut * change[i];
  }
  wave.slope = slopesOf(grid, wave.voltage);
}

}  // namespace

DieWaveform dieWaveform(const WaveformPoints& points, const Fixture& fixture,
                        std::span<const double> grid) {
  DieWaveform wave;
  readPin(wave, points, grid);
  wave.restingLoad = (wave.voltage.front() - fixture.voltage) / fixture.resistance;
  addFixture(wave, fixture, grid);
  moveToDie(wave, fixture, grid);
  return wave;
}

}  // namespace ibis
