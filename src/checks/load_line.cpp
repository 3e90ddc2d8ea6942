#include "checks/load_line.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ibis::checks {
namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

Curve curveOf(const Rows& rows, std::size_t corner) {
  const std::vector<double>& column = rows.y[corner];
  if (rows.rises && rows.isWhole[corner])
    return {std::span<const double>(rows.x), std::span<const double>(column)};
  if (rows.falls && rows.isWhole[corner]) {
    return {std::vector<double>(rows.x.rbegin(), rows.x.rend()),
            std::vector<double>(column.rbegin(), column.rend())};
  }
  std::vector<double> x;
  std::vector<double> y;
  const std::size_t count = rows.size();
  const bool falls = count > 1 && rows.x.front() > rows.x.back();
  x.reserve(count);
  y.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t row = falls ? count - 1 - i : i;
    const double value = column[row];
    const double place = rows.x[row];
    if (!std::isfinite(value) || !std::isfinite(place)) continue;
    if (!x.empty() && place <= x.back()) continue;
    x.push_back(place);
    y.push_back(value);
  }
  return {std::move(x), std::move(y)};
}

// A curve that is walked in the direction in which the pad's voltage rises.
class Walk {
 public:
  Walk(const Curve& curve, double reference, bool isInverted)
      : curve_(&curve), reference_(reference), isInverted_(isInverted) {
    next_ = place_ = padOf(0);
    y_ = curve_->y[indexOf(0)];
    slope_ = slopeBehind(0);
  }

  /// The next break; infinite behind the last.
  double next() const { return next_; }

  /// The current at a place between the breaks around; the end segments go on outside.
  double at(double pad) const { return y_ + slope_ * (pad - place_); }

  void pass() {
    place_ = next_;
    y_ = curve_->y[indexOf(step_)];
    ++step_;
    const bool isBehind = step_ == curve_->x.size();
    next_ = isBehind ? infinite : padOf(step_);
    if (!isBehind) slope_ = slopeBehind(step_ - 1);
  }

 private:
  std::size_t indexOf(std::size_t step) const {
    return isInverted_ ? curve_->x.size() - 1 - step : step;
  }
  double padOf(std::size_t step) const {
    const double x = curve_->x[indexOf(step)];
    return isInverted_ ? reference_ - x : reference_ + x;
  }
  double slopeBehind(std::size_t step) const {
    const std::size_t i = indexOf(step);
    const std::size_t j = indexOf(step + 1);
    const double slope = (curve_->y[j] - curve_->y[i]) / (curve_->x[j] - curve_->x[i]);
    return isInverted_ ? -slope : slope;
  }

  const Curve* curve_;
  double reference_;
  bool isInverted_;
  std::size_t step_ = 0;
  double next_, place_, y_, slope_;
};

}  // namespace

double Curve::at(double place) const {
  std::size_t upper = 1;
  if (place >= x.back()) {
    upper = x.size() - 1;
  } else if (place >= x.front()) {
    upper = static_cast<std::size_t>(std::ranges::upper_bound(x, place) - x.begin());
  }
  const double slope = (y[upper] - y[upper - 1]) / (x[upper] - x[upper - 1]);
  return y[upper - 1] + slope * (place - x[upper - 1]);
}

CornerCurves curvesOf(const Rows& rows) {
  return {curveOf(rows, typ), curveOf(rows, min), curveOf(rows, max)};
}

ModelCurves::ModelCurves(const ModelView& model) {
  for (std::size_t table = 0; table < tables; ++table) {
    of[table] = curvesOf(model.table[table]);
  }
  waveforms.reserve(model.waveforms.size());
  for (const Waveform& each : model.waveforms) {
    waveforms.push_back(each.rows.isSound ? curvesOf(each.rows) : CornerCurves());
  }
}

std::optional<PadCurrent> PadCurrent::of(const ModelView& model, const ModelCurves& curves,
                                         bool isHigh, std::size_t corner) {
  PadCurrent current;
  current.terms_.reserve(3);
  const bool isOpen = isHigh ? model.isOpenDrain() : model.isOpenSource();
  const bool isSound = (isOpen || current.add(model, curves, isHigh ? pullup : pulldown, corner)) &&
                       current.add(model, curves, gndClamp, corner) &&
                       current.add(model, curves, powerClamp, corner);
  if (!isSound) return std::nullopt;
  current.walk();
  return current;
}

bool PadCurrent::add(const ModelView& model, const ModelCurves& curves, std::size_t table,
                     std::size_t corner) {
  if (!model.table[table].given()) return true;
  if (!model.table[table].isSound) return false;
  const bool hasCorner = !curves.of[table][corner].empty();
  if (!hasCorner && model.pullupReference(corner) != model.pullupReference(typ)) return false;
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

// The walks of all curves pass one break after the other, and are summed up there.
void PadCurrent::walk() {
  std::vector<Walk> walks;
  walks.reserve(terms_.size());
  std::size_t points = 0;
  for (const Term& term : terms_) {
    walks.emplace_back(*term.curve, term.reference, term.isInverted);
    points += term.curve->x.size();
  }
  breaks_.reserve(points);
  currents_.reserve(points);
  for (;;) {
    double pad = infinite;
    for (const Walk& each : walks) pad = std::min(pad, each.next());
    if (!(pad < infinite)) break;
    double sum = 0.0;
    for (Walk& each : walks) {
      while (each.next() <= pad) each.pass();
      sum += each.at(pad);
    }
    breaks_.push_back(pad);
    currents_.push_back(sum);
  }
  highest_ = lowest_ = currents_;
  for (std::size_t i = 1; i < highest_.size(); ++i) {
    highest_[i] = std::max(highest_[i - 1], highest_[i]);
  }
  for (std::size_t i = lowest_.size(); i-- > 1;)
    lowest_[i - 1] = std::min(lowest_[i], lowest_[i - 1]);
}

double PadCurrent::at(double pad) const {
  double sum = 0.0;
  for (const Term& term : terms_) {
    sum += term.curve->at(term.isInverted ? term.reference - pad : pad - term.reference);
  }
  return sum;
}

namespace {

// The current of a pad and that of a resistor to a voltage, at the breaks and at a place beyond
// each end; between neighbours both are straight lines, so that each piece is solved exactly.
class LoadLine {
 public:
  LoadLine(const PadCurrent& pad, double voltage, double load)
      : pad_(pad), voltage_(voltage), load_(load), last_(pad.breaks().size() + 1) {
    constexpr double beyond = 10.0;
    const double first = pad.breaks().front();
    const double final = pad.breaks().back();
    begin_ = std::min(first, voltage) - (final - first) - beyond;
    end_ = std::max(final, voltage) + (final - first) + beyond;
  }

  /// The voltage nearest to the expected one at which both are equal.
  double nearestMeeting(double expected) {
    expected_ = expected;
    const std::size_t first = firstPoint();
    const std::size_t last = lastPoint();
    Point low = pointAt(first);
    for (std::size_t i = first + 1; i <= last; ++i) {
      const Point high = pointAt(i);
      look(low, high);
      low = high;
    }
    return best_;
  }

 private:
  struct Point {
    double x, y;
  };

  double place(std::size_t i) const {
    if (i == 0) return begin_;
    return i < last_ ? pad_.breaks()[i - 1] : end_;
  }
  double excess(std::size_t i) const {
    const double current = i == 0 || i == last_ ? pad_.at(place(i)) : pad_.currents()[i - 1];
    return excess(place(i), current);
  }
  double excess(double pad, double current) const { return current * load_ - (voltage_ - pad); }
  // At and in front of this point even the highest current so far is too low.
  std::size_t firstPoint() const {
    if (!(load_ > 0.0 && excess(0) < 0.0)) return 0;
    return breaksWhile(
        [&](std::size_t k) { return excess(pad_.breaks()[k], pad_.highest()[k]) < 0.0; });
  }
  // At and behind this point even the lowest current of the rest is too high.
  std::size_t lastPoint() const {
    if (!(load_ > 0.0 && excess(last_) > 0.0)) return last_;
    return 1 + breaksWhile([&](std::size_t k) {
             return !(excess(pad_.breaks()[k], pad_.lowest()[k]) > 0.0);
           });
  }
  // How many breaks from the first on hold what holds for no further one.
  template <class Holds>
  std::size_t breaksWhile(Holds holds) const {
    std::size_t begin = 0;
    std::size_t end = last_ - 1;
    while (begin < end) {
      const std::size_t middle = begin + (end - begin) / 2;
      if (holds(middle)) {
        begin = middle + 1;
      } else {
        end = middle;
      }
    }
    return begin;
  }
  Point pointAt(std::size_t i) const { return {place(i), excess(i)}; }

  void look(const Point& a, const Point& b) {
    if (a.y == 0.0) take(a.x);
    if (b.y == 0.0) take(b.x);
    if (a.y * b.y < 0.0) take(a.x - a.y * (b.x - a.x) / (b.y - a.y));
  }
  void take(double root) {
    const bool isNearer = std::abs(root - expected_) < std::abs(best_ - expected_);
    if (std::isnan(best_) || isNearer) best_ = root;
  }

  const PadCurrent& pad_;
  double voltage_, load_;
  std::size_t last_;
  double begin_ = 0.0, end_ = 0.0;
  double expected_ = 0.0;
  double best_ = notGiven;
};

}  // namespace

double PadCurrent::settled(double loadVoltage, double load, double expected) const {
  if (!std::isfinite(loadVoltage + load + expected)) return notGiven;
  if (breaks_.empty()) return loadVoltage;
  return LoadLine(*this, loadVoltage, load).nearestMeeting(expected);
}

}  // namespace ibis::checks
