#include "checks/load_line.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ibis::checks {
namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

}  // namespace

double Curve::at(double place) const {
  const auto above = std::upper_bound(x.begin(), x.end(), place);
  const auto index = static_cast<std::size_t>(above - x.begin());
  const std::size_t upper = std::clamp<std::size_t>(index, 1, x.size() - 1);
  const double slope = (y[upper] - y[upper - 1]) / (x[upper] - x[upper - 1]);
  return y[upper - 1] + slope * (place - x[upper - 1]);
}

Curve curveOf(const Rows& rows, std::size_t corner) {
  const std::vector<double>& column = rows.y[corner];
  if (rows.rises && rows.isWhole[corner]) return {rows.x, column};
  if (rows.falls && rows.isWhole[corner]) {
    return {{rows.x.rbegin(), rows.x.rend()}, {column.rbegin(), column.rend()}};
  }
  Curve curve;
  const std::size_t count = rows.size();
  const bool falls = count > 1 && rows.x.front() > rows.x.back();
  curve.x.reserve(count);
  curve.y.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t row = falls ? count - 1 - i : i;
    const double value = column[row];
    const double place = rows.x[row];
    if (!std::isfinite(value) || !std::isfinite(place)) continue;
    if (!curve.x.empty() && place <= curve.x.back()) continue;
    curve.x.push_back(place);
    curve.y.push_back(value);
  }
  return curve;
}

CornerCurves curvesOf(const Rows& rows) {
  return {curveOf(rows, typ), curveOf(rows, min), curveOf(rows, max)};
}

ModelCurves::ModelCurves(const ModelView& model) {
  for (std::size_t table = 0; table < tables; ++table) {
    of[table] = curvesOf(model.table[table]);
  }
}

std::optional<PadCurrent> PadCurrent::of(const ModelView& model, const ModelCurves& curves,
                                         bool isHigh, std::size_t corner) {
  PadCurrent current;
  const bool isOpen = isHigh ? model.isOpenDrain() : model.isOpenSource();
  const bool isSound = (isOpen || current.add(model, curves, isHigh ? pullup : pulldown, corner)) &&
                       current.add(model, curves, gndClamp, corner) &&
                       current.add(model, curves, powerClamp, corner);
  if (!isSound) return std::nullopt;
  current.collectBreaks();
  return current;
}

bool PadCurrent::add(const ModelView& model, const ModelCurves& curves, std::size_t table,
                     std::size_t corner) {
  if (!model.table[table].given()) return true;
  if (!model.table[table].isSound) return false;
  const bool hasCorner = !curves.of[table][corner].empty();
  const bool isSameSupply = model.pullupReference(corner) == model.pullupReference(typ);
  if (!hasCorner && !isSameSupply) return false;
  const Curve& curve = curves.of[table][hasCorner ? corner : typ];
  if (curve.empty()) return true;
  const double reference = table == pulldown   ? model.pulldownReference(corner)
                           : table == pullup   ? model.pullupReference(corner)
                           : table == gndClamp ? model.gndClampReference(corner)
                                               : model.powerClampReference(corner);
  if (!std::isfinite(reference)) return false;
  terms_.push_back({.curve = &curve,
                    .reference = reference,
                    .isInverted = table == pullup || table == powerClamp});
  return true;
}

// Each curve rises or falls with the pad's voltage, so that all are walked in step.
void PadCurrent::collectBreaks() {
  std::vector<double> merged;
  for (const Term& term : terms_) {
    std::vector<double> own(term.curve->x);
    for (double& x : own) x = term.isInverted ? term.reference - x : term.reference + x;
    if (term.isInverted) std::ranges::reverse(own);
    merged.resize(breaks_.size() + own.size());
    std::ranges::merge(breaks_, own, merged.begin());
    std::swap(breaks_, merged);
  }
  breaks_.erase(std::unique(breaks_.begin(), breaks_.end()), breaks_.end());
  currents_.assign(breaks_.size(), 0.0);
  for (const Term& term : terms_) addCurrents(term);
}

void PadCurrent::addCurrents(const Term& term) {
  const std::vector<double>& x = term.curve->x;
  const std::vector<double>& y = term.curve->y;
  const auto slopeTo = [&](std::size_t i) { return (y[i] - y[i - 1]) / (x[i] - x[i - 1]); };
  std::size_t upper = 1;
  double slope = slopeTo(upper);
  for (std::size_t i = 0; i < breaks_.size(); ++i) {
    const std::size_t place = term.isInverted ? breaks_.size() - 1 - i : i;
    const double own =
        term.isInverted ? term.reference - breaks_[place] : breaks_[place] - term.reference;
    const std::size_t before = upper;
    while (upper + 1 < x.size() && x[upper] <= own) ++upper;
    if (upper != before) slope = slopeTo(upper);
    currents_[place] += y[upper - 1] + slope * (own - x[upper - 1]);
  }
}

double PadCurrent::at(double pad) const {
  double sum = 0.0;
  for (const Term& term : terms_) {
    sum += term.curve->at(term.isInverted ? term.reference - pad : pad - term.reference);
  }
  return sum;
}

// The sum of currents is one line between neighbouring breaks, so that each piece is solved
// exactly; pieces are looked at from the expected voltage outwards, until none can be nearer.
double PadCurrent::settled(double loadVoltage, double load, double expected) const {
  if (!std::isfinite(loadVoltage + load + expected)) return notGiven;
  if (breaks_.empty()) return loadVoltage;
  constexpr double beyond = 10.0;
  const std::size_t last = breaks_.size() + 1;
  const double span = breaks_.back() - breaks_.front();
  const auto place = [&](std::size_t i) {
    if (i == 0) return std::min(breaks_.front(), loadVoltage) - span - beyond;
    return i < last ? breaks_[i - 1] : std::max(breaks_.back(), loadVoltage) + span + beyond;
  };
  const auto excess = [&](std::size_t i) {
    const double current = i == 0 || i == last ? at(place(i)) : currents_[i - 1];
    return current * load - (loadVoltage - place(i));
  };
  double best = notGiven;
  const auto take = [&](double root) {
    if (std::isnan(best) || std::abs(root - expected) < std::abs(best - expected)) best = root;
  };
  struct Point {
    double x, y;
  };
  const auto pointAt = [&](std::size_t i) { return Point{place(i), excess(i)}; };
  const auto look = [&](const Point& a, const Point& b) {
    if (a.y == 0.0) take(a.x);
    if (b.y == 0.0) take(b.x);
    if (a.y * b.y < 0.0) take(a.x - a.y * (b.x - a.x) / (b.y - a.y));
  };
  const auto above = std::ranges::upper_bound(breaks_, expected);
  std::size_t left = static_cast<std::size_t>(above - breaks_.begin());
  std::size_t right = left + 1;
  Point low = pointAt(left);
  Point high = pointAt(right);
  look(low, high);
  while (left > 0 || right < last) {
    const double toLeft = left > 0 ? expected - low.x : infinite;
    const double toRight = right < last ? high.x - expected : infinite;
    if (std::min(toLeft, toRight) >= std::abs(best - expected)) break;
    const bool goesLeft = left > 0 && (right == last || toLeft < toRight);
    Point& end = goesLeft ? low : high;
    const Point next = pointAt(goesLeft ? --left : ++right);
    look(end, next);
    end = next;
  }
  return best;
}

}  // namespace ibis::checks
