#pragma once

#include "convert_options.h"

namespace ibis::cli {

/// Converts all files that the arguments give, tells what came of them and gives the exit status.
int convertManyFiles(const ConvertOptions& options);

}  // namespace ibis::cli
