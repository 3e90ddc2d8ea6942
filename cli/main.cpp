#include <fcntl.h>

#include <csignal>

#include "interruption.h"
#include "program.h"

namespace {

// Else the first file that is opened would take the number of a stream that the caller closed, and
// the messages would go into it. Reading from the one fails as before, and writing to the others.
void fillClosedStreams() {
  constexpr int uselessModes[] = {O_WRONLY, O_RDONLY, O_RDONLY};
  for (int number = 0; number < 3; ++number) {
    if (fcntl(number, F_GETFD) < 0) open("/dev/null", uselessModes[number]);
  }
}

}  // namespace

int main(int count, char** words) {
  fillClosedStreams();
  // A closed pipe and a file at its size limit show as failed writes and do not end the program.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  ibis::cli::watchForLackOfMemory();
  return ibis::cli::runProgram(count, words);
}
