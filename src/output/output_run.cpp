#include "output/output_run.h"

#include <algorithm>
#include <cstdarg>
#include <filesystem>
#include <system_error>

#include "host/diagnostics/format_message.h"
#include "host/diagnostics/messages.h"

namespace ibis {

namespace {

// Whether the name leads to the file that is being converted.
bool isSource(const IBISFileData& file, const std::string& name) {
  std::error_code fault;
  return !file.filePath.empty() && std::filesystem::equivalent(name, file.filePath.view(), fault) &&
         !fault;
}

}  // namespace

OutputRun::OutputRun(const IBISFileData& file, const IBISComponent* component,
                     std::string rootDirectory, IBISErrorHandler& sink)
    : file_(file), component_(component), rootDirectory_(std::move(rootDirectory)), sink_(sink) {}

// Only an expansion that failed leaves a file open; there may be no memory left to report it.
OutputRun::~OutputRun() {
  try {
    closeOutputFile();
  } catch (...) {
    out_.reset();
  }
}

void OutputRun::openOutputFile(const std::string& name) {
  // Opening a file anew empties it, which must not leave the end of the old text to be written.
  if (out_) out_->flush();
  std::unique_ptr<OutputStream> opened = isSource(file_, name) ? nullptr : OutputStream::open(name);
  if (!opened) {
    sink_.error(message::cannotOpenOutput, name.c_str());
    return;
  }
  closeOutputFile();
  out_ = std::move(opened);
  if (std::ranges::find(generatedFiles_, name) == generatedFiles_.end()) {
    generatedFiles_.push_back(name);
  }
}

void OutputRun::abandonOutputFile() {
  if (!out_) return;
  const std::unique_ptr<OutputStream> abandoned = std::move(out_);
  abandoned->close();
  sink_.error(message::cannotWriteOutput, abandoned->name().c_str());
}

void OutputRun::closeOutputFile() {
  if (!out_) return;
  if (!out_->close()) sink_.error(message::cannotWriteOutput, out_->name().c_str());
  out_.reset();
}

void OutputRun::reportError(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const std::string text = formatMessageList(format, arguments);
  va_end(arguments);
  sink_.error(message::templateError, text.c_str());
}

}  // namespace ibis
