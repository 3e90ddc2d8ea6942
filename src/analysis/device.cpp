#include "analysis/device.h"

#include <algorithm>
#include <cmath>

#include "analysis/iv_curve.h"
#include "model/model_types.h"

namespace ibis {
namespace {

using enum ModelType;

constexpr double hugeCurrent = 100.0;  // amperes
constexpr InputThresholds usualThresholds{0.8, 2.0};
constexpr InputThresholds eclThresholds{-1.475, -1.165};

const IBISTriple& firstGiven(const IBISTriple& reference, const IBISTriple& otherwise) {
  return reference.present ? reference : otherwise;
}

double finiteOrZero(double value) { return isUsableNumber(value) ? value : 0.0; }

Curve takeCurve(const IBISTable& table, int corner, Trend trend, Findings& findings) {
  IvCurve read = makeIvCurve(table, corner, trend);
  if (read.filledCells != 0) {
    findings.push_back({.kind = FindingKind::tableCellsFilled, .count = read.filledCells});
  }
  if (!read.isMonotonic) findings.push_back({.kind = FindingKind::tableNotMonotonic});
  if (read.holdsAnEnd) findings.push_back({.kind = FindingKind::tableEndHeld});
  return std::move(read.curve);
}

Curve takeClamp(const IBISTable& table, int corner, Trend trend, Findings& findings) {
  Curve curve = takeCurve(table, corner, trend, findings);
  double largest = 0.0;
  for (std::size_t i = 1; i + 1 < curve.size(); ++i) {
    largest = std::max(largest, std::fabs(curve.y[i]));
  }
  if (largest > hugeCurrent) {
    findings.push_back({.kind = FindingKind::clampCurrentHuge, .value = largest});
  }
  return curve;
}

void takeCurves(Device& device, const IBISModel& model, int corner, Findings& findings) {
  if (device.driver == DriverKind::pushPull || device.driver == DriverKind::openSource) {
    device.pullup = takeCurve(model.pullup, corner, Trend::falls, findings);
    if (device.pullup.empty()) findings.push_back({.kind = FindingKind::tableMissing});
  }
  if (device.driver == DriverKind::pushPull || device.driver == DriverKind::openDrain) {
    const Trend trend = device.isEcl ? Trend::falls : Trend::rises;
    device.pulldown = takeCurve(model.pulldown, corner, trend, findings);
    if (device.pulldown.empty()) findings.push_back({.kind = FindingKind::tableMissing});
  }
  device.powerClamp = takeClamp(model.powerClamp, corner, Trend::falls, findings);
  device.gndClamp = takeClamp(model.gndClamp, corner, Trend::rises, findings);
}

double capacitanceOf(const IBISTriple& triple, int corner, Findings& findings) {
  if (!triple.present) return 0.0;
  const double value = finiteOrZero(ownOrTyp(triple, corner));
  if (value >= 0.0) return value;
  findings.push_back({.kind = FindingKind::negativeCapacitance, .value = value});
  return 0.0;
}

PadCapacitances capacitancesOf(const IBISModel& model, bool isDriver, int corner,
                               Findings& findings) {
  PadCapacitances result;
  const bool isSplit = model.cCompPullup.present || model.cCompPulldown.present ||
                       model.cCompPowerClamp.present || model.cCompGndClamp.present;
  if (!isSplit) {
    (isDriver ? result.pd : result.gc) = capacitanceOf(model.cComp, corner, findings);
    return result;
  }
  result.pu = capacitanceOf(model.cCompPullup, corner, findings);
  result.pd = capacitanceOf(model.cCompPulldown, corner, findings);
  result.pc = capacitanceOf(model.cCompPowerClamp, corner, findings);
  result.gc = capacitanceOf(model.cCompGndClamp, corner, findings);
  return result;
}

double thresholdOf(const IBISTriple& hysteresis, const IBISTriple& plain, double otherwise,
                   int corner) {
  for (const IBISTriple* triple : {&hysteresis, &plain}) {
    if (triple->present && isUsableNumber(ownOrTyp(*triple, corner))) {
      return ownOrTyp(*triple, corner);
    }
  }
  return otherwise;
}

InputThresholds thresholdsOf(const IBISModel& model, int corner, Findings& findings) {
  InputThresholds result = isEclType(model.type) ? eclThresholds : usualThresholds;
  const bool hasHigh = model.vinh.present || model.vinhPlus.present;
  const bool hasLow = model.vinl.present || model.vinlMinus.present;
  if (!hasHigh || !hasLow) findings.push_back({.kind = FindingKind::thresholdsDefaulted});
  result.high = thresholdOf(model.vinhPlus, model.vinh, result.high, corner);
  result.low = thresholdOf(model.vinlMinus, model.vinl, result.low, corner);
  if (result.low < result.high) return result;
  const double mean = 0.5 * (result.low + result.high);
  findings.push_back({.kind = FindingKind::thresholdsSwapped, .value = mean});
  return {mean, mean};
}

double elementOf(const IBISTriple& triple, int corner) {
  if (!triple.present) return 0.0;
  const double value = ownOrTyp(triple, corner);
  return isUsableNumber(value) && value > 0.0 ? value : 0.0;
}

TerminatorElements terminatorOf(const IBISModel& model, int corner) {
  return {.rgnd = elementOf(model.rgnd, corner),
          .rpower = elementOf(model.rpower, corner),
          .rac = elementOf(model.rac, corner),
          .cac = elementOf(model.cac, corner)};
}

bool isOdd(const IBISOptional& value) {
  return value.present && !value.isNA && !isUsableNumber(value.value);
}

bool hasOddFixture(const IBISWaveform& wave) {
  const IBISOptional values[] = {wave.rFixture, wave.vFixture, wave.vFixtureMin, wave.vFixtureMax,
                                 wave.cFixture};
  return std::ranges::any_of(values, isOdd);
}

// What no table holds; of those the cells count that are left out.
bool hasOddValue(const IBISModel& model, int corner) {
  const IBISTriple* const values[] = {
      &model.cComp,
      &model.cCompPullup,
      &model.cCompPulldown,
      &model.cCompPowerClamp,
      &model.cCompGndClamp,
      &model.vinl,
      &model.vinh,
      &model.vinlMinus,
      &model.vinhPlus,
      &model.voltageRange,
      &model.pullupReference,
      &model.pulldownReference,
      &model.powerClampReference,
      &model.gndClampReference,
      &model.rgnd,
      &model.rpower,
      &model.rac,
      &model.cac,
  };
  return std::ranges::any_of(values,
                             [&](const IBISTriple* each) {
                               return each->present && !isUsableNumber(ownOrTyp(*each, corner));
                             }) ||
         std::ranges::any_of(model.risingWaveforms, hasOddFixture) ||
         std::ranges::any_of(model.fallingWaveforms, hasOddFixture);
}

bool lacksReference(const IBISModel& model) {
  if (model.voltageRange.present) return false;
  return (model.pullup.present && !model.pullupReference.present) ||
         (model.powerClamp.present && !model.powerClampReference.present);
}

}  // namespace

double ownOrTyp(const IBISTriple& triple, int corner) {
  return triple.missing.at(corner) ? triple.typ : triple.at(corner);
}

bool isEclType(ModelType type) {
  return type == inputEcl || type == outputEcl || type == inputOutputEcl || type == threeStateEcl;
}

DriverKind driverKind(ModelType type) {
  if (type == openDrain || type == inputOutputOpenDrain) return DriverKind::openDrain;
  if (type == openSource || type == inputOutputOpenSource) return DriverKind::openSource;
  return hasOutput(type) ? DriverKind::pushPull : DriverKind::none;
}

Rails railsOf(const IBISModel& model, int corner) {
  const IBISTriple ground;
  const auto voltage = [&](const IBISTriple& reference, const IBISTriple& otherwise) {
    return finiteOrZero(ownOrTyp(firstGiven(reference, otherwise), corner));
  };
  return {.pu = voltage(model.pullupReference, model.voltageRange),
          .pd = voltage(model.pulldownReference, ground),
          .pc = voltage(model.powerClampReference, model.voltageRange),
          .gc = voltage(model.gndClampReference, ground)};
}

Device makeDevice(const IBISModel& model, int corner, Findings& findings) {
  constexpr std::int32_t inverting = 1;
  constexpr std::int32_t activeLow = 1;
  Device device;
  device.type = model.type;
  device.driver = driverKind(model.type);
  device.isEcl = isEclType(model.type);
  device.hasInput = hasInput(model.type);
  device.hasEnable = hasEnable(model.type);
  device.isInverting = model.polarity == inverting;
  device.isEnableLow = model.enable == activeLow;
  device.rails = railsOf(model, corner);
  if (lacksReference(model)) findings.push_back({.kind = FindingKind::referenceMissing});
  if (hasOddValue(model, corner)) findings.push_back({.kind = FindingKind::valueNotFinite});
  takeCurves(device, model, corner, findings);
  const bool isDriver = device.driver != DriverKind::none;
  device.capacitances = capacitancesOf(model, isDriver, corner, findings);
  if (device.hasInput) device.thresholds = thresholdsOf(model, corner, findings);
  device.terminator = terminatorOf(model, corner);
  return device;
}

PadCurrentReader::PadCurrentReader(const Device& device)
    : device_(device),
      pullup_(device.pullup),
      pulldown_(device.pulldown),
      powerClamp_(device.powerClamp),
      gndClamp_(device.gndClamp) {}

PadCurrents PadCurrentReader::at(double pad) {
  const Rails& rails = device_.rails;
  const TerminatorElements& passive = device_.terminator;
  PadCurrents currents;
  currents.pullup = pullup_(rails.pu - pad);
  currents.pulldown = pulldown_(device_.isEcl ? rails.pu - pad : pad - rails.pd);
  currents.clamps = powerClamp_(rails.pc - pad) + gndClamp_(pad - rails.gc);
  if (passive.rgnd > 0.0) currents.clamps += (pad - rails.gc) / passive.rgnd;
  if (passive.rpower > 0.0) currents.clamps += (pad - rails.pc) / passive.rpower;
  return currents;
}

}  // namespace ibis
