#include "export_source.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "host/diagnostics/messages.h"
#include "input_text.h"
#include "messages.h"
#include "model/model_types.h"
#include "near_names.h"
#include "source_fault.h"

namespace ibis::cli {
namespace {

struct CornerRow {
  const char* word;
  int index;
};

constexpr CornerRow corners[] = {{"typ", corner::typ}, {"min", corner::min}, {"max", corner::max}};

std::optional<Diagnostic> findRefusal(const Document& document, const std::string& path) {
  const std::vector<Diagnostic>& errors = document.file().errors;
  if (errors.empty()) return std::nullopt;
  const bool isUnread =
      findMessageById(errors.front().id) == findMessage(ibis::message::cannotOpenSource);
  return isUnread ? reasonUnread(path) : errors.front();
}

std::uintmax_t sizeOf(const std::string& file) {
  std::error_code fault;
  const std::uintmax_t size = std::filesystem::file_size(file, fault);
  return fault ? 0 : size;
}

}  // namespace

ExportSource readForExport(const std::string& source, const std::vector<std::string>& selections) {
  const ReadOptions options{.newerVersions = true, .keepGoing = true, .selections = selections};
  ExportSource result;
  InputText input = readInputText(source);
  result.refusal = std::move(input.fault);
  if (result.refusal) return result;
  result.document = input.text ? readText(*input.text, options) : read(source, options);
  result.size = input.text ? input.text->size() : sizeOf(source);
  result.refusal = findRefusal(*result.document, source);
  return result;
}

Diagnostic refuseModel(const IBISFileData& data, const std::string& name) {
  std::vector<std::string> names;
  for (const IBISModel* model : devicesOf(data)) names.push_back(model->name.str());
  Diagnostic error = tell(Severity::error, message::noSuchModel, name.c_str());
  addNames(error, name, names);
  return error;
}

bool isDevice(const IBISModel& model) {
  return hasOutput(model.type) || hasInput(model.type) || model.type == ModelType::terminator;
}

std::vector<const IBISModel*> devicesOf(const IBISFileData& data) {
  std::vector<const IBISModel*> devices;
  for (const auto& model : data.models) {
    if (isDevice(*model)) devices.push_back(model.get());
  }
  return devices;
}

std::vector<const IBISModel*> devicesNamed(const IBISFileData& data,
                                           const std::vector<std::string>& names,
                                           std::vector<std::string>& unknown) {
  std::vector<const IBISModel*> devices = devicesOf(data);
  if (names.empty()) return devices;
  for (const std::string& name : names) {
    const auto isNamed = [&](const IBISModel* model) { return model->name == name; };
    if (std::ranges::none_of(devices, isNamed)) unknown.push_back(name);
  }
  std::erase_if(devices, [&](const IBISModel* model) {
    return std::ranges::find(names, model->name.view()) == names.end();
  });
  return devices;
}

std::vector<std::string> cornerWords() {
  std::vector<std::string> words;
  for (const CornerRow& row : corners) words.emplace_back(row.word);
  return words;
}

int cornerIndex(const std::string& word) {
  for (const CornerRow& row : corners) {
    if (word == row.word) return row.index;
  }
  return corner::typ;
}

std::string cornerWord(int corner) {
  for (const CornerRow& row : corners) {
    if (corner == row.index) return row.word;
  }
  return corners[0].word;
}

}  // namespace ibis::cli
