#include "driver_figures.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "model/iv_table.h"
#include "model/model_types.h"

namespace ibis::cli {
namespace {

double currentAt(const IBISTable& table, double voltage, int corner) {
  double current = 0.0;
  double slope = 0.0;
  evaluateTable(table, current, slope, voltage, corner);
  return current;
}

// One corner of a driver.
class Driver {
 public:
  Driver(const IBISModel& model, int corner)
      : model_(model),
        corner_(corner),
        supply_(model.pullupReference.at(corner)),
        ground_(model.pulldownReference.at(corner)) {}

  std::optional<double> highImpedance() const {
    return impedance(-currentAt(model_.pullup, halfSwing(), corner_));
  }
  std::optional<double> lowImpedance() const {
    return impedance(currentAt(model_.pulldown, halfSwing(), corner_));
  }
  std::optional<double> highLevel() const {
    return level(ground_, [&](double v) { return currentAt(model_.pullup, supply_ - v, corner_); });
  }
  std::optional<double> lowLevel() const {
    return level(supply_,
                 [&](double v) { return currentAt(model_.pulldown, v - ground_, corner_); });
  }

 private:
  double halfSwing() const { return (supply_ - ground_) / 2; }

  std::optional<double> impedance(double current) const {
    const double ohms = halfSwing() / current;
    return std::isfinite(ohms) && ohms > 0.0 ? std::optional(ohms) : std::nullopt;
  }

  double clampCurrent(double v) const {
    return currentAt(model_.gndClamp, v - model_.gndClampReference.at(corner_), corner_) +
           currentAt(model_.powerClamp, model_.powerClampReference.at(corner_) - v, corner_);
  }

  // Where the load takes what driver and clamps give; halved until the last digit.
  template <class Current>
  std::optional<double> level(double loadVoltage, Current driver) const {
    constexpr int halvings = 60;
    const auto excess = [&](double v) {
      return (v - loadVoltage) / levelLoad + driver(v) + clampCurrent(v);
    };
    const double margin = std::fabs(supply_ - ground_);
    double low = std::min(supply_, ground_) - margin;
    double high = std::max(supply_, ground_) + margin;
    if (!(excess(low) <= 0.0 && excess(high) >= 0.0)) return std::nullopt;
    for (int i = 0; i < halvings; ++i) {
      const double middle = low + (high - low) / 2;
      (excess(middle) < 0.0 ? low : high) = middle;
    }
    return high;
  }

  const IBISModel& model_;
  int corner_;
  double supply_;
  double ground_;
};

void set(IBISTriple& triple, int corner, std::optional<double> value) {
  double& place = corner == corner::max   ? triple.max
                  : corner == corner::min ? triple.min
                                          : triple.typ;
  if (value) {
    place = *value;
    triple.present = true;
  } else {
    triple.missing.set(corner);
  }
}

bool isEcl(ModelType type) {
  return type == ModelType::outputEcl || type == ModelType::inputOutputEcl ||
         type == ModelType::threeStateEcl;
}

}  // namespace

bool givesCorner(const MissingCells& missing, std::int32_t rows, int corner) {
  for (std::int32_t row = 0; row < rows; ++row) {
    if (!missing.at(row, corner)) return true;
  }
  return false;
}

DriverFigures driverFigures(const IBISModel& model) {
  DriverFigures figures;
  if (!hasOutput(model.type) || isEcl(model.type)) return figures;
  for (int corner = 0; corner < corner::count; ++corner) {
    const Driver driver(model, corner);
    const auto gives = [&](const IBISTable& table) {
      return table.present && !model.pullupReference.missing.at(corner) &&
             givesCorner(table.missing, table.voltage.size(), corner);
    };
    const bool hasHigh = gives(model.pullup);
    const bool hasLow = gives(model.pulldown);
    set(figures.highImpedance, corner, hasHigh ? driver.highImpedance() : std::nullopt);
    set(figures.lowImpedance, corner, hasLow ? driver.lowImpedance() : std::nullopt);
    set(figures.highLevel, corner, hasHigh ? driver.highLevel() : std::nullopt);
    set(figures.lowLevel, corner, hasLow ? driver.lowLevel() : std::nullopt);
  }
  return figures;
}

}  // namespace ibis::cli
