#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "analysis/coupling.h"
#include "analysis/device.h"
#include "simulator/netlist_writer.h"

namespace ibis {

/// A pin's own package elements, in ohms, henries and farads; 0 for none.
struct PinPackage {
  double resistance = 0.0;
  double inductance = 0.0;
  double capacitance = 0.0;
};

/// One pin of a component, under a name that simulators take.
struct PadNetlist {
  std::string label;
  PinPackage package;
  std::optional<std::size_t> coupled;  ///< Its index in the coupled package.
};

/// What one model, or a pair of them, connects in a component.
struct PinNetlist {
  std::vector<PadNetlist> pads;      ///< One, or the two of a pair.
  std::string subcircuit;            ///< Of the model at the corner, or of the pair; or empty.
  std::vector<std::string> signals;  ///< Which of drv, en and mon it has, in order.
  std::size_t rails = 0;             ///< Index of its rails among the component's.
};

/// Where a component has a pad: the index of its pin, and of the pad in the pin.
struct PadPlace {
  std::size_t pin = 0;
  std::size_t pad = 0;
};

/// A subcircuit of two ports between the dies of two pads.
struct SeriesInstance {
  std::string subcircuit;
  PadPlace first, second;
};

/// One component at one corner, ready to be written.
struct ComponentNetlist {
  std::string name;
  std::vector<std::string> notes;
  std::vector<Rails> rails;  ///< Each set once; the pins name theirs by index.
  std::vector<PinNetlist> pins;
  std::vector<SeriesInstance> series;
  bool hasPackage = true;
  CoupledPackage coupled;
};

/// Two single-ended copies of a model's subcircuit, the second driven by the complement.
struct PairNetlist {
  std::string name;
  std::string first;               ///< Subcircuit of the non-inverting pin.
  std::string second;              ///< Of the inverting pin, which may be a delayed copy.
  const Device* device = nullptr;  ///< Of both; its ports are the pair's.
  double threshold = 0.0;          ///< Of the receiver, in volts between the pins.
};

/// The ports of a component: pins in order, then drv, en and mon of each pin, then the rails.
std::vector<std::string> portsOf(const ComponentNetlist& netlist);

/// The port of a pin.
std::string pinPort(const PadNetlist& pad);

/// The four ports of a set of rails: pu pd pc gc, those of a second set pu2 pd2 pc2 gc2, and so on.
std::vector<std::string> railPortsOf(std::size_t set);

/// The ports of a pair: p, n, then drv, en and mon as far as it has them, then the rails.
std::vector<std::string> portsOf(const PairNetlist& netlist);

/// Writes the subcircuit of a pair; its receiver switches where the pins' difference passes the
/// threshold either way, and holds between.
void writePair(NetlistWriter& writer, const PairNetlist& netlist);

/// Writes the component's subcircuit with its package, and one named `name`_v with ideal rails.
void writeComponent(NetlistWriter& writer, const ComponentNetlist& netlist);

}  // namespace ibis
