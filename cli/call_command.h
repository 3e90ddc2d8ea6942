#pragma once

#include <string>

namespace CLI {
class App;
}

namespace ibis::cli {

/// What the command line of `call` gives.
struct CallOptions {
  std::string plugin;  ///< Path of the plug-in; empty for the program's own.
};

/// Adds `call` to the program; the record is filled when the command line is parsed.
void addCallCommand(CLI::App& program, CallOptions& options);

/// Makes one call from standard input to standard output and gives the exit status.
int runCall(CallOptions options);

}  // namespace ibis::cli
