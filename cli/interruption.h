#pragma once

#include "output/stream/file_sink.h"

namespace ibis::cli {

/// Makes the signals that end the program first remove the files that are not whole.
///
/// Called before the first thread starts, since every thread inherits the blocked signals.
void watchForInterruption();

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
