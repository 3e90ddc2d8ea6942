#pragma once

#include <cstdint>
#include <map>

#include "output/stream/sink.h"
#include "reader/text/open_file.h"

namespace ibis {

/// Writes each file under a temporary name in the same folder, and renames it when it is whole.
///
/// A name that leads to anything but a regular file (a link, a pipe, a device), or into a folder
/// that takes no further file, is written in place. A file that is replaced keeps its mode, and its
/// owner as far as the process may set it. A pipe that nobody reads cannot be opened.
class FileSink : public Sink {
 public:
  /// Opens files by this function.
  explicit FileSink(OpenFunction opener = openFile);
  ~FileSink() override;
  FileSink(const FileSink&) = delete;
  FileSink& operator=(const FileSink&) = delete;

  std::unique_ptr<SinkTarget> open(const std::string& name) override;
  bool keep(const std::string& name) override;

 protected:
  /// Removes all temporary files; a class that overrides announce() calls this in its destructor.
  void discardAll();

  /// Called before a temporary file is made, and after it is removed or renamed.
  virtual void announce(const std::string& /*temporary*/) {}
  virtual void forget(const std::string& /*temporary*/) {}

 private:
  std::unique_ptr<SinkTarget> openBeside(const std::string& name, bool& cannotBe);
  void discard(const std::string& temporary);
  void giveUp(const std::string& name);

  OpenFunction open_;
  std::uint64_t key_;                        // makes this sink's temporary names unique
  std::uint64_t count_ = 0;                  // of temporary names made
  std::map<std::string, std::string> made_;  // name to temporary name
};

}  // namespace ibis
