#pragma once

#include <string>
#include <vector>

#include "host/load_sequence.h"

namespace ibis::cli {

/// Warns of what files that a load wrote hold and whoever reads them may stumble over.
///
/// These are numbers that are not finite, node names beyond letters, digits and "_", markup in a
/// page and quotes in a script. A load writes them all as the file has them.
std::vector<Diagnostic> checkWritten(const Load& load, const std::vector<std::string>& files);

}  // namespace ibis::cli
