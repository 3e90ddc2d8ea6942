#pragma once

#include <cstddef>
#include <optional>
#include <span>

namespace ibis::checks {

/// How far a point must leave its neighbours: in parts of the span, and absolutely.
struct OutlierLimits {
  double ofSpan;
  double atLeast;
};

/// The first point that leaves the line of its neighbours while they are smooth without it.
///
/// The point is a local extreme; that spares knees and overshoot.
std::optional<std::size_t> findOutlier(std::span<const double> x, std::span<const double> y,
                                       const OutlierLimits& limits);

/// The value at a place on the line through two points.
inline double onLine(double x0, double y0, double x1, double y1, double x) {
  return x1 == x0 ? y0 : y0 + (y1 - y0) * (x - x0) / (x1 - x0);
}

}  // namespace ibis::checks
