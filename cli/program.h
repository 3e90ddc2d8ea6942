#pragma once

#include <functional>

#include "exit_status.h"

namespace ibis::cli {

/// What a command line asks for.
struct CommandLine {
  std::function<int()> run;       ///< Runs the command, gives the exit status; none if all is done.
  int status = exitStatus::done;  ///< The exit status where nothing is to be run.
};

/// Reads a command line; prints the help that it asks for, or what is wrong with it.
CommandLine readCommandLine(int count, char** words);

/// Does what a command line asks and returns the exit status; throws nothing.
int runProgram(int count, char** words);

}  // namespace ibis::cli
