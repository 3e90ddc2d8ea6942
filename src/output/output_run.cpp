#include "output/output_run.h"

#include <algorithm>
#include <cstdarg>
#include <filesystem>
#include <system_error>
#include <utility>

#include "host/diagnostics/format_message.h"
#include "host/diagnostics/messages.h"

namespace ibis {

bool isSource(const IBISFileData& file, const std::string& name) {
  std::error_code fault;
  return !file.filePath.empty() && std::filesystem::equivalent(name, file.filePath.view(), fault) &&
         !fault;
}

OutputRun::OutputRun(const IBISFileData& file, const IBISComponent* component,
                     std::string rootDirectory, IBISErrorHandler& errors, Sink& sink)
    : file_(file),
      component_(component),
      rootDirectory_(std::move(rootDirectory)),
      errors_(errors),
      sink_(sink) {}

// Only a failed expansion leaves an open file; there may be no memory left to report it.
OutputRun::~OutputRun() {
  try {
    finish();
  } catch (...) {
    out_.reset();
  }
}

void OutputRun::openOutputFile(const std::string& name) {
  // Opening the same file again may empty it, so the rest of the old text is written first.
  if (out_) out_->flush();
  std::unique_ptr<OutputStream> opened =
      isSource(file_, name) ? nullptr : OutputStream::open(sink_, name);
  if (!opened) {
    errors_.error(message::cannotOpenOutput, name.c_str());
    return;
  }
  closeOutputFile();
  out_ = std::move(opened);
  std::erase(wholeFiles_, name);
  if (std::ranges::find(generatedFiles_, name) == generatedFiles_.end()) {
    generatedFiles_.push_back(name);
  }
}

void OutputRun::reportUnwritten(const std::string& name) {
  errors_.error(message::cannotWriteOutput, name.c_str());
}

void OutputRun::abandonOutputFile() {
  if (!out_) return;
  const std::unique_ptr<OutputStream> abandoned = std::move(out_);
  reportUnwritten(abandoned->name());
}

void OutputRun::closeOutputFile() {
  if (!out_) return;
  const std::unique_ptr<OutputStream> closed = std::move(out_);
  if (closed->hasNonFinite()) nonFiniteFiles_.push_back(closed->name());
  if (closed->close()) {
    wholeFiles_.push_back(closed->name());
  } else {
    reportUnwritten(closed->name());
  }
}

void OutputRun::finish() {
  closeOutputFile();
  for (const std::string& name : std::exchange(wholeFiles_, {})) {
    if (!sink_.keep(name)) reportUnwritten(name);
  }
}

void OutputRun::reportError(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const ArgumentsEnd end(arguments);
  const Diagnostic fault = makeDiagnostic(Severity::error, format, arguments);
  errors_.error(message::templateError, messageText(fault).c_str());
}

}  // namespace ibis
