#include "interruption.h"

#include <csignal>
#include <cstdio>
#include <mutex>
#include <set>
#include <string>
#include <system_error>
#include <thread>

namespace ibis::cli {
namespace {

struct Register {
  std::mutex mutex;
  std::set<std::string> files;
};

// Never destroyed: the thread that reads it lives as long as the program.
Register& unfinished() {
  static Register& all = *new Register;
  return all;
}

// Leaves out a signal that the program's caller had ignored, as nohup does.
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

// Holds the lock until the program ends, so that no further file is begun.
[[noreturn]] void end(int signal, const sigset_t& signals) {
  const std::lock_guard lock(unfinished().mutex);
  for (const std::string& name : unfinished().files) std::remove(name.c_str());
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

// If no further thread can be started, a signal ends the program at once.
void watchForInterruption() {
  const sigset_t signals = endingSignals();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  try {
    std::thread(waitForEnd, signals).detach();
  } catch (const std::system_error&) {
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
  }
}

WatchedSink::~WatchedSink() { discardAll(); }

void WatchedSink::announce(const std::string& temporary) {
  const std::lock_guard lock(unfinished().mutex);
  unfinished().files.insert(temporary);
}

void WatchedSink::forget(const std::string& temporary) {
  const std::lock_guard lock(unfinished().mutex);
  unfinished().files.erase(temporary);
}

}  // namespace ibis::cli
