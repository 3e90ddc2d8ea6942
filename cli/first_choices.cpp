#include "first_choices.h"

#include <algorithm>

#include "reader/text/name_index.h"

namespace ibis::cli {
namespace {

bool isAsked(const IBISModelSelector& selector, const std::vector<IBISString>& selections) {
  return std::ranges::any_of(selector.rows, [&](const IBISModelSelectorRow& row) {
    return std::ranges::find(selections, row.description) != selections.end();
  });
}

}  // namespace

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
