// The rules about the pins of a package model, and what leads to those of its matrices.

#include "checks/package_model_rules.h"

#include <algorithm>

#include "checks/number_word.h"
#include "checks/package_matrix.h"

namespace ibis::checks {
namespace {

constexpr std::string_view requiredKeywords[] = {"Manufacturer", "OEM", "Description",
                                                 "Number Of Pins", "Pin Numbers"};

std::string firstThree(const std::vector<std::string>& names) {
  std::vector<std::string> first(
      names.begin(),
      names.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(names.size(), 3)));
  return joined(first) + (names.size() > 3 ? ", ..." : "");
}

class PackageModelChecker {
 public:
  PackageModelChecker(const View& view, const Section& part, const PackageUsers* users,
                      Findings& findings)
      : model_{.view = view, .part = part, .name = std::string(part.name)},
        users_(users),
        findings_(findings) {}

  void check() {
    checkKeywords();
    readPins();
    checkCount();
    checkComponents();
    for (Matrix& matrix : readMatrices(model_, findings_)) checkMatrix(model_, matrix, findings_);
  }

 private:
  void checkKeywords() {
    for (const std::string_view keyword : requiredKeywords) {
      if (model_.find(keyword) != nullptr) continue;
      findings_.add(Rule::packageKeywordMissing,
                    model_.view.argumentSpot(model_.view.block(model_.part.firstBlock)),
                    {model_.name, std::string(keyword)});
    }
  }

  // Behind a pin of a package with sections stand the sections.
  void readPins() {
    const Block* block = model_.find("Pin Numbers");
    if (block == nullptr) return;
    const bool hasSections = model_.find("Number Of Sections") != nullptr;
    for (const SourceLine& line : model_.view.syntax.linesOf(*block)) {
      auto words = model_.view.syntax.words(line);
      if (hasSections) words = words.first(std::min<std::size_t>(words.size(), 1));
      for (const Word& word : words) takePin(line, word, *block);
    }
  }

  void takePin(const SourceLine& line, const Word& word, const Block& block) {
    if (model_.byName.add(word.text, static_cast<std::uint32_t>(model_.pins.size()))) {
      model_.pins.push_back(word.text);
      return;
    }
    model_.hasTwice = true;
    findings_.add(Rule::packagePinDuplicate,
                  model_.view.spotOf(line, word, model_.view.indexOf(block)),
                  {std::string(word.text)});
  }

  void checkCount() {
    const Block* block = model_.find("Number Of Pins");
    if (block == nullptr || model_.find("Pin Numbers") == nullptr || model_.hasTwice) return;
    const double number = readNumberWord(block->argument).value;
    if (number == static_cast<double>(model_.count())) return;
    findings_.add(Rule::packagePinCount, model_.view.argumentSpot(*block),
                  {std::string(block->argument), std::to_string(model_.count())});
  }

  void checkComponents() {
    if (users_ == nullptr || model_.pins.empty()) return;
    for (const ComponentView* component : *users_) checkPinsOf(*component);
  }

  void checkPinsOf(const ComponentView& component) {
    std::vector<std::string> unknown;
    std::vector<std::string> unlisted;
    for (const std::string_view pin : model_.pins) {
      if (!component.pinByName.contains(pin)) unknown.emplace_back(pin);
    }
    for (const PinView& pin : component.pins) {
      const bool isFree = View::isReserved(pin.model) || pin.model.empty();
      if (!isFree && !model_.byName.contains(pin.name)) unlisted.emplace_back(pin.name);
    }
    const Spot spot = model_.view.spotOf(*model_.find("Pin Numbers"));
    const std::string owner(component.name);
    if (!unknown.empty()) {
      findings_.add(Rule::packagePinUnknown, spot,
                    {countOf(unknown.size(), "pin"), model_.name, owner, firstThree(unknown)});
    }
    if (!unlisted.empty()) {
      findings_.add(Rule::packagePinNotListed, spot,
                    {countOf(unlisted.size(), "pin"), owner, model_.name, firstThree(unlisted)});
    }
  }

  PackageModel model_;
  const PackageUsers* users_;
  Findings& findings_;
};

}  // namespace

void checkPackageModel(const View& view, const Section& part, const PackageUsers* users,
                       Findings& findings) {
  PackageModelChecker(view, part, users, findings).check();
}

}  // namespace ibis::checks
