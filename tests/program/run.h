#pragma once

#include <string>
#include <vector>

#include "harness/temporary_folder.h"

namespace ibis::testing {

/// What one run of the program left behind.
struct Outcome {
  int status = -1;  ///< Exit status; 128 and the signal for a run that one ended.
  std::string out;
  std::string err;
};

/// Where a run gets its standard streams from.
struct Streams {
  std::string input = {};
  std::string output = {};  ///< A file for standard output; empty to collect it.
  std::string error = {};   ///< A file for standard error; empty to collect it.
  bool outputHasNoReader = false;
  std::string program = IBIS_PROGRAM_PATH;
  std::string folder = ".";  ///< Where the program works.
  /// Whether a conversion tells what a check finds too; tests of other things leave that out.
  bool tellsFindings = false;
};

/// Runs the program with these words behind its name.
Outcome run(const std::vector<std::string>& words, const Streams& streams = {});

}  // namespace ibis::testing
