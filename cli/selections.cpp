#include "selections.h"

#include <algorithm>

#include "reader/text/name_index.h"

namespace ibis::cli {
namespace {

using Selectors = NameMap<ExactCase, IBISModelSelector*>;

// The last selector of a name counts, as it does for a load.
Selectors selectorsOf(IBISFileData& file) {
  Selectors selectors;
  for (IBISModelSelector& each : file.modelSelectors) selectors[each.name] = &each;
  return selectors;
}

bool describes(const IBISFileData& file, IBISString text) {
  for (const IBISModelSelector& selector : file.modelSelectors) {
    for (const IBISModelSelectorRow& row : selector.rows) {
      if (row.description == text) return true;
    }
  }
  return false;
}

bool choose(IBISModelSelector& selector, std::string_view model) {
  auto& rows = selector.rows;
  const auto row = std::ranges::find_if(
      rows, [&](const IBISModelSelectorRow& each) { return each.modelName == IBISString(model); });
  if (row == rows.end()) return false;
  std::rotate(rows.begin(), row, row + 1);
  return true;
}

// Names may hold the sign too.
// The selector of the form's name, or null; names may hold the sign too.
IBISModelSelector* chooseByName(const Selectors& selectors, std::string_view text) {
  for (std::size_t sign = text.find('='); sign != text.npos; sign = text.find('=', sign + 1)) {
    IBISModelSelector* const* selector = selectors.find(IBISString(text.substr(0, sign)));
    if (selector != nullptr && choose(**selector, text.substr(sign + 1))) return *selector;
  }
  return nullptr;
}

bool isAsked(const IBISModelSelector& selector, const std::vector<IBISString>& selections) {
  return std::ranges::any_of(selector.rows, [&](const IBISModelSelectorRow& row) {
    return std::ranges::find(selections, row.description) != selections.end();
  });
}

}  // namespace

std::vector<std::string> chooseByName(IBISFileData& file) {
  std::vector<std::string> chosen;
  const Selectors selectors = selectorsOf(file);
  std::erase_if(file.modelSelections, [&](IBISString text) {
    if (describes(file, text)) return false;
    const IBISModelSelector* selector = chooseByName(selectors, text);
    if (selector != nullptr) chosen.push_back(selector->name.str());
    return selector != nullptr;
  });
  return chosen;
}

std::vector<std::string> firstChoices(const IBISFileData& file, const IBISComponent& component,
                                      const std::vector<std::string>& chosen) {
  NameMap<ExactCase, const IBISModelSelector*> selectors;
  for (const IBISModelSelector& each : file.modelSelectors) selectors[each.name] = &each;
  NameIndex<ExactCase> told;
  std::vector<std::string> texts;
  for (const IBISPinEntry& entry : component.pinEntries) {
    const IBISString name = entry.pin->model_name;
    const IBISModelSelector* const* selector = selectors.find(name);
    if (selector == nullptr || told.contains(name)) continue;
    told.add(name);
    const bool isChosen = std::ranges::find(chosen, name.view()) != chosen.end();
    if (isChosen || (*selector)->rows.size() < 2) continue;
    if (isAsked(**selector, file.modelSelections)) continue;
    texts.push_back(name.str() + '=' + (*selector)->rows.front().modelName.str());
  }
  return texts;
}

}  // namespace ibis::cli
