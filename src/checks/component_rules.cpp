// The rules about components and their pins.

#include "checks/component_rules.h"

#include <algorithm>

#include "checks/defined_names.h"
#include "checks/families.h"
#include "ibis/ibis_string.h"

namespace ibis::checks {
namespace {

bool startsIgnoringCase(std::string_view text, std::string_view start) {
  return text.size() >= start.size() && equalIgnoringCase(text.substr(0, start.size()), start);
}

class ComponentChecker {
 public:
  ComponentChecker(const View& view, Findings& findings)
      : view_(view),
        findings_(findings),
        names_(view),
        hasEcl_(std::ranges::any_of(view.models, &ModelView::isEcl)) {}

  void check() {
    NameMap<ExactCase, std::int32_t> components;
    for (const ComponentView& component : view_.components) {
      if (component.isAfterEnd) continue;
      if (!components.add(component.name, component.spot.line)) {
        addNote(findings_.add(Rule::pinDuplicateComponent, component.spot,
                              {std::string(component.name)}),
                *components.find(component.name), "the first one is here");
      }
      checkComponent(component);
    }
  }

 private:
  void checkComponent(const ComponentView& component) {
    component_ = &component;
    checkManufacturer();
    if (component.pins.empty()) {
      findings_.add(Rule::pinNone, component.spot, {std::string(component.name)});
    }
    checkPinValues(view_, component, findings_);
    checkPinNames();
    checkModelsOfPins();
    checkSupplies();
    checkPairs(view_, component, askedPins_, findings_);
  }

  void checkManufacturer() {
    const Block* block = view_.find(component_->section, "Manufacturer");
    if (block != nullptr && !block->argument.empty()) return;
    findings_.add(Rule::headerManufacturerMissing,
                  block == nullptr ? component_->spot : view_.spotOf(*block),
                  {std::string(component_->name)});
  }

  void checkPinNames() {
    for (const PinView& pin : component_->pins) {
      if (pin.model.empty()) {
        const SourceLine& line = view_.syntax.lines()[pin.line];
        const std::size_t end = line.text.find_last_not_of(" \t\r") + 1;
        findings_.add(Rule::pinRowShort, view_.spotOf(line, pin.spot.block),
                      {std::string(line.text.substr(0, end)),
                       pin.signal.empty() ? "signal and model name" : "model name"});
      }
      const PinView& first = component_->pins[*component_->pinByName.find(pin.name)];
      if (&first == &pin) continue;
      findings_.add(Rule::pinDuplicate, pin.spot,
                    {std::string(pin.name), std::to_string(first.spot.line)});
    }
  }

  struct MissingModel {
    const PinView* pin = nullptr;
    std::size_t count = 0;
  };

  void checkModelsOfPins() {
    NameMap<ExactCase, MissingModel> missing;
    std::vector<std::string_view> order;
    for (const PinView& pin : component_->pins) {
      if (pin.model.empty() || View::isReserved(pin.model) || names_.isDefined(pin.model)) continue;
      MissingModel& each = missing[pin.model];
      if (each.count++ == 0) {
        each.pin = &pin;
        order.push_back(pin.model);
      }
    }
    for (const std::string_view name : order) tellMissing(name, *missing.find(name));
  }

  void tellMissing(std::string_view name, const MissingModel& missing) {
    const PinView& pin = *missing.pin;
    const std::string number(pin.name);
    const std::string model(name);
    const std::string more =
        missing.count > 1 ? " (and " + countOf(missing.count - 1, "more pin") + ")" : std::string();
    if (const std::int32_t* line = names_.lineAfterEnd(name)) {
      const Block& end = view_.block(view_.syntax.facts().endBlock);
      findings_.add(Rule::pinModelAfterEnd, pin.modelSpot,
                    {number, model, std::to_string(*line),
                     std::to_string(view_.syntax.headOf(end).number), more});
      return;
    }
    if (const std::string_view other = names_.equalButForCase(name); !other.empty()) {
      findings_.add(Rule::pinModelCase, pin.modelSpot, {number, model, std::string(other), more});
      return;
    }
    findings_.add(Rule::pinModelUndefined, pin.modelSpot,
                  {number, model, didYouMean(names_.nearest(name)), more});
  }

  void checkSupplies() {
    bool hasPower = false;
    bool hasGround = false;
    for (const PinView& pin : component_->pins) {
      const bool isPower = equalIgnoringCase(pin.model, "POWER");
      const bool isGround = equalIgnoringCase(pin.model, "GND");
      hasPower = hasPower || isPower;
      hasGround = hasGround || isGround;
      checkSupply(pin, isPower, isGround);
    }
    if (component_->pins.size() <= 2 || (hasPower && hasGround)) return;
    findings_.add(Rule::pinNoSupply, component_->spot,
                  {std::string(component_->name), hasPower ? "GND" : "POWER"});
  }

  // VSS is the supply of ECL parts.
  void checkSupply(const PinView& pin, bool isPower, bool isGround) {
    const bool isHigh =
        startsIgnoringCase(pin.signal, "VCC") || startsIgnoringCase(pin.signal, "VDD");
    const bool isLow =
        startsIgnoringCase(pin.signal, "GND") || startsIgnoringCase(pin.signal, "VSS");
    const ModelView* model = view_.modelOf(pin);
    const bool drives = (isHigh || isLow) && model != nullptr && model->isDriver();
    const bool isWrong = (isHigh && isGround) || (isLow && isPower) || drives;
    if (!isWrong || hasEcl_) return;
    findings_.add(Rule::pinSupplyModel, pin.modelSpot,
                  {std::string(pin.name), std::string(pin.signal), std::string(pin.model)});
  }

  const View& view_;
  Findings& findings_;
  DefinedNames names_;
  bool hasEcl_;
  const ComponentView* component_ = nullptr;
  std::size_t askedPins_ = 0;
};

}  // namespace

void checkComponents(const View& view, Findings& findings) {
  ComponentChecker(view, findings).check();
}

}  // namespace ibis::checks
