#pragma once

#include <string>
#include <vector>

#include "ibis/file.h"

namespace ibis {

/// Moves what selections of the form SELECTOR=MODEL name to the front of their selectors.
///
/// They leave the user's list of descriptions; one that is a description, or names nothing, stays.
/// Returns the names of these selectors.
std::vector<std::string> chooseByName(IBISFileData& file);

}  // namespace ibis
