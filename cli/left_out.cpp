#include "left_out.h"

#include "messages.h"
#include "near_names.h"
#include "reader/text/name_index.h"

namespace ibis::cli {

void removeUnsoundModels(IBISComponent& component) {
  const auto isUnsound = [](const IBISModel* model) { return model != nullptr && !model->isSound; };
  std::erase_if(component.pinEntries, [&](const IBISPinEntry& entry) {
    return isUnsound(entry.model) || isUnsound(entry.invertedModel);
  });
  std::erase_if(component.models, isUnsound);
}

std::vector<LeftOut> pinsLeftOut(const IBISComponent& component,
                                 const std::vector<std::string>& wanted) {
  NameIndex<ExactCase> written;
  for (const IBISPinEntry& entry : component.pinEntries) {
    written.findOrAdd(entry.pin->name);
    if (entry.isPair()) written.findOrAdd(entry.invertedPin->name);
  }
  NameIndex<ExactCase> names;
  for (const std::string& name : wanted) names.findOrAdd(IBISString(std::string_view(name)));
  NameMap<ExactCase, std::size_t> places;
  std::vector<LeftOut> leftOut;
  for (const IBISPin& pin : component.pins) {
    const bool isWanted = wanted.empty() || names.contains(pin.name);
    if (!isWanted || written.contains(pin.name)) continue;
    const std::string_view model = pin.model != nullptr ? pin.model->name : pin.model_name;
    if (places.add(model, leftOut.size())) {
      leftOut.push_back({.component = component.name.str(),
                         .model = std::string(model),
                         .line = pin.model != nullptr ? pin.model->lineNumber : 0,
                         .pins = {}});
    }
    leftOut[*places.find(model)].pins.push_back(pin.name.str());
  }
  return leftOut;
}

std::vector<Diagnostic> tellLeftOut(const std::vector<LeftOut>& leftOut) {
  std::vector<Diagnostic> warnings;
  for (const LeftOut& each : leftOut) {
    const std::string pins = namesText(each.pins);
    warnings.push_back(tell(Severity::warning, message::pinsLeftOut, each.line,
                            each.component.c_str(), each.model.c_str(), pins.c_str()));
  }
  return warnings;
}

}  // namespace ibis::cli
