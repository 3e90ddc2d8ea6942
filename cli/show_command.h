#pragma once

#include <string>

#include "message_limit.h"

namespace ibis::cli {

/// What the command line of `show` gives.
struct ShowOptions {
  std::string source;
  std::string name;   ///< What to show; empty for all.
  std::string table;  ///< What to write as CSV; empty for nothing.
  bool asJson = false;
  MessageLimit messages;
};

/// Adds `show` to the program; the record is filled when the command line is parsed.
CLI::App* addShowCommand(CLI::App& program, ShowOptions& options);

/// Shows one thing of a file in full and gives the exit status.
int runShow(const ShowOptions& options);

}  // namespace ibis::cli
