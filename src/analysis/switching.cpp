#include "analysis/switching.h"

#include <algorithm>
#include <cmath>

#include "analysis/edge_problem.h"
#include "analysis/load_line.h"

namespace ibis {
namespace {

constexpr double tailEnd = 1.1;  // in spans
constexpr double dryLow = -1.0;  // coefficients that waveforms agree on stay inside
constexpr double dryHigh = 2.0;
constexpr double outsideShare = 0.02;   // of the span, of an estimate the time in which it moves
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

double smoothstep(double x) {
  const double s = std::clamp(x, 0.0, 1.0);
  return s * s * (3.0 - 2.0 * s);
}

bool isOutside(Coefficients k) {
  return k.up < dryLow || k.up > dryHigh || k.down < dryLow || k.down > dryHigh;
}

// How long coefficients are no driver's, in seconds.
double timeOutside(const EdgeProblem& problem, const CoefficientList& list) {
  double time = 0.0;
  for (std::size_t i = 1; i < list.size(); ++i) {
    if (isOutside(list[i])) time += problem.grid[i] - problem.grid[i - 1];
  }
  return time;
}

// The time in which a static mismatch is taken out.
double settlingTime(const EdgeProblem& problem, double deadTime) {
  const double span = problem.grid.back();
  double step = span;
  for (const UsableWaveform* each : problem.chosen) {
    step = std::min(step, each->points.time[1] - each->points.time[0]);
  }
  return std::max({deadTime, std::min(step, 0.003 * span), firstStep * span});
}

void takeOutMismatch(const EdgeProblem& problem, CoefficientList& list, double time) {
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

double thinningTolerance(const EdgeProblem& problem) {
  double tolerance = coarsestThinning;
  const std::size_t count = problem.chosen.size();
  for (std::size_t w = 0; w < count; ++w) {
    double largest = 0.0;
    for (std::size_t i = w; i < problem.rows.size(); i += count) {
      largest = std::max({largest, std::fabs(problem.rows[i].up), std::fabs(problem.rows[i].down)});
    }
    const UsableWaveform& each = *problem.chosen[w];
    if (!(largest > 0.0)) continue;
    tolerance =
        std::min(tolerance, thinnedShare * each.swing / (each.fixture.resistance * largest));
  }
  return std::max(tolerance, finestThinning);
}

void tellEnd(const EdgeProblem& problem, Coefficients last, Findings& findings) {
  const Coefficients nominal = endOf(problem.device->driver, problem.edge);
  const double distance =
      std::max(std::fabs(last.up - nominal.up), std::fabs(last.down - nominal.down));
  if (distance <= worstEnd) return;
  findings.push_back({.kind = FindingKind::endOffNominal, .edge = problem.edge, .value = distance});
}

void tellJump(const EdgeProblem& problem, Findings& findings) {
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

double largestMismatch(const Device& device, Edge edge,
                       const std::vector<const UsableWaveform*>& chosen) {
  double largest = 0.0;
  for (const UsableWaveform* each : chosen) {
    largest = std::max(largest, staticMismatch(device, edge, each->points, each->fixture));
  }
  return largest;
}

EdgeCoefficients finish(const EdgeProblem& problem, CoefficientList list, Findings& findings) {
  EdgeCoefficients result;
  result.span = problem.grid.back();
  result.deadTime = deadTimeOf(problem);
  result.activeTime = activeTimeOf(problem);
  for (const UsableWaveform* each : problem.chosen) result.used.push_back(each->index);
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

// Waveforms that contradict each other make coefficients that no driver has; one must go. The tail
// of an estimate is as long as one cares to make it.
EdgeCoefficients solveEdge(const Device& device, Edge edge, bool areEstimates,
                           std::vector<const UsableWaveform*> chosen, Findings& findings) {
  EdgeProblem problem = makeProblem(device, edge, std::move(chosen));
  CoefficientList list = solveAll(problem);
  const bool isPair = device.driver == DriverKind::pushPull && problem.chosen.size() == 2;
  const double time = areEstimates ? activeTimeOf(problem) : problem.grid.back();
  if (isPair && timeOutside(problem, list) > outsideShare * time) {
    const bool firstIsLarger = problem.chosen[0]->swing >= problem.chosen[1]->swing;
    const UsableWaveform* kept = problem.chosen[firstIsLarger ? 0 : 1];
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

bool suits(const Device& device, Edge edge, const WaveformOffer& offer,
           const std::vector<const UsableWaveform*>& chosen, Findings& findings) {
  if (!offer.isEstimate) return true;
  const double mismatch = largestMismatch(device, edge, chosen);
  if (!device.isEcl && mismatch <= worstEstimate) return true;
  findings.push_back({.kind = FindingKind::estimateUnusable, .edge = edge, .value = mismatch});
  return false;
}

EdgeMethod methodOf(const WaveformOffer& offer, std::size_t used) {
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
  const WaveformOffer offer = offerOf(model, edge, corner, findings);
  const bool hasTables = !device.pullup.empty() || !device.pulldown.empty();
  const bool hasList = !waveformsOf(model, edge).empty();
  if (hasTables && hasList && !offer.hasOwnPoints && corner != corner::typ) {
    return edgeOfTyp(model, edge, findings);
  }
  if (!hasTables || offer.usable.empty()) return rampEdge(model, device, edge, corner, findings);
  std::vector<const UsableWaveform*> chosen = choose(device, offer.usable);
  if (!suits(device, edge, offer, chosen, findings)) {
    return rampEdge(model, device, edge, corner, findings);
  }
  EdgeCoefficients result = solveEdge(device, edge, offer.isEstimate, std::move(chosen), findings);
  result.method = methodOf(offer, result.used.size());
  if (device.driver == DriverKind::pushPull && result.method == EdgeMethod::oneWaveform) {
    findings.push_back({.kind = FindingKind::oneWaveform, .edge = edge});
  }
  return result;
}

}  // namespace ibis
