#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "checks/view.h"

namespace ibis::checks {

/// A curve of straight lines; its x strictly rises.
struct Curve {
  std::vector<double> x = {};
  std::vector<double> y = {};

  bool empty() const { return x.size() < 2; }

  /// The value at a place; the end segments go on outside.
  double at(double place) const;
};

/// The column of a corner; rows without a value and rows that break the order are left out.
///
/// It is empty where fewer than two points are left.
Curve curveOf(const Rows& rows, std::size_t corner);

/// The columns of all corners.
using CornerCurves = std::array<Curve, corners>;
CornerCurves curvesOf(const Rows& rows);

/// The curves of a model's tables, by table and corner.
struct ModelCurves {
  explicit ModelCurves(const ModelView& model);

  CornerCurves of[tables];
};

/// The current into the pad of a model in one state at one corner.
///
/// It is no device of the analysis: a model here may lack tables, and rules ask for the breaks too.
class PadCurrent {
 public:
  /// Empty if a table that takes part lacks its reference or this corner. In the state that an
  /// open driver leaves to others only its clamps take part.
  ///
  /// A table without the corner stands in with typ, if the corner has the supply of typ.
  static std::optional<PadCurrent> of(const ModelView& model, const ModelCurves& curves,
                                      bool isHigh, std::size_t corner);

  double at(double pad) const;

  /// The pad voltages of all points of the tables, sorted.
  const std::vector<double>& breaks() const { return breaks_; }

  /// The currents at these voltages.
  const std::vector<double>& currents() const { return currents_; }

  /// The pad voltages at which a resistor to a voltage carries this current, the nearest to one.
  double settled(double loadVoltage, double load, double expected) const;

 private:
  struct Term {
    const Curve* curve;
    double reference;
    bool isInverted;  // the table's voltage is the reference less the pad's
  };

  bool add(const ModelView& model, const ModelCurves& curves, std::size_t table,
           std::size_t corner);
  void collectBreaks();
  void addCurrents(const Term& term);

  std::vector<Term> terms_;
  std::vector<double> breaks_;
  std::vector<double> currents_;
};

}  // namespace ibis::checks
