#include "export_choice.h"

#include <algorithm>
#include <filesystem>

#include "export_source.h"
#include "messages.h"

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

void checkPins(const ExportChoice& choice, Export& result) {
  for (const std::string& name : choice.request.pins) {
    const auto isNamed = [&](const IBISPin& pin) { return pin.name == name; };
    if (std::ranges::any_of(choice.component->pins, isNamed)) continue;
    result.errors.push_back(tell(Severity::error, message::noSuchPin,
                                 choice.component->name.str().c_str(), name.c_str()));
  }
}

const IBISComponent* findComponent(const IBISFileData& data, const std::string& name) {
  for (const auto& component : data.components) {
    if (name.empty() || component->name == name) return component.get();
  }
  return nullptr;
}

void chooseComponent(ExportChoice& choice, Export& result) {
  const std::string& name = choice.request.component;
  choice.component = findComponent(choice.data, name);
  if (choice.component == nullptr) {
    result.errors.push_back(name.empty()
                                ? tell(Severity::error, message::noComponent)
                                : tell(Severity::error, message::noSuchComponent, name.c_str()));
    return;
  }
  choice.word = spiceWord(choice.component->name);
  choice.componentWord = choice.names.take(choice.word);
  checkPins(choice, result);
  choosePins(choice);
}

void chooseModels(ExportChoice& choice, Export& result) {
  std::vector<std::string> unknown;
  choice.models = devicesNamed(choice.data, choice.request.models, unknown);
  for (const std::string& name : unknown) {
    result.errors.push_back(tell(Severity::error, message::noSuchModel, name.c_str()));
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
