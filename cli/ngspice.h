#pragma once

#include <stdexcept>
#include <string>

#include "simulator/raw_file.h"

namespace ibis::cli {

/// The simulator cannot be started or a deck does not run; the text tells why.
class SimulatorFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A folder of its own for temporary files, gone with the object.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

/// Processor time of a run, at most, unless a user says otherwise. The runs of real models take
/// less than half a second.
inline constexpr unsigned usualRunSeconds = 60;

/// Raises SimulatorFault unless ngspice is on the PATH.
void requireNgspice();

/// Runs a deck in a folder and returns what it saved.
///
/// The program is run, not its library: a deck that kills the simulator kills no caller, and runs
/// go side by side. Its exit status does not tell whether a run was complete, so its log is looked
/// through for what stops one. A run that takes more processor time than `seconds` is ended.
RawPlot runNgspice(const TemporaryFolder& folder, const std::string& deck,
                   unsigned seconds = usualRunSeconds);

}  // namespace ibis::cli
