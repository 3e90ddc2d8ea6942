// The rule consistency-waveform-iv: where waveforms begin and end, held against the tables.

#include <algorithm>
#include <cmath>

#include "checks/driver.h"

namespace ibis::checks {
namespace {

std::string percent(double part) {
  return shortNumber(part < 0.1 ? 100.0 * part : std::round(100.0 * part), part < 0.1 ? 2 : 6);
}

struct Ends {
  double difference = 0.0;  // of the worse end, in parts of the swing
  double swing = 0.0;
  double measured = 0.0;
  double settled = 0.0;
  double loadVoltage = 0.0;
  std::size_t corner = typ;
  bool isHigh = false;
};

class EndChecker {
 public:
  EndChecker(const Driver& driver, Findings& findings) : driver_(driver), findings_(findings) {}

  void check(const Waveform& waveform, const CornerCurves& columns) {
    const bool hasFixture = waveform.rFixture.value > 0.0 && waveform.vFixture.given;
    if (!hasFixture) return;
    Ends worst;
    for (std::size_t c = 0; c < corners; ++c) {
      const Curve& curve = columns[c];
      if (curve.empty() || !driver_.current(false, c) || !driver_.current(true, c)) continue;
      const Ends ends = endsOf(waveform, curve, c, fixtureVoltage(waveform, c));
      if (ends.difference > worst.difference) worst = ends;
    }
    if (!(worst.difference > 0.02)) return;
    const Block& block = driver_.view.block(waveform.rows.block);
    Finding& told = findings_.add(
        Rule::consistencyWaveformIv, driver_.view.spotOf(block),
        {std::string(block.keyword->name), driver_.name, std::string(cornerNames[worst.corner]),
         worst.isHigh ? "high" : "low", quantity(worst.measured, "V"),
         quantity(waveform.rFixture.value, "ohm"), quantity(worst.loadVoltage, "V"),
         quantity(worst.settled, "V"), percent(worst.difference), quantity(worst.swing, "V"),
         worst.difference > 0.1 ? "; they contradict" : ""});
    driver_.weigh(told, worst.difference <= 0.03);
    addHint(told, waveform, columns, worst);
  }

 private:
  // What the ends of one column differ by with a fixture's voltage; no difference without verdict.
  Ends endsOf(const Waveform& waveform, const Curve& curve, std::size_t c, double voltage) const {
    const double load = waveform.rFixture.value;
    const double inner =
        waveform.rDut.given && waveform.rDut.value > 0.0 ? waveform.rDut.value : 0.0;
    const double first = curve.y.front();
    const double last = curve.y.back();
    const double measured[] = {waveform.rises ? first : last, waveform.rises ? last : first};
    double settled[2];
    for (const bool isHigh : {false, true}) {
      const std::size_t state = isHigh ? 1 : 0;
      const double part = load / (load + inner);
      const double expected = voltage - (voltage - measured[state]) / part;
      const double die = driver_.current(isHigh, c)->settled(voltage, load + inner, expected);
      settled[state] = voltage - (voltage - die) * part;
    }
    Ends ends{.corner = c};
    ends.swing = std::max(std::abs(settled[1] - settled[0]), std::abs(measured[1] - measured[0]));
    if (ends.swing < 0.05 * driver_.supply) return ends;
    const double low = std::abs(measured[0] - settled[0]);
    const double high = std::abs(measured[1] - settled[1]);
    ends.isHigh = high > low;
    ends.difference = std::max(low, high) / ends.swing;
    ends.measured = measured[ends.isHigh ? 1 : 0];
    ends.settled = settled[ends.isHigh ? 1 : 0];
    ends.loadVoltage = voltage;
    return ends;
  }

  // The supply of the corner may have been meant for the fixture.
  void addHint(Finding& told, const Waveform& waveform, const CornerCurves& columns,
               const Ends& worst) const {
    const double typical = driver_.model.pullupReference(typ);
    const double supply = driver_.model.pullupReference(worst.corner);
    const bool isTied = std::abs(waveform.vFixture.value - typical) <= 1e-3 * std::abs(typical);
    const bool isOpen = !waveform.vFixtureMin.given && !waveform.vFixtureMax.given;
    if (!isTied || !isOpen || worst.corner == typ) return;

    const Ends ends = endsOf(waveform, columns[worst.corner], worst.corner, supply);
    if (ends.difference >= 0.02) return;
    addNote(told, 0,
            "it fits if V_fixture_" + std::string(cornerNames[worst.corner]) + " were " +
                quantity(supply, "V"));
  }

  const Driver& driver_;
  Findings& findings_;
};

}  // namespace

void checkEnds(const Driver& driver, const Waveform& waveform, const CornerCurves& columns,
               Findings& findings) {
  EndChecker(driver, findings).check(waveform, columns);
}

}  // namespace ibis::checks
