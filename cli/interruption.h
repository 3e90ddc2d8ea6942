#pragma once

#include <string>
#include <vector>

namespace ibis::cli {

/// Lets the signals that end the program first say which files they cut.
///
/// Called once, ahead of the first thread, since every thread inherits which signals it leaves.
void watchForInterruption();

/// Files that an end of the program would cut, for as long as this lives. Any thread.
class FilesAtRisk {
 public:
  explicit FilesAtRisk(std::vector<std::string> names);
  ~FilesAtRisk();
  FilesAtRisk(const FilesAtRisk&) = delete;
  FilesAtRisk& operator=(const FilesAtRisk&) = delete;

 private:
  std::vector<std::string> names_;
};

}  // namespace ibis::cli
