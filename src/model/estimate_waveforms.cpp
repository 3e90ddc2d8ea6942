#include "model/estimate_waveforms.h"

#include <cmath>
#include <limits>
#include <span>
#include <utility>

#include "host/diagnostics/messages.h"
#include "model/iv_table.h"
#include "model/model_types.h"
#include "model/numbers/sums.h"

namespace ibis {
namespace {

constexpr double bandFraction = 0.6000000000000001;  // of the swing that the ramp's time covers
constexpr double extent = 1.2;                       // stretch of the swing
constexpr double undershoot = 0.09999999999999998;   // of the swing before the start
constexpr double delayFactor = 1.6666666666666665;   // in units of the shortest ramp time
constexpr double spanFactor = 1.9999999999999998;    // in units of the longest ramp time
constexpr double pointsPerRamp = 100.0;
constexpr double sharpness = 30.0;
constexpr double linearLimit = 50.0;
constexpr double newtonTolerance = 1e-10;  // volts
constexpr int newtonLimit = 10;

// Runs one Newton iteration for the offset of an operating point from 0.
//
// point(x) is the operating point, residual(v, slope) the currents' sum there, with its slope. The
// result is the point of the last pass, before that pass moved x.
template <class Point, class Residual>
double operatingPoint(Point point, Residual residual) {
  double x = 0.0;
  double v = 0.0;
  for (int pass = 0; pass < newtonLimit; ++pass) {
    v = point(x);
    double slope = 0.0;
    const double f = residual(v, slope);
    const double dx = -f / slope;
    x += dx;
    if (std::fabs(dx) < newtonTolerance) break;
  }
  return v;
}

// What the four operating points of a corner have in common.
class LoadLine {
 public:
  LoadLine(const IBISModel& model, int corner)
      : model_(model), corner_(corner), load_(model.rLoad.value), oneOverR_(1.0 / load_) {}

  // The operating point with the pullup on and the load at a voltage.
  double high(double loadVoltage) const {
    const double supply = model_.pullupReference.at(corner_);
    return operatingPoint([&](double x) { return supply + x; },
                          [&](double v, double& slope) {
                            double i = 0.0;
                            double g = 0.0;
                            evaluateTable(model_.pullup, i, g, supply - v, corner_);
                            slope = oneOverR_ - g;
                            return (v - loadVoltage) / load_ + i;
                          });
  }

  // The operating point with the pulldown on and the load at a voltage.
  double low(double loadVoltage) const {
    const double ground = model_.pulldownReference.at(corner_);
    return operatingPoint([](double x) { return x; },
                          [&](double v, double& slope) {
                            double i = 0.0;
                            double g = 0.0;
                            evaluateTable(model_.pulldown, i, g, v - ground, corner_);
                            slope = oneOverR_ + g;
                            return (v - loadVoltage) / load_ + i;
                          });
  }

 private:
  const IBISModel& model_;
  int corner_;
  double load_;
  double oneOverR_;
};

IBISWaveform* lastOfKind(std::vector<IBISWaveform>& list, std::int32_t kind) {
  IBISWaveform* found = nullptr;
  for (IBISWaveform& waveform : list) {
    if (waveform.kind == kind) found = &waveform;
  }
  return found;
}

YVector<double>& cornerList(IBISWaveform& waveform, int corner) {
  return corner == corner::max ? waveform.max : corner == corner::min ? waveform.min : waveform.typ;
}

IBISOptional& cornerFixture(IBISWaveform& waveform, int corner) {
  return corner == corner::max   ? waveform.vFixtureMax
         : corner == corner::min ? waveform.vFixtureMin
                                 : waveform.vFixture;
}

void setFixture(IBISWaveform& waveform, const EstimatedEdge& edge) {
  waveform.rFixture = {.present = true, .value = edge.load};
  cornerFixture(waveform, edge.corner) = {.present = true, .value = edge.fixtureVoltage};
}

void giveEdge(std::vector<IBISWaveform>& list, std::int32_t kind, const EstimatedEdge& edge) {
  IBISWaveform* waveform = lastOfKind(list, kind);
  if (waveform == nullptr) return;
  if (!waveform->estimate) waveform->estimate = std::make_shared<IBISEstimate>();
  waveform->estimate->edges[edge.corner] = edge;
  setFixture(*waveform, edge);
}

// The logarithm of cosh, which itself overflows for a large u.
double logCosh(double u) {
  const double magnitude = std::fabs(u);
  return magnitude > linearLimit ? magnitude - std::log(2.0) : std::log(std::cosh(u));
}

struct Extremes {
  double smallest = std::numeric_limits<double>::max();
  double largest = 0.0;
};

Extremes extremesOf(const IBISTriple& triple) {
  Extremes extremes;
  for (const double value : {triple.typ, triple.min, triple.max}) {
    if (value < std::fabs(extremes.smallest)) extremes.smallest = value;
    if (value > extremes.largest) extremes.largest = value;
  }
  return extremes;
}

// The times of an estimated waveform's points.
struct TimeAxis {
  double start = 0.0;
  double end = 0.0;
  double step = 0.0;

  bool hasSteps() const { return step > 0.0 && std::isfinite(step); }
  bool hasZero() const { return start > 0.0; }  // a point at time 0, before the start
};

TimeAxis timeAxis(bool noDelay, const IBISTriple& rampTime) {
  const auto [tMin, tMax] = extremesOf(rampTime);
  const double factor = noDelay ? 0.0 : delayFactor;
  const double step = tMin / pointsPerRamp;
  return {.start = tMin * factor, .end = step + tMax * (factor + spanFactor), .step = step};
}

// Rounding moves a sum of maxTimePoints steps by far less than one step. So a division decides,
// and steps are counted only near the limit.
bool isTooLong(const TimeAxis& axis) {
  constexpr double margin = 2.0;
  const std::int32_t limit = maxTimePoints - (axis.hasZero() ? 1 : 0);
  const double steps = (axis.end - axis.start) / axis.step;
  if (!(steps > limit - margin)) return false;
  return steps > limit + margin || countSums(axis.start, axis.end, axis.step) > limit;
}

void addWaveform(std::vector<IBISWaveform>& list, std::int32_t kind, bool noDelay,
                 const IBISTriple& rampTime) {
  IBISWaveform& waveform = list.emplace_back();
  waveform.present = true;
  waveform.kind = kind;
  waveform.estimate = std::make_shared<IBISEstimate>();
  waveform.estimate->noDelay = noDelay;
  waveform.estimate->rampTime = rampTime;
}

}  // namespace

void buildTimePoints(IBISWaveform& waveform, std::int32_t kind, bool noDelay,
                     const IBISTriple& rampTime) {
  const TimeAxis axis = timeAxis(noDelay, rampTime);
  waveform.kind = kind;
  if (axis.hasZero()) waveform.time.append(0.0);
  if (!axis.hasSteps() || isTooLong(axis)) return;
  // The steps are added up, since a product would change the last digits.
  for (double t = axis.start; t < axis.end; t += axis.step) waveform.time.append(t);
}

YVector<double> estimatedTimes(const IBISEstimate& estimate) {
  IBISWaveform waveform;
  buildTimePoints(waveform, waveform.kind, estimate.noDelay, estimate.rampTime);
  return std::move(waveform.time);
}

bool hasTooManyPoints(const IBISWaveform& waveform) {
  if (!waveform.estimate) return false;
  const TimeAxis axis = timeAxis(waveform.estimate->noDelay, waveform.estimate->rampTime);
  return axis.hasSteps() && isTooLong(axis);
}

IBISWaveform withPoints(const IBISWaveform& waveform, int corners) {
  IBISWaveform filled = waveform;
  if (!waveform.estimate) return filled;
  filled.estimate = nullptr;
  filled.time = estimatedTimes(*waveform.estimate);
  const std::span<const EstimatedEdge> edges(waveform.estimate->edges);
  for (const EstimatedEdge& edge : edges.first(static_cast<std::size_t>(corners))) {
    fillWaveform(filled, edge);
  }
  return filled;
}

void fillWaveform(IBISWaveform& waveform, const EstimatedEdge& edge) {
  YVector<double>& values = cornerList(waveform, edge.corner);
  values.clear();
  values.reserve(static_cast<std::size_t>(waveform.time.size()));
  const double full = edge.duration / bandFraction * extent;
  const double a = edge.vStart;
  const double b = edge.vEnd;
  const double d = b - a;
  const double k = sharpness / d;
  for (const double t : waveform.time) {
    const double s = (t - edge.delay) * extent / full * d + a - d * undershoot;
    const double p = logCosh((s - a) * k);
    const double q = logCosh((s - b) * k);
    values.append(((p - q) / k + (a + b)) * 0.5);
  }
  setFixture(waveform, edge);
}

void solveCorner(IBISModel& model, int corner) {
  const LoadLine line(model, corner);
  const double supply = model.pullupReference.at(corner);
  const double ground = model.pulldownReference.at(corner);
  const double load = model.rLoad.value;
  const double vHighGnd = line.high(ground);
  const double vHighPwr = line.high(supply);
  const double vLowGnd = line.low(0.0);  // load at 0 volts, not at the pulldown reference
  const double vLowPwr = line.low(supply);
  const double rise = model.rampDtRise.at(corner);
  const double fall = model.rampDtFall.at(corner);
  giveEdge(model.risingWaveforms, 0,
           {.duration = rise,
            .delay = rise / bandFraction,
            .vStart = vLowGnd,
            .vEnd = vHighGnd,
            .load = load,
            .fixtureVoltage = ground,
            .corner = corner});
  giveEdge(model.risingWaveforms, 1,
           {.duration = rise,
            .delay = 0.0,
            .vStart = vLowPwr,
            .vEnd = vHighPwr,
            .load = load,
            .fixtureVoltage = supply,
            .corner = corner});
  giveEdge(model.fallingWaveforms, 0,
           {.duration = fall,
            .delay = 0.0,
            .vStart = vHighGnd,
            .vEnd = vLowGnd,
            .load = load,
            .fixtureVoltage = ground,
            .corner = corner});
  giveEdge(model.fallingWaveforms, 1,
           {.duration = fall,
            .delay = fall / bandFraction,
            .vStart = vHighPwr,
            .vEnd = vLowPwr,
            .load = load,
            .fixtureVoltage = supply,
            .corner = corner});
}

void estimateWaveforms(IBISModel& model, IBISErrorHandler& errors) {
  if (!hasOutput(model.type)) return;
  if (!model.risingWaveforms.empty() || !model.fallingWaveforms.empty()) return;
  errors.warning(message::waveformsEstimated, model.lineNumber, model.name.str().c_str());
  addWaveform(model.risingWaveforms, 0, false, model.rampDtRise);
  addWaveform(model.risingWaveforms, 1, true, model.rampDtRise);
  addWaveform(model.fallingWaveforms, 0, true, model.rampDtFall);
  addWaveform(model.fallingWaveforms, 1, false, model.rampDtFall);
  for (int corner = 0; corner < corner::count; ++corner) solveCorner(model, corner);
}

}  // namespace ibis
