#pragma once

#include <memory>
#include <string>
#include <vector>

#include "output/stream/output_stream.h"
#include "reader/file/file.h"

namespace ibis {

/// What one output run reads from and writes to; it lasts over several templates.
class OutputRun {
 public:
  /// Messages go to the sink; the component may be null.
  OutputRun(const IBISFileData& file, const IBISComponent* component, std::string rootDirectory,
            IBISErrorHandler& sink);
  ~OutputRun();
  OutputRun(const OutputRun&) = delete;
  OutputRun& operator=(const OutputRun&) = delete;

  /// Makes a file the current output; on failure the one that was open stays.
  ///
  /// The IBIS file itself is never opened, by whatever name.
  void openOutputFile(const std::string& name);

  /// Closes the current output file, if any, and reports one that could not be written.
  void closeOutputFile();

  /// Closes the current output file, if any, and reports it as not written: its text is cut.
  void abandonOutputFile();

  /// Reports a fault of the template itself; expansion goes on.
  void reportError(const char* format, ...) IBIS_PRINTF_FORMAT(2, 3);

  /// Names of the files opened, each once, in the order of first opening.
  const std::vector<std::string>& generatedFiles() const { return generatedFiles_; }

  const IBISFileData& file() const { return file_; }
  const IBISComponent* component() const { return component_; }
  const std::string& rootDirectory() const { return rootDirectory_; }

  /// The current output file, null while none is open.
  OutputStream* out() const { return out_.get(); }

 private:
  const IBISFileData& file_;
  const IBISComponent* component_;
  std::string rootDirectory_;
  IBISErrorHandler& sink_;
  std::unique_ptr<OutputStream> out_;
  std::vector<std::string> generatedFiles_;
};

}  // namespace ibis
