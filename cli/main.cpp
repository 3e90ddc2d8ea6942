#include <csignal>

#include "program.h"

int main(int count, char** words) {
  // A closed pipe and a file at its size limit show as failed writes and do not end the program.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  return ibis::cli::runProgram(count, words);
}
