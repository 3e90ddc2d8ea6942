#include "output/loop_factories.h"

#include "model/model_types.h"
#include "output/loop_objects.h"
#include "output/output_run.h"
#include "reader/text/name_index.h"

namespace ibis {
namespace {

using Halves = ForEachOfEntries::Halves;

void addEntries(LoopItems& items, const IBISComponent& component, std::optional<ModelType> type,
                Halves halves) {
  if (!ForEachOfEntries::exist(component, type)) return;
  items.append<ForEachOfEntries>(component, type, halves);
}

bool addPinsOfTypes(LoopItems& items, const OutputRun& run,
                    std::initializer_list<ModelType> types) {
  if (run.component() == nullptr) return true;
  for (const ModelType type : types) addEntries(items, *run.component(), type, Halves::asSingles);
  return true;
}

void addWaveforms(LoopItems& items, const IBISModel& model, const std::vector<IBISWaveform>& list,
                  std::int32_t transition) {
  for (std::size_t i = 0; i < list.size(); ++i) {
    items.append<ForEachWaveform>(model, static_cast<std::int32_t>(i), transition);
  }
}

}  // namespace

bool forAllModels(OutputRun& run, LoopItems& items) {
  for (const auto& model : run.file().models) items.append<ForEachModel>(*model);
  return true;
}

bool forEachModel(OutputRun& run, LoopItems& items) {
  if (run.component() == nullptr) return true;
  for (const IBISModel* model : run.component()->models) items.append<ForEachModel>(*model);
  return true;
}

bool forEachComponent(OutputRun& run, LoopItems& items) {
  for (const auto& component : run.file().components) items.append<ForEachComponent>(*component);
  return true;
}

bool forEachPin(OutputRun& run, LoopItems& items) {
  if (run.component() == nullptr || run.component()->pins.empty()) return true;
  items.append<ForEachOfPins>(*run.component());
  return true;
}

bool forEachSpicePin(OutputRun& run, LoopItems& items) {
  if (run.component() == nullptr) return true;
  addEntries(items, *run.component(), {}, Halves::asSingles);
  return true;
}

bool forEachFilePin(OutputRun& run, LoopItems& items) {
  for (const auto& component : run.file().components) {
    addEntries(items, *component, {}, Halves::asTheyStand);
  }
  return true;
}

bool forEachGnd(OutputRun& run, LoopItems& items) {
  return addPinsOfTypes(items, run, {ModelType::gnd});
}

bool forEachInput(OutputRun& run, LoopItems& items) {
  return addPinsOfTypes(items, run, {ModelType::input});
}

bool forEachInputOutput(OutputRun& run, LoopItems& items) {
  return addPinsOfTypes(items, run,
                        {ModelType::inputOutput, ModelType::inputOutputOpenDrain,
                         ModelType::inputOutputOpenSource, ModelType::inputOutputEcl});
}

bool forEachOutput(OutputRun& run, LoopItems& items) {
  return addPinsOfTypes(
      items, run,
      {ModelType::output, ModelType::openDrain, ModelType::openSource, ModelType::outputEcl});
}

bool forEachPower(OutputRun& run, LoopItems& items) {
  return addPinsOfTypes(items, run, {ModelType::power});
}

bool forEachTerminator(OutputRun& run, LoopItems& items) {
  return addPinsOfTypes(items, run, {ModelType::terminator});
}

bool forEachThreeState(OutputRun& run, LoopItems& items) {
  return addPinsOfTypes(items, run, {ModelType::threeState, ModelType::threeStateEcl});
}

bool forEachDiffPin(OutputRun& run, LoopItems& items) {
  if (run.component() == nullptr) return true;
  for (const IBISDiffPin& row : run.component()->diffPins) items.append<ForEachDiffPin>(row);
  return true;
}

bool forEachWaveform(OutputRun& run, LoopItems& items) {
  if (run.component() == nullptr) return true;
  for (const IBISModel* model : run.component()->models) {
    addWaveforms(items, *model, model->risingWaveforms, ForEachWaveform::rising);
    addWaveforms(items, *model, model->fallingWaveforms, ForEachWaveform::falling);
  }
  return true;
}

bool forEachModelSelector(OutputRun& run, LoopItems& items) {
  NameMap<ExactCase, ModelType> types;  // a repeated name keeps its first model
  for (const auto& model : run.file().models) types.add(model->name, model->type);
  for (const IBISModelSelector& selector : run.file().modelSelectors) {
    for (const IBISModelSelectorRow& row : selector.rows) {
      const ModelType* type = types.find(row.modelName);
      items.append<ForEachModelSelector>(row, selector.name,
                                         typeText(type != nullptr ? *type : ModelType::unknown));
    }
  }
  return true;
}

bool forEachUserModelSelector(OutputRun& run, LoopItems& items) {
  for (const IBISString name : run.file().modelSelections) {
    items.append<ForEachUserModelSelector>(name);
  }
  return true;
}

}  // namespace ibis
