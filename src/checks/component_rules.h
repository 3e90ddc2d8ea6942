#pragma once

#include <cstddef>

#include "checks/view.h"

namespace ibis::checks {

/// Tells of the columns of [Pin] and of the values in them.
void checkPinValues(const View& view, const ComponentView& component, Findings& findings);

/// Tells of [Diff Pin]; counts the hints that were looked for in a file.
void checkPairs(const View& view, const ComponentView& component, std::size_t& asked,
                Findings& findings);

}  // namespace ibis::checks
