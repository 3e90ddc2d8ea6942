#pragma once

#include <optional>
#include <string>

#include "analysis/load_line.h"
#include "simulator/component_netlist.h"
#include "simulator/device_netlist.h"

namespace ibis {

/// One end of a line: a device in its package.
struct BenchEnd {
  std::string subcircuit;  ///< The form with rails inside; empty for no device.
  Device device;
  PinPackage package;
};

/// A driver, a transmission line and what receives, ready to be run.
struct TestBench {
  std::string title;
  std::string include;  ///< File name of the subcircuits.
  BenchEnd driver;
  BenchEnd receiver;
  std::optional<ResistiveLoad> load;  ///< At the far end, for drivers that need one.
  double low = 0.0;                   ///< Settled level at the far end, in volts.
  double high = 0.0;                  ///< Likewise.
  double span = 1e-9;                 ///< Of the longest edge, in seconds.
  double step = 1e-11;                ///< Largest step, in seconds.
};

/// Writes a deck that runs as it stands and prints the levels and the edge times at the far end.
void writeTestBench(NetlistWriter& writer, const TestBench& bench);

}  // namespace ibis
