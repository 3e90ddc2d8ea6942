#pragma once

#include <string>
#include <vector>

#include "message_limit.h"
#include "ngspice.h"

namespace CLI {
class App;
}

namespace ibis::cli {

/// What the command line of `verify` gives.
struct VerifyOptions {
  std::string source;
  std::vector<std::string> models;     ///< Names; none for all.
  std::vector<std::string> corners;    ///< Words; none for typ.
  double limit = 1.0;                  ///< Largest error that passes, in per cent of the swing.
  unsigned jobs = 1;                   ///< Runs side by side; 0 for one a core.
  unsigned seconds = usualRunSeconds;  ///< Processor time of a run, at most.
  MessageLimit messages;
  bool isCoarse = false;  ///< With the options that an export recommends.
  bool asJson = false;
};

/// Adds `verify` to the program; the record is filled when the command line is parsed.
CLI::App* addVerifyCommand(CLI::App& program, VerifyOptions& options);

/// Exports, simulates and compares, and gives the exit status.
int runVerify(const VerifyOptions& options);

}  // namespace ibis::cli
