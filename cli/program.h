#pragma once

namespace ibis::cli {

/// Does what a command line asks and returns the exit status; throws nothing.
int runProgram(int count, char** words);

}  // namespace ibis::cli
