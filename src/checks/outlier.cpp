#include "checks/outlier.h"

#include <algorithm>
#include <cmath>

namespace ibis::checks {

std::optional<std::size_t> findOutlier(std::span<const double> x, std::span<const double> y,
                                       const OutlierLimits& limits) {
  constexpr double clearly = 8.0;
  if (x.size() < 6) return std::nullopt;
  const auto [least, most] = std::ranges::minmax(y);
  const double threshold = std::max(limits.ofSpan * (most - least), limits.atLeast);
  const auto off = [&](std::size_t i, std::size_t a, std::size_t b) {
    return std::abs(y[i] - onLine(x[a], y[a], x[b], y[b], x[i]));
  };
  for (std::size_t i = 2; i + 2 < x.size(); ++i) {
    if ((y[i] - y[i - 1]) * (y[i + 1] - y[i]) >= 0.0) continue;
    const double departure = off(i, i - 1, i + 1);
    const double before = off(i - 1, i - 2, i + 1);
    const double after = off(i + 1, i - 1, i + 2);
    if (departure > threshold && departure > clearly * std::max(before, after)) return i;
  }
  return std::nullopt;
}

}  // namespace ibis::checks
