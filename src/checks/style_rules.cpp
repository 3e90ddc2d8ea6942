// The rules about completeness, and about what other programs may trip over.

#include <algorithm>
#include <cmath>

#include "checks/families.h"
#include "component/names/name_table.h"
#include "ibis/ibis_string.h"

namespace ibis::checks {
namespace {

constexpr std::size_t longestPin = 5;
constexpr std::string_view spiceCharacters = "#[](),=;'\"\\/ \t";

class StyleChecker {
 public:
  StyleChecker(const View& view, Findings& findings) : view_(view), findings_(findings) {}

  void check() {
    NameMap<IgnoringCase, const ModelView*> models;
    for (const ModelView& model : view_.models) {
      if (model.isAfterEnd) continue;
      checkModel(model);
      checkLength(Rule::portabilityModelNameLength, model.spot, model.name, model.name);
      checkCharacters("model", model.name, model.spot, [&] { return loadedModel(model.name); });
      if (models.add(model.name, &model)) continue;
      const ModelView& first = **models.find(model.name);
      if (first.name == model.name) continue;
      addNote(findings_.add(Rule::portabilityModelCase, model.spot,
                            {std::string(first.name), std::string(model.name)}),
              first.spot.line, "the other one is here");
    }
    for (const ComponentView& component : view_.components) {
      if (!component.isAfterEnd) checkPins(component);
    }
  }

 private:
  std::size_t nameLimit() const { return view_.version != 0 && view_.version < 42 ? 20 : 40; }

  void checkLength(Rule rule, const Spot& spot, std::string_view name, std::string_view owner) {
    if (name.size() <= nameLimit()) return;
    findings_.addOnce(
        rule, spot, {std::string(owner), std::to_string(name.size()), std::to_string(nameLimit())});
  }

  template <class LoadedName>
  Finding* checkCharacters(std::string_view kind, std::string_view name, const Spot& spot,
                           const LoadedName& loadedName) {
    const std::size_t place = name.find_first_of(spiceCharacters);
    if (place == name.npos) return nullptr;
    return &findings_.add(
        Rule::portabilitySpiceCharacters, spot,
        {std::string(kind), std::string(name), std::string(1, name[place]), loadedName()});
  }

  // Components and models share one table of names, which a load fills in the order of the file.
  std::string loadedModel(std::string_view name) {
    if (!hasNames_) {
      for (const Section& part : view_.syntax.sections()) {
        const bool isNamed = part.kind == section::component || part.kind == section::model;
        if (isNamed && !part.isAfterEnd) names_.registerName(part.name);
      }
      hasNames_ = true;
    }
    return names_.spiceName(name).str();
  }

  // A signal that stands again gets a number, so all rows above count.
  static std::string loadedSignal(const ComponentView& component, const PinView& last) {
    IBISNameTable names;
    IBISString unique;
    for (const PinView& pin : component.pins) {
      unique = names.makeUniqueName(pin.signal);
      if (&pin == &last) break;
    }
    return names.spiceName(unique).str();
  }

  void checkModel(const ModelView& model) {
    const std::string name(model.name);
    checkCornersOf(model, name);
    if (!model.isElectrical()) return;
    if (model.isDriver() && model.waveforms.empty() && model.ramp != Spot::nowhere) {
      findings_.add(Rule::qualityNoWaveforms, model.spot, {name});
    }
    const bool hasClamps = model.table[gndClamp].given() || model.table[powerClamp].given();
    if (model.isInput() && !hasClamps) {
      findings_.add(Rule::qualityNoClamps, model.spot, {name});
    }
    if (!model.single("Vmeas").given || !model.isDriver()) return;
    std::vector<std::string> missing;
    for (const std::string_view word : {"Vref", "Rref", "Cref"}) {
      if (!model.single(word).given) missing.emplace_back(word);
    }
    if (!missing.empty()) {
      findings_.add(Rule::qualityTestLoad, model.single("Vmeas").spot, {name, joined(missing)});
    }
  }

  void checkCornersOf(const ModelView& model, const std::string& name) {
    std::size_t count = 0;
    std::uint32_t first = Spot::nowhere;
    const auto take = [&](const Rows& rows) {
      const bool isOpen = rows.given() && rows.size() > 1 && rows.isSound && !rows.hasCorner(min) &&
                          !rows.hasCorner(max);
      if (isOpen && count++ == 0) first = rows.block;
    };
    for (const Rows& rows : model.table) take(rows);
    for (const Waveform& waveform : model.waveforms) take(waveform.rows);
    if (count == 0) return;
    const Block& block = view_.block(first);
    findings_.add(Rule::qualityNoCorners, view_.spotOf(block),
                  {name, std::string(block.keyword->name),
                   count > 1 ? " (and " + std::to_string(count - 1) + " more)" : ""});
  }

  struct Signal {
    const PinView* first = nullptr;
    std::size_t count = 0;
  };

  void checkPins(const ComponentView& component) {
    NameMap<ExactCase, Signal> signals;
    std::vector<std::string_view> order;
    NameMap<IgnoringCase, const PinView*> pins;
    checkSignals(component);
    for (const PinView& pin : component.pins) {
      checkPin(pin);
      if (!pins.add(pin.name, &pin) && (*pins.find(pin.name))->name != pin.name) {
        const PinView& first = **pins.find(pin.name);
        addNote(findings_.add(Rule::portabilityPinCase, pin.spot,
                              {std::string(first.name), std::string(pin.name)}),
                first.spot.line, "the other one is here");
      }
      if (pin.model.empty() || View::isReserved(pin.model)) continue;
      Signal& signal = signals[pin.signal];
      if (signal.count++ == 0) {
        signal.first = &pin;
        order.push_back(pin.signal);
      }
    }
    for (const std::string_view name : order) {
      const Signal& signal = *signals.find(name);
      if (signal.count < 2 || View::isReserved(name)) continue;
      findings_.add(Rule::portabilitySignalDuplicate, signal.first->spot,
                    {std::string(name), std::to_string(signal.count)});
    }
  }

  // One signal tells of its component.
  void checkSignals(const ComponentView& component) {
    const auto hasOddSignal = [](const PinView& pin) {
      return pin.signal.find_first_of(spiceCharacters) != pin.signal.npos;
    };
    const auto odd = std::ranges::find_if(component.pins, hasOddSignal);
    if (odd == component.pins.end()) return;
    Finding* told = checkCharacters("signal", odd->signal, odd->spot,
                                    [&] { return loadedSignal(component, *odd); });
    told->furtherRows = static_cast<std::uint32_t>(
        std::ranges::count_if(odd + 1, component.pins.end(), hasOddSignal));
  }

  void checkPin(const PinView& pin) {
    if (pin.name.size() > longestPin) {
      findings_.addOnce(Rule::portabilityPinLength, pin.spot,
                        {std::string(pin.name), std::to_string(pin.name.size())});
    }
    checkLength(Rule::portabilitySignalNameLength, pin.spot, pin.signal, pin.name);
  }

  const View& view_;
  Findings& findings_;
  IBISNameTable names_;
  bool hasNames_ = false;
};

}  // namespace

void checkStyle(const View& view, Findings& findings) { StyleChecker(view, findings).check(); }

}  // namespace ibis::checks
