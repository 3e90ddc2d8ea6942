#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "component/names/name_table.h"
#include "host/diagnostics/error_handler.h"
#include "ibis/component.h"
#include "ibis/ibis_string.h"
#include "ibis/model.h"
#include "ibis/package_model.h"

namespace ibis {

/// One choice of a model selector.
struct IBISModelSelectorRow {
  IBISString modelName;
  IBISString description;
};

/// One [Model Selector]: a name that pins use for one of several models.
struct IBISModelSelector {
  IBISString name;
  std::vector<IBISModelSelectorRow> rows;
};

/// All that one load holds; lists are in file order.
struct IBISFileData {
  std::int32_t version = 0;  ///< Id of the version table, 0 until [IBIS Ver] was read.
  IBISString fileName;
  IBISString fileRev;
  IBISString date;
  IBISString source;
  IBISString notes;
  IBISString disclaimer;
  IBISString copyright;
  std::vector<std::unique_ptr<IBISComponent>> components;
  std::vector<IBISModelSelector> modelSelectors;
  std::vector<std::unique_ptr<IBISModel>> models;  ///< The three built-in models come first.
  std::vector<std::unique_ptr<IBISPackageModel>> packageModels;
  IBISNameTable nameTable;                  ///< Names of components and models.
  std::vector<IBISString> modelSelections;  ///< The user's selector choices.
  IBISString userSubcircuitName;
  IBISString filePath;
  std::vector<std::string> errors;
  std::vector<std::string> warnings;
  StringPool strings;  ///< Texts made while reading.
};

/// The first package model of exactly this name, or null.
const IBISPackageModel* findPackageModel(const IBISFileData& data, std::string_view name);

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
};

}  // namespace ibis
