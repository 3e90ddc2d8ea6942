#include "analysis/curve.h"

#include <algorithm>

namespace ibis {
namespace {

constexpr std::size_t nearby = 4;  // segments that are tried before a search

// The last segment that begins at or below x, or the first one.
std::size_t searchSegment(const std::vector<double>& x, double place) {
  const auto above = std::upper_bound(x.begin() + 1, x.end() - 1, place);
  return static_cast<std::size_t>(above - x.begin()) - 1;
}

bool isInside(const std::vector<double>& x, std::size_t segment, double place) {
  const bool isAboveStart = segment == 0 || place >= x[segment];
  return isAboveStart && (segment + 2 == x.size() || place < x[segment + 1]);
}

std::size_t findSegment(const std::vector<double>& x, std::size_t start, double place) {
  std::size_t segment = start;
  for (std::size_t tries = 0; tries < nearby; ++tries) {
    if (isInside(x, segment, place)) return segment;
    if (place < x[segment]) {
      if (segment == 0) return 0;
      --segment;
    } else if (segment + 2 < x.size()) {
      ++segment;
    }
  }
  return searchSegment(x, place);
}

}  // namespace

double CurveReader::operator()(double x) {
  const Curve& curve = *curve_;
  if (curve.size() < 2) return curve.empty() ? 0.0 : curve.y.front();
  segment_ = findSegment(curve.x, segment_, x);
  const double x0 = curve.x[segment_];
  const double y0 = curve.y[segment_];
  const double slope = (curve.y[segment_ + 1] - y0) / (curve.x[segment_ + 1] - x0);
  return y0 + slope * (x - x0);
}

}  // namespace ibis
