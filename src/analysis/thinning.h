#pragma once

#include <vector>

namespace ibis {

/// The two switching coefficients over the time since an edge, in seconds.
struct CoefficientTable {
  std::vector<double> time;
  std::vector<double> up;    ///< Of the pullup table.
  std::vector<double> down;  ///< Of the pulldown table.

  std::size_t size() const { return time.size(); }
  void add(double t, double u, double d) {
    time.push_back(t);
    up.push_back(u);
    down.push_back(d);
  }
};

/// A table with fewer rows, whose straight lines stay within a distance of every row left out.
///
/// From each kept row goes a cone of slopes that pass all rows seen so far; the last row inside
/// the cone is the next one kept. The time that it takes is linear in the rows.
CoefficientTable thinned(const CoefficientTable& table, double tolerance);

}  // namespace ibis
