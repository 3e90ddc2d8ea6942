#include "component/pin_resolution.h"

#include <algorithm>

#include "host/diagnostics/messages.h"
#include "model/numbers/numbers.h"
#include "reader/text/merge_sort.h"

namespace ibis {
namespace {

void resolvePinModels(IBISComponent& component, const ModelFinder& models,
                      IBISErrorHandler& errors) {
  for (IBISPin& pin : component.pins) {
    pin.model = models.find(pin.model_name);
    if (pin.model != nullptr) continue;
    errors.error(message::pinModelUndefined, pin.line, pin.name.str().c_str());
  }
}

// Builds the entries of one component: its pairs first, then its single pins.
class EntryBuilder {
 public:
  EntryBuilder(IBISComponent& component, const PinFilter& filter, IBISErrorHandler& errors)
      : component_(component), filter_(filter), errors_(errors) {}

  // Returns the number of pairs.
  std::size_t addEntries() {
    markPairedNames();
    indexPins();
    addPairs();
    const std::size_t pairs = component_.pinEntries.size();
    pinsByName_ = {};  // as large as the entries that follow
    addSingles();
    return pairs;
  }

 private:
  // A name in a [Diff Pin] row counts as paired even if the row is not valid.
  void markPairedNames() {
    for (const IBISDiffPin& row : component_.diffPins) {
      isPaired_[row.pin] = true;
      isPaired_[row.inv_pin] = true;
    }
  }

  void indexPins() {
    pinsByName_.reserve(component_.pins.size());
    for (const IBISPin& pin : component_.pins) {
      if (pinsByName_.add(pin.name, &pin)) continue;
      errors_.error(message::duplicatePin, pin.line, pin.name.str().c_str(),
                    findPin(pin.name)->line);
    }
  }

  void addPairs() {
    for (const IBISDiffPin& row : component_.diffPins) {
      const IBISPin* pin = findPin(row.pin);
      const IBISPin* inverted = findPin(row.inv_pin);
      reportMissingPins(row, pin, inverted);
      if (pin != nullptr && inverted != nullptr) addPair(row, *pin, *inverted);
    }
  }

  void addSingles() {
    component_.pinEntries.reserve(component_.pinEntries.size() + component_.pins.size());
    for (const IBISPin& pin : component_.pins) {
      if (pin.model == nullptr || !filter_.wants(pin.name) || isPaired(pin.name)) continue;
      useModel(*pin.model);
      component_.pinEntries.push_back({.pin = &pin, .model = pin.model});
    }
  }

  const IBISPin* findPin(std::string_view name) const {
    const IBISPin* const* pin = pinsByName_.find(name);
    return pin == nullptr ? nullptr : *pin;
  }

  void reportMissingPins(const IBISDiffPin& row, const IBISPin* pin, const IBISPin* inverted) {
    if (pin == nullptr) {
      errors_.error(message::noninvertingPinUndefined, row.line, row.pin.str().c_str());
    }
    if (inverted == nullptr) {
      errors_.error(message::invertingPinUndefined, row.line, row.inv_pin.str().c_str());
    }
  }

  // A pair that lacks a model, or that nobody wants, stays marked: neither of its pins becomes a
  // single pin.
  void addPair(const IBISDiffPin& row, const IBISPin& pin, const IBISPin& inverted) {
    if (pin.model == nullptr || inverted.model == nullptr) return;
    if (pin.model->name != inverted.model->name) {
      separate(row);
    } else if (filter_.wants(row.pin) || filter_.wants(row.inv_pin)) {
      useModel(*pin.model);
      useModel(*inverted.model);
      component_.pinEntries.push_back({.pin = &pin,
                                       .invertedPin = &inverted,
                                       .model = pin.model,
                                       .invertedModel = inverted.model,
                                       .diffPin = &row});
    }
  }

  // Pins of different models are not a pair; the user learns it only of pins asked for by name.
  void separate(const IBISDiffPin& row) {
    if (filter_.names(row.pin) || filter_.names(row.inv_pin)) {
      errors_.warning(message::diffPinModelsDiffer, row.line, row.pin.str().c_str(),
                      row.inv_pin.str().c_str());
    }
    isPaired_[row.pin] = false;
    isPaired_[row.inv_pin] = false;
  }

  void useModel(IBISModel& model) {
    if (usedModels_.contains(model.name)) return;
    usedModels_.add(model.name);
    component_.models.push_back(&model);
  }

  bool isPaired(std::string_view name) const {
    const char* paired = isPaired_.find(name);
    return paired != nullptr && *paired != 0;
  }

  IBISComponent& component_;
  const PinFilter& filter_;
  IBISErrorHandler& errors_;
  NameMap<ExactCase, const IBISPin*> pinsByName_;  // the first of each name
  NameMap<ExactCase, char> isPaired_;              // 0 for a name of a pair that was separated
  NameIndex<ExactCase> usedModels_;
};

// Not a strict order where numbers and other names meet.
bool entryLess(const IBISPinEntry& a, const IBISPinEntry& b) {
  if (!a.isPair() || a.pin->name != b.pin->name) return naturalLess(a.pin->name, b.pin->name);
  return naturalLess(a.invertedPin->name, b.invertedPin->name);
}

void buildPinEntries(IBISComponent& component, const PinFilter& filter, IBISErrorHandler& errors) {
  const std::size_t pairs = EntryBuilder(component, filter, errors).addEntries();
  const std::span<IBISPinEntry> entries(component.pinEntries);
  mergeSort(entries.first(pairs), entryLess);
  mergeSort(entries.subspan(pairs), entryLess);
}

void applyPackageDefaults(IBISComponent& component) {
  for (IBISPin& pin : component.pins) {
    pin.package = &component.package;
  }
  component.packagesOfPins.clear();
}

bool isNumber(std::string_view name) {
  return std::ranges::all_of(name, [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

bool naturalLess(std::string_view a, std::string_view b) {
  if (isNumber(a) && isNumber(b)) return parseInteger(a) < parseInteger(b);
  return a < b;  // string_view compares unsigned bytes
}

void prepareComponent(IBISComponent& component, const ModelFinder& models,
                      const PinFilter& pinFilter, IBISErrorHandler& errors) {
  resolvePinModels(component, models, errors);
  buildPinEntries(component, pinFilter, errors);
  applyPackageDefaults(component);
}

}  // namespace ibis
