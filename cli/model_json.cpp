#include "model_json.h"

#include <algorithm>
#include <string_view>

#include "driver_figures.h"
#include "json_pieces.h"
#include "model/estimate_waveforms.h"
#include "model/waveform.h"
#include "model_values.h"
#include "reader/vocabulary.h"
#include "record_json.h"

namespace ibis::cli {
namespace {

using nlohmann::ordered_json;

ordered_json optionalJson(const IBISOptional& value) {
  return value.present && !value.isNA ? ordered_json(value.value) : ordered_json();
}

// Prints numbers some at a time, and null for a cell that the file leaves out.
template <class IsMissing>
void printNumbers(std::ostream& out, const YVector<double>& list, IsMissing isMissing) {
  constexpr std::int32_t some = 1024;
  out << '[';
  for (std::int32_t begin = 0; begin < list.size(); begin += some) {
    ordered_json numbers = ordered_json::array();
    for (std::int32_t row = begin; row < std::min(list.size(), begin + some); ++row) {
      numbers.push_back(isMissing(row) ? ordered_json() : ordered_json(list[row]));
    }
    const std::string text = jsonText(numbers);
    if (begin != 0) out << ',';
    out << std::string_view(text).substr(1, text.size() - 2);
  }
  out << ']';
}

template <class Points>
void addPoints(JsonObject& object, const char* name, const YVector<double>& axis,
               const Points& points) {
  printNumbers(object.begin(name), axis, [](std::int32_t) { return false; });
  const auto add = [&](const char* word, const YVector<double>& list, int corner) {
    printNumbers(object.begin(word), list,
                 [&](std::int32_t row) { return points.missing.at(row, corner); });
  };
  add("typ", points.typ, corner::typ);
  add("min", points.min, corner::min);
  add("max", points.max, corner::max);
}

void printTable(std::ostream& out, const NamedTable& named) {
  JsonObject object(out);
  object.add("name", named.name);
  addPoints(object, "voltage", named.table->voltage, *named.table);
  object.finish();
}

// An estimated waveform may have a million points.
void printWaveform(std::ostream& out, const NamedWaveform& named) {
  const IBISWaveform waveform = withPoints(*named.waveform);
  const IBISTriple fixture = fixtureVoltages(waveform);
  JsonObject object(out);
  object.add("name", named.name);
  object.add("origin", named.waveform->kind == IBISWaveform::fromFile ? "given" : "estimated");
  object.add("R_fixture", optionalJson(waveform.rFixture));
  addCorners(object, "V_fixture", &fixture);
  object.add("C_fixture", optionalJson(waveform.cFixture));
  object.add("L_fixture", optionalJson(waveform.lFixture));
  object.add("R_dut", optionalJson(waveform.rDut));
  object.add("L_dut", optionalJson(waveform.lDut));
  object.add("C_dut", optionalJson(waveform.cDut));
  addPoints(object, "time", waveform.time, waveform);
  object.finish();
}

void printRamp(std::ostream& out, IBISTriple swing, IBISTriple time) {
  swing.present = time.present = hasRamp(time);
  const IBISTriple slope = slopeOf(swing, time);
  JsonObject object(out);
  addCorners(object, "dV", &swing);
  addCorners(object, "dt", &time);
  addCorners(object, "slope", &slope);
  object.finish();
}

void printRamps(std::ostream& out, const IBISModel& model) {
  JsonObject object(out);
  printRamp(object.begin("rising"), model.rampDvRise, model.rampDtRise);
  printRamp(object.begin("falling"), model.rampDvFall, model.rampDtFall);
  object.add("R_load", optionalJson(model.rLoad));
  object.finish();
}

void printValues(std::ostream& out, const IBISModel& model) {
  JsonObject object(out);
  for (const ModelValue& value : modelValues()) {
    const IBISTriple& triple = model.*value.triple;
    if (triple.present) addCorners(object, value.name, &triple);
  }
  object.finish();
}

// What a load takes where the file gives nothing.
void printDefaults(std::ostream& out, const IBISModel& model) {
  JsonObject object(out);
  for (const ModelValue& value : modelValues()) {
    IBISTriple triple = model.*value.triple;
    if (!isDefault(triple)) continue;
    triple.present = true;
    addCorners(object, value.name, &triple);
  }
  object.finish();
}

void printElements(std::ostream& out, const IBISSeriesElements& elements) {
  JsonObject object(out);
  for (const SeriesValue& value : seriesValues()) {
    const IBISTriple& triple = elements.*value.triple;
    if (triple.present) addCorners(object, value.name, &triple);
  }
  object.finish();
}

void printSeries(std::ostream& out, const IBISModel& model) {
  JsonObject object(out);
  printElements(object.begin("on"), model.seriesOn);
  printElements(object.begin("off"), model.seriesOff);
  object.finish();
}

void printFigures(std::ostream& out, const IBISModel& model) {
  const DriverFigures figures = driverFigures(model);
  JsonObject object(out);
  addCorners(object, "highImpedance", &figures.highImpedance);
  addCorners(object, "lowImpedance", &figures.lowImpedance);
  addCorners(object, "highLevel", &figures.highLevel);
  addCorners(object, "lowLevel", &figures.lowLevel);
  object.finish();
}

}  // namespace

void printModelJson(std::ostream& out, const ModelSummary& summary) {
  const IBISModel& model = *summary.model;
  JsonObject object(out);
  object.add("name", model.name.view());
  object.add("line", model.lineNumber);
  object.add("type", modelTypeRow(model.type).name);
  object.add("polarity", wordOrNull(polarityOf(model)));
  object.add("enable", wordOrNull(enableOf(model)));
  addUsers(object, summary.users);
  addSelectors(object, summary);
  object.add("convertible", model.isSound);
  printDiagnostics(object.begin("reasons"), summary.reasons);
  printValues(object.begin("values"), model);
  printDefaults(object.begin("defaults"), model);
  printSeries(object.begin("series"), model);
  printRamps(object.begin("ramp"), model);
  object.addArray("tables", namedTables(model), printTable);
  object.addArray("waveforms", namedWaveforms(model), printWaveform);
  printFigures(object.begin("driver"), model);
  object.finish();
}

}  // namespace ibis::cli
