#include "checks/section_readers.h"
#include "reader/vocabulary.h"

namespace ibis::checks {
namespace {

void readHeader(View& view, const Section& part) {
  for (const Block& block : view.syntax.blocksOf(part)) {
    if (block.keyword == nullptr || block.keyword->name != "IBIS Ver") continue;
    view.version = versionNumber(block.argument.substr(0, 3));
    return;
  }
}

// Looks names up, and finds the models of pairs.
class NameTables {
 public:
  explicit NameTables(View& view) : view_(view) {}

  void indexNames() {
    for (std::uint32_t i = 0; i < view_.models.size(); ++i) {
      if (!view_.models[i].isAfterEnd) view_.modelByName.add(view_.models[i].name, i);
    }
    for (std::uint32_t i = 0; i < view_.selectors.size(); ++i) {
      if (!view_.selectors[i].isAfterEnd) view_.selectorByName.add(view_.selectors[i].name, i);
    }
    markedSelectors_.assign(view_.selectors.size(), false);
    for (const ComponentView& component : view_.components) markPairs(component);
  }

 private:
  void markPairs(const ComponentView& component) {
    for (const DiffPinView& pair : component.diffPins) {
      for (const std::string_view name : {pair.pin, pair.inverted}) {
        const std::uint32_t* pin = component.pinByName.find(name);
        if (pin != nullptr) markPair(component.pins[*pin].model);
      }
    }
  }

  void markPair(std::string_view name) {
    markModel(name);
    const std::uint32_t* place = view_.selectorByName.find(name);
    if (place == nullptr || markedSelectors_[*place]) return;
    markedSelectors_[*place] = true;
    for (const SelectorRow& row : view_.selectors[*place].rows) markModel(row.model);
  }

  void markModel(std::string_view name) {
    if (const std::uint32_t* place = view_.modelByName.find(name)) {
      view_.models[*place].isInPair = true;
    }
  }

  View& view_;
  std::vector<bool> markedSelectors_;
};

}  // namespace

void readValues(View& view, Findings& findings) {
  const auto& sections = view.syntax.sections();
  for (std::uint32_t i = 0; i < sections.size(); ++i) {
    if (sections[i].kind == section::header) readHeader(view, sections[i]);
    if (sections[i].kind == section::component) readComponent(view, findings, i);
    if (sections[i].kind == section::selector) readSelector(view, findings, i);
    if (sections[i].kind == section::model) readModel(view, findings, i);
  }
  NameTables(view).indexNames();
}

}  // namespace ibis::checks
