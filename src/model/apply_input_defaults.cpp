#include "model/apply_input_defaults.h"

#include "host/diagnostics/messages.h"

namespace ibis {
namespace {

void writeDefault(IBISModel& model, double threshold) {
  model.vinl.typ = threshold;
  model.vinl.min = threshold;
  model.vinh.max = threshold;
}

void applyTtlDefaults(IBISModel& model, const char* name, IBISErrorHandler& errors) {
  if (!model.vinl.present) {
    errors.warning(message::vinlDefault, model.lineNumber, name);
    writeDefault(model, 0.8);
  }
  if (!model.vinh.present) {
    errors.warning(message::vinhDefault, model.lineNumber, name);
    writeDefault(model, 2.0);
  }
}

void applyEclDefaults(IBISModel& model, const char* name, IBISErrorHandler& errors) {
  if (!model.vinl.present) {
    errors.warning(message::vinlDefaultEcl, model.lineNumber, name);
    writeDefault(model, -1.475);
  }
  if (!model.vinh.present) {
    errors.warning(message::vinhDefaultEcl, model.lineNumber, name);
    writeDefault(model, -1.165);
  }
}

}  // namespace

void applyInputDefaults(IBISModel& model, IBISErrorHandler& errors) {
  const std::string name = model.name.str();
  switch (model.type) {
    case ModelType::input:
    case ModelType::inputOutput:
    case ModelType::inputOutputOpenSource:
    case ModelType::inputOutputOpenDrain:
    case ModelType::inputDiff:
    case ModelType::inputOutputDiff:
      applyTtlDefaults(model, name.c_str(), errors);
      break;
    case ModelType::inputEcl:
    case ModelType::inputOutputEcl:
      applyEclDefaults(model, name.c_str(), errors);
      break;
    default:
      break;
  }
  if (model.vinhMinus.present && model.vinhPlus.present && model.vinlMinus.present) {
    errors.warning(message::hysteresisNotSupported, model.lineNumber, name.c_str());
  }
}

}  // namespace ibis
