#include "model/check_models.h"

#include "host/diagnostics/messages.h"
#include "model/apply_input_defaults.h"
#include "model/estimate_waveforms.h"
#include "model/model_types.h"
#include "model/resolve_references.h"
#include "model/sort_waveforms.h"

namespace ibis {
namespace {

constexpr std::int32_t invalidWord = 2;

// Whether the model has no fault.
bool checkModel(const IBISModel& model, IBISErrorHandler& errors) {
  const std::int32_t line = model.lineNumber;
  const std::string name = model.name.str();
  bool isSound = true;
  if (model.type == ModelType::unknown) {
    errors.error(message::modelTypeUnknown, line, name.c_str());
    isSound = false;
  }
  if (model.polarity == invalidWord) {
    errors.error(message::polarityInvalid, line, name.c_str(), "Non-Inverting", "Inverting");
    isSound = false;
  }
  if (hasEnable(model.type) && model.enable == invalidWord) {
    errors.error(message::enableInvalid, line, name.c_str(), "Active-High", "Active-Low");
    isSound = false;
  }
  if (needsPulldown(model.type) && !model.pulldown.present) {
    errors.error(message::pulldownMissing, line, name.c_str());
    isSound = false;
  }
  if (needsPullup(model.type) && !model.pullup.present) {
    errors.error(message::pullupMissing, line, name.c_str());
    isSound = false;
  }
  return isSound;
}

}  // namespace

void checkModels(std::span<IBISModel* const> models, IBISErrorHandler& errors) {
  for (IBISModel* model : models) {
    if (!checkModel(*model, errors)) {
      model->isSound = false;
      continue;
    }
    if (isBuiltIn(model->type)) continue;
    resolveReferences(*model, errors);
    applyInputDefaults(*model, errors);
    estimateWaveforms(*model, errors);
    sortWaveforms(*model);
  }
}

}  // namespace ibis
