// The rules that hold a model's data against each other, and its ramp against its waveforms.

#include <algorithm>
#include <cmath>

#include "checks/driver.h"
#include "checks/families.h"

namespace ibis::checks {
namespace {

// When a curve passes a level first, looking from its begin.
double crossingOf(const Curve& curve, double level, bool rises) {
  for (std::size_t i = 1; i < curve.x.size(); ++i) {
    const bool passes = rises ? curve.y[i] >= level : curve.y[i] <= level;
    if (!passes) continue;
    const double step = curve.y[i] - curve.y[i - 1];
    const double part = step == 0.0 ? 0.0 : (level - curve.y[i - 1]) / step;
    return curve.x[i - 1] + part * (curve.x[i] - curve.x[i - 1]);
  }
  return notGiven;
}

// The steepest edge beside the ramp.
struct Slew {
  double factor = 0.0;  // as a logarithm
  double dv = 0.0;
  double dt = 0.0;
  std::size_t edge = 0;
  std::size_t corner = typ;
  std::int32_t line = 0;
};

class SlewChecker {
 public:
  SlewChecker(const Driver& driver, Findings& findings) : driver_(driver), findings_(findings) {}

  void compareSlew(const Waveform& waveform, const CornerCurves& columns) {
    const bool isPlain = isRampSound(driver_, findings_) &&
                         waveform.rFixture.value == driver_.load() &&
                         !(waveform.lFixture.value > 0.0) && !(waveform.cDut.value > 0.0) &&
                         !(waveform.cFixture.value > 2e-12);
    if (!isPlain) return;
    for (std::size_t c = 0; c < corners; ++c) takeSlew(waveform, columns[c], c);
  }

  void checkRampAgainstWaveforms() {
    const Slew& worst = steepest_;
    if (!(std::abs(worst.factor) > std::log(1.25))) return;
    const RampEdge& edge = driver_.model.edges[worst.edge];
    const double slew = edge.dv[worst.corner] / edge.dt[worst.corner];
    Finding& told = findings_.add(
        Rule::consistencyRampWaveform, edge.spots[worst.corner],
        {std::string(edgeWords[worst.edge]), driver_.name, std::string(cornerNames[worst.corner]),
         std::string(edge.words[worst.corner]), shortNumber(slew * 1e-9),
         shortNumber(worst.dv / worst.dt * 1e-9), quantity(worst.dv, "V"),
         quantity(worst.dt, "s")});
    addNote(told, worst.line, "the waveform is here");
    driver_.weigh(told, std::abs(worst.factor) <= std::log(1.6));
  }

 private:
  void takeSlew(const Waveform& waveform, const Curve& curve, std::size_t c) {
    const std::size_t place = waveform.rises ? 0 : 1;
    const RampEdge& edge = driver_.model.edges[place];
    const double rail =
        std::abs(driver_.model.pullupReference(c) - driver_.model.pulldownReference(c));
    const double off = std::abs(fixtureVoltage(waveform, c) - driver_.loadEnd(place, c));
    if (curve.empty() || !(edge.dv[c] > 0.0) || !(edge.dt[c] > 0.0) || !(off <= 0.05 * rail))
      return;
    const double swing = curve.y.back() - curve.y.front();
    if (std::abs(swing) < 0.1) return;
    const double begin = crossingOf(curve, curve.y.front() + 0.2 * swing, swing > 0.0);
    const double end = crossingOf(curve, curve.y.front() + 0.8 * swing, swing > 0.0);
    const auto inside =
        std::ranges::count_if(curve.x, [&](double time) { return time >= begin && time <= end; });
    if (!(end > begin) || inside < 2) return;
    const double dv = 0.6 * std::abs(swing);
    const double factor = std::log(edge.dv[c] / edge.dt[c] / (dv / (end - begin)));
    if (std::abs(factor) <= std::abs(steepest_.factor)) return;
    steepest_ = {.factor = factor,
                 .dv = dv,
                 .dt = end - begin,
                 .edge = place,
                 .corner = c,
                 .line = driver_.view.spotOf(driver_.view.block(waveform.rows.block)).line};
  }

  const Driver& driver_;
  Findings& findings_;
  Slew steepest_;
};

}  // namespace

void checkConsistency(const View& view, const ModelView& model, const ModelCurves& curves,
                      Findings& findings) {
  if (!model.isElectrical() || !model.isDriver()) return;
  const Driver driver(view, model, curves);
  SlewChecker slews(driver, findings);
  for (std::size_t i = 0; i < model.waveforms.size(); ++i) {
    if (!model.waveforms[i].rows.isSound) continue;
    checkEnds(driver, model.waveforms[i], curves.waveforms[i], findings);
    slews.compareSlew(model.waveforms[i], curves.waveforms[i]);
  }
  checkRampAgainstTables(driver, findings);
  slews.checkRampAgainstWaveforms();
  checkTotals(driver, findings);
}

}  // namespace ibis::checks
