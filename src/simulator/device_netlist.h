#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "analysis/device.h"
#include "analysis/switching.h"
#include "simulator/netlist_writer.h"

namespace ibis {

/// One model at one corner, ready to be written.
struct DeviceNetlist {
  std::string name;                ///< Of the subcircuit; a name that simulators take.
  std::vector<std::string> notes;  ///< For the comments in front, in any characters.
  Device device;
  EdgeCoefficients rising;
  EdgeCoefficients falling;
  double delay = 0.0;  ///< Of both edges, in seconds.
};

/// A model at a corner under a name, with its coefficients; what is odd goes to the findings.
DeviceNetlist makeDeviceNetlist(const IBISModel& model, int corner, std::string name,
                                Findings& findings);

/// The four rails' ports, in order.
inline constexpr std::string_view railPorts[] = {"pu", "pd", "pc", "gc"};

/// The ports of a device's subcircuit, in order: pad, drv, en and mon as far as it has them, rails.
std::vector<std::string> portsOf(const Device& device);

/// The same without the rails.
std::vector<std::string> signalPortsOf(const Device& device);

/// The parameter that a subcircuit with a logic input ends its first line with.
std::string_view thresholdParameter(const Device& device);

/// A device once more under another name, whose edges come later.
struct DelayedDevice {
  std::string name;
  std::size_t device = 0;  ///< Its index among those of the file.
  double delay = 0.0;      ///< Of both edges, in seconds.
};

/// Writes the subcircuit, and one named `name`_v with ideal rails inside against a port `ref`.
///
/// Currents flow from the pad to the rail whose table carries them, so the tables' own sign is that
/// of the sources. The time since an edge is the charge of a capacitor: one counts while the input
/// holds and a second one follows it and goes on by itself when the input turns, so that both edges
/// run to their end and their coefficients add up.
void writeDevice(NetlistWriter& writer, const DeviceNetlist& netlist);

/// Writes the wrapper of a subcircuit whose last four ports are the rails.
void writeRailsInside(NetlistWriter& writer, const std::string& name,
                      const std::vector<std::string>& ports, const Rails& rails,
                      std::string_view parameter);

/// The coefficients against the reading of the clock, from the edge on, as differences from their
/// value at its start.
///
/// The clock is a capacitor that a resistor bends: reading = 10 (1 - exp(-t / (10 unit))) volts.
Curve clockCurve(const CoefficientTable& table, const std::vector<double>& values, double unit,
                 double delay);

/// The clock's unit for two edges, in seconds: the time in which something happens.
double clockUnit(const EdgeCoefficients& rising, const EdgeCoefficients& falling);

/// The step that a simulation of a device should not exceed, in seconds; 0 without a driver.
double recommendedStep(const DeviceNetlist& netlist);

}  // namespace ibis
