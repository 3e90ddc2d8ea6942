#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

namespace ibis {

/// A piecewise linear function: points ascending in x, whose end segments go on outside.
///
/// Without points it is 0, with one point it is constant.
struct Curve {
  std::vector<double> x;
  std::vector<double> y;

  bool empty() const { return x.empty(); }
  std::size_t size() const { return x.size(); }
};

/// Reads one curve; a place near the last one is found without a search.
class CurveReader {
 public:
  /// The curve must outlive the reader.
  explicit CurveReader(const Curve& curve) : curve_(&curve) {}

  double operator()(double x);

 private:
  const Curve* curve_;
  std::size_t segment_ = 0;
};

/// Whether a file's number can be calculated with: neither NaN nor so large that sums overflow.
inline bool isUsableNumber(double value) { return std::fabs(value) < 1e30; }

/// The value of a curve at one place.
inline double valueAt(const Curve& curve, double x) { return CurveReader(curve)(x); }

}  // namespace ibis
