#include "simulator/component_netlist.h"

#include <algorithm>
#include <cmath>

#include "simulator/device_netlist.h"

namespace ibis {
namespace {

std::string number(double value) { return spiceNumber(value); }

void append(std::string& text, const std::vector<std::string>& words) {
  for (const std::string& word : words) text += ' ' + word;
}

std::vector<std::string> pinPorts(const ComponentNetlist& netlist) {
  std::vector<std::string> ports;
  for (const PinNetlist& pin : netlist.pins) {
    for (const PadNetlist& pad : pin.pads) ports.push_back(pinPort(pad));
  }
  return ports;
}

std::vector<std::string> signalNodes(const PinNetlist& pin) {
  std::vector<std::string> nodes;
  for (const std::string& signal : pin.signals) nodes.push_back(signal + '_' + pin.pads[0].label);
  return nodes;
}

std::vector<std::string> signalPorts(const ComponentNetlist& netlist) {
  std::vector<std::string> ports = pinPorts(netlist);
  for (const PinNetlist& pin : netlist.pins) {
    for (std::string& node : signalNodes(pin)) ports.push_back(std::move(node));
  }
  return ports;
}

PinPackage packageOf(const ComponentNetlist& netlist, const PadNetlist& pad) {
  if (!netlist.hasPackage) return {};
  if (!pad.coupled) return pad.package;
  const std::size_t i = *pad.coupled;
  return {netlist.coupled.resistance[i], netlist.coupled.inductance[i],
          netlist.coupled.capacitance[i]};
}

// Without resistance and inductance the die and the pin are one node.
std::string dieNode(const ComponentNetlist& netlist, const PadNetlist& pad) {
  const PinPackage package = packageOf(netlist, pad);
  const bool isShort = !(package.resistance > 0.0) && !(package.inductance > 0.0);
  return isShort ? pinPort(pad) : "die_" + pad.label;
}

bool isShared(const ComponentNetlist& netlist, const PadNetlist& pad) {
  const auto has = [&](const ResistiveCoupling& each) {
    return each.first == *pad.coupled || each.second == *pad.coupled;
  };
  return netlist.hasPackage && pad.coupled && std::ranges::any_of(netlist.coupled.shared, has);
}

// The two nodes of a pad's resistor. One that meets the currents of other pins has a source of 0 V
// in front, which measures its own.
struct ResistorNodes {
  std::string first, second;
};

ResistorNodes resistorNodes(const ComponentNetlist& netlist, const PadNetlist& pad) {
  const bool hasL = packageOf(netlist, pad).inductance > 0.0;
  return {isShared(netlist, pad) ? "r_" + pad.label : dieNode(netlist, pad),
          hasL ? "k_" + pad.label : pinPort(pad)};
}

void writePackage(NetlistWriter& writer, const ComponentNetlist& netlist, const PadNetlist& pad,
                  const std::string& reference) {
  const PinPackage package = packageOf(netlist, pad);
  const bool hasR = package.resistance > 0.0;
  const std::string die = dieNode(netlist, pad);
  const std::string pin = pinPort(pad);
  const ResistorNodes nodes = resistorNodes(netlist, pad);
  if (isShared(netlist, pad)) writer.line("V_" + pad.label + ' ' + die + ' ' + nodes.first + " 0");
  if (hasR) {
    writer.line("R_" + pad.label + ' ' + nodes.first + ' ' + nodes.second + ' ' +
                number(package.resistance));
  }
  if (package.inductance > 0.0) {
    writer.line("L_" + pad.label + ' ' + (hasR ? nodes.second : die) + ' ' + pin + ' ' +
                number(package.inductance));
  }
  if (package.capacitance != 0.0) {
    writer.line("C_" + pad.label + ' ' + pin + ' ' + reference + ' ' + number(package.capacitance));
  }
}

// The pads of the coupled package, by their index in it.
std::vector<const PadNetlist*> coupledPads(const ComponentNetlist& netlist) {
  std::vector<const PadNetlist*> pads(netlist.coupled.resistance.size());
  for (const PinNetlist& pin : netlist.pins) {
    for (const PadNetlist& pad : pin.pads) {
      if (pad.coupled) pads[*pad.coupled] = &pad;
    }
  }
  return pads;
}

// A share of another pin's current goes through this pin's resistor as well: R_ij I_j.
void writeShared(NetlistWriter& writer, const ComponentNetlist& netlist, std::size_t count,
                 const PadNetlist& pad, const PadNetlist& other, double value) {
  const ResistorNodes nodes = resistorNodes(netlist, pad);
  writer.line("F" + std::to_string(count) + ' ' + nodes.second + ' ' + nodes.first + " V_" +
              other.label + ' ' + number(value / packageOf(netlist, pad).resistance));
}

void writeCouplings(NetlistWriter& writer, const ComponentNetlist& netlist) {
  const std::vector<const PadNetlist*> pads = coupledPads(netlist);
  std::size_t count = 0;
  for (const InductiveCoupling& each : netlist.coupled.couplings) {
    writer.line("K" + std::to_string(++count) + " L_" + pads[each.first]->label + " L_" +
                pads[each.second]->label + ' ' + number(each.k));
  }
  count = 0;
  for (const MutualCapacitance& each : netlist.coupled.mutual) {
    writer.line("CM" + std::to_string(++count) + ' ' + pinPort(*pads[each.first]) + ' ' +
                pinPort(*pads[each.second]) + ' ' + number(each.value));
  }
  count = 0;
  for (const ResistiveCoupling& each : netlist.coupled.shared) {
    const PadNetlist& first = *pads[each.first];
    const PadNetlist& second = *pads[each.second];
    writeShared(writer, netlist, ++count, first, second, each.value);
    writeShared(writer, netlist, ++count, second, first, each.value);
  }
}

void writePins(NetlistWriter& writer, const ComponentNetlist& netlist) {
  for (const PinNetlist& pin : netlist.pins) {
    if (pin.subcircuit.empty()) continue;
    std::string text = "X_" + pin.pads[0].label;
    for (const PadNetlist& pad : pin.pads) text += ' ' + dieNode(netlist, pad);
    append(text, signalNodes(pin));
    append(text, railPortsOf(pin.rails));
    writer.line(text + ' ' + pin.subcircuit);
  }
}

void writeSeriesInstances(NetlistWriter& writer, const ComponentNetlist& netlist) {
  const auto die = [&](PadPlace place) {
    return dieNode(netlist, netlist.pins[place.pin].pads[place.pad]);
  };
  std::size_t count = 0;
  for (const SeriesInstance& each : netlist.series) {
    writer.line("XS" + std::to_string(++count) + ' ' + die(each.first) + ' ' + die(each.second) +
                ' ' + each.subcircuit);
  }
}

void writePackages(NetlistWriter& writer, const ComponentNetlist& netlist) {
  if (!netlist.hasPackage) return;
  writer.comment("package: die - R - L - pin, C at the pin");
  for (const PinNetlist& pin : netlist.pins) {
    const std::string reference = netlist.rails.empty() ? "0" : railPortsOf(pin.rails).back();
    for (const PadNetlist& pad : pin.pads) writePackage(writer, netlist, pad, reference);
  }
  writeCouplings(writer, netlist);
}

void writeComponentRails(NetlistWriter& writer, const ComponentNetlist& netlist) {
  writer.comment("the same with ideal rails inside, against ref");
  std::string head = ".subckt " + netlist.name + "_v";
  append(head, signalPorts(netlist));
  writer.line(head + " ref");
  std::string instance = "X1";
  append(instance, portsOf(netlist));
  writer.line(instance + ' ' + netlist.name);
  for (std::size_t set = 0; set < netlist.rails.size(); ++set) {
    const Rails& rails = netlist.rails[set];
    const double voltages[] = {rails.pu, rails.pd, rails.pc, rails.gc};
    const std::vector<std::string> ports = railPortsOf(set);
    for (std::size_t i = 0; i < ports.size(); ++i) {
      writer.line('V' + ports[i] + ' ' + ports[i] + " ref " + number(voltages[i]));
    }
  }
  writer.line(".ends " + netlist.name + "_v");
}

bool hasSignal(const PairNetlist& netlist, std::string_view signal) {
  const std::vector<std::string> signals = signalPortsOf(*netlist.device);
  return std::ranges::find(signals, signal) != signals.end();
}

void writePairMember(NetlistWriter& writer, const PairNetlist& netlist, bool isFirst) {
  std::string text = isFirst ? "Xp p" : "Xn n";
  if (hasSignal(netlist, "drv")) text += isFirst ? " d" : " dn";
  if (hasSignal(netlist, "en")) text += " en";
  if (hasSignal(netlist, "mon")) text += isFirst ? " monp" : " monn";
  writer.line(text + " pu pd pc gc " + (isFirst ? netlist.first : netlist.second));
}

void writePairReceiver(NetlistWriter& writer, double threshold) {
  const Dialect& dialect = writer.dialect();
  const std::string limit = number(std::fabs(threshold));
  const std::string holds = choice(dialect, "V(mon)>0.5", "1", "0");
  const std::string otherwise = choice(dialect, "V(p,n)<-" + limit, "0", holds);
  writer.source("Bmon", "mi 0", 'V', choice(dialect, "V(p,n)>" + limit, "1", otherwise));
  writer.line("Rmon mi mon 1k");
  writer.line("Cmon mon 0 1e-14");
}

}  // namespace

std::string pinPort(const PadNetlist& pad) { return "p_" + pad.label; }

std::vector<std::string> railPortsOf(std::size_t set) {
  std::vector<std::string> ports;
  for (const std::string_view rail : railPorts) {
    ports.push_back(std::string(rail) + (set == 0 ? "" : std::to_string(set + 1)));
  }
  return ports;
}

std::vector<std::string> portsOf(const ComponentNetlist& netlist) {
  std::vector<std::string> ports = signalPorts(netlist);
  for (std::size_t set = 0; set < netlist.rails.size(); ++set) {
    for (std::string& port : railPortsOf(set)) ports.push_back(std::move(port));
  }
  return ports;
}

std::vector<std::string> portsOf(const PairNetlist& netlist) {
  std::vector<std::string> ports = portsOf(*netlist.device);
  ports.front() = "p";
  ports.insert(ports.begin() + 1, "n");
  return ports;
}

void writePair(NetlistWriter& writer, const PairNetlist& netlist) {
  writer.comment("differential pair: the second pin is driven by the complement");
  std::string head = ".subckt " + netlist.name;
  append(head, portsOf(netlist));
  writer.line(head + std::string(thresholdParameter(*netlist.device)));
  if (hasSignal(netlist, "drv")) {
    const std::string condition = "V(drv)>" + std::string(writer.dialect().threshold);
    writer.source("Bd", "d 0", 'V', choice(writer.dialect(), condition, "1", "0"));
    writer.source("Bn", "dn 0", 'V', "1-V(d)");
  }
  writePairMember(writer, netlist, true);
  writePairMember(writer, netlist, false);
  if (hasSignal(netlist, "mon")) writePairReceiver(writer, netlist.threshold);
  writer.line(".ends " + netlist.name);
  writer.blank();
}

void writeComponent(NetlistWriter& writer, const ComponentNetlist& netlist) {
  for (const std::string& note : netlist.notes) writer.comment(note);
  std::string head = ".subckt " + netlist.name;
  append(head, portsOf(netlist));
  writer.line(head);
  writePins(writer, netlist);
  writeSeriesInstances(writer, netlist);
  writePackages(writer, netlist);
  writer.line(".ends " + netlist.name);
  writeComponentRails(writer, netlist);
}

}  // namespace ibis
