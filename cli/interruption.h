#pragma once

#include "output/stream/file_sink.h"

namespace ibis::cli {

/// Lets the signals that end the program first remove the files that are not whole.
///
/// Called once, before the first thread, since every thread inherits which signals it leaves.
void watchForInterruption();

/// Writes files of which an end of the program by a signal leaves no unfinished one. Any thread.
class WatchedSink final : public FileSink {
 public:
  using FileSink::FileSink;
  ~WatchedSink() override;

 protected:
  void announce(const std::string& temporary) override;
  void forget(const std::string& temporary) override;
};

}  // namespace ibis::cli
