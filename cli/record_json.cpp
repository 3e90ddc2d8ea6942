#include "record_json.h"

#include "reader/vocabulary.h"

namespace ibis::cli {

using nlohmann::ordered_json;

ordered_json textOrNull(IBISString text) {
  return text.empty() ? ordered_json() : ordered_json(text.view());
}

ordered_json wordOrNull(const char* word) {
  return word == nullptr ? ordered_json() : ordered_json(word);
}

void addCorners(JsonObject& object, std::string_view name, const IBISTriple* triple) {
  if (triple == nullptr || !triple->present) {
    object.add(name, nullptr);
    return;
  }
  JsonObject corners(object.begin(name));
  const auto add = [&](const char* word, int corner) {
    const bool isMissing = triple->missing.at(corner);
    corners.add(word, isMissing ? ordered_json() : ordered_json(triple->at(corner)));
  };
  add("typ", corner::typ);
  add("min", corner::min);
  add("max", corner::max);
  corners.finish();
}

void addUsers(JsonObject& object, const std::vector<PinGroup>& groups) {
  object.addArray("users", groups, [](std::ostream& out, const PinGroup& group) {
    JsonObject item(out);
    item.add("component", group.component->name.view());
    item.addTexts("pins", group.pins, [](const IBISPin* pin) { return pin->name.view(); });
    item.finish();
  });
}

void addHeader(JsonObject& object, const IBISFileData& file) {
  object.add("version",
             file.version == 0 ? ordered_json() : ordered_json(versionText(file.version).view()));
  object.add("fileName", textOrNull(file.fileName));
  object.add("revision", textOrNull(file.fileRev));
  object.add("date", textOrNull(file.date));
}

void addSelectors(JsonObject& object, const ModelSummary& summary) {
  object.addTexts("selectors", summary.selectors,
                  [](const IBISModelSelector* selector) { return selector->name.view(); });
}

void printSelector(std::ostream& out, const SelectorSummary& summary) {
  JsonObject item(out);
  item.add("name", summary.selector->name.view());
  addUsers(item, summary.users);
  item.addArray("choices", summary.selector->rows,
                [](std::ostream& to, const IBISModelSelectorRow& row) {
                  JsonObject choice(to);
                  choice.add("model", row.modelName.view());
                  choice.add("description", row.description.view());
                  choice.finish();
                });
  item.finish();
}

}  // namespace ibis::cli
