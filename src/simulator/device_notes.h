#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "simulator/device_netlist.h"

namespace ibis {

/// Words for how an edge's coefficients were made.
std::string_view methodText(EdgeMethod method);

/// A text, a number of four digits and its unit.
std::string withNumber(std::string_view text, double value, std::string_view unit);

/// What stands in front of a model's subcircuit: its rails, what its edges were made from, their
/// span and the options that a simulation needs.
std::vector<std::string> deviceNotes(const DeviceNetlist& netlist, const IBISModel& model,
                                     std::string_view corner, const Dialect& dialect);

}  // namespace ibis
