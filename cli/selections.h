#pragma once

#include <string>
#include <vector>

#include "ibis/file.h"

namespace ibis::cli {

/// Moves what selections of the form SELECTOR=MODEL name to the front of their selectors.
///
/// They leave the user's list of descriptions; one that is a description, or names nothing, stays.
/// Returns the names of these selectors.
std::vector<std::string> chooseByName(IBISFileData& file);

/// The selectors of a component's written pins whose first model was taken unasked, each with it.
///
/// Those of the list were asked for by name.
std::vector<std::string> firstChoices(const IBISFileData& file, const IBISComponent& component,
                                      const std::vector<std::string>& chosen);

}  // namespace ibis::cli
