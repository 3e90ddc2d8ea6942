#include "record_json.h"

#include "reader/vocabulary.h"

namespace ibis::cli {

using nlohmann::ordered_json;

ordered_json textOrNull(IBISString text) {
  return text.empty() ? ordered_json() : ordered_json(text.view());
}

ordered_json tripleJson(const IBISTriple* triple) {
  if (triple == nullptr || !triple->present) return nullptr;
  const auto value = [&](int corner) {
    return triple->missing.at(corner) ? ordered_json() : ordered_json(triple->at(corner));
  };
  return {{"typ", value(corner::typ)}, {"min", value(corner::min)}, {"max", value(corner::max)}};
}

ordered_json diagnosticsJson(const std::vector<Diagnostic>& list) {
  ordered_json array = ordered_json::array();
  for (const Diagnostic& each : list) {
    ordered_json& item = array.emplace_back(ordered_json::object());
    item["id"] = each.id;
    item["line"] = each.line > 0 ? ordered_json(each.line) : ordered_json();
    item["text"] = each.text;
    if (each.notes.empty()) continue;
    ordered_json& notes = item["notes"] = ordered_json::array();
    for (const Note& note : each.notes) {
      notes.push_back({{"line", note.line > 0 ? ordered_json(note.line) : ordered_json()},
                       {"text", note.text}});
    }
  }
  return array;
}

ordered_json usersJson(const std::vector<PinGroup>& groups) {
  ordered_json array = ordered_json::array();
  for (const PinGroup& group : groups) {
    ordered_json& item = array.emplace_back(ordered_json::object());
    item["component"] = group.component->name.view();
    ordered_json& pins = item["pins"] = ordered_json::array();
    for (const IBISPin* pin : group.pins) pins.push_back(pin->name.view());
  }
  return array;
}

ordered_json selectorJson(const SelectorSummary& summary) {
  ordered_json item = ordered_json::object();
  item["name"] = summary.selector->name.view();
  item["users"] = usersJson(summary.users);
  ordered_json& choices = item["choices"] = ordered_json::array();
  for (const IBISModelSelectorRow& row : summary.selector->rows) {
    choices.push_back({{"model", row.modelName.view()}, {"description", row.description.view()}});
  }
  return item;
}

ordered_json selectorNamesJson(const ModelSummary& summary) {
  ordered_json array = ordered_json::array();
  for (const IBISModelSelector* selector : summary.selectors)
    array.push_back(selector->name.view());
  return array;
}

void addHeaderJson(ordered_json& object, const IBISFileData& file) {
  object["version"] = file.version == 0 ? ordered_json() : versionText(file.version).view();
  object["fileName"] = textOrNull(file.fileName);
  object["revision"] = textOrNull(file.fileRev);
  object["date"] = textOrNull(file.date);
}

}  // namespace ibis::cli
