#pragma once

#include <optional>

#include "analysis/curve.h"
#include "analysis/findings.h"
#include "ibis/model.h"

namespace ibis {

/// What stands between two pins, all branches in parallel: R, L with Rl, C with Lc and Rc, and a
/// current that depends on the voltage from the first pin to the second.
///
/// In ohms, henries and farads. R and L are none where the file has none; elsewhere 0 is none.
struct SeriesElements {
  std::optional<double> r = {}, l = {};
  double rl = 0.0, c = 0.0, lc = 0.0, rc = 0.0;
  Curve current = {};

  bool isEmpty() const { return !r && !l && !(c > 0.0) && current.empty(); }
};

/// Whether a type stands between two pins.
bool isSeriesType(ModelType type);

/// A series model's elements at a corner; those after [On] for a switch that is on.
SeriesElements makeSeriesElements(const IBISModel& model, bool isOn, int corner,
                                  Findings& findings);

}  // namespace ibis
