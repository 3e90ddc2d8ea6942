#include "model_report.h"

#include <algorithm>
#include <cmath>

#include "driver_figures.h"
#include "model/estimate_waveforms.h"
#include "model/model_types.h"
#include "model/waveform.h"
#include "output/stream/number_text.h"
#include "printable.h"
#include "quantity.h"
#include "reader/vocabulary.h"
#include "record_json.h"
#include "text_table.h"

namespace ibis::cli {
namespace {

using nlohmann::ordered_json;

constexpr std::size_t indent = 2;
constexpr const char* polarities[] = {"Non-Inverting", "Inverting"};
constexpr const char* enables[] = {"Active-High", "Active-Low"};

// A row of a file's own columns, which come in the order typ, min, max.
constexpr int corners[] = {corner::typ, corner::min, corner::max};

const char* polarityOf(const IBISModel& model) {
  const bool isKnown = hasPolarity(model.type) && model.polarity < 2;
  return isKnown ? polarities[model.polarity] : nullptr;
}

const char* enableOf(const IBISModel& model) {
  const bool isKnown = hasEnable(model.type) && model.enable < 2;
  return isKnown ? enables[model.enable] : nullptr;
}

void addTriple(TextTable& table, const std::string& name, const IBISTriple& triple,
               const std::string& unit) {
  if (!triple.present && !isDefault(triple)) return;
  std::vector<std::string> row = cornerTexts(triple, unit);
  row.insert(row.begin(), name);
  if (!triple.present) row.emplace_back("not in the file");
  table.add(std::move(row));
}

TextTable cornerTable(const std::string& title) {
  TextTable table(indent);
  table.add({title, "typ", "min", "max"});
  return table;
}

std::string valuesText(const IBISModel& model) {
  TextTable table = cornerTable("value");
  for (const ModelValue& value : modelValues()) {
    addTriple(table, value.name, model.*value.triple, value.unit);
  }
  for (const SeriesValue& value : seriesValues()) {
    addTriple(table, value.name, model.seriesOn.*value.triple, value.unit);
    addTriple(table, std::string(value.name) + " (off)", model.seriesOff.*value.triple, value.unit);
  }
  return '\n' + table.text();
}

// The ramp in volts a second; no slope of no time.
IBISTriple slopeOf(const IBISTriple& swing, const IBISTriple& time) {
  IBISTriple slope{.typ = swing.typ / time.typ,
                   .max = swing.max / time.max,
                   .min = swing.min / time.min,
                   .missing = swing.missing};
  for (const int corner : corners) {
    if (!std::isfinite(slope.at(corner))) slope.missing.set(corner);
    if (!slope.missing.at(corner)) slope.present = true;
  }
  return slope;
}

bool hasRamp(const IBISTriple& time) {
  return time.typ != 0.0 || time.min != 0.0 || time.max != 0.0;
}

void addRamp(TextTable& table, const std::string& edge, const IBISTriple& swing,
             const IBISTriple& time) {
  if (!hasRamp(time)) return;
  const IBISTriple slope = slopeOf(swing, time);
  std::vector<std::string> speeds = {edge};
  std::vector<std::string> ratios = {""};
  for (const int corner : corners) {
    const bool isMissing = slope.missing.at(corner);
    speeds.push_back(isMissing ? "-" : quantity(slope.at(corner) / 1e9, "V/ns"));
    ratios.push_back(
        isMissing ? "-" : quantity(swing.at(corner), "V") + " / " + quantity(time.at(corner), "s"));
  }
  table.add(std::move(speeds));
  table.add(std::move(ratios));
}

std::string rampText(const IBISModel& model) {
  TextTable table = cornerTable("ramp");
  addRamp(table, "rising", model.rampDvRise, model.rampDtRise);
  addRamp(table, "falling", model.rampDvFall, model.rampDtFall);
  if (!hasRamp(model.rampDtRise) && !hasRamp(model.rampDtFall)) return {};
  table.add({"R_load", quantity(model.rLoad.value, "Ohm")});
  return '\n' + table.text();
}

// The least and the greatest of a list, without what is no number.
std::string rangeText(const YVector<double>& list, const std::string& unit) {
  double least = INFINITY;
  double greatest = -INFINITY;
  for (const double value : list) {
    least = std::min(least, value);
    greatest = std::max(greatest, value);
  }
  if (least > greatest) return "-";
  return quantity(least, unit) + " to " + quantity(greatest, unit);
}

std::string missingText(const MissingCells& missing, std::int32_t rows) {
  std::string text;
  if (!givesCorner(missing, rows, corner::min)) text += " min";
  if (!givesCorner(missing, rows, corner::max)) text += " max";
  return rows == 0 || text.empty() ? "" : "without" + text;
}

std::string tablesText(const IBISModel& model) {
  TextTable table(indent);
  for (const auto& [name, each] : namedTables(model)) {
    if (table.empty()) table.add({"table", "rows", "voltage", "current (typ)"});
    table.add({name, std::to_string(each->voltage.size()), rangeText(each->voltage, "V"),
               rangeText(each->typ, "A"), missingText(each->missing, each->voltage.size())});
  }
  return table.empty() ? "" : '\n' + table.text();
}

std::string fixtureText(const IBISWaveform& waveform) {
  std::string text;
  if (waveform.rFixture.present) text += quantity(waveform.rFixture.value, "Ohm");
  if (waveform.vFixture.present) text += " to " + quantity(waveform.vFixture.value, "V");
  if (waveform.cFixture.present) text += ", " + quantity(waveform.cFixture.value, "F");
  if (waveform.lFixture.present) text += ", " + quantity(waveform.lFixture.value, "H");
  return text.empty() ? "-" : text;
}

std::string waveformsText(const IBISModel& model) {
  TextTable table(indent);
  for (const auto& [name, each] : namedWaveforms(model)) {
    if (table.empty()) table.add({"waveform", "rows", "time", "voltage (typ)", "fixture"});
    const IBISWaveform waveform = withPoints(*each);
    std::string fixture = fixtureText(waveform);
    if (each->kind != IBISWaveform::fromFile) fixture += ", estimated";
    const std::string missing = missingText(waveform.missing, waveform.time.size());
    if (!missing.empty()) fixture += ", " + missing;
    table.add({name, std::to_string(waveform.time.size()), rangeText(waveform.time, "s"),
               rangeText(waveform.typ, "V"), fixture});
  }
  return table.empty() ? "" : '\n' + table.text();
}

std::string figuresText(const IBISModel& model) {
  const DriverFigures figures = driverFigures(model);
  TextTable table = cornerTable("driver");
  addTriple(table, "high, half the swing", figures.highImpedance, "Ohm");
  addTriple(table, "low, half the swing", figures.lowImpedance, "Ohm");
  addTriple(table, "high, 50 Ohm to ground", figures.highLevel, "V");
  addTriple(table, "low, 50 Ohm to supply", figures.lowLevel, "V");
  const bool any = figures.highImpedance.present || figures.lowImpedance.present ||
                   figures.highLevel.present || figures.lowLevel.present;
  return any ? '\n' + table.text() : "";
}

std::string headText(const ModelSummary& summary) {
  const IBISModel& model = *summary.model;
  std::string line = "Model " + printable(model.name.view()) + " (line " +
                     std::to_string(model.lineNumber) + "): " + modelTypeRow(model.type).name;
  for (const char* word : {polarityOf(model), enableOf(model)}) {
    if (word != nullptr) line.append(", ").append(word);
  }
  std::string out = wrapped(line, 0, indent) + '\n';
  TextTable table(indent);
  if (!summary.users.empty()) table.add({"pins", usersText(summary.users)});
  if (!summary.selectors.empty()) {
    std::string names;
    for (const IBISModelSelector* selector : summary.selectors) {
      names += (names.empty() ? "" : ", ") + printable(selector->name.view());
    }
    table.add({"selectors", names});
  }
  for (const Diagnostic& reason : summary.reasons) {
    table.add({"refused", "line " + std::to_string(reason.line) + ": " + printable(reason.text)});
  }
  return out + table.text();
}

ordered_json optionalJson(const IBISOptional& value) {
  return value.present && !value.isNA ? ordered_json(value.value) : ordered_json();
}

ordered_json listJson(const YVector<double>& list) {
  ordered_json array = ordered_json::array();
  for (const double value : list) array.push_back(value);
  return array;
}

ordered_json cornerListJson(const YVector<double>& list, const MissingCells& missing, int corner) {
  ordered_json array = ordered_json::array();
  for (std::int32_t row = 0; row < list.size(); ++row) {
    array.push_back(missing.at(row, corner) ? ordered_json() : ordered_json(list[row]));
  }
  return array;
}

template <class Points>
void addCornersJson(ordered_json& item, const Points& points) {
  item["typ"] = cornerListJson(points.typ, points.missing, corner::typ);
  item["min"] = cornerListJson(points.min, points.missing, corner::min);
  item["max"] = cornerListJson(points.max, points.missing, corner::max);
}

ordered_json tableJson(const NamedTable& named) {
  ordered_json item = ordered_json::object();
  item["name"] = named.name;
  item["voltage"] = listJson(named.table->voltage);
  addCornersJson(item, *named.table);
  return item;
}

ordered_json waveformJson(const NamedWaveform& named) {
  const IBISWaveform waveform = withPoints(*named.waveform);
  const IBISTriple fixture = fixtureVoltages(waveform);
  ordered_json item = ordered_json::object();
  item["name"] = named.name;
  item["origin"] = named.waveform->kind == IBISWaveform::fromFile ? "given" : "estimated";
  item["R_fixture"] = optionalJson(waveform.rFixture);
  item["V_fixture"] = tripleJson(&fixture);
  item["C_fixture"] = optionalJson(waveform.cFixture);
  item["L_fixture"] = optionalJson(waveform.lFixture);
  item["R_dut"] = optionalJson(waveform.rDut);
  item["L_dut"] = optionalJson(waveform.lDut);
  item["C_dut"] = optionalJson(waveform.cDut);
  item["time"] = listJson(waveform.time);
  addCornersJson(item, waveform);
  return item;
}

ordered_json rampJson(IBISTriple swing, IBISTriple time) {
  swing.present = time.present = hasRamp(time);
  const IBISTriple slope = slopeOf(swing, time);
  return {{"dV", tripleJson(&swing)}, {"dt", tripleJson(&time)}, {"slope", tripleJson(&slope)}};
}

ordered_json valuesJson(const IBISModel& model) {
  ordered_json object = ordered_json::object();
  for (const ModelValue& value : modelValues()) {
    const IBISTriple& triple = model.*value.triple;
    if (triple.present) object[value.name] = tripleJson(&triple);
  }
  return object;
}

// What a load takes where the file gives nothing.
ordered_json defaultsJson(const IBISModel& model) {
  ordered_json object = ordered_json::object();
  for (const ModelValue& value : modelValues()) {
    IBISTriple triple = model.*value.triple;
    if (!isDefault(triple)) continue;
    triple.present = true;
    object[value.name] = tripleJson(&triple);
  }
  return object;
}

ordered_json seriesJson(const IBISSeriesElements& elements) {
  ordered_json object = ordered_json::object();
  for (const SeriesValue& value : seriesValues()) {
    const IBISTriple& triple = elements.*value.triple;
    if (triple.present) object[value.name] = tripleJson(&triple);
  }
  return object;
}

ordered_json figuresJson(const IBISModel& model) {
  const DriverFigures figures = driverFigures(model);
  return {{"highImpedance", tripleJson(&figures.highImpedance)},
          {"lowImpedance", tripleJson(&figures.lowImpedance)},
          {"highLevel", tripleJson(&figures.highLevel)},
          {"lowLevel", tripleJson(&figures.lowLevel)}};
}

ordered_json wordJson(const char* word) {
  return word == nullptr ? ordered_json() : ordered_json(word);
}

// Fifteen digits, which a decimal number of a file survives.
std::string plainNumber(double value) { return numberText(value, 15); }

template <class Points>
std::string csvLines(const std::string& titles, const YVector<double>& axis, const Points& points) {
  std::string out = titles;
  for (std::int32_t row = 0; row < axis.size(); ++row) {
    out += plainNumber(axis[row]);
    const auto add = [&](const YVector<double>& list, int corner) {
      out += ',';
      if (!points.missing.at(row, corner)) out += plainNumber(list[row]);
    };
    add(points.typ, corner::typ);
    add(points.min, corner::min);
    add(points.max, corner::max);
    out += '\n';
  }
  return out;
}

}  // namespace

std::string csvText(const IBISTable& table) {
  return csvLines("voltage,typ,min,max\n", table.voltage, table);
}

std::string csvText(const IBISWaveform& waveform) {
  const IBISWaveform filled = withPoints(waveform);
  return csvLines("time,typ,min,max\n", filled.time, filled);
}

std::string usersText(const std::vector<PinGroup>& groups) {
  std::string out;
  for (const PinGroup& group : groups) {
    out += (out.empty() ? "" : "; ") + printable(group.component->name.view()) + ':';
    for (const IBISPin* pin : group.pins) out += ' ' + printable(pin->name.view());
  }
  return out;
}

std::string modelText(const ModelSummary& summary) {
  const IBISModel& model = *summary.model;
  return headText(summary) + valuesText(model) + rampText(model) + tablesText(model) +
         waveformsText(model) + figuresText(model);
}

ordered_json fullModelJson(const ModelSummary& summary) {
  const IBISModel& model = *summary.model;
  ordered_json item = ordered_json::object();
  item["name"] = model.name.view();
  item["line"] = model.lineNumber;
  item["type"] = modelTypeRow(model.type).name;
  item["polarity"] = wordJson(polarityOf(model));
  item["enable"] = wordJson(enableOf(model));
  item["users"] = usersJson(summary.users);
  item["selectors"] = selectorNamesJson(summary);
  item["convertible"] = model.isSound;
  item["reasons"] = diagnosticsJson(summary.reasons);
  item["values"] = valuesJson(model);
  item["defaults"] = defaultsJson(model);
  item["series"] = {{"on", seriesJson(model.seriesOn)}, {"off", seriesJson(model.seriesOff)}};
  item["ramp"] = {{"rising", rampJson(model.rampDvRise, model.rampDtRise)},
                  {"falling", rampJson(model.rampDvFall, model.rampDtFall)},
                  {"R_load", optionalJson(model.rLoad)}};
  ordered_json& tables = item["tables"] = ordered_json::array();
  for (const NamedTable& each : namedTables(model)) tables.push_back(tableJson(each));
  ordered_json& waveforms = item["waveforms"] = ordered_json::array();
  for (const NamedWaveform& each : namedWaveforms(model)) waveforms.push_back(waveformJson(each));
  item["driver"] = figuresJson(model);
  return item;
}

}  // namespace ibis::cli
