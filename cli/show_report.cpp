#include "show_report.h"

#include <algorithm>

#include "model_json.h"
#include "model_report.h"
#include "printable.h"
#include "quantity.h"
#include "reader/vocabulary.h"
#include "record_json.h"
#include "text_pieces.h"
#include "text_table.h"

namespace ibis::cli {
namespace {

using nlohmann::ordered_json;

constexpr std::size_t indent = 2;

std::string text(IBISString value) { return printable(value.view()); }

std::string orDash(const std::string& value) { return value.empty() ? "-" : value; }

const char* locationWord(std::int32_t place) {
  return place == location::die ? "Die" : place == location::pin ? "Pin" : nullptr;
}

void addTriple(TextTable& table, const std::string& name, const IBISTriple& triple,
               const std::string& unit) {
  std::vector<std::string> row = cornerTexts(triple, unit);
  row.insert(row.begin(), name);
  table.add(std::move(row));
}

std::string packageText(const IBISPackage& package) {
  TextTable table(indent);
  table.add({"package", "typ", "min", "max"});
  addTriple(table, "R_pkg", package.R_pkg, "Ohm");
  addTriple(table, "L_pkg", package.L_pkg, "H");
  addTriple(table, "C_pkg", package.C_pkg, "F");
  return '\n' + table.text();
}

// A value of a row of its own, which may lack it.
std::string ownText(const IBISPin& pin, double value, bool isMissing, const std::string& unit) {
  return !pin.hasOwnRLC || isMissing ? "-" : quantity(value, unit);
}

std::string pinsText(const IBISComponent& component) {
  TextTable table(indent);
  table.add({"pin", "signal", "model", "R_pin", "L_pin", "C_pin"});
  for (const IBISPin& pin : component.pins) {
    table.add({orDash(text(pin.name)), orDash(text(pin.signal_name)), orDash(text(pin.model_name)),
               ownText(pin, pin.ownR, pin.missingR, "Ohm"),
               ownText(pin, pin.ownL, pin.missingL, "H"),
               ownText(pin, pin.ownC, pin.missingC, "F")});
  }
  return '\n' + table.text();
}

std::string pairsText(const IBISComponent& component) {
  if (component.diffPins.empty()) return {};
  TextTable table(indent);
  table.add({"pair", "vdiff", "delay typ", "min", "max"});
  for (const IBISDiffPin& pair : component.diffPins) {
    table.add({text(pair.pin) + ", " + text(pair.inv_pin), quantity(pair.vdiff, "V"),
               quantity(pair.tdelay_typ, "s"), quantity(pair.tdelay_min, "s"),
               quantity(pair.tdelay_max, "s")});
  }
  return '\n' + table.text();
}

std::string componentText(const IBISComponent& component) {
  TextTable table(indent);
  table.add({"manufacturer", orDash(text(component.manufacturer))});
  if (!component.packageModelName.empty()) {
    table.add({"package model", text(component.packageModelName)});
  }
  if (const char* word = locationWord(component.siLocation)) table.add({"Si_location", word});
  if (const char* word = locationWord(component.timingLocation)) {
    table.add({"Timing_location", word});
  }
  return "Component " + text(component.name) + '\n' + table.text() +
         packageText(component.package) + pinsText(component) + pairsText(component);
}

std::string selectorText(const SelectorSummary& summary) {
  TextTable table(indent);
  table.add({"model", "description"});
  for (const IBISModelSelectorRow& row : summary.selector->rows) {
    table.add({text(row.modelName), orDash(text(row.description))});
  }
  TextTable users(indent);
  if (!summary.users.empty()) users.add({"pins", usersText(summary.users)});
  return "Selector " + text(summary.selector->name) + '\n' + users.text() + '\n' + table.text();
}

std::string packageModelText(const IBISPackageModel& package) {
  TextTable table(indent);
  const auto add = [&](const char* name, IBISString value) {
    if (!value.empty()) table.add({name, text(value)});
  };
  add("manufacturer", package.manufacturer);
  add("OEM", package.oem);
  add("description", package.description);
  table.add({"pins", std::to_string(package.numberOfPins)});
  table.add({"resistances", std::to_string(package.resistance.size())});
  table.add({"inductances", std::to_string(package.inductance.size())});
  table.add({"capacitances", std::to_string(package.capacitance.size())});
  return "Package model " + text(package.name) + " (line " + std::to_string(package.line) + ")\n" +
         table.text();
}

const IBISDiffPin* pairOf(const FoundPin& found) {
  for (const IBISDiffPin& pair : found.component->diffPins) {
    if (pair.pin == found.pin->name || pair.inv_pin == found.pin->name) return &pair;
  }
  return nullptr;
}

std::string modelOfPin(const IBISPin& pin) {
  if (pin.model == nullptr) return orDash(text(pin.model_name)) + " (not defined)";
  if (pin.model->name == pin.model_name) return text(pin.model_name);
  return text(pin.model_name) + " (first choice " + text(pin.model->name) + ')';
}

std::string pinText(const FoundPin& found) {
  const IBISPin& pin = *found.pin;
  TextTable table(indent);
  table.add({"signal", orDash(text(pin.signal_name))});
  table.add({"model", modelOfPin(pin)});
  if (const IBISDiffPin* pair = pairOf(found)) {
    table.add({"pair", text(pair->pin) + ", " + text(pair->inv_pin)});
  }
  TextTable values(indent);
  values.add({pin.hasOwnRLC ? "own" : "package", "typ", "min", "max"});
  addTriple(values, "R_pin", pin.R_pin(), "Ohm");
  addTriple(values, "L_pin", pin.L_pin(), "H");
  addTriple(values, "C_pin", pin.C_pin(), "F");
  return "Pin " + text(pin.name) + " of " + text(found.component->name) + " (line " +
         std::to_string(pin.line) + ")\n" + table.text() + '\n' + values.text();
}

void addPinCorners(JsonObject& object, const char* name, const IBISTriple& triple, bool isMissing) {
  addCorners(object, name, isMissing ? nullptr : &triple);
}

void printPin(std::ostream& out, const FoundPin& found, bool namesComponent) {
  const IBISPin& pin = *found.pin;
  JsonObject item(out);
  if (namesComponent) item.add("component", found.component->name.view());
  item.add("name", pin.name.view());
  item.add("line", pin.line);
  item.add("signal", pin.signal_name.view());
  item.add("modelName", pin.model_name.view());
  item.add("model", pin.model == nullptr ? ordered_json() : ordered_json(pin.model->name.view()));
  item.add("hasOwnValues", pin.hasOwnRLC);
  addPinCorners(item, "R_pin", pin.R_pin(), pin.hasOwnRLC && pin.missingR);
  addPinCorners(item, "L_pin", pin.L_pin(), pin.hasOwnRLC && pin.missingL);
  addPinCorners(item, "C_pin", pin.C_pin(), pin.hasOwnRLC && pin.missingC);
  item.finish();
}

void printPair(std::ostream& out, const IBISDiffPin& pair) {
  JsonObject item(out);
  item.add("pin", pair.pin.view());
  item.add("invertedPin", pair.inv_pin.view());
  item.add("vdiff", pair.vdiff);
  JsonObject delay(item.begin("delay"));
  delay.add("typ", pair.tdelay_typ);
  delay.add("min", pair.tdelay_min);
  delay.add("max", pair.tdelay_max);
  delay.finish();
  item.finish();
}

void printComponent(std::ostream& out, const IBISComponent& component) {
  JsonObject item(out);
  item.add("name", component.name.view());
  item.add("manufacturer", textOrNull(component.manufacturer));
  item.add("packageModel", textOrNull(component.packageModelName));
  item.add("Si_location", wordOrNull(locationWord(component.siLocation)));
  item.add("Timing_location", wordOrNull(locationWord(component.timingLocation)));
  addCorners(item, "R_pkg", &component.package.R_pkg);
  addCorners(item, "L_pkg", &component.package.L_pkg);
  addCorners(item, "C_pkg", &component.package.C_pkg);
  item.addArray("pins", component.pins, [&](std::ostream& to, const IBISPin& pin) {
    printPin(to, {&component, &pin}, false);
  });
  item.addArray("diffPins", component.diffPins, printPair);
  item.finish();
}

void printEntry(std::ostream& out, const IBISMatrixEntry& entry) {
  out << '[' << entry.row << ',' << entry.column << ','
      << jsonText(entry.isNA ? ordered_json() : ordered_json(entry.value)) << ']';
}

void printPackageModel(std::ostream& out, const IBISPackageModel& package) {
  JsonObject item(out);
  item.add("name", package.name.view());
  item.add("line", package.line);
  item.add("manufacturer", textOrNull(package.manufacturer));
  item.add("oem", textOrNull(package.oem));
  item.add("description", textOrNull(package.description));
  item.add("numberOfPins", package.numberOfPins);
  item.addTexts("pins", package.pinNames, [](IBISString name) { return name.view(); });
  item.addArray("resistance", package.resistance, printEntry);
  item.addArray("inductance", package.inductance, printEntry);
  item.addArray("capacitance", package.capacitance, printEntry);
  item.finish();
}

template <class Find>
void findPins(Found& found, const IBISFileData& file, Find isWanted) {
  for (const auto& component : file.components) {
    for (const IBISPin& pin : component->pins) {
      if (isWanted(pin)) found.pins.push_back({.component = component.get(), .pin = &pin});
    }
  }
}

// Lines of a text that begins behind a title.
void addLines(std::string& out, const char* title, IBISString value) {
  if (value.empty()) return;
  out += std::string(title) + ":\n";
  const std::string_view all = value.view();
  const std::string_view text = all.substr(std::min(all.find_first_not_of(' '), all.size()));
  for (const std::string_view line : piecesOf(text, '\n')) {
    out += std::string(indent, ' ') + printable(line) + '\n';
  }
}

}  // namespace

Found findAll(const IBISFileData& file, const FileSummary& summary) {
  Found found;
  for (const auto& each : file.components) found.components.push_back(each.get());
  for (const ModelSummary& each : summary.models) found.models.push_back(&each);
  for (const SelectorSummary& each : summary.selectors) found.selectors.push_back(&each);
  for (const auto& each : file.packageModels) found.packageModels.push_back(each.get());
  return found;
}

Found findByName(const IBISFileData& file, const FileSummary& summary, const std::string& name) {
  const IBISString wanted{std::string_view(name)};
  Found found = findAll(file, summary);
  std::erase_if(found.components, [&](const auto* each) { return each->name != wanted; });
  std::erase_if(found.models, [&](const auto* each) { return each->model->name != wanted; });
  std::erase_if(found.selectors, [&](const auto* each) { return each->selector->name != wanted; });
  std::erase_if(found.packageModels, [&](const auto* each) { return each->name != wanted; });
  findPins(found, file, [&](const IBISPin& pin) { return pin.name == wanted; });
  if (found.empty()) {
    findPins(found, file, [&](const IBISPin& pin) { return pin.signal_name == wanted; });
  }
  return found;
}

std::vector<std::string> allNames(const IBISFileData& file) {
  std::vector<std::string> names;
  for (const auto& each : file.models) {
    if (each->lineNumber > 0) names.push_back(each->name.str());
  }
  for (const auto& each : file.components) names.push_back(each->name.str());
  for (const IBISModelSelector& each : file.modelSelectors) names.push_back(each.name.str());
  for (const auto& each : file.packageModels) names.push_back(each->name.str());
  for (const auto& component : file.components) {
    for (const IBISPin& pin : component->pins) {
      names.push_back(pin.name.str());
      names.push_back(pin.signal_name.str());
    }
  }
  return names;
}

std::string showText(const Found& found) {
  std::string out;
  const auto add = [&](const std::string& part) { out += (out.empty() ? "" : "\n") + part; };
  for (const IBISComponent* each : found.components) add(componentText(*each));
  for (const ModelSummary* each : found.models) add(modelText(*each));
  for (const SelectorSummary* each : found.selectors) add(selectorText(*each));
  for (const IBISPackageModel* each : found.packageModels) add(packageModelText(*each));
  for (const FoundPin& each : found.pins) add(pinText(each));
  return out;
}

void printFoundJson(JsonObject& object, const Found& found) {
  object.addArray("components", found.components,
                  [](std::ostream& out, const auto* each) { printComponent(out, *each); });
  object.addArray("models", found.models,
                  [](std::ostream& out, const auto* each) { printModelJson(out, *each); });
  object.addArray("selectors", found.selectors,
                  [](std::ostream& out, const auto* each) { printSelector(out, *each); });
  object.addArray("packageModels", found.packageModels,
                  [](std::ostream& out, const auto* each) { printPackageModel(out, *each); });
  object.addArray("pins", found.pins,
                  [](std::ostream& out, const FoundPin& each) { printPin(out, each, true); });
}

std::string headerText(const std::string& source, const IBISFileData& file) {
  std::string out = printable(source) + ": ";
  out += file.version == 0 ? "no known version" : "IBIS " + versionText(file.version).str();
  out += '\n';
  TextTable table(indent);
  table.add({"file name", orDash(text(file.fileName))});
  table.add({"revision", orDash(text(file.fileRev))});
  table.add({"date", orDash(text(file.date))});
  out += table.text();
  addLines(out, "Source", file.source);
  addLines(out, "Notes", file.notes);
  addLines(out, "Disclaimer", file.disclaimer);
  addLines(out, "Copyright", file.copyright);
  return out;
}

}  // namespace ibis::cli
