#include "list_report.h"

#include <set>
#include <utility>

#include "file_summary.h"
#include "printable.h"
#include "quantity.h"
#include "reader/vocabulary.h"
#include "record_json.h"
#include "report.h"
#include "text_table.h"

namespace ibis::cli {
namespace {

constexpr std::size_t indent = 2;

std::string text(IBISString value) { return printable(value.view()); }

std::string orDash(const std::string& value) { return value.empty() ? "-" : value; }

void addSection(std::string& out, const std::string& title, const TextTable& table) {
  if (!table.empty()) out += '\n' + title + ":\n" + table.text();
}

// So many names, and how many further ones there are.
std::string pinNames(const std::vector<PinGroup>& groups, bool namesComponent) {
  constexpr std::size_t most = 12;
  std::string out;
  std::size_t told = 0;
  for (const PinGroup& group : groups) {
    if (told >= most) break;
    if (namesComponent) {
      out += (out.empty() ? "" : "; ") + text(group.component->name) + ':';
    }
    for (const IBISPin* pin : group.pins) {
      if (told++ >= most) break;
      out += (out.empty() ? "" : " ") + text(pin->name);
    }
  }
  const std::size_t count = pinCount(groups);
  if (count > most) out += " and " + std::to_string(count - most) + " more";
  return out;
}

std::string headLine(const std::string& source, const IBISFileData& file) {
  std::string line = printable(source) + ": ";
  line += file.version == 0 ? "no known version" : "IBIS " + versionText(file.version).str();
  if (!file.fileRev.empty()) line += ", revision " + text(file.fileRev);
  if (!file.date.empty()) line += ", " + text(file.date);
  return wrapped(line, 0, indent) + '\n';
}

TextTable componentTable(const IBISFileData& file) {
  TextTable table(indent);
  if (file.components.empty()) return table;
  table.add({"name", "pins", "package model", "manufacturer"});
  for (const auto& component : file.components) {
    table.add({orDash(text(component->name)), std::to_string(component->pins.size()),
               orDash(text(component->packageModelName)), orDash(text(component->manufacturer))});
  }
  return table;
}

std::string usersText(const ModelSummary& summary, bool namesComponent) {
  std::string out = pinNames(summary.users, namesComponent);
  for (const IBISModelSelector* selector : summary.selectors) {
    out += (out.empty() ? "by " : ", by ") + text(selector->name);
  }
  return orDash(std::move(out));
}

TextTable modelTable(const FileSummary& summary, bool namesComponent) {
  TextTable table(indent);
  if (summary.models.empty()) return table;
  table.add({"name", "type", "supply", "waveforms", "pins"});
  for (const ModelSummary& each : summary.models) {
    const IBISModel& model = *each.model;
    const IBISTriple* supply = supplyOf(model);
    table.add({orDash(text(model.name)), modelTypeRow(model.type).name,
               supply == nullptr ? "-" : quantity(supply->typ, "V"), waveformOrigin(model),
               usersText(each, namesComponent)});
  }
  return table;
}

TextTable selectorTable(const FileSummary& summary, bool namesComponent) {
  TextTable table(indent);
  if (summary.selectors.empty()) return table;
  table.add({"name", "choice", "description"});
  for (const SelectorSummary& each : summary.selectors) {
    bool isFirst = true;
    for (const IBISModelSelectorRow& row : each.selector->rows) {
      table.add({isFirst ? text(each.selector->name) : "", text(row.modelName),
                 orDash(text(row.description))});
      isFirst = false;
    }
    table.add({isFirst ? text(each.selector->name) : "", "",
               "pins: " + orDash(pinNames(each.users, namesComponent))});
  }
  return table;
}

TextTable packageTable(const IBISFileData& file) {
  TextTable table(indent);
  if (file.packageModels.empty()) return table;
  table.add({"name", "pins", "manufacturer"});
  for (const auto& package : file.packageModels) {
    table.add({orDash(text(package->name)), std::to_string(package->numberOfPins),
               orDash(text(package->manufacturer))});
  }
  return table;
}

TextTable refusalTable(const FileSummary& summary) {
  TextTable table(indent);
  for (const ModelSummary& each : summary.models) {
    if (each.model->isSound) continue;
    std::string reasons;
    for (const Diagnostic& reason : each.reasons) {
      reasons += (reasons.empty() ? "line " : "; line ") + std::to_string(reason.line) + ": " +
                 printable(reason.text);
    }
    table.add({orDash(text(each.model->name)), orDash(reasons)});
  }
  return table;
}

std::string lineText(std::int32_t line) { return line > 0 ? "line " + std::to_string(line) : "-"; }

// Without what stands at a model as a reason against it.
TextTable leftOutTable(const std::vector<Diagnostic>& leftOut, const FileSummary& summary,
                       std::size_t limit) {
  TextTable table(indent);
  std::size_t count = 0;
  std::set<std::pair<std::int32_t, std::string_view>> told;
  for (const ModelSummary& each : summary.models) {
    for (const Diagnostic& reason : each.reasons) told.emplace(reason.line, reason.text);
  }
  for (const Diagnostic& each : leftOut) {
    if (told.contains({each.line, each.text}) || ++count > limit) continue;
    table.add({lineText(each.line), printable(each.text)});
    for (const Note& note : each.notes) {
      table.add({lineText(note.line), "note: " + printable(note.text)});
    }
  }
  if (count > limit) table.add({lineText(0), tellMoreMessages(count - limit).text});
  return table;
}

void printComponent(std::ostream& out, const IBISComponent& component) {
  JsonObject item(out);
  item.add("name", component.name.view());
  item.add("manufacturer", textOrNull(component.manufacturer));
  item.add("pins", component.pins.size());
  item.add("diffPins", component.diffPins.size());
  item.add("packageModel", textOrNull(component.packageModelName));
  item.addTexts("pinsWithoutModel", pinsWithoutModel(component),
                [](const IBISPin* pin) { return pin->name.view(); });
  item.finish();
}

void printModel(std::ostream& out, const ModelSummary& summary) {
  const IBISModel& model = *summary.model;
  JsonObject item(out);
  item.add("name", model.name.view());
  item.add("line", model.lineNumber);
  item.add("type", modelTypeRow(model.type).name);
  addCorners(item, "supply", supplyOf(model));
  item.add("waveforms", waveformOrigin(model));
  item.add("risingWaveforms", model.risingWaveforms.size());
  item.add("fallingWaveforms", model.fallingWaveforms.size());
  addUsers(item, summary.users);
  addSelectors(item, summary);
  item.add("convertible", model.isSound);
  printDiagnostics(item.begin("reasons"), summary.reasons);
  item.finish();
}

void printPackage(std::ostream& out, const IBISPackageModel& package) {
  JsonObject item(out);
  item.add("name", package.name.view());
  item.add("line", package.line);
  item.add("manufacturer", textOrNull(package.manufacturer));
  item.add("pins", package.numberOfPins);
  item.finish();
}

}  // namespace

std::string listText(const std::string& source, const TolerantReading& reading,
                     const FileSummary& summary, std::size_t limit) {
  const IBISFileData& file = reading.document->file();
  const bool namesComponent = file.components.size() > 1;
  std::string out = headLine(source, file);
  addSection(out, "Components", componentTable(file));
  addSection(out, "Models", modelTable(summary, namesComponent));
  addSection(out, "Selectors", selectorTable(summary, namesComponent));
  addSection(out, "Package models", packageTable(file));
  addSection(out, "Models that cannot be converted", refusalTable(summary));
  addSection(out, "Refused or left out", leftOutTable(reading.leftOut, summary, limit));
  return out;
}

void printListJson(JsonObject& object, const TolerantReading& reading, const FileSummary& summary) {
  const IBISFileData& file = reading.document->file();
  addHeader(object, file);
  object.addArray("components", file.components,
                  [](std::ostream& out, const auto& each) { printComponent(out, *each); });
  object.addArray("models", summary.models, printModel);
  object.addArray("selectors", summary.selectors, printSelector);
  object.addArray("packageModels", file.packageModels,
                  [](std::ostream& out, const auto& each) { printPackage(out, *each); });
  printDiagnostics(object.begin("leftOut"), reading.leftOut);
}

}  // namespace ibis::cli
