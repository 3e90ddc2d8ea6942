#include "simulator/component_assembly.h"

#include <array>
#include <cmath>
#include <map>
#include <tuple>
#include <utility>

#include "simulator/device_notes.h"

namespace ibis {
namespace {

// What all pins of a component share.
struct Assembly {
  SubcircuitFile& file;
  const IBISComponent& component;
  UniqueNames& names;
  UniqueNames labels = {};
  std::map<std::pair<std::size_t, double>, std::string> late = {};  // names by device and delay
  std::map<std::tuple<std::string, std::string, double>, std::string> pairs =
      {};  // by what it holds
  std::map<std::array<double, 4>, std::size_t> rails = {};
};

double launchSkew(const IBISDiffPin& pair, int corner) {
  const double skew = corner == corner::max   ? pair.tdelay_max
                      : corner == corner::min ? pair.tdelay_min
                                              : pair.tdelay_typ;
  return std::isfinite(skew) ? skew : 0.0;
}

// A copy of a device whose edges come later, once for each delay.
std::string delayedCopy(Assembly& assembly, std::size_t device, double delay) {
  std::string& name = assembly.late[{device, delay}];
  if (!name.empty()) return name;
  name = assembly.names.take(assembly.file.devices[device].name + "_late");
  assembly.file.delayed.push_back({name, device, delay});
  return name;
}

// A positive skew delays the pin that does not invert.
PairNetlist makePair(Assembly& assembly, const IBISPinEntry& entry) {
  const SubcircuitFile& file = assembly.file;
  const std::size_t first = file.deviceOf.at(entry.model);
  const std::size_t second = file.deviceOf.at(entry.invertedModel);
  PairNetlist pair;
  pair.first = file.devices[first].name;
  pair.second = file.devices[second].name;
  pair.device = &file.devices[first].device;
  const bool isDriver = pair.device->driver != DriverKind::none;
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
  std::string& name = assembly.pairs[{pair.first, pair.second, pair.threshold}];
  if (!name.empty()) return name;
  name = pair.name = assembly.names.take(assembly.file.device(entry.model).name + "_pair");
  assembly.file.pairs.push_back(std::move(pair));
  return name;
}

std::size_t railsIndex(Assembly& assembly, const Rails& rails) {
  std::vector<Rails>& all = assembly.file.component->rails;
  const auto [place, isNew] =
      assembly.rails.try_emplace({rails.pu, rails.pd, rails.pc, rails.gc}, all.size());
  if (isNew) all.push_back(rails);
  return place->second;
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
  pin.rails = railsIndex(assembly, device.device.rails);
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

bool isUsable(double value) { return std::isfinite(value) && value >= 0.0; }

double usableOrZero(double value) { return isUsable(value) ? value : 0.0; }

// As the file gives the elements.
PinPackage givenPackage(const IBISComponent& component, const IBISPin& pin, int corner) {
  const auto value = [&](bool isMissing, const IBISTriple& own, const IBISTriple& shared) {
    return ownOrTyp(isMissing ? shared : own, corner);
  };
  const IBISPackage& shared = component.package;
  return {value(pin.hasOwnRLC && pin.missingR, pin.R_pin(), shared.R_pkg),
          value(pin.hasOwnRLC && pin.missingL, pin.L_pin(), shared.L_pkg),
          value(pin.hasOwnRLC && pin.missingC, pin.C_pin(), shared.C_pkg)};
}

}  // namespace

PinPackage packageOf(const IBISComponent& component, const IBISPin& pin, int corner) {
  const PinPackage given = givenPackage(component, pin, corner);
  return {usableOrZero(given.resistance), usableOrZero(given.inductance),
          usableOrZero(given.capacitance)};
}

bool hasUnusablePackage(const IBISComponent& component, const IBISPin& pin, int corner) {
  const PinPackage given = givenPackage(component, pin, corner);
  return !isUsable(given.resistance) || !isUsable(given.inductance) || !isUsable(given.capacitance);
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
