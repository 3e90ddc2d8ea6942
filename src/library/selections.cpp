#include "library/selections.h"

#include <algorithm>

#include "reader/text/name_index.h"

namespace ibis {
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

// The selector of the form's name, or null; names may hold the sign too.
IBISModelSelector* chooseByName(const Selectors& selectors, std::string_view text) {
  for (std::size_t sign = text.find('='); sign != text.npos; sign = text.find('=', sign + 1)) {
    IBISModelSelector* const* selector = selectors.find(IBISString(text.substr(0, sign)));
    if (selector != nullptr && choose(**selector, text.substr(sign + 1))) return *selector;
  }
  return nullptr;
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

}  // namespace ibis
