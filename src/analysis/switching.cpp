#include "analysis/switching.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "analysis/coefficient_solver.h"
#include "analysis/die_waveform.h"
#include "analysis/load_line.h"
#include "analysis/waveform_points.h"
#include "model/estimate_waveforms.h"

namespace ibis {
namespace {

constexpr std::size_t uniformPoints = 1500;
constexpr std::size_t choicePoints = 60;
constexpr std::size_t mostWaveforms = 16;  // of an edge that are looked at
constexpr double smallestSwing = 1e-3;     // volts
constexpr double smallestShare = 0.03;     // of the largest swing of the edge
constexpr double movedShare = 0.01;        // of its swing: a waveform has begun to move
constexpr double settledShare = 0.005;     // of its swing: a waveform has settled
constexpr double firstStep = 1e-5;         // of the span: where a slope at time 0 is met
constexpr double tailEnd = 1.1;            // in spans
constexpr double dryLow = -1.0;            // coefficients that waveforms agree on stay inside
constexpr double dryHigh = 2.0;
constexpr double outsideShare = 0.02;   // of the span
constexpr double worstEstimate = 0.02;  // static mismatch of an estimate
constexpr double worstMismatch = 0.02;  // static mismatch that is not told
constexpr double worstEnd = 0.05;       // distance of the last coefficients that is not told
constexpr double jumpTime = 1e-3;       // of the span
constexpr double jumpShare = 0.2;       // of the swing
constexpr double finestThinning = 5e-6;
constexpr double coarsestThinning = 2e-4;
constexpr double thinnedShare = 5e-4;         // of the swing
constexpr double smoothstepBand = 0.4257185;  // of a smoothstep's width, from 20 to 80 %
constexpr double assumedRamp = 1e-9;          // seconds, where a file tells nothing
constexpr std::size_t rampPoints = 200;

// One waveform that can be used.
struct Usable {
  std::size_t index = 0;  // in the model's list
  WaveformPoints points;
  Fixture fixture;
  double swing = 0.0;
};

// What the waveforms of an edge offer at a corner.
struct Offer {
  std::vector<Usable> usable;
  bool hasOwnPoints = false;
  bool isEstimate = false;
};

// All that the solution of one edge needs.
struct Problem {
  const Device* device;
  Edge edge;
  std::vector<double> grid;
  std::vector<const Usable*> chosen;
  std::vector<DieWaveform> waves;  // one a chosen waveform
  std::vector<CurrentRow> rows;    // one a chosen waveform for each time
};

using CoefficientList = std::vector<Coefficients>;

const std::vector<IBISWaveform>& waveformsOf(const IBISModel& model, Edge edge) {
  return edge == Edge::rising ? model.risingWaveforms : model.fallingWaveforms;
}

Coefficients startOf(DriverKind driver, Edge edge) {
  return settled(driver, edge == Edge::falling);
}

Coefficients endOf(DriverKind driver, Edge edge) { return settled(driver, edge == Edge::rising); }

double smoothstep(double x) {
  const double s = std::clamp(x, 0.0, 1.0);
  return s * s * (3.0 - 2.0 * s);
}

bool isSpan(const WaveformPoints& points) { return points.size() >= 2 && points.time.back() > 0.0; }

void dropSmall(Offer& offer, Edge edge, std::size_t unusable, Findings& findings) {
  double largest = 0.0;
  for (const Usable& each : offer.usable) largest = std::max(largest, each.swing);
  const double limit = std::max(smallestSwing, smallestShare * largest);
  unusable += std::erase_if(offer.usable, [&](const Usable& u) { return u.swing <= limit; });
  if (offer.hasOwnPoints && unusable != 0) {
    findings.push_back({.kind = FindingKind::waveformsUnusable, .edge = edge, .count = unusable});
  }
}

Offer offerOf(const IBISModel& model, Edge edge, int corner, Findings& findings) {
  Offer offer;
  std::size_t unusable = 0;
  std::size_t dropped = 0;
  const std::vector<IBISWaveform>& list = waveformsOf(model, edge);
  for (std::size_t i = 0; i < std::min(list.size(), mostWaveforms); ++i) {
    const bool isEstimate = list[i].estimate != nullptr;
    WaveformPoints points =
        isEstimate ? ownPoints(withPoints(list[i]), corner) : ownPoints(list[i], corner);
    offer.isEstimate = offer.isEstimate || isEstimate;
    offer.hasOwnPoints = offer.hasOwnPoints || points.size() >= 2;
    if (!isSpan(points)) {
      ++unusable;
      continue;
    }
    dropped += points.missingCells;
    const double swing = swingOf(points);
    offer.usable.push_back({i, std::move(points), fixtureOf(list[i], corner), swing});
  }
  if (dropped != 0) {
    findings.push_back({.kind = FindingKind::waveformCellsDropped, .edge = edge, .count = dropped});
  }
  dropSmall(offer, edge, unusable, findings);
  return offer;
}

double spanOf(const std::vector<const Usable*>& chosen) {
  double span = 0.0;
  for (const Usable* each : chosen) span = std::max(span, each->points.time.back());
  return span;
}

std::vector<double> gridOf(const std::vector<const Usable*>& chosen) {
  const double span = spanOf(chosen);
  std::vector<double> grid{0.0, firstStep * span};
  for (std::size_t i = 1; i <= uniformPoints; ++i) {
    grid.push_back(span * static_cast<double>(i) / static_cast<double>(uniformPoints));
  }
  for (const Usable* each : chosen) {
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

double pairQuality(const CurrentRow& a, const CurrentRow& b) {
  const double norm = a.up * a.up + a.down * a.down + b.up * b.up + b.down * b.down;
  return norm > 0.0 ? std::fabs(a.up * b.down - a.down * b.up) / norm : 0.0;
}

double median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// The tables' currents along one waveform, at equal steps of the span.
std::vector<CurrentRow> rowsAlong(const Device& device, const Usable& wave, double span) {
  std::vector<CurrentRow> rows;
  PadCurrentReader reader(device);
  const Curve curve{wave.points.time, wave.points.voltage};
  CurveReader voltage(curve);
  for (std::size_t i = 0; i < choicePoints; ++i) {
    const double t = span * static_cast<double>(i) / static_cast<double>(choicePoints - 1);
    const double v = voltage(std::clamp(t, curve.x.front(), curve.x.back()));
    const PadCurrents currents = reader.at(v);
    rows.push_back({currents.pullup, currents.pulldown, 0.0});
  }
  return rows;
}

// The two waveforms whose equations differ most, in the median over the span.
std::vector<const Usable*> bestPair(const Device& device, const std::vector<Usable>& usable) {
  double span = 0.0;
  for (const Usable& each : usable) span = std::max(span, each.points.time.back());
  std::vector<std::vector<CurrentRow>> rows;
  for (const Usable& each : usable) rows.push_back(rowsAlong(device, each, span));
  std::vector<const Usable*> best{&usable[0], &usable[1]};
  double bestQuality = -1.0;
  for (std::size_t i = 0; i < usable.size(); ++i) {
    for (std::size_t j = i + 1; j < usable.size(); ++j) {
      std::vector<double> qualities;
      for (std::size_t k = 0; k < choicePoints; ++k) {
        qualities.push_back(pairQuality(rows[i][k], rows[j][k]));
      }
      const double quality = median(qualities);
      if (quality <= bestQuality) continue;
      bestQuality = quality;
      best = {&usable[i], &usable[j]};
    }
  }
  return best;
}

std::vector<const Usable*> choose(const Device& device, const std::vector<Usable>& usable) {
  if (device.driver == DriverKind::pushPull && usable.size() >= 2) return bestPair(device, usable);
  std::vector<const Usable*> all;
  for (const Usable& each : usable) all.push_back(&each);
  return all;
}

CurrentRow rowAt(PadCurrentReader& reader, double capacitance, const DieWaveform& wave,
                 std::size_t i) {
  const PadCurrents currents = reader.at(wave.voltage[i]);
  return {currents.pullup, currents.pulldown,
          -wave.load[i] - capacitance * wave.slope[i] - currents.clamps};
}

Problem makeProblem(const Device& device, Edge edge, std::vector<const Usable*> chosen) {
  Problem problem{&device, edge, gridOf(chosen), std::move(chosen), {}, {}};
  const std::size_t count = problem.chosen.size();
  problem.rows.resize(problem.grid.size() * count);
  for (std::size_t w = 0; w < count; ++w) {
    const Usable& each = *problem.chosen[w];
    problem.waves.push_back(dieWaveform(each.points, each.fixture, problem.grid));
    PadCurrentReader reader(device);
    for (std::size_t i = 0; i < problem.grid.size(); ++i) {
      problem.rows[i * count + w] = rowAt(reader, device.capacitances.total(), problem.waves[w], i);
    }
  }
  return problem;
}

CoefficientList solveOpenDriver(const Problem& problem) {
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

CoefficientList solveAll(const Problem& problem) {
  if (problem.device->driver != DriverKind::pushPull) return solveOpenDriver(problem);
  CoefficientList list;
  for (std::size_t i = 0; i < problem.grid.size(); ++i) {
    list.push_back(problem.chosen.size() == 2
                       ? solvePair(problem.rows[2 * i], problem.rows[2 * i + 1])
                       : solveComplement(problem.rows[i]));
  }
  return list;
}

// The solution at the start as if nothing had moved yet.
Coefficients restingSolution(const Problem& problem) {
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

bool isOutside(Coefficients k) {
  return k.up < dryLow || k.up > dryHigh || k.down < dryLow || k.down > dryHigh;
}

// Share of the span in which coefficients are no driver's.
double timeOutside(const Problem& problem, const CoefficientList& list) {
  double time = 0.0;
  for (std::size_t i = 1; i < list.size(); ++i) {
    if (isOutside(list[i])) time += problem.grid[i] - problem.grid[i - 1];
  }
  return time / problem.grid.back();
}

double deadTimeOf(const Problem& problem) {
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

double activeTimeOf(const Problem& problem) {
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

// The time in which a static mismatch is taken out.
double settlingTime(const Problem& problem, double deadTime) {
  const double span = problem.grid.back();
  double step = span;
  for (const Usable* each : problem.chosen) {
    step = std::min(step, each->points.time[1] - each->points.time[0]);
  }
  return std::max({deadTime, std::min(step, 0.003 * span), firstStep * span});
}

void takeOutMismatch(const Problem& problem, CoefficientList& list, double time) {
  const Coefficients nominal = startOf(problem.device->driver, problem.edge);
  const Coefficients resting = restingSolution(problem);
  const Coefficients mismatch{resting.up - nominal.up, resting.down - nominal.down};
  for (std::size_t i = 0; i < list.size() && problem.grid[i] < time; ++i) {
    const double share = 1.0 - smoothstep(problem.grid[i] / time);
    list[i].up -= mismatch.up * share;
    list[i].down -= mismatch.down * share;
  }
  list.front() = nominal;
}

double thinningTolerance(const Problem& problem) {
  double tolerance = coarsestThinning;
  const std::size_t count = problem.chosen.size();
  for (std::size_t w = 0; w < count; ++w) {
    double largest = 0.0;
    for (std::size_t i = w; i < problem.rows.size(); i += count) {
      largest = std::max({largest, std::fabs(problem.rows[i].up), std::fabs(problem.rows[i].down)});
    }
    const Usable& each = *problem.chosen[w];
    if (!(largest > 0.0)) continue;
    tolerance =
        std::min(tolerance, thinnedShare * each.swing / (each.fixture.resistance * largest));
  }
  return std::max(tolerance, finestThinning);
}

void tellEnd(const Problem& problem, Coefficients last, Findings& findings) {
  const Coefficients nominal = endOf(problem.device->driver, problem.edge);
  const double distance =
      std::max(std::fabs(last.up - nominal.up), std::fabs(last.down - nominal.down));
  if (distance <= worstEnd) return;
  findings.push_back({.kind = FindingKind::endOffNominal, .edge = problem.edge, .value = distance});
}

void tellJump(const Problem& problem, Findings& findings) {
  double largest = 0.0;
  for (std::size_t w = 0; w < problem.chosen.size(); ++w) {
    const std::vector<double>& v = problem.waves[w].voltage;
    for (std::size_t i = 0; problem.grid[i] <= jumpTime * problem.grid.back(); ++i) {
      largest = std::max(largest, std::fabs(v[i] - v.front()) / problem.chosen[w]->swing);
    }
  }
  if (largest <= jumpShare) return;
  findings.push_back({.kind = FindingKind::waveformJumps, .edge = problem.edge, .value = largest});
}

double largestMismatch(const Device& device, Edge edge, const std::vector<const Usable*>& chosen) {
  double largest = 0.0;
  for (const Usable* each : chosen) {
    largest = std::max(largest, staticMismatch(device, edge, each->points, each->fixture));
  }
  return largest;
}

EdgeCoefficients finish(const Problem& problem, CoefficientList list, Findings& findings) {
  EdgeCoefficients result;
  result.span = problem.grid.back();
  result.deadTime = deadTimeOf(problem);
  result.activeTime = activeTimeOf(problem);
  for (const Usable* each : problem.chosen) result.used.push_back(each->index);
  tellEnd(problem, list.back(), findings);
  tellJump(problem, findings);
  const double mismatch = largestMismatch(*problem.device, problem.edge, problem.chosen);
  if (mismatch > worstMismatch) {
    findings.push_back(
        {.kind = FindingKind::staticMismatch, .edge = problem.edge, .value = mismatch});
  }
  takeOutMismatch(problem, list, settlingTime(problem, result.deadTime));
  CoefficientTable table;
  for (std::size_t i = 0; i < list.size(); ++i) {
    table.add(problem.grid[i], list[i].up, list[i].down);
  }
  const Coefficients nominal = endOf(problem.device->driver, problem.edge);
  table.add(tailEnd * result.span, nominal.up, nominal.down);
  result.table = thinned(table, thinningTolerance(problem));
  return result;
}

// Waveforms that contradict each other make coefficients that no driver has; one must go.
EdgeCoefficients solveEdge(const Device& device, Edge edge, std::vector<const Usable*> chosen,
                           Findings& findings) {
  Problem problem = makeProblem(device, edge, std::move(chosen));
  CoefficientList list = solveAll(problem);
  const bool isPair = device.driver == DriverKind::pushPull && problem.chosen.size() == 2;
  if (isPair && timeOutside(problem, list) > outsideShare) {
    const bool firstIsLarger = problem.chosen[0]->swing >= problem.chosen[1]->swing;
    const Usable* kept = problem.chosen[firstIsLarger ? 0 : 1];
    findings.push_back(
        {.kind = FindingKind::waveformsContradict, .edge = edge, .count = kept->index});
    problem = makeProblem(device, edge, {kept});
    list = solveAll(problem);
  }
  return finish(problem, std::move(list), findings);
}

double rampTime(const IBISModel& model, Edge edge, int corner, Findings& findings) {
  const IBISTriple& ramp = edge == Edge::rising ? model.rampDtRise : model.rampDtFall;
  const double time = ownOrTyp(ramp, corner);
  const bool isKnown = isUsableNumber(time) && time > 0.0;
  const double taken = isKnown ? time : assumedRamp;
  findings.push_back({.kind = isKnown ? FindingKind::rampUsed : FindingKind::edgeAssumed,
                      .edge = edge,
                      .value = taken});
  return taken;
}

EdgeCoefficients rampEdge(const IBISModel& model, const Device& device, Edge edge, int corner,
                          Findings& findings) {
  const double time = rampTime(model, edge, corner, findings);
  EdgeCoefficients result;
  result.method = EdgeMethod::ramp;
  result.span = time / smoothstepBand;
  result.activeTime = result.span;
  result.table = rampTable(device.driver, edge, time);
  return result;
}

EdgeCoefficients edgeOfTyp(const IBISModel& model, Edge edge, Findings& findings) {
  Findings ofTyp;
  const Device typ = makeDevice(model, corner::typ, ofTyp);
  ofTyp.clear();
  EdgeCoefficients result = extractEdge(model, typ, edge, corner::typ, findings);
  result.isFromTyp = true;
  findings.push_back({.kind = FindingKind::cornerFromTyp, .edge = edge});
  return result;
}

bool suits(const Device& device, Edge edge, const Offer& offer,
           const std::vector<const Usable*>& chosen, Findings& findings) {
  if (!offer.isEstimate) return true;
  const double mismatch = largestMismatch(device, edge, chosen);
  if (!device.isEcl && mismatch <= worstEstimate) return true;
  findings.push_back({.kind = FindingKind::estimateUnusable, .edge = edge, .value = mismatch});
  return false;
}

EdgeMethod methodOf(const Offer& offer, std::size_t used) {
  if (offer.isEstimate) return EdgeMethod::estimatedWaveforms;
  return used >= 2 ? EdgeMethod::twoWaveforms : EdgeMethod::oneWaveform;
}

}  // namespace

CoefficientTable rampTable(DriverKind driver, Edge edge, double time) {
  const Coefficients start = startOf(driver, edge);
  const Coefficients end = endOf(driver, edge);
  const double width = time / smoothstepBand;
  CoefficientTable table;
  for (std::size_t i = 0; i <= rampPoints; ++i) {
    const double x = static_cast<double>(i) / static_cast<double>(rampPoints);
    const double s = smoothstep(x);
    table.add(x * width, start.up + s * (end.up - start.up),
              start.down + s * (end.down - start.down));
  }
  return thinned(table, coarsestThinning);
}

double staticMismatch(const Device& device, Edge edge, const WaveformPoints& points,
                      const Fixture& fixture) {
  const ResistiveLoad load{fixture.resistance + fixture.rDut, fixture.voltage};
  const double dutShare = fixture.resistance / load.resistance;
  const auto miss = [&](Coefficients k, double level) {
    const double pad = fixture.voltage + (level - fixture.voltage) / dutShare;
    return std::fabs(operatingPointNear(device, k, load, pad) - pad) * dutShare;
  };
  const double first = miss(startOf(device.driver, edge), points.voltage.front());
  const double last = miss(endOf(device.driver, edge), points.voltage.back());
  return std::max(first, last) / swingOf(points);
}

EdgeCoefficients extractEdge(const IBISModel& model, const Device& device, Edge edge, int corner,
                             Findings& findings) {
  if (device.driver == DriverKind::none) return {};
  const Offer offer = offerOf(model, edge, corner, findings);
  const bool hasTables = !device.pullup.empty() || !device.pulldown.empty();
  const bool hasList = !waveformsOf(model, edge).empty();
  if (hasTables && hasList && !offer.hasOwnPoints && corner != corner::typ) {
    return edgeOfTyp(model, edge, findings);
  }
  if (!hasTables || offer.usable.empty()) return rampEdge(model, device, edge, corner, findings);
  std::vector<const Usable*> chosen = choose(device, offer.usable);
  if (!suits(device, edge, offer, chosen, findings)) {
    return rampEdge(model, device, edge, corner, findings);
  }
  EdgeCoefficients result = solveEdge(device, edge, std::move(chosen), findings);
  result.method = methodOf(offer, result.used.size());
  if (device.driver == DriverKind::pushPull && result.method == EdgeMethod::oneWaveform) {
    findings.push_back({.kind = FindingKind::oneWaveform, .edge = edge});
  }
  return result;
}

}  // namespace ibis
