#include "finite_check.h"

#include <algorithm>
#include <cmath>

#include "model/model_types.h"
#include "model/waveform.h"

namespace ibis::cli {
namespace {

bool isFinite(const YVector<double>& values) {
  return std::ranges::all_of(values, [](double value) { return std::isfinite(value); });
}

bool isFinite(const IBISTable& table) {
  return isFinite(table.voltage) && isFinite(table.typ) && isFinite(table.max) &&
         isFinite(table.min);
}

bool isFinite(const IBISWaveform& waveform) {
  return isFinite(waveform.time) && isFinite(waveform.typ) && isFinite(waveform.max) &&
         isFinite(waveform.min);
}

bool hasDriverTables(const IBISModel& model) {
  return (model.pullup.present && needsPullup(model.type)) ||
         (model.pulldown.present && needsPulldown(model.type));
}

// A library holds all corners of the selected waveforms, and the typ corner of every one.
bool hasFiniteWaveforms(const IBISModel& model) {
  const auto typIsFinite = [](const IBISWaveform& waveform) {
    return isFinite(waveform.time) && isFinite(waveform.typ);
  };
  return std::ranges::all_of(selectWaveforms(model),
                             [](const IBISWaveform* waveform) { return isFinite(*waveform); }) &&
         std::ranges::all_of(model.risingWaveforms, typIsFinite) &&
         std::ranges::all_of(model.fallingWaveforms, typIsFinite);
}

}  // namespace

bool hasFiniteData(const IBISModel& model) {
  const bool driverIsFinite =
      !hasDriverTables(model) || (isFinite(model.pullup) && isFinite(model.pulldown));
  return driverIsFinite && isFinite(model.gndClamp) && isFinite(model.powerClamp) &&
         hasFiniteWaveforms(model);
}

}  // namespace ibis::cli
