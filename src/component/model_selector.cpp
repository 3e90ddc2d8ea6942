#include "component/model_selector.h"

#include <algorithm>

#include "host/diagnostics/messages.h"
#include "model/numbers/numbers.h"

namespace ibis {
namespace {

constexpr std::string_view quotes = "\"'";

// Most descriptions have no quotes and stay where they are in the file's text.
IBISString withoutQuotes(std::string_view text, StringPool& strings) {
  if (text.find_first_of(quotes) == std::string_view::npos) return text;
  std::string kept(text);
  std::erase_if(kept, [](char c) { return quotes.find(c) != std::string_view::npos; });
  return strings.store(kept);
}

using Selections = NameIndex<ExactCase>;

Selections indexOf(std::span<const IBISString> modelSelections) {
  Selections selections;
  for (IBISString selection : modelSelections) selections.findOrAdd(selection);
  return selections;
}

IBISString resolve(const IBISModelSelector& selector, const Selections& selections) {
  std::int32_t best = selections.size();
  IBISString name;
  for (const IBISModelSelectorRow& row : selector.rows) {
    const std::int32_t index = selections.find(row.description);
    if (index == Selections::absent || index > best) continue;
    best = index;
    name = row.modelName;
  }
  if (!name.empty() || selector.rows.empty()) return name;
  return selector.rows.front().modelName;
}

}  // namespace

void readModelSelector(IBISFileData& file, IBISRecords records, std::int32_t& index) {
  IBISModelSelector& selector = file.modelSelectors.emplace_back();
  selector.name = keywordText(recordAt(records, index));
  std::string_view text;
  while (nextDataLine(records, index, text)) {
    const IBISString model = popToken(text);
    selector.rows.push_back({model, withoutQuotes(trimBlanks(text), file.strings)});
  }
}

IBISString resolveSelector(const IBISModelSelector& selector,
                           std::span<const IBISString> modelSelections) {
  return resolve(selector, indexOf(modelSelections));
}

ModelFinder::ModelFinder(const IBISFileData& file) {
  for (const auto& model : file.models) models_.add(model->name, model.get());
  const Selections selections = indexOf(file.modelSelections);
  for (const IBISModelSelector& selector : file.modelSelectors) {
    selectedNames_[selector.name] = resolve(selector, selections);
  }
}

IBISModel* ModelFinder::find(std::string_view name) const {
  const IBISString* selected = selectedNames_.find(name);
  IBISModel* const* model = models_.find(selected != nullptr ? selected->view() : name);
  return model == nullptr ? nullptr : *model;
}

IBISModel* findModel(const IBISFileData& file, std::string_view name) {
  return ModelFinder(file).find(name);
}

void checkUserSelectors(const IBISFileData& file, IBISErrorHandler& errors) {
  if (file.modelSelections.empty()) return;
  NameIndex<ExactCase> descriptions;
  for (const IBISModelSelector& selector : file.modelSelectors) {
    for (const IBISModelSelectorRow& row : selector.rows) descriptions.findOrAdd(row.description);
  }
  for (IBISString selection : file.modelSelections) {
    if (descriptions.contains(selection)) continue;
    errors.error(message::selectorNotFound, selection.str().c_str());
  }
}

}  // namespace ibis
