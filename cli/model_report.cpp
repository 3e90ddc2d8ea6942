#include "model_report.h"

#include <algorithm>
#include <cmath>

#include "driver_figures.h"
#include "model/estimate_waveforms.h"
#include "model/waveform.h"
#include "output/stream/number_text.h"
#include "printable.h"
#include "quantity.h"
#include "reader/vocabulary.h"
#include "text_table.h"

namespace ibis::cli {
namespace {

constexpr std::size_t indent = 2;

// A row of a file's own columns, which come in the order typ, min, max.
constexpr int corners[] = {corner::typ, corner::min, corner::max};

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

}  // namespace ibis::cli
