#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "ibis/component.h"
#include "simulator/component_netlist.h"
#include "simulator/device_netlist.h"
#include "simulator/series_netlist.h"

namespace ibis {

/// One file of subcircuits at one corner.
struct SubcircuitFile {
  std::string name;      ///< Under which it is written.
  int corner = 0;        ///< Index of a triple's column.
  std::string word;      ///< Of the corner.
  std::string source;    ///< Name of the IBIS file, without its folder.
  std::string revision;  ///< [File Rev]; empty for none.
  std::vector<std::string> warnings;
  std::vector<DeviceNetlist> devices;
  std::vector<DelayedDevice> delayed;
  std::map<const IBISModel*, std::size_t> deviceOf;  ///< Index of a model's device.
  std::vector<PairNetlist> pairs;
  std::vector<SeriesNetlist> series;
  std::optional<ComponentNetlist> component;  ///< None for models alone.
  std::map<const IBISPin*, PadPlace> padOf;   ///< Place of a pin's pad in the component.

  const DeviceNetlist& device(const IBISModel* model) const { return devices[deviceOf.at(model)]; }
};

/// Writes what the file is, its warnings and all of its subcircuits.
void writeSubcircuitFile(NetlistWriter& writer, const SubcircuitFile& file);

}  // namespace ibis
