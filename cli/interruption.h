#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

#include "output/stream/file_sink.h"

namespace ibis::cli {

/// Makes the signals that end the program first remove the files that are not whole.
///
/// Called before the first thread starts, since every thread inherits the blocked signals.
void watchForInterruption();

/// Starts a process that ends with the program where a signal ends that; gives its number.
pid_t startWatched(const std::function<pid_t()>& start);

/// Waits for such a process and gives its status as waitpid does.
int waitForWatched(pid_t child);

/// Makes a signal that ends the program remove a folder with all that is in it. Any thread.
void watchFolder(const std::string& folder);
void forgetFolder(const std::string& folder);

/// Makes the program end with an error where memory lacks and no exception can tell of it.
void watchForLackOfMemory();

/// Writes files; a signal that ends the program leaves no unfinished one. Any thread.
class WatchedSink final : public FileSink {
 public:
  using FileSink::FileSink;
  ~WatchedSink() override;

 protected:
  void announce(const std::string& temporary) override;
  void forget(const std::string& temporary) override;
};

}  // namespace ibis::cli
