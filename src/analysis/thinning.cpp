#include "analysis/thinning.h"

#include <algorithm>
#include <limits>

namespace ibis {
namespace {

constexpr std::size_t lookAhead = 64;  // rows that are tried behind the last one that fits

// The slopes of lines from a point that pass all points seen so far at a bounded distance.
class Cone {
 public:
  explicit Cone(double tolerance) : tolerance_(tolerance) {}

  bool holds(double dx, double dy) const { return dy >= low_ * dx && dy <= high_ * dx; }
  bool isEmpty() const { return low_ > high_; }

  void narrow(double dx, double dy) {
    low_ = std::max(low_, (dy - tolerance_) / dx);
    high_ = std::min(high_, (dy + tolerance_) / dx);
  }

 private:
  double tolerance_;
  double low_ = -std::numeric_limits<double>::infinity();
  double high_ = std::numeric_limits<double>::infinity();
};

// The last row that a line from the start may lead to.
std::size_t nextKept(const CoefficientTable& table, std::size_t start, double tolerance) {
  Cone up(tolerance);
  Cone down(tolerance);
  std::size_t best = start + 1;
  for (std::size_t i = start + 1; i < table.size() && i - best < lookAhead; ++i) {
    const double dx = table.time[i] - table.time[start];
    const double dUp = table.up[i] - table.up[start];
    const double dDown = table.down[i] - table.down[start];
    if (up.holds(dx, dUp) && down.holds(dx, dDown)) best = i;
    up.narrow(dx, dUp);
    down.narrow(dx, dDown);
    if (up.isEmpty() || down.isEmpty()) break;
  }
  return best;
}

}  // namespace

CoefficientTable thinned(const CoefficientTable& table, double tolerance) {
  CoefficientTable kept;
  for (std::size_t i = 0; i < table.size();) {
    kept.add(table.time[i], table.up[i], table.down[i]);
    if (i + 1 == table.size()) break;
    i = nextKept(table, i, tolerance);
  }
  return kept;
}

}  // namespace ibis
