#include "analysis/iv_curve.h"

#include <algorithm>
#include <cmath>

namespace ibis {
namespace {

constexpr double reach = 100.0;         // volts that an end goes on
constexpr double monotonyLimit = 1e-6;  // of the range of currents
constexpr double relativeGap = 2e-6;    // that seven digits still tell apart
constexpr double smallestGap = 1e-9;    // volts

// Whether two abscissas are still two after they are written.
bool areApart(double a, double b) {
  const double scale = std::max(std::fabs(a), std::fabs(b));
  return b - a > std::max(scale * relativeGap, smallestGap);
}

bool isOwn(const IBISTable& table, std::int32_t row, int corner) {
  return !table.missing.at(row, corner) && isUsableNumber(table.corner(corner)[row]) &&
         isUsableNumber(table.voltage[row]);
}

// The cells of a column that the file gives, ascending in the voltage.
Curve ownCells(const IBISTable& table, int corner) {
  Curve curve;
  const std::int32_t count = table.voltage.size();
  const bool descends = table.direction == IBISTable::descending;
  for (std::int32_t i = 0; i < count; ++i) {
    const std::int32_t row = descends ? count - 1 - i : i;
    if (!isOwn(table, row, corner)) continue;
    const double x = table.voltage[row];
    if (!curve.empty() && !areApart(curve.x.back(), x)) continue;
    curve.x.push_back(x);
    curve.y.push_back(table.corner(corner)[row]);
  }
  return curve;
}

// A curve through the own cells alone is already the interpolation of those between them; beyond
// the own ones a missing cell holds their end.
void holdMissingEnds(Curve& curve, const IBISTable& table, int corner) {
  double low = curve.x.front();
  double high = curve.x.back();
  for (std::int32_t row = 0; row < table.voltage.size(); ++row) {
    if (isOwn(table, row, corner) || !isUsableNumber(table.voltage[row])) continue;
    low = std::min(low, table.voltage[row]);
    high = std::max(high, table.voltage[row]);
  }
  if (areApart(low, curve.x.front())) {
    curve.x.insert(curve.x.begin(), low);
    curve.y.insert(curve.y.begin(), curve.y.front());
  }
  if (areApart(curve.x.back(), high)) {
    curve.x.push_back(high);
    curve.y.push_back(curve.y.back());
  }
}

bool follows(double slope, Trend trend) { return trend == Trend::rises ? slope >= 0 : slope <= 0; }

double slopeOf(const Curve& curve, std::size_t segment) {
  return (curve.y[segment + 1] - curve.y[segment]) / (curve.x[segment + 1] - curve.x[segment]);
}

// Slope of an end, or 0 where the end is held.
double endSlope(IvCurve& result, std::size_t segment, Trend trend) {
  const double slope = slopeOf(result.curve, segment);
  if (follows(slope, trend)) return slope;
  result.holdsAnEnd = true;
  return 0.0;
}

// How far an end goes on, so that its far point is another one even at absurd voltages.
double farReach(double end) { return std::max(reach, std::fabs(end)); }

void addFarPoints(IvCurve& result, Trend trend) {
  Curve& curve = result.curve;
  const bool isConstant = curve.size() == 1;
  const double first = isConstant ? 0.0 : endSlope(result, 0, trend);
  const double last = isConstant ? 0.0 : endSlope(result, curve.size() - 2, trend);
  const double below = farReach(curve.x.front());
  const double above = farReach(curve.x.back());
  curve.x.insert(curve.x.begin(), curve.x.front() - below);
  curve.y.insert(curve.y.begin(), curve.y.front() - first * below);
  curve.x.push_back(curve.x.back() + above);
  curve.y.push_back(curve.y.back() + last * above);
}

bool isMonotonic(const Curve& curve, Trend trend) {
  if (curve.empty()) return true;
  const auto [low, high] = std::ranges::minmax(curve.y);
  const double limit = monotonyLimit * (high - low);
  for (std::size_t i = 0; i + 1 < curve.size(); ++i) {
    const double step = curve.y[i + 1] - curve.y[i];
    if (!follows(step, trend) && std::fabs(step) > limit) return false;
  }
  return true;
}

std::size_t countMissing(const IBISTable& table, int corner) {
  std::size_t count = 0;
  for (std::int32_t row = 0; row < table.voltage.size(); ++row) {
    if (!isOwn(table, row, corner)) ++count;
  }
  return count;
}

}  // namespace

IvCurve makeIvCurve(const IBISTable& table, int corner, Trend trend) {
  IvCurve result;
  if (!table.present) return result;
  result.curve = ownCells(table, corner);
  if (result.curve.empty()) {
    if (corner != corner::typ) return makeIvCurve(table, corner::typ, trend);
    return result;
  }
  result.filledCells = countMissing(table, corner);
  if (result.filledCells != 0) holdMissingEnds(result.curve, table, corner);
  result.isMonotonic = isMonotonic(result.curve, trend);
  addFarPoints(result, trend);
  return result;
}

}  // namespace ibis
