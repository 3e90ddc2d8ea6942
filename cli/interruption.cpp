#include "interruption.h"

#include <algorithm>
#include <csignal>
#include <iostream>
#include <mutex>
#include <system_error>
#include <thread>

namespace ibis::cli {
namespace {

struct Register {
  std::mutex mutex;
  std::vector<const std::vector<std::string>*> lists;
};

// Never destroyed: the thread that reads it lives as long as the program.
Register& filesAtRisk() {
  static Register& all = *new Register;
  return all;
}

// One who starts the program may have it pass over a signal, as nohup does.
sigset_t endingSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler != SIG_IGN) sigaddset(&signals, signal);
  }
  return signals;
}

// Holds the lock to the end, so that no file is finished behind the words.
[[noreturn]] void end(int signal, const sigset_t& signals) {
  const std::lock_guard lock(filesAtRisk().mutex);
  std::string text;
  for (const auto* names : filesAtRisk().lists) {
    for (const std::string& name : *names) {
      text.append("ibis-load: error: interrupted, '").append(name).append("' may be cut\n");
    }
  }
  std::cerr << text;
  std::signal(signal, SIG_DFL);
  std::raise(signal);
  pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
  std::abort();
}

void waitForEnd(sigset_t signals) {
  int signal = 0;
  while (sigwait(&signals, &signal) != 0) continue;
  end(signal, signals);
}

}  // namespace

// Where there is no room for one more thread, a signal ends the program without a word.
void watchForInterruption() {
  const sigset_t signals = endingSignals();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  try {
    std::thread(waitForEnd, signals).detach();
  } catch (const std::system_error&) {
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
  }
}

FilesAtRisk::FilesAtRisk(std::vector<std::string> names) : names_(std::move(names)) {
  const std::lock_guard lock(filesAtRisk().mutex);
  filesAtRisk().lists.push_back(&names_);
}

FilesAtRisk::~FilesAtRisk() {
  const std::lock_guard lock(filesAtRisk().mutex);
  std::erase(filesAtRisk().lists, &names_);
}

}  // namespace ibis::cli
