#include "checks/driver.h"

namespace ibis::checks {

Driver::Driver(const View& text, const ModelView& each, const ModelCurves& curves)
    : view(text), model(each), name(each.name), supply(each.supply()) {
  for (const bool isHigh : {false, true}) {
    for (std::size_t c = 0; c < corners; ++c) {
      currents[isHigh ? 1 : 0][c] = PadCurrent::of(model, curves, isHigh, c);
    }
  }
}

double Driver::loadEnd(std::size_t edge, std::size_t c) const {
  const bool isLow = model.isOpenSource() || (!model.isOpenDrain() && edge == 0);
  return isLow ? model.pulldownReference(c) : model.pullupReference(c);
}

void Driver::weigh(Finding& finding, bool isNote) const {
  if (isNote || model.drivesSubmodel) finding.diagnostic.severity = Severity::note;
}

bool isRampSound(const Driver& driver, const Findings& findings) {
  return driver.model.ramp != Spot::nowhere && !findings.hasWrongNumber(driver.model.ramp) &&
         driver.load() > 0.0;
}

double fixtureVoltage(const Waveform& waveform, std::size_t c) {
  const Single& own = c == min ? waveform.vFixtureMin : waveform.vFixtureMax;
  return c != typ && own.given ? own.value : waveform.vFixture.value;
}
}  // namespace ibis::checks
