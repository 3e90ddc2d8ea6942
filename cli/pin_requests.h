#pragma once

#include <string>
#include <vector>

#include "ibis/component.h"
#include "ibis/diagnostic.h"

namespace ibis::cli {

/// An error for each pin that none of the components has, with the names that may be meant.
std::vector<Diagnostic> checkPins(const std::vector<std::string>& pins,
                                  const std::vector<const IBISComponent*>& components);

}  // namespace ibis::cli
