#pragma once

#include "convert_options.h"

namespace CLI {
class App;
}

namespace ibis::cli {

/// Adds `convert` to the program; the record is filled when the command line is parsed.
CLI::App* addConvertCommand(CLI::App& program, ConvertOptions& options);

/// Converts what the options name, tells what came of it and gives the exit status.
int runConvert(ConvertOptions options);

}  // namespace ibis::cli
