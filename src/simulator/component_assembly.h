#pragma once

#include <string>
#include <vector>

#include "ibis/component.h"
#include "simulator/names.h"
#include "simulator/subcircuit_file.h"

namespace ibis {

/// The package elements of a pin at a corner: its own values, else the component's.
PinPackage packageOf(const IBISComponent& component, const IBISPin& pin, int corner);

/// Whether one of the elements is negative or not finite in the file; packageOf() leaves it out.
bool hasUnusablePackage(const IBISComponent& component, const IBISPin& pin, int corner);

/// The pins that a component is written with.
struct ChosenPins {
  const std::vector<const IBISPinEntry*>& entries;  ///< Those with a device, in their order.
  const std::vector<const IBISPin*>& barePins;      ///< Those with series elements alone, behind.
};

/// Adds pins to the file's component, whose models' devices are there.
///
/// A pair whose second model has a device gets a subcircuit, and a late copy of the device whose
/// launch is delayed; their names come from `names`.
void addPins(SubcircuitFile& file, const IBISComponent& component, const ChosenPins& pins,
             UniqueNames& names);

/// What stands in front of a component's subcircuit: its ports and the pin behind each.
std::vector<std::string> componentNotes(const SubcircuitFile& file, const IBISComponent& component,
                                        const ChosenPins& pins);

}  // namespace ibis
