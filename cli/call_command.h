#pragma once

#include <string>

namespace CLI {
class App;
}

namespace ibis::cli {

/// The options of `call`.
struct CallOptions {
  std::string plugin;  ///< Path of the plug-in; empty for the program's own.
};

/// Adds `call` to the program; parsing the command line fills the options.
CLI::App* addCallCommand(CLI::App& program, CallOptions& options);

/// Makes one call from standard input to standard output and returns the exit status.
int runCall(const CallOptions& options);

}  // namespace ibis::cli
