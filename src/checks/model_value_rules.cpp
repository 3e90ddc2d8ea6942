// The rules about a model's capacitances, its temperatures and its supplies.

#include <algorithm>
#include <cmath>

#include "checks/model_rules.h"
#include "checks/value_reader.h"

namespace ibis::checks {
namespace {

constexpr std::string_view references[] = {"Pullup Reference", "Pulldown Reference",
                                           "POWER Clamp Reference", "GND Clamp Reference"};

class ModelValueChecker {
 public:
  ModelValueChecker(const ModelView& model, Findings& findings)
      : findings_(findings), model_(&model), name_(model.name) {}

  void check() {
    checkCapacitance();
    checkTriples();
    checkSupply();
  }

 private:
  void checkCapacitance() {
    bool isGiven = model_->hasCCompCorner || model_->hasExternalModel;
    for (const std::string_view word : cComps) {
      const Triple& value = model_->triple(word);
      isGiven = isGiven || value.given;
      if (value.given && !findings_.hasWrongNumber(value.spot.block)) checkCComp(word, value);
    }
    const bool isKnown = model_->type != ModelType::unknown;
    const bool isMistyped = findings_.wasTold(Rule::modelUnknownParameter, model_->section) ||
                            findings_.wasTold(Rule::numericMissingValue, model_->section);
    if (!isGiven && isKnown && !model_->isSeries() && !isMistyped) {
      findings_.add(Rule::modelCCompMissing, model_->spot, {name_});
    }
    const bool hasParts =
        std::ranges::any_of(std::span(cComps).subspan(1),
                            [&](std::string_view word) { return model_->triple(word).given; });
    const Triple& whole = model_->triple("C_comp");
    const bool isBuffer = model_->isDriver() || model_->isInput();
    if (whole.given && whole.at[typ] == 0.0 && isBuffer && !hasParts) {
      findings_.add(Rule::modelCCompZero, whole.spot, {name_});
    }
    const Single& cref = model_->single("Cref");
    if (cref.value > 1e-6 && !findings_.hasWrongNumber(cref.spot.block)) {
      findings_.add(Rule::modelCrefImplausible, cref.spot, {name_, quantity(cref.value, "F")});
    }
  }

  void checkCComp(std::string_view word, const Triple& value) {
    for (std::size_t c = 0; c < corners; ++c) {
      const double each = value.at[c];
      const bool isTooSmall = word == "C_comp" && each < 10e-15 && each != 0.0;
      if (!(each > 100e-12) && !isTooSmall && !(each < 0.0)) continue;
      findings_.add(Rule::modelCCompImplausible, value.spots[c],
                    {std::string(word), name_, quantity(each, "F")});
      return;
    }
  }

  // The order of typ, min and max.
  void checkTriples() {
    for (const std::string_view word : cComps) checkOrder(word, std::string(word), "F");
    for (const std::string_view keyword :
         {"Voltage Range", "Pullup Reference", "Pulldown Reference", "POWER Clamp Reference",
          "GND Clamp Reference"}) {
      checkOrder(keyword, "[" + std::string(keyword) + "]", "V");
    }
    const Triple& heat = model_->triple("Temperature Range");
    if (heat.given) checkTemperature(heat);
  }

  void checkOrder(std::string_view key, const std::string& label, std::string_view unit) {
    const Triple& value = model_->triple(key);
    if (!value.given || findings_.hasWrongNumber(value.spot.block)) return;
    const double low = value.at[min];
    const double high = value.at[max];
    const double middle = value.at[typ];
    if (std::isnan(low) || std::isnan(high) || std::isnan(middle)) return;
    if (middle < std::min(low, high) || middle > std::max(low, high)) {
      findings_.add(
          Rule::modelTypOutside, value.spot,
          {label, name_, quantity(middle, unit), quantity(low, unit), quantity(high, unit)});
    } else if (low > high && middle > 0.0) {
      Finding& told = findings_.add(Rule::modelMinAboveMax, value.spots[min],
                                    {label, name_, quantity(low, unit), quantity(high, unit)});
      if (unit == "F") told.diagnostic.severity = Severity::note;
    }
  }

  void checkTemperature(const Triple& heat) {
    const double low = std::min(heat.corner(min), heat.corner(max));
    const double high = std::max(heat.corner(min), heat.corner(max));
    if (high > 200.0 || low < -80.0) {
      findings_.add(Rule::modelTemperatureOutside, heat.spot,
                    {name_, "values " + shortNumber(low) + " to " + shortNumber(high)});
    } else if (heat.at[typ] < low || heat.at[typ] > high) {
      findings_.add(Rule::modelTemperatureOutside, heat.spot,
                    {name_, "typ " + shortNumber(heat.at[typ]) + " is outside of " +
                                shortNumber(low) + " to " + shortNumber(high)});
    }
  }

  void checkSupply() {
    const Triple& range = model_->triple("Voltage Range");
    std::vector<std::string> missing;
    for (const std::string_view each : references) {
      if (!model_->triple(each).given) missing.push_back("[" + std::string(each) + "]");
    }
    const bool isWrong = range.given && findings_.hasWrongNumber(range.spot.block);
    if (!range.given) {
      const bool needs = model_->type != ModelType::unknown && !model_->isSeries() &&
                         !model_->hasExternalModel && !missing.empty() &&
                         !findings_.wasTold(Rule::numericMissingValue, model_->section);
      if (needs) {
        findings_.add(Rule::modelVoltageRangeMissing, model_->spot, {name_, joined(missing)});
      }
      return;
    }
    const double volts = range.at[typ];
    const bool isOdd = std::abs(volts) > 30.0 || std::abs(volts) < 0.4;
    if (isOdd && !isWrong && !missing.empty()) {
      findings_.add(Rule::modelVoltageImplausible, range.spot, {name_, quantity(volts, "V")});
    }
    if (!isWrong) checkReferences(range);
  }

  void checkReferences(const Triple& range) {
    const Triple& high = model_->triple("Pullup Reference");
    const Triple& clamp = model_->triple("POWER Clamp Reference");
    const double span = model_->pullupReference(typ) - model_->pulldownReference(typ);
    const double volts = range.at[typ];
    const bool hasPulls = high.given || model_->triple("Pulldown Reference").given;
    if (hasPulls && !model_->isEcl() && std::abs(span - volts) > 0.02 * std::abs(volts)) {
      findings_.add(Rule::modelReferenceVsRange, range.spot,
                    {name_, quantity(volts, "V"), quantity(span, "V")});
    }
    if (high.given && clamp.given && high.at[typ] != clamp.at[typ]) {
      addNote(findings_.add(Rule::modelReferenceClampDiffers, clamp.spot,
                            {name_, quantity(high.at[typ], "V"), quantity(clamp.at[typ], "V")}),
              high.spot.line, "the pullup reference is here");
    }
  }

  Findings& findings_;
  const ModelView* model_;
  std::string name_;
};

}  // namespace

void checkModelValues(const ModelView& model, Findings& findings) {
  ModelValueChecker(model, findings).check();
}

}  // namespace ibis::checks
