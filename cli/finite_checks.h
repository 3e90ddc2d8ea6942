#pragma once

#include <string>
#include <vector>

#include "host/load_sequence.h"

namespace ibis::cli {

/// Warns of numbers in a file that a load wrote which are not finite.
///
/// One message names all of a model, of a component or of a package model.
std::vector<Diagnostic> checkFinite(const Load& load, const std::string& file);

}  // namespace ibis::cli
