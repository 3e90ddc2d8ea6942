#include "model/resolve_references.h"

#include "host/diagnostics/messages.h"

namespace ibis {
namespace {

void takeRange(IBISTriple& reference, const IBISTriple& range) {
  if (!reference.present && range.present) reference = range;
}

// Ground is assumed, but does not count as given by the file.
void takeGround(IBISTriple& reference) {
  if (!reference.present) reference = {};
}

bool sameCorners(const IBISTriple& a, const IBISTriple& b) {
  return a.typ == b.typ && a.max == b.max && a.min == b.min;
}

bool isUnreferenced(const IBISTable& table, const IBISTriple& reference) {
  return table.present && !reference.present;
}

bool reportUnreferenced(const IBISModel& model, const char* name, IBISErrorHandler& errors) {
  bool isComplete = true;
  if (isUnreferenced(model.pulldown, model.pulldownReference)) {
    errors.error(message::pulldownReferenceMissing, model.lineNumber, name);
    isComplete = false;
  }
  if (isUnreferenced(model.pullup, model.pullupReference)) {
    errors.error(message::pullupReferenceMissing, model.lineNumber, name);
    isComplete = false;
  }
  if (isUnreferenced(model.gndClamp, model.gndClampReference)) {
    errors.error(message::gndClampReferenceMissing, model.lineNumber, name);
    isComplete = false;
  }
  if (isUnreferenced(model.powerClamp, model.powerClampReference)) {
    errors.error(message::powerClampReferenceMissing, model.lineNumber, name);
    isComplete = false;
  }
  return isComplete;
}

}  // namespace

bool resolveReferences(IBISModel& model, IBISErrorHandler& errors) {
  const std::string name = model.name.str();
  takeRange(model.pullupReference, model.voltageRange);
  takeGround(model.pulldownReference);
  takeRange(model.powerClampReference, model.voltageRange);
  takeGround(model.gndClampReference);
  const bool isComplete =
      model.voltageRange.present || reportUnreferenced(model, name.c_str(), errors);
  if (!isComplete) model.isSound = false;
  if (!sameCorners(model.pullupReference, model.powerClampReference)) {
    model.isSound = false;
    errors.error(message::pullupReferenceDiffers, model.lineNumber, name.c_str());
  }
  if (!sameCorners(model.pulldownReference, model.gndClampReference)) {
    model.isSound = false;
    errors.error(message::pulldownReferenceDiffers, model.lineNumber, name.c_str());
  }
  return isComplete;
}

}  // namespace ibis
