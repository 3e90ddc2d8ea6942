#include "model/estimate_waveforms.h"

#include <cmath>
#include <limits>

#include "host/diagnostics/messages.h"
#include "model/iv_table.h"
#include "model/model_types.h"

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
constexpr std::int32_t mostTimePoints = 1'000'000;

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

// What the four operating points of a corner share.
class LoadLine {
 public:
  LoadLine(const IBISModel& model, int corner)
      : model_(model), corner_(corner), load_(model.rLoad.value), oneOverR_(1.0 / load_) {}

  // The pullup on, the load to a voltage.
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

  // The pulldown on, the load to a voltage.
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

void fillLastOfKind(std::vector<IBISWaveform>& list, std::int32_t kind, const EstimatedEdge& edge) {
  if (IBISWaveform* waveform = lastOfKind(list, kind)) fillWaveform(*waveform, edge);
}

// The logarithm of cosh, whose own value would overflow far out.
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

std::int32_t countSteps(double t, double end, double step) {
  std::int32_t count = 0;
  for (; t < end && count <= mostTimePoints; t += step) ++count;
  return count;
}

YVector<double>& cornerList(IBISWaveform& waveform, int corner) {
  return corner == corner::max ? waveform.max : corner == corner::min ? waveform.min : waveform.typ;
}

IBISOptional& cornerFixture(IBISWaveform& waveform, int corner) {
  return corner == corner::max   ? waveform.vFixtureMax
         : corner == corner::min ? waveform.vFixtureMin
                                 : waveform.vFixture;
}

std::int64_t countPoints(const std::vector<IBISWaveform>& list) {
  std::int64_t count = 0;
  for (const IBISWaveform& waveform : list) count += waveform.time.size();
  return count;
}

void addWaveform(std::vector<IBISWaveform>& list, std::int32_t kind, bool noDelay,
                 const IBISTriple& rampTime) {
  IBISWaveform& waveform = list.emplace_back();
  waveform.present = true;
  buildTimePoints(waveform, kind, noDelay, rampTime);
}

}  // namespace

void buildTimePoints(IBISWaveform& waveform, std::int32_t kind, bool noDelay,
                     const IBISTriple& rampTime) {
  const auto [tMin, tMax] = extremesOf(rampTime);
  const double factor = noDelay ? 0.0 : delayFactor;
  const double step = tMin / pointsPerRamp;
  double t = tMin * factor;
  const double end = step + tMax * (factor + spanFactor);
  waveform.kind = kind;
  if (t > 0.0) waveform.time.append(0.0);
  if (!(step > 0.0) || !std::isfinite(step)) return;
  const std::int32_t count = waveform.time.size() + countSteps(t, end, step);
  if (count > mostTimePoints) return;
  waveform.time.reserve(static_cast<std::size_t>(count));
  for (; t < end; t += step) waveform.time.append(t);
}

void fillWaveform(IBISWaveform& waveform, const EstimatedEdge& edge) {
  YVector<double>& values = cornerList(waveform, edge.corner);
  values.clear();
  values.reserve(static_cast<std::size_t>(waveform.time.size()));
  waveform.rFixture = {true, edge.load};
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
  cornerFixture(waveform, edge.corner) = {true, edge.fixtureVoltage};
}

void solveCorner(IBISModel& model, int corner) {
  const LoadLine line(model, corner);
  const double supply = model.pullupReference.at(corner);
  const double ground = model.pulldownReference.at(corner);
  const double load = model.rLoad.value;
  const double vHighGnd = line.high(ground);
  const double vHighPwr = line.high(supply);
  const double vLowGnd = line.low(0.0);  // to 0 volts, not to the pulldown reference
  const double vLowPwr = line.low(supply);
  const double rise = model.rampDtRise.at(corner);
  const double fall = model.rampDtFall.at(corner);
  fillLastOfKind(model.risingWaveforms, 0,
                 {rise, rise / bandFraction, vLowGnd, vHighGnd, load, ground, corner});
  fillLastOfKind(model.risingWaveforms, 1, {rise, 0.0, vLowPwr, vHighPwr, load, supply, corner});
  fillLastOfKind(model.fallingWaveforms, 0, {fall, 0.0, vHighGnd, vLowGnd, load, ground, corner});
  fillLastOfKind(model.fallingWaveforms, 1,
                 {fall, fall / bandFraction, vHighPwr, vLowPwr, load, supply, corner});
}

std::int64_t estimateWaveforms(IBISModel& model, IBISErrorHandler& errors) {
  if (!hasOutput(model.type)) return 0;
  if (!model.risingWaveforms.empty() || !model.fallingWaveforms.empty()) return 0;
  errors.warning(message::waveformsEstimated, model.name.str().c_str());
  addWaveform(model.risingWaveforms, 0, false, model.rampDtRise);
  addWaveform(model.risingWaveforms, 1, true, model.rampDtRise);
  addWaveform(model.fallingWaveforms, 0, true, model.rampDtFall);
  addWaveform(model.fallingWaveforms, 1, false, model.rampDtFall);
  for (int corner = 0; corner < corner::count; ++corner) solveCorner(model, corner);
  return countPoints(model.risingWaveforms) + countPoints(model.fallingWaveforms);
}

}  // namespace ibis
