#pragma once

#include <string>
#include <vector>

#include "analysis/series_elements.h"
#include "simulator/netlist_writer.h"

namespace ibis {

/// A series model at one corner and in one state.
struct SeriesNetlist {
  std::string name;                ///< Of the subcircuit.
  std::vector<std::string> notes;  ///< For the comments in front.
  SeriesElements elements;
};

/// Writes the subcircuit, whose ports are the first and the second pin's pads.
void writeSeries(NetlistWriter& writer, const SeriesNetlist& netlist);

}  // namespace ibis
