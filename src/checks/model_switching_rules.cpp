// The rules about [Ramp], the test load, thresholds and [Model Spec].

#include <algorithm>
#include <cmath>

#include "checks/model_rules.h"

namespace ibis::checks {
namespace {

constexpr std::string_view edgeWords[] = {"dV/dt_r", "dV/dt_f"};

class SwitchingChecker {
 public:
  SwitchingChecker(const View& view, const ModelView& model, Findings& findings)
      : view_(view), findings_(findings), model_(&model), name_(model.name) {}

  void check() {
    checkRamp();
    checkTestLoad();
    checkThresholds();
    checkSpec();
  }

 private:
  // [Ramp]

  void checkRamp() {
    if (model_->ramp == Spot::nowhere) return;
    const Spot head = view_.spotOf(view_.block(model_->ramp));
    const bool isWrong = findings_.hasWrongNumber(model_->ramp) ||
                         findings_.wasTold(Rule::modelRampForm, model_->section) ||
                         findings_.wasTold(Rule::modelUnknownParameter, model_->section);
    for (std::size_t e = 0; e < 2; ++e) {
      const std::string word(edgeWords[e]);
      if (!model_->edges[e].given) {
        if (!isWrong) findings_.add(Rule::modelRampIncomplete, head, {name_, word});
      } else {
        checkEdge(word, model_->edges[e], isWrong);
      }
    }
    const double load = model_->rLoad.value;
    if (model_->rLoad.given && !isWrong && (load < 10.0 || load > 1e6)) {
      findings_.add(Rule::modelRloadImplausible, model_->rLoad.spot,
                    {name_, quantity(load, "ohm")});
    }
  }

  void checkEdge(const std::string& word, const RampEdge& edge, bool isWrong) {
    for (std::size_t c = 0; c < corners; ++c) {
      if (std::isnan(edge.dv[c]) || isWrong) continue;
      if (edge.dv[c] <= 0.0 || edge.dt[c] <= 0.0) {
        findings_.addOnce(Rule::modelRampZero, edge.spots[c],
                          {word, name_, std::string(edge.words[c])});
        continue;
      }
      const double slew = edge.dv[c] / edge.dt[c];
      if (slew >= 1e5 && slew <= 5e11) continue;
      findings_.addOnce(Rule::modelRampImplausible, edge.spots[c],
                        {word, name_, std::string(cornerNames[c]), std::string(edge.words[c]),
                         shortNumber(slew)});
    }
  }

  void checkTestLoad() {
    const Single& vmeas = model_->single("Vmeas");
    const Single& rref = model_->single("Rref");
    if (rref.value > 0.0 && rref.value < 1.0) {
      findings_.add(Rule::modelRrefImplausible, rref.spot, {name_, quantity(rref.value, "ohm")});
    }
    if (!model_->isDriver() || !model_->isElectrical()) return;
    if (!vmeas.given && !model_->specTriple("Vmeas").given) {
      findings_.add(Rule::modelVmeasMissing, model_->spot, {name_});
    }
    const double low = std::min(model_->pulldownReference(typ), model_->pullupReference(typ));
    const double high = std::max(model_->pulldownReference(typ), model_->pullupReference(typ));
    const double vref = model_->single("Vref").value;
    const bool hasOwnRail = model_->isOpenDrain() && vref > high;
    const bool isOutside = vmeas.value <= low || vmeas.value >= high;
    const bool isWrong = findings_.hasWrongNumber(vmeas.spot.block) ||
                         findings_.hasWrongNumber(model_->triple("Voltage Range").spot.block);
    if (isOutside && high > low && !hasOwnRail && !isWrong) {
      findings_.add(Rule::modelVmeasOutside, vmeas.spot,
                    {name_, quantity(vmeas.value, "V"), quantity(low, "V"), quantity(high, "V")});
    }
  }

  void checkThresholds() {
    const Single& low = model_->single("Vinl");
    const Single& high = model_->single("Vinh");
    if (low.value > high.value) {
      findings_.add(Rule::modelVinlAboveVinh, low.spot,
                    {name_, quantity(low.value, "V"), quantity(high.value, "V")});
    } else if (low.value == high.value) {
      findings_.add(Rule::modelVinlEqualsVinh, low.spot, {name_, quantity(low.value, "V")});
    }
    if (!model_->isInput() || model_->isEcl() || model_->isDiff()) return;
    checkMissing("Vinl", low, "0.8 V");
    checkMissing("Vinh", high, "2 V");
    if (model_->triple("Pullup Reference").given || findings_.hasWrongNumber(low.spot.block))
      return;
    if (findings_.hasWrongNumber(model_->triple("Voltage Range").spot.block)) return;
    const double rail = model_->pullupReference(typ);
    if (high.value > 1.05 * rail)
      tellOutside("Vinh", high, "above its " + quantity(rail, "V") + " supply");
    if (low.value < -0.05) tellOutside("Vinl", low, "below ground");
  }

  void tellOutside(const std::string& word, const Single& value, const std::string& where) {
    findings_.add(Rule::modelThresholdOutside, value.spot,
                  {word, name_, quantity(value.value, "V"), where});
  }

  void checkMissing(std::string_view word, const Single& value, const std::string& standIn) {
    const bool isGiven = value.given || model_->specTriple(word).given || model_->hasThresholds ||
                         model_->hasExternalModel;
    const bool isMistyped = findings_.wasTold(Rule::modelUnknownParameter, model_->section) ||
                            findings_.wasTold(Rule::numericMissingValue, model_->section);
    if (isGiven || isMistyped) return;
    findings_.add(Rule::modelThresholdMissing, model_->spot, {std::string(word), name_, standIn});
  }

  // [Model Spec]

  void checkSpec() {
    const auto at = [&](std::string_view word) { return model_->specTriple(word).at[typ]; };
    const auto tell = [&](std::string_view word, const std::string& text) {
      findings_.add(Rule::modelSpecOrder, model_->specTriple(word).spot, {name_, text});
    };
    if (at("Vinl") >= at("Vinh")) tell("Vinl", "Vinl is not below Vinh");
    if (at("Vinl-") > at("Vinl+")) tell("Vinl-", "Vinl- is above Vinl+");
    if (at("Vinh-") > at("Vinh+")) tell("Vinh-", "Vinh- is above Vinh+");
    if (at("S_overshoot_high") < at("Vinh"))
      tell("S_overshoot_high", "S_overshoot_high is below Vinh");
    if (at("S_overshoot_low") > at("Vinl"))
      tell("S_overshoot_low", "S_overshoot_low is above Vinl");
    const bool hasTime = model_->specTriple("D_overshoot_time").given ||
                         model_->specTriple("D_overshoot_area_h").given;
    for (const std::string_view side : {"high", "low"}) {
      const std::string dynamic = "D_overshoot_" + std::string(side);
      const std::string fixed = "S_overshoot_" + std::string(side);
      if (!model_->specTriple(dynamic).given) continue;
      if (!model_->specTriple(fixed).given) tell(dynamic, dynamic + " without " + fixed);
      if (!hasTime) tell(dynamic, dynamic + " without D_overshoot_time");
    }
  }

  const View& view_;
  Findings& findings_;
  const ModelView* model_;
  std::string name_;
};

}  // namespace

void checkModelSwitching(const View& view, const ModelView& model, Findings& findings) {
  SwitchingChecker(view, model, findings).check();
}

}  // namespace ibis::checks
