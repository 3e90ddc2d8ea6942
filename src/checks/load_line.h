#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "checks/view.h"

namespace ibis::checks {

/// A curve of straight lines; its x strictly rises.
///
/// It shows the rows themselves where they are in order, else points of its own.
class Curve {
 public:
  Curve() = default;
  Curve(std::span<const double> places, std::span<const double> values) : x(places), y(values) {}
  Curve(std::vector<double> places, std::vector<double> values)
      : ownX_(std::move(places)), ownY_(std::move(values)), x(ownX_), y(ownY_) {}
  Curve(Curve&&) = default;
  Curve& operator=(Curve&&) = default;

 private:
  std::vector<double> ownX_ = {};
  std::vector<double> ownY_ = {};

 public:
  std::span<const double> x = {};
  std::span<const double> y = {};

  bool empty() const { return x.size() < 2; }

  /// The value at a place; the end segments go on outside.
  double at(double place) const;
};

/// The columns of all corners; rows without a value and rows that break the order are left out.
///
/// A column is empty where fewer than two points are left. The rows must outlive it.
using CornerCurves = std::array<Curve, corners>;
CornerCurves curvesOf(const Rows& rows);

/// The curves of a model, which all rules share; waveforms with wrong numbers have none.
struct ModelCurves {
  explicit ModelCurves(const ModelView& model);

  CornerCurves of[tables];              ///< By table.
  std::vector<CornerCurves> waveforms;  ///< As the model's.
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

  /// At each break the highest current so far, and the lowest from there on.
  const std::vector<double>& highest() const { return highest_; }
  const std::vector<double>& lowest() const { return lowest_; }

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
  void walk();

  std::vector<Term> terms_;
  std::vector<double> breaks_;
  std::vector<double> currents_;
  std::vector<double> highest_;
  std::vector<double> lowest_;
};

}  // namespace ibis::checks
