#include "analysis/edge_problem.h"

#include <algorithm>
#include <cmath>

#include "analysis/load_line.h"

namespace ibis {
namespace {

constexpr std::size_t uniformPoints = 1500;
constexpr double movedShare = 0.01;     // of its swing: a waveform has begun to move
constexpr double settledShare = 0.005;  // of its swing: a waveform has settled

double spanOf(const std::vector<const UsableWaveform*>& chosen) {
  double span = 0.0;
  for (const UsableWaveform* each : chosen) span = std::max(span, each->points.time.back());
  return span;
}

std::vector<double> gridOf(const std::vector<const UsableWaveform*>& chosen) {
  const double span = spanOf(chosen);
  std::vector<double> grid{0.0, firstStep * span};
  for (std::size_t i = 1; i <= uniformPoints; ++i) {
    grid.push_back(span * static_cast<double>(i) / static_cast<double>(uniformPoints));
  }
  for (const UsableWaveform* each : chosen) {
    const auto middle = static_cast<std::ptrdiff_t>(grid.size());
    for (const double t : each->points.time) {
      if (t > 0.0) grid.push_back(t);
    }
    std::inplace_merge(grid.begin(), grid.begin() + middle, grid.end());
  }
  const double gap = 1e-9 * span;
  const auto isNear = [gap](double a, double b) { return b - a < gap; };
  grid.erase(std::unique(grid.begin(), grid.end(), isNear), grid.end());
  return grid;
}

CurrentRow rowAt(PadCurrentReader& reader, double capacitance, const DieWaveform& wave,
                 std::size_t i) {
  const PadCurrents currents = reader.at(wave.voltage[i]);
  return {currents.pullup, currents.pulldown,
          -wave.load[i] - capacitance * wave.slope[i] - currents.clamps};
}

CoefficientList solveOpenDriver(const EdgeProblem& problem) {
  const DriverKind driver = problem.device->driver;
  const std::vector<double> k =
      solveOpen(problem.rows, problem.chosen.size(), problem.grid, driver);
  CoefficientList list;
  for (const double each : k) {
    list.push_back(driver == DriverKind::openSource ? Coefficients{each, 0.0}
                                                    : Coefficients{0.0, each});
  }
  return list;
}

}  // namespace

Coefficients startOf(DriverKind driver, Edge edge) {
  return settled(driver, edge == Edge::falling);
}

Coefficients endOf(DriverKind driver, Edge edge) { return settled(driver, edge == Edge::rising); }

EdgeProblem makeProblem(const Device& device, Edge edge,
                        std::vector<const UsableWaveform*> chosen) {
  EdgeProblem problem{&device, edge, gridOf(chosen), std::move(chosen), {}, {}};
  const std::size_t count = problem.chosen.size();
  problem.rows.resize(problem.grid.size() * count);
  for (std::size_t w = 0; w < count; ++w) {
    const UsableWaveform& each = *problem.chosen[w];
    problem.waves.push_back(dieWaveform(each.points, each.fixture, problem.grid));
    PadCurrentReader reader(device);
    for (std::size_t i = 0; i < problem.grid.size(); ++i) {
      problem.rows[i * count + w] = rowAt(reader, device.capacitances.total(), problem.waves[w], i);
    }
  }
  return problem;
}

CoefficientList solveAll(const EdgeProblem& problem) {
  if (problem.device->driver != DriverKind::pushPull) return solveOpenDriver(problem);
  CoefficientList list;
  for (std::size_t i = 0; i < problem.grid.size(); ++i) {
    list.push_back(problem.chosen.size() == 2
                       ? solvePair(problem.rows[2 * i], problem.rows[2 * i + 1])
                       : solveComplement(problem.rows[i]));
  }
  return list;
}

Coefficients restingSolution(const EdgeProblem& problem) {
  std::vector<CurrentRow> rows;
  for (std::size_t w = 0; w < problem.chosen.size(); ++w) {
    PadCurrentReader reader(*problem.device);
    const PadCurrents currents = reader.at(problem.waves[w].voltage.front());
    rows.push_back(
        {currents.pullup, currents.pulldown, -problem.waves[w].restingLoad - currents.clamps});
  }
  if (problem.device->driver == DriverKind::pushPull) {
    return rows.size() == 2 ? solvePair(rows[0], rows[1]) : solveComplement(rows[0]);
  }
  const double start = 0.0;
  const double k = solveOpen(rows, rows.size(), std::span(&start, 1), problem.device->driver)[0];
  return problem.device->driver == DriverKind::openSource ? Coefficients{k, 0.0}
                                                          : Coefficients{0.0, k};
}

double deadTimeOf(const EdgeProblem& problem) {
  std::size_t moved = problem.grid.size() - 1;
  for (std::size_t w = 0; w < problem.chosen.size(); ++w) {
    const std::vector<double>& v = problem.waves[w].voltage;
    const double limit = movedShare * problem.chosen[w]->swing;
    const auto first =
        std::ranges::find_if(v, [&](double each) { return std::fabs(each - v.front()) > limit; });
    moved = std::min(moved, static_cast<std::size_t>(first - v.begin()));
  }
  return problem.grid[moved == 0 ? 0 : moved - 1];
}

double activeTimeOf(const EdgeProblem& problem) {
  std::size_t active = 0;
  for (std::size_t w = 0; w < problem.chosen.size(); ++w) {
    const std::vector<double>& v = problem.waves[w].voltage;
    const double limit = settledShare * problem.chosen[w]->swing;
    for (std::size_t i = active; i < v.size(); ++i) {
      if (std::fabs(v[i] - v.back()) > limit) active = i;
    }
  }
  return problem.grid[std::min(active + 1, problem.grid.size() - 1)];
}

}  // namespace ibis
