#pragma once

#include "convert_options.h"

namespace ibis::cli {

/// Converts all files that the arguments name, reports the results and returns the exit status.
int convertManyFiles(const ConvertOptions& options);

}  // namespace ibis::cli
