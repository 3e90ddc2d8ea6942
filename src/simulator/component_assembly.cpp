#include "simulator/component_assembly.h"

#include <algorithm>
#include <cmath>

#include "simulator/device_notes.h"

namespace ibis {
namespace {

// What all pins of a component share.
struct Assembly {
  SubcircuitFile& file;
  const IBISComponent& component;
  UniqueNames& names;
  UniqueNames labels = {};
};

double launchSkew(const IBISDiffPin& pair, int corner) {
  const double skew = corner == corner::max   ? pair.tdelay_max
                      : corner == corner::min ? pair.tdelay_min
                                              : pair.tdelay_typ;
  return std::isfinite(skew) ? skew : 0.0;
}

// A copy of a device whose edges come later, once for each delay.
std::string delayedCopy(Assembly& assembly, std::size_t device, double delay) {
  std::vector<DeviceNetlist>& devices = assembly.file.devices;
  const std::string base = devices[device].name;
  for (const DeviceNetlist& each : devices) {
    if (each.delay == delay && each.name.starts_with(base + "_late")) return each.name;
  }
  DeviceNetlist copy = devices[device];
  copy.name = assembly.names.take(base + "_late");
  copy.delay = delay;
  copy.notes = {withNumber("the same, later by ", delay, " s")};
  devices.push_back(copy);
  return copy.name;
}

// A positive skew delays the pin that does not invert.
PairNetlist makePair(Assembly& assembly, const IBISPinEntry& entry) {
  const SubcircuitFile& file = assembly.file;
  const std::size_t first = file.deviceOf.at(entry.model);
  const std::size_t second = file.deviceOf.at(entry.invertedModel);
  PairNetlist pair;
  pair.first = file.devices[first].name;
  pair.second = file.devices[second].name;
  pair.device = file.devices[first].device;
  const bool isDriver = pair.device.driver != DriverKind::none;
  const double skew = isDriver && entry.diffPin ? launchSkew(*entry.diffPin, file.corner) : 0.0;
  if (skew > 0.0) pair.first = delayedCopy(assembly, first, skew);
  if (skew < 0.0) pair.second = delayedCopy(assembly, second, -skew);
  const bool hasThreshold = entry.diffPin && std::isfinite(entry.diffPin->vdiff);
  pair.threshold = hasThreshold ? entry.diffPin->vdiff : 0.0;
  return pair;
}

// The subcircuit of a pair, once for pairs that do the same.
std::string pairName(Assembly& assembly, const IBISPinEntry& entry) {
  PairNetlist pair = makePair(assembly, entry);
  std::vector<PairNetlist>& pairs = assembly.file.pairs;
  const auto isSame = [&](const PairNetlist& each) {
    return each.first == pair.first && each.second == pair.second &&
           each.threshold == pair.threshold;
  };
  const auto found = std::ranges::find_if(pairs, isSame);
  if (found != pairs.end()) return found->name;
  pair.name = assembly.names.take(assembly.file.device(entry.model).name + "_pair");
  pairs.push_back(pair);
  return pair.name;
}

std::size_t railsIndex(ComponentNetlist& component, const Rails& rails) {
  const auto found = std::ranges::find(component.rails, rails);
  if (found != component.rails.end()) {
    return static_cast<std::size_t>(found - component.rails.begin());
  }
  component.rails.push_back(rails);
  return component.rails.size() - 1;
}

// A name that differs from the others in more than its case, of any characters that a name takes.
std::string padLabel(UniqueNames& labels, std::string_view pin) {
  const std::string word = spiceWord("p" + std::string(pin)).substr(1);
  return labels.take(word);
}

void addPad(Assembly& assembly, PinNetlist& netlist, const IBISPin& pin) {
  assembly.file.padOf[&pin] = {assembly.file.component->pins.size(), netlist.pads.size()};
  netlist.pads.push_back({padLabel(assembly.labels, pin.name),
                          packageOf(assembly.component, pin, assembly.file.corner), std::nullopt});
}

void addPin(Assembly& assembly, const IBISPinEntry& entry) {
  SubcircuitFile& file = assembly.file;
  const DeviceNetlist& device = file.device(entry.model);
  PinNetlist pin;
  pin.signals = signalPortsOf(device.device);
  pin.signals.erase(pin.signals.begin());
  pin.rails = railsIndex(*file.component, device.device.rails);
  pin.subcircuit = device.name;
  addPad(assembly, pin, *entry.pin);
  if (entry.isPair() && file.deviceOf.contains(entry.invertedModel)) {
    addPad(assembly, pin, *entry.invertedPin);
    pin.subcircuit = pairName(assembly, entry);
  }
  file.component->pins.push_back(std::move(pin));
}

void addBarePin(Assembly& assembly, const IBISPin& pin) {
  PinNetlist netlist;
  addPad(assembly, netlist, pin);
  assembly.file.component->pins.push_back(std::move(netlist));
}

std::string pinNote(const PinNetlist& netlist, const IBISPin& pin) {
  return pinPort(netlist.pads[0]) + ": pin " + pin.name.str() + ", " + pin.signal_name.str();
}

double finiteOrZero(double value) { return std::isfinite(value) && value > 0.0 ? value : 0.0; }

}  // namespace

PinPackage packageOf(const IBISComponent& component, const IBISPin& pin, int corner) {
  const auto value = [&](bool isMissing, const IBISTriple& own, const IBISTriple& shared) {
    return finiteOrZero(ownOrTyp(isMissing ? shared : own, corner));
  };
  const IBISPackage& shared = component.package;
  return {value(pin.hasOwnRLC && pin.missingR, pin.R_pin(), shared.R_pkg),
          value(pin.hasOwnRLC && pin.missingL, pin.L_pin(), shared.L_pkg),
          value(pin.hasOwnRLC && pin.missingC, pin.C_pin(), shared.C_pkg)};
}

void addPins(SubcircuitFile& file, const IBISComponent& component, const ChosenPins& pins,
             UniqueNames& names) {
  Assembly assembly{file, component, names};
  for (const IBISPinEntry* entry : pins.entries) addPin(assembly, *entry);
  for (const IBISPin* pin : pins.barePins) addBarePin(assembly, *pin);
}

std::vector<std::string> componentNotes(const SubcircuitFile& file, const IBISComponent& component,
                                        const ChosenPins& pins) {
  std::vector<std::string> notes;
  notes.push_back("component " + component.name.str() + ", corner " + file.word);
  notes.push_back("ports: pins, then drv, en and mon of each pin, then the rails");
  const PinNetlist* pin = file.component->pins.data();
  for (const IBISPinEntry* entry : pins.entries) {
    notes.push_back(pinNote(*pin, *entry->pin) + ", rails " + railPortsOf(pin->rails)[0] + " ...");
    ++pin;
  }
  for (const IBISPin* bare : pins.barePins) notes.push_back(pinNote(*pin++, *bare));
  return notes;
}

}  // namespace ibis
