#include "reader/file/file.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include "component/names/name_table.h"
#include "host/diagnostics/format_message.h"

namespace ibis {
namespace {

void printTexts(const std::vector<Diagnostic>& list) {
  for (const Diagnostic& diagnostic : list) std::printf("%s\n", messageText(diagnostic).c_str());
}

}  // namespace

IBISFile::IBISFile() : data_(std::make_unique<IBISFileData>()) {
  data_->nameTable = std::make_shared<IBISNameTable>();
  addBuiltInModel("GND", ModelType::gnd);
  addBuiltInModel("POWER", ModelType::power);
  addBuiltInModel("NC", ModelType::nc);
}

IBISFile::~IBISFile() = default;

void IBISFile::addBuiltInModel(const char* name, ModelType type) {
  auto model = std::make_unique<IBISModel>();
  model->name = name;
  model->type = type;
  data_->nameTable->registerName(name);
  model->spiceName = data_->nameTable->spiceName(name);
  data_->models.push_back(std::move(model));
}

void IBISFile::error(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const ArgumentsEnd end(arguments);
  auto& list = errorSeverity_ == Severity::error ? data_->errors : data_->warnings;
  list.push_back(makeDiagnostic(errorSeverity_, format, arguments));
}

void IBISFile::warning(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const ArgumentsEnd end(arguments);
  data_->warnings.push_back(makeDiagnostic(Severity::warning, format, arguments));
}

bool IBISFile::hasErrors() const { return !data_->errors.empty(); }

std::int32_t IBISFile::errorCount() const {
  return static_cast<std::int32_t>(data_->errors.size());
}

std::int32_t IBISFile::warningCount() const {
  return static_cast<std::int32_t>(data_->warnings.size());
}

void IBISFile::printErrors() const {
  if (data_->errors.empty()) return;
  std::fputs("Errors found:\n\n", stdout);
  printTexts(data_->errors);
}

void IBISFile::printWarnings() const {
  if (data_->warnings.empty()) return;
  std::fputs("Warnings found:\n\n", stdout);
  printTexts(data_->warnings);
  std::fputs("\n", stdout);
}

bool IBISFile::hasComponent(std::string_view name) const {
  return std::ranges::any_of(data_->components,
                             [&](const auto& component) { return component->name == name; });
}

const IBISPackageModel* findPackageModel(const IBISFileData& data, std::string_view name) {
  for (const auto& model : data.packageModels) {
    if (model->name == name) return model.get();
  }
  return nullptr;
}

bool IBISFile::packageModelFor(std::string_view component, std::string& packageModel) const {
  for (const auto& candidate : data_->components) {
    if (candidate->name != component) continue;
    packageModel = candidate->packageModelName.str();
    return packageModel.empty() || findPackageModel(*data_, packageModel) != nullptr;
  }
  return false;
}

void IBISFile::addUserModelSelector(std::string_view text) {
  data_->modelSelections.emplace_back(data_->strings.store(text));
}

void IBISFile::setUserSubcircuitName(std::string_view text) {
  data_->userSubcircuitName = data_->strings.store(text);
}

void IBISFile::setFilePath(std::string_view text) { data_->filePath = data_->strings.store(text); }

}  // namespace ibis
