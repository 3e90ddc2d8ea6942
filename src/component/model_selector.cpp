#include "component/model_selector.h"

#include <algorithm>

#include "host/diagnostics/messages.h"
#include "model/model_reader.h"

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
    const std::int32_t place = selections.find(row.description);
    if (place == Selections::absent || place > best) continue;
    best = place;
    name = row.modelName;
  }
  if (!name.empty() || selector.rows.empty()) return name;
  return selector.rows.front().modelName;
}

}  // namespace

void readModelSelector(IBISFile& file, IBISRecords records, std::int32_t& index) {
  IBISModelSelector& selector = file.data().modelSelectors.emplace_back();
  selector.name = keywordText(recordAt(records, index));
  std::string_view text;
  while (nextDataLine(records, index, text)) {
    const IBISString model = popToken(text);
    selector.rows.push_back({model, withoutQuotes(trimBlanks(text), file.data().strings)});
  }
}

IBISString resolveSelector(const IBISModelSelector& selector,
                           std::span<const IBISString> modelSelections) {
  return resolve(selector, indexOf(modelSelections));
}

ModelFinder::ModelFinder(const IBISFileData& file) {
  for (const auto& model : file.models) {
    if (models_.contains(model->name)) continue;
    models_.add(model->name);
    modelPlaces_.push_back(model.get());
  }
  const Selections selections = indexOf(file.modelSelections);
  for (const IBISModelSelector& selector : file.modelSelectors) {
    const auto place = static_cast<std::size_t>(selectors_.findOrAdd(selector.name));
    if (place == selectedNames_.size()) selectedNames_.emplace_back();
    selectedNames_[place] = resolve(selector, selections);
  }
}

IBISModel* ModelFinder::find(std::string_view name) const {
  const std::int32_t selector = selectors_.find(name);
  if (selector != selectors_.absent) name = selectedNames_[static_cast<std::size_t>(selector)];
  const std::int32_t model = models_.find(name);
  return model == models_.absent ? nullptr : modelPlaces_[static_cast<std::size_t>(model)];
}

IBISModel* findModel(const IBISFile& file, std::string_view name) {
  return ModelFinder(file.data()).find(name);
}

void checkUserSelectors(IBISFile& file, IBISErrorHandler& errors) {
  if (file.data().modelSelections.empty()) return;
  NameIndex<ExactCase> descriptions;
  for (const IBISModelSelector& selector : file.data().modelSelectors) {
    for (const IBISModelSelectorRow& row : selector.rows) descriptions.findOrAdd(row.description);
  }
  for (IBISString selection : file.data().modelSelections) {
    if (descriptions.contains(selection)) continue;
    errors.error(message::selectorNotFound, selection.str().c_str());
  }
}

}  // namespace ibis
