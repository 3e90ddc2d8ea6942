#pragma once

#include <string>
#include <vector>

#include "ibis/file.h"

namespace ibis::cli {

/// The selectors of a component's written pins whose first model was taken unasked, each with it.
///
/// Those of the list were asked for by name.
std::vector<std::string> firstChoices(const IBISFileData& file, const IBISComponent& component,
                                      const std::vector<std::string>& chosen);

}  // namespace ibis::cli
