#pragma once

#include <span>
#include <vector>

#include "analysis/device.h"

namespace ibis {

/// The switching coefficients at one moment; a settled driver has 0 and 1.
struct Coefficients {
  double up = 0.0;    ///< Ku, of the pullup table.
  double down = 0.0;  ///< Kd, of the pulldown table.
};

/// The coefficients of a settled driver; an open driver lacks one of the two tables.
Coefficients settled(DriverKind driver, bool isHigh);

/// A resistor from the pad to a voltage, in ohms and volts.
struct ResistiveLoad {
  double resistance = 50.0;
  double voltage = 0.0;
};

/// A device whose driver stands still.
struct BiasedDevice {
  const Device* device = nullptr;
  Coefficients k;
};

/// All pad voltages at which devices on one node and a load carry no sum of currents, ascending.
///
/// The sum of the currents is piecewise linear in the pad voltage, so each piece is solved exactly.
/// A table that turns back can have several such points.
std::vector<double> operatingPoints(std::span<const BiasedDevice> devices, ResistiveLoad load);

/// The same for one device.
std::vector<double> operatingPoints(const Device& device, Coefficients k, ResistiveLoad load);

/// The voltage of a list that is nearest to one, or that voltage itself if the list is empty.
double nearestOf(const std::vector<double>& points, double near);

/// The operating point nearest to a voltage, or that voltage itself if there is none.
double operatingPointNear(const Device& device, Coefficients k, ResistiveLoad load, double near);

}  // namespace ibis
