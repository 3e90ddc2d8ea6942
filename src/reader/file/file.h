#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "host/diagnostics/error_handler.h"
#include "ibis/file.h"

namespace ibis {

/// The root object of one load: it owns all records and takes the messages of all readers.
///
/// The scanned text must outlive it, since its records point into that text.
class IBISFile final : public IBISErrorHandler {
 public:
  IBISFile();
  ~IBISFile() override;
  IBISFile(const IBISFile&) = delete;
  IBISFile& operator=(const IBISFile&) = delete;

  void error(const char* format, ...) override IBIS_PRINTF_FORMAT(2, 3);
  void warning(const char* format, ...) override IBIS_PRINTF_FORMAT(2, 3);

  /// From now on errors count as warnings, for a caller that accepts an incomplete file.
  void tolerateErrors(bool tolerate = true) {
    errorSeverity_ = tolerate ? Severity::warning : Severity::error;
  }

  bool hasErrors() const;
  std::int32_t errorCount() const;
  std::int32_t warningCount() const;

  /// Writes the errors to standard output, for a caller without a host; nothing if there are none.
  void printErrors() const;

  /// Writes the warnings and an empty line to standard output; nothing if there are none.
  void printWarnings() const;

  /// Whether a component has exactly this name.
  bool hasComponent(std::string_view name) const;

  /// Sets `packageModel` to the name that the first component of a name has for its package model.
  ///
  /// True if that name is empty or a package model has it; false if there is no such component.
  bool packageModelFor(std::string_view component, std::string& packageModel) const;

  void addUserModelSelector(std::string_view text);
  void setUserSubcircuitName(std::string_view text);
  void setFilePath(std::string_view text);

  const IBISFileData& data() const { return *data_; }
  IBISFileData& data() { return *data_; }

 private:
  void addBuiltInModel(const char* name, ModelType type);

  std::unique_ptr<IBISFileData> data_;
  Severity errorSeverity_ = Severity::error;
};

}  // namespace ibis
