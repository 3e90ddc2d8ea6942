#pragma once

#include <ostream>

#include "file_summary.h"

namespace ibis::cli {

/// Prints a model with every number as an object, see docs/json.md.
void printModelJson(std::ostream& out, const ModelSummary& summary);

}  // namespace ibis::cli
