// The rules about [Diff Pin].

#include <cmath>

#include "checks/component_rules.h"
#include "checks/number_word.h"

namespace ibis::checks {
namespace {

constexpr std::size_t hints = 20;  // hints of a file

class PairChecker {
 public:
  PairChecker(const View& view, const ComponentView& component, std::size_t& asked,
              Findings& findings)
      : view_(view), component_(component), asked_(asked), findings_(findings) {}

  void check() {
    NameMap<ExactCase, std::int32_t> paired;
    if (component_.diffPins.empty()) return;
    const std::uint32_t block = view_.indexOf(*view_.find(component_.section, "Diff Pin"));
    for (const DiffPinView& pair : component_.diffPins) {
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

 private:
  const PinView* checkMember(std::string_view name, const Spot& spot,
                             NameMap<ExactCase, std::int32_t>& paired, std::int32_t line) {
    const std::uint32_t* place = component_.pinByName.find(name);
    if (place == nullptr) {
      findings_.add(Rule::pinDiffUndefined, spot,
                    {std::string(name), didYouMean(nearestPin(name))});
      return nullptr;
    }
    const PinView& pin = component_.pins[*place];
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
    if (++asked_ > hints) return {};
    std::string_view best;
    std::size_t least = 2;
    for (const PinView& pin : component_.pins) {
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
    const ModelView* model = view_.modelOf(pin);
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
  const ComponentView& component_;
  std::size_t& asked_;
  Findings& findings_;
};

}  // namespace

void checkPairs(const View& view, const ComponentView& component, std::size_t& asked,
                Findings& findings) {
  PairChecker(view, component, asked, findings).check();
}

}  // namespace ibis::checks
