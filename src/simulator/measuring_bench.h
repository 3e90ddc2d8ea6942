#pragma once

#include <string>
#include <vector>

#include "analysis/load_line.h"
#include "analysis/waveform_points.h"
#include "simulator/device_netlist.h"

namespace ibis {

/// A driver's edge into the fixture of one waveform.
struct FixtureRun {
  Edge edge = Edge::rising;
  Fixture fixture;
};

/// A settled device into a resistor.
struct StaticRun {
  bool isHigh = false;  ///< What the driver is told; a device without one ignores it.
  ResistiveLoad load;
};

/// When the input of the edges turns, and what follows it, in seconds.
struct BenchTimes {
  double start = 0.0;
  double stop = 0.0;
  double step = 0.0;  ///< Largest step.
};

/// The times for a device and waveforms that end at a time.
BenchTimes benchTimes(const DeviceNetlist& netlist, double lastTime);

/// The node whose voltage a run of an index is read from, as a raw file names it.
std::string measuredNode(std::size_t index);

/// Writes a deck that runs all edges at once, each on a copy of the device.
void writeFixtureBench(NetlistWriter& writer, const DeviceNetlist& netlist,
                       const std::vector<FixtureRun>& runs, const BenchTimes& times,
                       std::string_view options);

/// Writes a deck that finds the operating points of all runs at once.
void writeStaticBench(NetlistWriter& writer, const DeviceNetlist& netlist,
                      const std::vector<StaticRun>& runs);

}  // namespace ibis
