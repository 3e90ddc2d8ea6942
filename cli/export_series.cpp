#include "export_series.h"

#include <algorithm>
#include <unordered_set>

#include "component/model_selector.h"
#include "export_package.h"
#include "finding_messages.h"
#include "messages.h"
#include "model/model_types.h"

namespace ibis::cli {
namespace {

bool isWanted(const ExportRequest& request, IBISString pin) {
  return request.pins.empty() || std::ranges::find(request.pins, pin.view()) != request.pins.end();
}

// Chooses the rows of a component one by one, with what is looked up in the file indexed once.
class RowChooser {
 public:
  RowChooser(ExportChoice& choice, Export& result)
      : choice_(choice), result_(result), models_(choice.data) {
    for (const IBISPin& pin : choice.component->pins) pins_.add(pin.name.view(), &pin);
    for (const IBISPinEntry* entry : choice.entries) addPads(*entry);
    if (const IBISSeriesSwitchGroup* first = firstGroup()) {
      for (const IBISString group : first->pins) firstGroups_.findOrAdd(group.view());
    }
  }

  void choose(const IBISSeriesPinMapping& row) {
    const IBISPin* const pins[] = {findPin(row.pin), findPin(row.pin_2)};
    const IBISModel* model = models_.find(row.model_name.view());
    const bool isSeries = model != nullptr && isSeriesType(model->type);
    if (pins[0] == nullptr || pins[1] == nullptr || !isSeries) {
      result_.warnings.push_back(
          tell(Severity::warning, message::seriesRowUnusable, choice_.component->name.str().c_str(),
               row.model_name.str().c_str(), row.pin.str().c_str(), row.pin_2.str().c_str()));
      return;
    }
    for (const IBISPin* pin : pins) {
      if (onPad_.insert(pin).second) choice_.barePins.push_back(pin);
    }
    const bool isSwitch = model->type == ModelType::seriesSwitch;
    choice_.series.push_back(
        {{model, isSwitch && isSwitchOn(row.function_table_group)}, pins[0], pins[1]});
  }

 private:
  const IBISSeriesSwitchGroup* firstGroup() const {
    const auto& groups = choice_.component->seriesSwitchGroups;
    return groups.empty() ? nullptr : &groups.front();
  }

  void addPads(const IBISPinEntry& entry) {
    onPad_.insert(entry.pin);
    if (entry.isPair() && choice_.modelWords.contains(entry.invertedModel)) {
      onPad_.insert(entry.invertedPin);
    }
  }

  const IBISPin* findPin(IBISString name) const {
    const IBISPin* const* found = pins_.find(name.view());
    return found == nullptr ? nullptr : *found;
  }

  // The first line of the groups is the state to begin with: it names those that are on, or off.
  bool isSwitchOn(IBISString group) const {
    const IBISSeriesSwitchGroup* first = firstGroup();
    if (first == nullptr) return true;
    return firstGroups_.contains(group.view()) == (first->state == IBISSeriesSwitchGroup::on);
  }

  ExportChoice& choice_;
  Export& result_;
  const ModelFinder models_;
  NameMap<ExactCase, const IBISPin*> pins_;  // the first of each name
  std::unordered_set<const IBISPin*> onPad_;
  NameIndex<ExactCase> firstGroups_;
};

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
  RowChooser rows(choice, result);
  for (const IBISSeriesPinMapping& row : choice.component->seriesPinMappings) {
    if (isWanted(choice.request, row.pin) && isWanted(choice.request, row.pin_2)) {
      rows.choose(row);
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
