#include "export_series.h"

#include <algorithm>

#include "component/model_selector.h"
#include "export_package.h"
#include "finding_messages.h"
#include "messages.h"
#include "model/model_types.h"

namespace ibis::cli {
namespace {

const IBISPin* findPin(const IBISComponent& component, IBISString name) {
  const auto found = std::ranges::find(component.pins, name, &IBISPin::name);
  return found == component.pins.end() ? nullptr : &*found;
}

bool isWanted(const ExportRequest& request, IBISString pin) {
  return request.pins.empty() || std::ranges::find(request.pins, pin.view()) != request.pins.end();
}

// The first line of the groups is the state to begin with: it names those that are on, or off.
bool isSwitchOn(const IBISComponent& component, IBISString group) {
  if (component.seriesSwitchGroups.empty()) return true;
  const IBISSeriesSwitchGroup& first = component.seriesSwitchGroups.front();
  const bool isNamed = std::ranges::find(first.pins, group) != first.pins.end();
  return isNamed == (first.state == IBISSeriesSwitchGroup::on);
}

bool isOnPad(const ExportChoice& choice, const IBISPin* pin) {
  const auto has = [&](const IBISPinEntry* entry) {
    return entry->pin == pin || (entry->invertedPin == pin && entry->isPair() &&
                                 choice.modelWords.contains(entry->invertedModel));
  };
  return std::ranges::any_of(choice.entries, has) ||
         std::ranges::find(choice.barePins, pin) != choice.barePins.end();
}

void addBarePin(ExportChoice& choice, const IBISPin* pin) {
  if (!isOnPad(choice, pin)) choice.barePins.push_back(pin);
}

void chooseRow(ExportChoice& choice, const IBISSeriesPinMapping& row, Export& result) {
  const IBISComponent& component = *choice.component;
  const IBISPin* pins[] = {findPin(component, row.pin), findPin(component, row.pin_2)};
  const IBISModel* model = findModel(choice.data, row.model_name);
  const bool isSeries = model != nullptr && isSeriesType(model->type);
  if (pins[0] == nullptr || pins[1] == nullptr || !isSeries) {
    result.warnings.push_back(tell(Severity::warning, message::seriesRowUnusable,
                                   component.name.str().c_str(), row.model_name.str().c_str(),
                                   row.pin.str().c_str(), row.pin_2.str().c_str()));
    return;
  }
  for (const IBISPin* pin : pins) addBarePin(choice, pin);
  const bool isSwitch = model->type == ModelType::seriesSwitch;
  choice.series.push_back(
      {{model, isSwitch && isSwitchOn(component, row.function_table_group)}, pins[0], pins[1]});
}

// Names follow the order of the file, as those of the other models do.
void nameSeries(ExportChoice& choice) {
  for (const auto& model : choice.data.models) {
    if (!isSeriesType(model->type)) continue;
    const std::string word = spiceWord(model->name);
    const bool isSwitch = model->type == ModelType::seriesSwitch;
    choice.seriesWords[{model.get(), false}] = choice.names.take(isSwitch ? word + "_off" : word);
    if (isSwitch) choice.seriesWords[{model.get(), true}] = choice.names.take(word + "_on");
  }
}

SeriesNetlist makeSeries(const ExportChoice& choice, const SeriesState& state,
                         const SubcircuitFile& file, Export& result) {
  const IBISModel& model = *state.model;
  Findings findings;
  SeriesNetlist netlist;
  netlist.name = choice.seriesWords.at(state) + '_' + file.word;
  netlist.elements = makeSeriesElements(model, state.isOn, file.corner, findings);
  netlist.notes.push_back("series model " + model.name.str() + ", " + typeText(model.type) +
                          ", corner " + file.word + ", from pad a to pad b");
  for (const Finding& finding : findings) {
    Diagnostic told = tellFinding(model, file.corner, finding);
    netlist.notes.push_back("warning: " + told.text);
    result.warnings.push_back(std::move(told));
  }
  return netlist;
}

}  // namespace

void chooseSeries(ExportChoice& choice, Export& result) {
  nameSeries(choice);
  for (const IBISSeriesPinMapping& row : choice.component->seriesPinMappings) {
    if (isWanted(choice.request, row.pin) && isWanted(choice.request, row.pin_2)) {
      chooseRow(choice, row, result);
    }
  }
}

void addSeries(const ExportChoice& choice, SubcircuitFile& file, Export& result) {
  std::map<SeriesState, std::string> written;  // empty for a model that nothing is left of
  for (const SeriesRow& row : choice.series) {
    const auto [place, isNew] = written.try_emplace(row.state);
    if (isNew) {
      SeriesNetlist netlist = makeSeries(choice, row.state, file, result);
      if (netlist.elements.isEmpty()) continue;
      place->second = netlist.name;
      file.series.push_back(std::move(netlist));
    }
    if (place->second.empty()) continue;
    file.component->series.push_back(
        {place->second, file.padOf.at(row.first), file.padOf.at(row.second)});
  }
}

void forgetSeriesRefusals(std::vector<Diagnostic>& warnings) {
  namespace load = ibis::message;
  std::erase_if(warnings, [](const Diagnostic& each) {
    const MessageRow* row = findMessageById(each.id);
    if (row == findMessage(load::modelTypeNotSupported)) {
      return each.text.find("'Series") != std::string::npos;
    }
    return row == findMessage(load::seriesPinMappingNotSupported) ||
           row == findMessage(load::seriesSwitchGroupsNotSupported);
  });
}

}  // namespace ibis::cli
