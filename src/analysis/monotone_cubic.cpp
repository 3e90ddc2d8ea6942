#include "analysis/monotone_cubic.h"

#include <algorithm>
#include <cmath>

namespace ibis {
namespace {

double innerSlope(double h0, double h1, double s0, double s1) {
  if (!(s0 * s1 > 0.0)) return 0.0;
  const double w0 = 2.0 * h1 + h0;
  const double w1 = h1 + 2.0 * h0;
  return (w0 + w1) / (w0 / s0 + w1 / s1);
}

// The three-point formula, bounded so that the end segment stays monotone.
double endSlope(double h0, double h1, double s0, double s1) {
  const double slope = ((2.0 * h0 + h1) * s0 - h0 * s1) / (h0 + h1);
  if (slope * s0 <= 0.0) return 0.0;
  const bool turns = s0 * s1 <= 0.0;
  return turns && std::fabs(slope) > 3.0 * std::fabs(s0) ? 3.0 * s0 : slope;
}

}  // namespace

MonotoneCubic::MonotoneCubic(std::span<const double> x, std::span<const double> y)
    : x_(x), y_(y), slopes_(x.size()) {
  const std::size_t last = x.size() - 1;
  const auto h = [&](std::size_t i) { return x_[i + 1] - x_[i]; };
  const auto secant = [&](std::size_t i) { return (y_[i + 1] - y_[i]) / h(i); };
  if (last == 1) {
    slopes_.assign(2, secant(0));
    return;
  }
  for (std::size_t i = 1; i < last; ++i) {
    slopes_[i] = innerSlope(h(i - 1), h(i), secant(i - 1), secant(i));
  }
  slopes_[0] = endSlope(h(0), h(1), secant(0), secant(1));
  slopes_[last] = endSlope(h(last - 1), h(last - 2), secant(last - 1), secant(last - 2));
}

MonotoneCubic::Point MonotoneCubic::at(double x) {
  if (x < x_.front()) return {y_.front(), 0.0};
  if (x > x_.back()) return {y_.back(), 0.0};
  if (x < x_[segment_]) segment_ = 0;
  while (segment_ + 2 < x_.size() && x >= x_[segment_ + 1]) ++segment_;
  const std::size_t i = segment_;
  const double h = x_[i + 1] - x_[i];
  const double s = (x - x_[i]) / h;
  const double secant = (y_[i + 1] - y_[i]) / h;
  const double d0 = slopes_[i];
  const double c = 3.0 * secant - 2.0 * d0 - slopes_[i + 1];
  const double b = d0 + slopes_[i + 1] - 2.0 * secant;
  return {y_[i] + h * s * (d0 + s * (c + s * b)), d0 + s * (2.0 * c + 3.0 * s * b)};
}

}  // namespace ibis
