#pragma once

#include <span>
#include <vector>

namespace ibis {

/// The monotone piecewise cubic through points ascending in x; it holds its ends outside.
///
/// Fritsch and Carlson, "Monotone Piecewise Cubic Interpolation", SIAM J. Numer. Anal. 17 (1980),
/// with the weighted harmonic mean of Fritsch and Butland for the inner slopes,
///
///   d_i = (w1 + w2) / (w1 / s_(i-1) + w2 / s_i),  w1 = 2 h_i + h_(i-1),  w2 = h_i + 2 h_(i-1),
///
/// which is 0 where the secants s change their sign, and the three-point formula at the ends. The
/// curve goes through every point, has a continuous slope and never leaves a segment's range.
class MonotoneCubic {
 public:
  struct Point {
    double value = 0.0;
    double slope = 0.0;
  };

  /// At least two points; their lists must outlive the curve.
  MonotoneCubic(std::span<const double> x, std::span<const double> y);

  /// The curve at a place, found at once if it is at or behind the last one.
  Point at(double x);

 private:
  std::span<const double> x_;
  std::span<const double> y_;
  std::vector<double> slopes_;
  std::size_t segment_ = 0;
};

}  // namespace ibis
