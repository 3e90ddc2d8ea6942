#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/diagnostics/error_handler.h"
#include "ibis/file.h"
#include "output/stream/output_stream.h"

namespace ibis {

/// Whether a name leads to the file that was read, which is never an output.
bool isSource(const IBISFileData& file, const std::string& name);

/// What one output run reads from and writes to, over all its templates.
class OutputRun {
 public:
  /// Messages go to the handler, texts to the sink; the component may be null.
  OutputRun(const IBISFileData& file, const IBISComponent* component, std::string rootDirectory,
            IBISErrorHandler& errors, Sink& sink);

  /// Finishes the run.
  ~OutputRun();
  OutputRun(const OutputRun&) = delete;
  OutputRun& operator=(const OutputRun&) = delete;

  /// Makes a file the current output; on failure the open one stays.
  ///
  /// The IBIS file itself is never opened, whatever name leads to it.
  void openOutputFile(const std::string& name);

  /// Closes the current output file, if any, and reports one that could not be written.
  void closeOutputFile();

  /// Gives up the current output file, if any, and reports it as not written.
  void abandonOutputFile();

  /// Closes the current output file and moves each whole file to its name.
  void finish();

  /// Reports a fault of the template itself; expansion goes on.
  void reportError(const char* format, ...) IBIS_PRINTF_FORMAT(2, 3);

  /// Names of the files opened, each once, in the order of first opening.
  const std::vector<std::string>& generatedFiles() const { return generatedFiles_; }

  /// Names of the files written so far that hold a number that is not finite.
  const std::vector<std::string>& nonFiniteFiles() const { return nonFiniteFiles_; }

  const IBISFileData& file() const { return file_; }
  const IBISComponent* component() const { return component_; }
  const std::string& rootDirectory() const { return rootDirectory_; }
  IBISErrorHandler& errors() { return errors_; }

  /// The current output file, null while none is open.
  OutputStream* out() const { return out_.get(); }

 private:
  void reportUnwritten(const std::string& name);

  const IBISFileData& file_;
  const IBISComponent* component_;
  std::string rootDirectory_;
  IBISErrorHandler& errors_;
  Sink& sink_;
  std::unique_ptr<OutputStream> out_;
  std::vector<std::string> generatedFiles_;
  std::vector<std::string> wholeFiles_;  // closed, and not yet moved to their names
  std::vector<std::string> nonFiniteFiles_;
};

}  // namespace ibis
