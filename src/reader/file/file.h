#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "host/diagnostics/error_handler.h"
#include "ibis/file.h"

namespace ibis {

/// The root object of one load: owner of all records and error handler of all readers.
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

  /// From now on errors count as warnings, for a caller that takes what there is.
  void tolerateErrors() { errorSeverity_ = Severity::warning; }

  bool hasErrors() const;
  std::int32_t errorCount() const;
  std::int32_t warningCount() const;

  /// Writes the errors to standard output, for a caller without a host; nothing if there are none.
  void printErrors() const;

  /// Writes the warnings and an empty line to standard output; nothing if there are none.
  void printWarnings() const;

  /// Whether a component has exactly this name.
  bool hasComponent(std::string_view name) const;

  /// Gives the package model's name of the first component of that name.
  ///
  /// True if it is empty or a package model has it; false too if there is no such component.
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
