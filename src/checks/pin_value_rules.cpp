// The rules about the columns of [Pin] and the values in them.

#include <algorithm>

#include "checks/component_rules.h"
#include "checks/number_word.h"
#include "ibis/ibis_string.h"

namespace ibis::checks {
namespace {

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

class PinValueChecker {
 public:
  PinValueChecker(const View& view, const ComponentView& component, Findings& findings)
      : view_(view), component_(component), findings_(findings) {}

  void check() {
    const Block* block = view_.find(component_.section, "Pin");
    if (block == nullptr) return;
    const auto words = view_.syntax.words(view_.syntax.headOf(*block));
    std::vector<std::size_t> columns;
    bool isSound =
        component_.signalColumn == 1 && component_.modelColumn == 2 && component_.hasKnownColumns;
    for (std::size_t i = 0; i < words.size(); ++i) {
      columns.push_back(columnOf(words[i].text));
      const bool isName = i + 1 == component_.signalColumn || i + 1 == component_.modelColumn;
      if (columns.back() == std::size(pinLimits) && !isName) isSound = false;
    }
    if (!isSound) {
      findings_.add(Rule::pinColumnHeader, view_.argumentSpot(*block),
                    {std::string(block->argument)});
    }
    if (component_.hasKnownColumns) checkValues(*block, columns);
  }

 private:
  // The columns of the header, each with its limit or none.
  void checkValues(const Block& block, const std::vector<std::size_t>& columns) {
    const std::uint32_t index = view_.indexOf(block);
    const std::size_t wanted = columns.size() - 2;
    for (const PinView& pin : component_.pins) {
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

  const View& view_;
  const ComponentView& component_;
  Findings& findings_;
};

}  // namespace

void checkPinValues(const View& view, const ComponentView& component, Findings& findings) {
  PinValueChecker(view, component, findings).check();
}

}  // namespace ibis::checks
