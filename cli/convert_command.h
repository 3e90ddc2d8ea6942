#pragma once

#include "conversion.h"

namespace CLI {
class App;
}

namespace ibis::cli {

/// What the command line of `convert` gives.
struct ConvertOptions {
  ConversionRequest request{.source = {},
                            .mode = "model",
                            .component = {},
                            .folder = ".",
                            .subcircuit = {},
                            .pins = {},
                            .selections = {}};
  bool asJson = false;
  bool isQuiet = false;
  bool warningsFail = false;
};

/// Adds `convert` to the program; the record is filled when the command line is parsed.
CLI::App* addConvertCommand(CLI::App& program, ConvertOptions& options);

/// Converts one file, tells what came of it and gives the exit status.
int runConvert(ConvertOptions options);

}  // namespace ibis::cli
