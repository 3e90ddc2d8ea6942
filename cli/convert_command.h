#pragma once

#include "convert_options.h"

namespace CLI {
class App;
}

namespace ibis::cli {

/// Adds `convert` to the program; parsing the command line fills the options.
CLI::App* addConvertCommand(CLI::App& program, ConvertOptions& options);

/// Converts what the options name, reports the results and returns the exit status.
int runConvert(ConvertOptions options);

}  // namespace ibis::cli
