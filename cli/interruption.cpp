#include "interruption.h"

#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <mutex>
#include <new>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>

#include "exit_status.h"

namespace ibis::cli {
namespace {

struct Register {
  std::mutex mutex;
  std::set<std::string> files;
  std::set<std::string> folders;
  std::set<pid_t> children;
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

// A process that has ended writes nothing more into its folder.
void removeUnfinished() {
  for (const pid_t child : unfinished().children) {
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
  }
  for (const std::string& name : unfinished().files) std::remove(name.c_str());
  for (const std::string& folder : unfinished().folders) {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
  }
}

bool lacksMemory() {
  if (!std::current_exception()) return false;
  try {
    throw;
  } catch (const std::bad_alloc&) {
    return true;
  } catch (...) {
    return false;
  }
}

// Any other end that nobody saw coming is a fault of the program, and shows as one.
[[noreturn]] void endWithError() {
  if (!lacksMemory()) std::abort();
  const std::lock_guard lock(unfinished().mutex);
  removeUnfinished();
  constexpr std::string_view text = "ibis-load: error: std::bad_alloc\n";
  if (write(STDERR_FILENO, text.data(), text.size()) < 0) errno = 0;  // nobody is left to be told
  _exit(exitStatus::failed);
}

// Holds the lock until the program ends, so that no further file is begun.
[[noreturn]] void end(int signal, const sigset_t& signals) {
  const std::lock_guard lock(unfinished().mutex);
  removeUnfinished();
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
  static std::atomic_flag isWatched;
  if (isWatched.test_and_set()) return;
  const sigset_t signals = endingSignals();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  try {
    std::thread(waitForEnd, signals).detach();
  } catch (const std::exception&) {
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
  }
}

pid_t startWatched(const std::function<pid_t()>& start) {
  const std::lock_guard lock(unfinished().mutex);
  const pid_t child = start();
  unfinished().children.insert(child);
  return child;
}

// The number of a process is free for another one when it has been waited for, so that is under the
// lock, when nothing is left to wait for.
int waitForWatched(pid_t child) {
  siginfo_t info{};
  while (waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT) < 0 && errno == EINTR) {
  }
  const std::lock_guard lock(unfinished().mutex);
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  unfinished().children.erase(child);
  return status;
}

void watchFolder(const std::string& folder) {
  const std::lock_guard lock(unfinished().mutex);
  unfinished().folders.insert(folder);
}

void forgetFolder(const std::string& folder) {
  const std::lock_guard lock(unfinished().mutex);
  unfinished().folders.erase(folder);
}

// What takes a tree of JSON down asks for memory, and it may not throw.
void watchForLackOfMemory() { std::set_terminate(endWithError); }

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
