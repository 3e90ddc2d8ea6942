#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/load_sequence.h"

namespace ibis::cli {

/// The files that a mode writes for a subcircuit's name, in the order of writing.
std::vector<std::string> outputNames(OutputMode mode, std::string_view folder,
                                     std::string_view subcircuit);

/// Whether the mode calls its files by the subcircuit.
bool isNamedBySubcircuit(OutputMode mode);

}  // namespace ibis::cli
