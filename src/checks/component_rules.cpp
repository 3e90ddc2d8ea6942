// The rules about components, their pins and pairs, and about selectors.

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "checks/families.h"
#include "checks/number_word.h"
#include "ibis/ibis_string.h"

namespace ibis::checks {
namespace {

constexpr std::size_t searchedNames = 2000;  // names that a hint is looked for among
constexpr std::size_t hints = 20;            // hints of one kind in a file

struct Limit {
  std::string_view column;
  std::string_view unit;
  double most;
};

constexpr Limit pinLimits[] = {
    {"R_pin", "ohm", 10.0}, {"L_pin", "H", 100e-9}, {"C_pin", "F", 100e-12}};

std::size_t columnOf(std::string_view name) {
  for (std::size_t i = 0; i < std::size(pinLimits); ++i) {
    if (equalIgnoringCase(pinLimits[i].column, name)) return i;
  }
  return std::size(pinLimits);
}

bool startsIgnoringCase(std::string_view text, std::string_view start) {
  return text.size() >= start.size() && equalIgnoringCase(text.substr(0, start.size()), start);
}

// Names of models and selectors, in front of [End] and behind it, for hints.
class Names {
 public:
  explicit Names(const View& view) : view_(view) {
    for (const ModelView& model : view.models) add(model.name, model.spot.line, model.isAfterEnd);
    for (const SelectorView& each : view.selectors) add(each.name, each.spot.line, each.isAfterEnd);
  }

  bool isDefined(std::string_view name) const {
    return view_.modelByName.contains(name) || view_.selectorByName.contains(name);
  }

  /// The line of a name behind [End], or null.
  const std::int32_t* lineAfterEnd(std::string_view name) const { return afterEnd_.find(name); }

  /// The defined name that is equal but for case, or empty.
  std::string_view equalButForCase(std::string_view name) const {
    const std::string_view* found = ignoringCase_.find(name);
    return found == nullptr ? std::string_view() : *found;
  }

  std::string_view nearest(std::string_view name) {
    if (++asked_ > hints) return {};
    return nearestWord(name, std::span(names_).first(std::min(names_.size(), searchedNames)));
  }

 private:
  void add(std::string_view name, std::int32_t line, bool isAfterEnd) {
    if (isAfterEnd) {
      afterEnd_.add(name, line);
    } else {
      ignoringCase_.add(name, name);
      names_.push_back(name);
    }
  }

  const View& view_;
  NameMap<ExactCase, std::int32_t> afterEnd_;
  NameMap<IgnoringCase, std::string_view> ignoringCase_;
  std::vector<std::string_view> names_;
  std::size_t asked_ = 0;
};

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
    checkHeaders();
    checkPinNames();
    checkModelsOfPins();
    checkSupplies();
    checkPairs();
  }

  const Block* find(std::string_view name) const {
    for (const Block& block : view_.syntax.blocksOf(view_.syntax.sections()[component_->section])) {
      if (block.keyword != nullptr && block.keyword->name == name) return &block;
    }
    return nullptr;
  }

  void checkManufacturer() {
    const Block* block = find("Manufacturer");
    if (block != nullptr && !block->argument.empty()) return;
    findings_.add(Rule::headerManufacturerMissing,
                  block == nullptr ? component_->spot : view_.spotOf(*block),
                  {std::string(component_->name)});
  }

  // [Pin]

  void checkHeaders() {
    const Block* block = find("Pin");
    if (block == nullptr) return;
    const auto words = view_.syntax.words(view_.syntax.headOf(*block));
    std::vector<std::size_t> columns;
    bool isSound = component_->signalColumn == 1 && component_->modelColumn == 2 &&
                   component_->hasKnownColumns;
    for (std::size_t i = 0; i < words.size(); ++i) {
      columns.push_back(columnOf(words[i].text));
      const bool isName = i + 1 == component_->signalColumn || i + 1 == component_->modelColumn;
      if (columns.back() == std::size(pinLimits) && !isName) isSound = false;
    }
    if (!isSound) {
      findings_.add(Rule::pinColumnHeader, view_.argumentSpot(*block),
                    {std::string(block->argument)});
    }
    if (component_->hasKnownColumns) checkValues(*block, columns);
  }

  // The columns of the header, each with its limit or none.
  void checkValues(const Block& block, const std::vector<std::size_t>& columns) {
    const std::uint32_t index = view_.indexOf(block);
    const std::size_t wanted = columns.size() - 2;
    for (const PinView& pin : component_->pins) {
      const SourceLine& line = view_.syntax.lines()[pin.line];
      const auto words = view_.syntax.words(line);
      if (words.size() <= 3) continue;
      if (wanted == 0) {
        findings_.addOnce(Rule::pinRlcWithoutHeader, view_.spotOf(line, words[3], index),
                          {std::string(pin.name), ""});
        continue;
      }
      if (words.size() - 3 < std::min<std::size_t>(3, wanted)) {
        findings_.addOnce(Rule::pinRlcIncomplete, view_.spotOf(line, index),
                          {std::string(pin.name), std::to_string(words.size() - 3), ""});
      }
      for (std::size_t i = 0; i < columns.size() && i + 1 < words.size(); ++i) {
        if (columns[i] == std::size(pinLimits)) continue;
        checkValue(pin, pinLimits[columns[i]], line, words[i + 1], index);
      }
    }
  }

  void checkValue(const PinView& pin, const Limit& limit, const SourceLine& line, const Word& word,
                  std::uint32_t block) {
    const NumberWord read = readNumberWord(word.text);
    const Spot spot = view_.spotOf(line, word, block);
    const std::string label = std::string(limit.column) + " of pin " + std::string(pin.name);
    if (read.fault == NumberFault::notANumber) {
      findings_.addOnce(Rule::numericNotANumber, spot, {label, std::string(word.text), "0"});
    } else if (read.fault == NumberFault::decimalComma) {
      std::string expected(word.text);
      expected[word.text.size() - read.tail.size()] = '.';
      findings_.addOnce(Rule::numericDecimalComma, spot,
                        {label, std::string(word.text), readValue(read), expected});
    } else if (read.fault == NumberFault::suffixCase) {
      std::string expected(word.text);
      char& letter = expected[word.text.size() - read.tail.size()];
      letter = static_cast<char>(letter - 'A' + 'a');
      findings_.addOnce(Rule::numericSuffixCase, spot,
                        {label, std::string(word.text), readValue(read),
                         std::string(read.tail.substr(0, 1)), "no scale letter", expected});
    } else if (read.fault > NumberFault::notAvailable) {
      findings_.addOnce(
          Rule::numericUnknownSuffix, spot,
          {label, std::string(word.text), shortNumber(read.value, 6), std::string(read.tail), ""});
    } else if (read.value < 0.0) {
      findings_.addOnce(Rule::packageNegative, spot, {label, quantity(read.value, limit.unit)});
    } else if (read.value > limit.most) {
      findings_.addOnce(Rule::pinRlcImplausible, spot,
                        {std::string(limit.column), std::string(pin.name),
                         quantity(read.value, limit.unit), quantity(limit.most, limit.unit)});
    }
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

  const ModelView* modelOf(const PinView& pin) const {
    const std::uint32_t* place = view_.modelByName.find(pin.model);
    return place == nullptr ? nullptr : &view_.models[*place];
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
    const ModelView* model = modelOf(pin);
    const bool drives = (isHigh || isLow) && model != nullptr && model->isDriver();
    const bool isWrong = (isHigh && isGround) || (isLow && isPower) || drives;
    if (!isWrong || hasEcl_) return;
    findings_.add(Rule::pinSupplyModel, pin.modelSpot,
                  {std::string(pin.name), std::string(pin.signal), std::string(pin.model)});
  }

  // [Diff Pin]

  void checkPairs() {
    NameMap<ExactCase, std::int32_t> paired;
    if (component_->diffPins.empty()) return;
    const std::uint32_t block = view_.indexOf(*find("Diff Pin"));
    for (const DiffPinView& pair : component_->diffPins) {
      const SourceLine& line = view_.syntax.lines()[pair.line];
      const auto words = view_.syntax.words(line);
      const Spot spots[] = {view_.spotOf(line, words[0], block),
                            view_.spotOf(line, words[1], block)};
      if (pair.pin == pair.inverted) {
        findings_.add(Rule::pinDiffSelf, spots[1], {std::string(pair.pin)});
        continue;
      }
      const PinView* pins[] = {checkMember(pair.pin, spots[0], paired, line.number),
                               checkMember(pair.inverted, spots[1], paired, line.number)};
      if (pins[0] == nullptr || pins[1] == nullptr) continue;
      checkModelsOfPair(*pins[0], *pins[1], spots[1]);
      checkPairValues(*pins[0], line, words, block);
    }
  }

  const PinView* checkMember(std::string_view name, const Spot& spot,
                             NameMap<ExactCase, std::int32_t>& paired, std::int32_t line) {
    const std::uint32_t* place = component_->pinByName.find(name);
    if (place == nullptr) {
      findings_.add(Rule::pinDiffUndefined, spot,
                    {std::string(name), didYouMean(nearestPin(name))});
      return nullptr;
    }
    const PinView& pin = component_->pins[*place];
    if (!paired.add(name, line)) {
      addNote(findings_.add(Rule::pinDiffTwice, spot, {std::string(name)}), *paired.find(name),
              "the other pair is here");
    }
    if (View::isReserved(pin.model)) {
      findings_.add(Rule::pinDiffSupply, spot, {std::string(name), std::string(pin.model)});
    }
    return &pin;
  }

  std::string_view nearestPin(std::string_view name) {
    if (++askedPins_ > hints) return {};
    std::string_view best;
    std::size_t least = 2;
    for (const PinView& pin : component_->pins) {
      if (pin.name.size() != name.size() && name.size() < 3) continue;
      const std::size_t distance = editDistance(name, pin.name, least);
      if (distance >= least) continue;
      least = distance;
      best = pin.name;
    }
    return best;
  }

  void checkModelsOfPair(const PinView& pin, const PinView& inverted, const Spot& spot) {
    const bool isSupply = View::isReserved(pin.model) || View::isReserved(inverted.model);
    if (pin.model == inverted.model || isSupply) return;
    findings_.add(Rule::pinDiffModelsDiffer, spot,
                  {std::string(pin.name), std::string(pin.model), std::string(inverted.name),
                   std::string(inverted.model)});
  }

  void checkPairValues(const PinView& pin, const SourceLine& line, std::span<const Word> words,
                       std::uint32_t block) {
    if (words.size() < 3) return;
    const double vdiff = readNumberWord(words[2].text).value;
    const Spot spot = view_.spotOf(line, words[2], block);
    const std::string name(pin.name);
    if (vdiff < 0.0 || vdiff > 2.0) {
      findings_.add(Rule::pinDiffVdiff, spot, {name, quantity(vdiff, "V")});
    }
    const ModelView* model = modelOf(pin);
    if (vdiff == 0.0 && model != nullptr && model->isInput() && !model->isDriver()) {
      findings_.add(Rule::pinDiffVdiffZero, spot, {name});
    }
    double delays[corners] = {notGiven, notGiven, notGiven};
    for (std::size_t c = 0; c < corners && c + 3 < words.size(); ++c) {
      delays[c] = readNumberWord(words[c + 3].text).value;
      if (std::abs(delays[c]) <= 10e-9 || std::isnan(delays[c])) continue;
      findings_.add(Rule::pinDiffTdelay, view_.spotOf(line, words[c + 3], block),
                    {name, quantity(delays[c], "s") + " (scale letter lost?)"});
      return;
    }
    const bool isOrdered = !(delays[min] > delays[max]) && !(delays[typ] < delays[min]) &&
                           !(delays[typ] > delays[max]);
    if (isOrdered) return;
    findings_.add(Rule::pinDiffTdelay, view_.spotOf(line, words[3], block),
                  {name, quantity(delays[typ], "s") + ", with min " + quantity(delays[min], "s") +
                             " and max " + quantity(delays[max], "s")});
  }

  const View& view_;
  Findings& findings_;
  Names names_;
  bool hasEcl_;
  const ComponentView* component_ = nullptr;
  std::size_t askedPins_ = 0;
};

class SelectorChecker {
 public:
  SelectorChecker(const View& view, Findings& findings)
      : view_(view), findings_(findings), names_(view) {
    for (const ComponentView& component : view.components) {
      for (const PinView& pin : component.pins) used_.findOrAdd(pin.model);
    }
  }

  void check() {
    for (const SelectorView& selector : view_.selectors) {
      if (!selector.isAfterEnd) checkSelector(selector);
    }
  }

 private:
  void checkSelector(const SelectorView& selector) {
    const std::string name(selector.name);
    if (selector.rows.empty()) findings_.add(Rule::selectorEmpty, selector.spot, {name});
    if (!used_.contains(selector.name)) findings_.add(Rule::selectorUnused, selector.spot, {name});
    if (const std::uint32_t* place = view_.modelByName.find(selector.name)) {
      addNote(findings_.add(Rule::selectorNameClash, selector.spot, {name}),
              view_.models[*place].spot.line, "the model is here");
    }
    NameMap<ExactCase, std::int32_t> models;
    NameMap<ExactCase, std::int32_t> descriptions;
    for (const SelectorRow& row : selector.rows) checkRow(name, row, models, descriptions);
  }

  void checkRow(const std::string& name, const SelectorRow& row,
                NameMap<ExactCase, std::int32_t>& models,
                NameMap<ExactCase, std::int32_t>& descriptions) {
    const std::string model(row.model);
    if (View::isReserved(row.model)) {
      findings_.add(Rule::selectorModelNc, row.spot, {name, model});
    } else if (!view_.modelByName.contains(row.model)) {
      findings_.add(Rule::selectorModelUndefined, row.spot,
                    {name, model, didYouMean(names_.nearest(row.model))});
    }
    if (!models.add(row.model, row.spot.line)) {
      addNote(findings_.add(Rule::selectorDuplicateRow, row.spot, {name, model}),
              *models.find(row.model), "the first one is here");
    }
    if (!row.description.empty() && !descriptions.add(row.description, row.spot.line)) {
      addNote(findings_.add(Rule::selectorDuplicateDescription, row.spot,
                            {name, std::string(row.description)}),
              *descriptions.find(row.description), "the first one is here");
    }
  }

  const View& view_;
  Findings& findings_;
  Names names_;
  NameIndex<ExactCase> used_;
};

}  // namespace

void checkComponents(const View& view, Findings& findings) {
  ComponentChecker(view, findings).check();
}

void checkSelectors(const View& view, Findings& findings) {
  SelectorChecker(view, findings).check();
}

}  // namespace ibis::checks
