#include "export_choice.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "export_source.h"
#include "messages.h"
#include "near_names.h"
#include "pin_requests.h"

namespace ibis::cli {
namespace {

bool wantsPin(const ExportRequest& request, const IBISPin* pin) {
  return pin != nullptr &&
         (request.pins.empty() ||
          std::ranges::find(request.pins, pin->name.view()) != request.pins.end());
}

bool isExportable(const IBISPinEntry& entry) {
  return entry.pin != nullptr && entry.model != nullptr && isDevice(*entry.model);
}

void addModel(ExportChoice& choice, const IBISModel* model) {
  if (std::ranges::find(choice.models, model) == choice.models.end()) {
    choice.models.push_back(model);
  }
}

void choosePins(ExportChoice& choice) {
  const ExportRequest& request = choice.request;
  for (const IBISPinEntry& entry : choice.component->pinEntries) {
    if (!wantsPin(request, entry.pin) && !wantsPin(request, entry.invertedPin)) continue;
    if (!isExportable(entry)) continue;
    choice.entries.push_back(&entry);
    addModel(choice, entry.model);
    if (entry.isPair() && isDevice(*entry.invertedModel)) addModel(choice, entry.invertedModel);
  }
}

const IBISComponent* findComponent(const IBISFileData& data, const std::string& name) {
  for (const auto& component : data.components) {
    if (name.empty() || component->name == name) return component.get();
  }
  return nullptr;
}

Diagnostic refuseComponent(const IBISFileData& data, const std::string& name) {
  if (name.empty()) return tell(Severity::error, message::noComponent);
  std::vector<std::string> names;
  for (const auto& component : data.components) names.push_back(component->name.str());
  Diagnostic error = tell(Severity::error, message::noSuchComponent, name.c_str());
  addNames(error, name, names);
  return error;
}

void chooseComponent(ExportChoice& choice, Export& result) {
  const std::string& name = choice.request.component;
  choice.component = findComponent(choice.data, name);
  if (choice.component == nullptr) {
    result.errors.push_back(refuseComponent(choice.data, name));
    return;
  }
  choice.word = spiceWord(choice.component->name);
  choice.componentWord = choice.names.take(choice.word);
  std::ranges::move(checkPins(choice.request.pins, {choice.component}),
                    std::back_inserter(result.errors));
  choosePins(choice);
}

void chooseModels(ExportChoice& choice, Export& result) {
  std::vector<std::string> unknown;
  choice.models = devicesNamed(choice.data, choice.request.models, unknown);
  for (const std::string& name : unknown) {
    result.errors.push_back(refuseModel(choice.data, name));
  }
  choice.word = spiceWord(std::filesystem::path(choice.request.source).stem().string());
}

// Names follow the order of the file, so that they are the same whatever is chosen.
void nameModels(ExportChoice& choice) {
  for (const IBISModel* model : devicesOf(choice.data)) {
    choice.modelWords[model] = choice.names.take(spiceWord(model->name));
  }
}

}  // namespace

void choose(ExportChoice& choice, Export& result) {
  nameModels(choice);
  if (choice.request.allModels || !choice.request.models.empty()) {
    chooseModels(choice, result);
  } else {
    chooseComponent(choice, result);
  }
}

}  // namespace ibis::cli
