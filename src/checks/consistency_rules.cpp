// The rules that hold a model's data against each other.

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "checks/families.h"
#include "checks/load_line.h"

namespace ibis::checks {
namespace {

const double closeRamp = std::log(1.25);
constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr std::string_view edgeWords[] = {"dV/dt_r", "dV/dt_f"};

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

std::string percent(double part) {
  return shortNumber(part < 0.1 ? 100.0 * part : std::round(100.0 * part), part < 0.1 ? 2 : 6);
}

class ConsistencyChecker {
 public:
  ConsistencyChecker(const View& view, Findings& findings) : view_(view), findings_(findings) {}

  void check() {
    for (const ModelView& model : view_.models) {
      if (!model.isElectrical() || !model.isDriver()) continue;
      model_ = &model;
      name_ = std::string(model.name);
      const ModelCurves curves(model);
      for (std::size_t state = 0; state < 2; ++state) {
        for (std::size_t c = 0; c < corners; ++c) {
          currents_[state][c] = PadCurrent::of(model, curves, state == 1, c);
        }
      }
      steepest_ = {};
      for (const Waveform& waveform : model.waveforms) {
        if (!waveform.rows.isSound) continue;
        const CornerCurves columns = curvesOf(waveform.rows);
        checkEnds(waveform, columns);
        compareSlew(waveform, columns);
      }
      checkRampAgainstTables();
      checkRampAgainstWaveforms();
      for (const bool isHigh : {false, true}) checkTotal(isHigh);
      checkVmeas();
    }
  }

 private:
  void weigh(Finding& finding, bool isNote) const {
    if (isNote || model_->drivesSubmodel) finding.diagnostic.severity = Severity::note;
  }

  const std::optional<PadCurrent>& current(bool isHigh, std::size_t c) const {
    return currents_[isHigh ? 1 : 0][c];
  }

  // consistency-waveform-iv

  struct Ends {
    double difference = 0.0;  // of the worse end, in parts of the swing
    double swing = 0.0;
    double measured = 0.0;
    double settled = 0.0;
    double loadVoltage = 0.0;
    std::size_t corner = typ;
    bool isHigh = false;
  };

  static double fixtureVoltage(const Waveform& waveform, std::size_t c) {
    const Single& own = c == min ? waveform.vFixtureMin : waveform.vFixtureMax;
    return c != typ && own.given ? own.value : waveform.vFixture.value;
  }

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
      const double die = current(isHigh, c)->settled(voltage, load + inner, expected);
      settled[state] = voltage - (voltage - die) * part;
    }
    Ends ends{.corner = c};
    ends.swing = std::max(std::abs(settled[1] - settled[0]), std::abs(measured[1] - measured[0]));
    if (ends.swing < 0.05 * model_->supply()) return ends;
    const double low = std::abs(measured[0] - settled[0]);
    const double high = std::abs(measured[1] - settled[1]);
    ends.isHigh = high > low;
    ends.difference = std::max(low, high) / ends.swing;
    ends.measured = measured[ends.isHigh ? 1 : 0];
    ends.settled = settled[ends.isHigh ? 1 : 0];
    ends.loadVoltage = voltage;
    return ends;
  }

  void checkEnds(const Waveform& waveform, const CornerCurves& columns) {
    const bool hasFixture = waveform.rFixture.value > 0.0 && waveform.vFixture.given;
    if (!hasFixture) return;
    Ends worst;
    for (std::size_t c = 0; c < corners; ++c) {
      const Curve& curve = columns[c];
      if (curve.empty() || !current(false, c) || !current(true, c)) continue;
      const Ends ends = endsOf(waveform, curve, c, fixtureVoltage(waveform, c));
      if (ends.difference > worst.difference) worst = ends;
    }
    if (!(worst.difference > 0.02)) return;
    const Block& block = view_.block(waveform.rows.block);
    Finding& told = findings_.add(
        Rule::consistencyWaveformIv, view_.spotOf(block),
        {std::string(block.keyword->name), name_, std::string(cornerNames[worst.corner]),
         worst.isHigh ? "high" : "low", quantity(worst.measured, "V"),
         quantity(waveform.rFixture.value, "ohm"), quantity(worst.loadVoltage, "V"),
         quantity(worst.settled, "V"), percent(worst.difference), quantity(worst.swing, "V"),
         worst.difference > 0.1 ? "; they contradict" : ""});
    weigh(told, worst.difference <= 0.03);
    addHint(told, waveform, worst);
  }

  // The supply of the corner may have been meant for the fixture.
  void addHint(Finding& told, const Waveform& waveform, const Ends& worst) const {
    const double typical = model_->pullupReference(typ);
    const double supply = model_->pullupReference(worst.corner);
    const bool isTied = std::abs(waveform.vFixture.value - typical) <= 1e-3 * std::abs(typical);
    const bool isOpen = !waveform.vFixtureMin.given && !waveform.vFixtureMax.given;
    if (!isTied || !isOpen || worst.corner == typ) return;
    const Curve curve = curveOf(waveform.rows, worst.corner);
    const Ends ends = endsOf(waveform, curve, worst.corner, supply);
    if (ends.difference >= 0.02) return;
    addNote(told, 0,
            "it fits if V_fixture_" + std::string(cornerNames[worst.corner]) + " were " +
                quantity(supply, "V"));
  }

  // consistency-ramp-iv: makers take the ramp into various loads, so the best of them counts.

  double swingInto(double voltage, double load, std::size_t c) const {
    const double low = current(false, c)->settled(voltage, load, model_->pulldownReference(c));
    const double high = current(true, c)->settled(voltage, load, model_->pullupReference(c));
    return 0.6 * (high - low);
  }

  double loadEnd(std::size_t edge, std::size_t c) const {
    const bool isLow = model_->isOpenSource() || (!model_->isOpenDrain() && edge == 0);
    return isLow ? model_->pulldownReference(c) : model_->pullupReference(c);
  }

  double load() const { return model_->rLoad.given ? model_->rLoad.value : 50.0; }

  bool isRampSound() const {
    return model_->ramp != Spot::nowhere && !findings_.hasWrongNumber(model_->ramp) && load() > 0.0;
  }

  void checkRampAgainstTables() {
    if (!isRampSound() || model_->isInPair) return;
    double worst = 0.0;
    std::size_t worstEdge = 0;
    std::size_t worstCorner = typ;
    for (std::size_t c = 0; c < corners; ++c) {
      const std::array<double, 2> factors = rampFactors(c);
      for (std::size_t edge = 0; edge < 2; ++edge) {
        const double factor = factors[edge];
        if (!(factor > worst)) continue;
        worst = factor;
        worstEdge = edge;
        worstCorner = c;
      }
    }
    if (!(worst > closeRamp)) return;
    const RampEdge& edge = model_->edges[worstEdge];
    const double expected = swingInto(loadEnd(worstEdge, worstCorner), load(), worstCorner);
    Finding& told = findings_.add(
        Rule::consistencyRampIv, edge.spots[worstCorner],
        {std::string(edgeWords[worstEdge]), name_, std::string(cornerNames[worstCorner]),
         quantity(edge.dv[worstCorner], "V"), quantity(load(), "ohm"), quantity(expected, "V")});
    weigh(told, worst <= std::log(1.4));
  }

  // How far dV of both edges is from the best of the swings into the loads that makers use, as a
  // logarithm; the ends of the load are among these, and 0 stands for no verdict.
  std::array<double, 2> rampFactors(std::size_t c) const {
    std::array<double, 2> best = {0.0, 0.0};
    if (!current(false, c) || !current(true, c)) return best;
    const double low = model_->pulldownReference(c);
    const double high = model_->pullupReference(c);
    bool isFirst = true;
    for (const double voltage : {high, low, model_->single("Vref").value, (high + low) / 2}) {
      if (std::isnan(voltage)) continue;
      const double swing = std::abs(swingInto(voltage, load(), c));
      if (!(swing > 1e-3)) continue;
      for (std::size_t edge = 0; edge < 2; ++edge) {
        const double dv = model_->edges[edge].dv[c];
        const double factor = dv > 0.0 ? std::abs(std::log(dv / swing)) : 0.0;
        best[edge] = isFirst ? factor : std::min(best[edge], factor);
      }
      isFirst = false;
      if (std::max(best[0], best[1]) <= closeRamp) break;
    }
    return best;
  }

  // consistency-ramp-waveform

  struct Slew {
    double factor = 0.0;  // as a logarithm
    double dv = 0.0;
    double dt = 0.0;
    std::size_t edge = 0;
    std::size_t corner = typ;
    std::int32_t line = 0;
  };

  void compareSlew(const Waveform& waveform, const CornerCurves& columns) {
    const bool isPlain = isRampSound() && waveform.rFixture.value == load() &&
                         !(waveform.lFixture.value > 0.0) && !(waveform.cDut.value > 0.0) &&
                         !(waveform.cFixture.value > 2e-12);
    if (!isPlain) return;
    for (std::size_t c = 0; c < corners; ++c) takeSlew(steepest_, waveform, columns[c], c);
  }

  void checkRampAgainstWaveforms() {
    const Slew& worst = steepest_;
    if (!(std::abs(worst.factor) > std::log(1.25))) return;
    const RampEdge& edge = model_->edges[worst.edge];
    const double slew = edge.dv[worst.corner] / edge.dt[worst.corner];
    Finding& told = findings_.add(
        Rule::consistencyRampWaveform, edge.spots[worst.corner],
        {std::string(edgeWords[worst.edge]), name_, std::string(cornerNames[worst.corner]),
         std::string(edge.words[worst.corner]), shortNumber(slew * 1e-9),
         shortNumber(worst.dv / worst.dt * 1e-9), quantity(worst.dv, "V"),
         quantity(worst.dt, "s")});
    addNote(told, worst.line, "the waveform is here");
    weigh(told, std::abs(worst.factor) <= std::log(1.6));
  }

  void takeSlew(Slew& worst, const Waveform& waveform, const Curve& curve, std::size_t c) const {
    const std::size_t place = waveform.rises ? 0 : 1;
    const RampEdge& edge = model_->edges[place];
    const double rail = std::abs(model_->pullupReference(c) - model_->pulldownReference(c));
    const double off = std::abs(fixtureVoltage(waveform, c) - loadEnd(place, c));
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
    if (std::abs(factor) <= std::abs(worst.factor)) return;
    worst = {.factor = factor,
             .dv = dv,
             .dt = end - begin,
             .edge = place,
             .corner = c,
             .line = view_.spotOf(view_.block(waveform.rows.block)).line};
  }

  // consistency-combined-not-monotonic

  struct Drop {
    double size = 0.0;
    double from = 0.0;
    double to = 0.0;
    double drive = 0.0;
    std::size_t corner = typ;
  };

  Drop largestDrop(const PadCurrent& pad, double low, double high, std::size_t c) const {
    Drop drop{.corner = c};
    double top = -infinite;
    double topPlace = low;
    const auto take = [&](double place, double value) {
      if (value > top) {
        top = value;
        topPlace = place;
      } else if (top - value > drop.size) {
        drop = {.size = top - value, .from = topPlace, .to = place, .drive = 0.0, .corner = c};
      }
    };
    take(low, pad.at(low));
    for (std::size_t i = 0; i < pad.breaks().size(); ++i) {
      const double place = pad.breaks()[i];
      if (place > low && place < high) take(place, pad.currents()[i]);
    }
    take(high, pad.at(high));
    drop.drive = std::max({std::abs(pad.at(low)), std::abs(pad.at(high)), 0.1e-3});
    return drop;
  }

  // The table that a total is told of; in the state that an open driver leaves, that of a clamp.
  std::uint32_t firstTable(bool isHigh) const {
    const bool isOpen = isHigh ? model_->isOpenDrain() : model_->isOpenSource();
    const std::size_t pull = isOpen ? gndClamp : isHigh ? pullup : pulldown;
    for (const std::size_t table : {pull, gndClamp, powerClamp}) {
      if (model_->table[table].given()) return model_->table[table].block;
    }
    return Spot::nowhere;
  }

  void checkTotal(bool isHigh) {
    const std::uint32_t block = firstTable(isHigh);
    if (block == Spot::nowhere) return;
    Drop inside;
    Drop outside;
    for (std::size_t c = 0; c < corners; ++c) {
      if (!current(isHigh, c)) continue;
      const double low = std::min(model_->pulldownReference(c), model_->pullupReference(c));
      const double high = std::max(model_->pulldownReference(c), model_->pullupReference(c));
      if (!(high > low)) continue;
      const Drop in = largestDrop(*current(isHigh, c), low, high, c);
      if (in.size > std::max({0.02 * in.drive, 50e-6, inside.size})) inside = in;
      const double reach = high - low;
      const Drop out = largestDrop(*current(isHigh, c), low - reach, high + reach, c);
      if (out.size > std::max({0.05 * out.drive, 100e-6, outside.size})) outside = out;
    }
    const Spot spot = view_.spotOf(view_.block(block));
    const auto tell = [&](Rule rule, const Drop& drop) {
      weigh(findings_.add(rule, spot,
                          {name_, isHigh ? "high" : "low", std::string(cornerNames[drop.corner]),
                           quantity(drop.size, "A"), quantity(drop.from, "V"),
                           quantity(drop.to, "V"), quantity(drop.drive, "A")}),
            rule == Rule::consistencyCombinedOutside);
    };
    if (inside.size > 0.0) {
      tell(Rule::consistencyCombined, inside);
    } else if (outside.size > 0.0) {
      tell(Rule::consistencyCombinedOutside, outside);
    }
  }

  // consistency-vmeas-not-reached

  void checkVmeas() {
    const Single& vmeas = model_->single("Vmeas");
    const double reference = model_->single("Vref").value;
    const double load = model_->single("Rref").value;
    if (!vmeas.given || !(load > 0.0) || load >= 1e6 || std::isnan(reference)) return;
    if (!current(false, typ) || !current(true, typ)) return;
    const double low =
        current(false, typ)->settled(reference, load, model_->pulldownReference(typ));
    const double high = current(true, typ)->settled(reference, load, model_->pullupReference(typ));
    if (!(low >= vmeas.value) && !(high <= vmeas.value)) return;
    weigh(findings_.add(Rule::consistencyVmeas, vmeas.spot,
                        {name_, quantity(load, "ohm"), quantity(reference, "V"), quantity(low, "V"),
                         quantity(high, "V"), quantity(vmeas.value, "V")}),
          false);
  }

  const View& view_;
  Findings& findings_;
  const ModelView* model_ = nullptr;
  std::string name_;
  Slew steepest_;
  std::optional<PadCurrent> currents_[2][corners];
};

}  // namespace

void checkConsistency(const View& view, Findings& findings) {
  ConsistencyChecker(view, findings).check();
}

}  // namespace ibis::checks
