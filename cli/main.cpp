#include <csignal>

#include "program.h"

int main(int count, char** words) {
  // A reader that leaves and a file at its limit show as failed writes, not as the program's end.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  return ibis::cli::runProgram(count, words);
}
