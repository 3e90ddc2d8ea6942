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
  object.add("V_fixture", tripleJson(&fixture));
  object.add("C_fixture", optionalJson(waveform.cFixture));
  object.add("L_fixture", optionalJson(waveform.lFixture));
  object.add("R_dut", optionalJson(waveform.rDut));
  object.add("L_dut", optionalJson(waveform.lDut));
  object.add("C_dut", optionalJson(waveform.cDut));
  addPoints(object, "time", waveform.time, waveform);
  object.finish();
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

}  // namespace

void printModelJson(std::ostream& out, const ModelSummary& summary) {
  const IBISModel& model = *summary.model;
  JsonObject object(out);
  object.add("name", model.name.view());
  object.add("line", model.lineNumber);
  object.add("type", modelTypeRow(model.type).name);
  object.add("polarity", wordJson(polarityOf(model)));
  object.add("enable", wordJson(enableOf(model)));
  object.add("users", usersJson(summary.users));
  object.add("selectors", selectorNamesJson(summary));
  object.add("convertible", model.isSound);
  printDiagnostics(object.begin("reasons"), summary.reasons);
  object.add("values", valuesJson(model));
  object.add("defaults", defaultsJson(model));
  object.add("series", {{"on", seriesJson(model.seriesOn)}, {"off", seriesJson(model.seriesOff)}});
  object.add("ramp", {{"rising", rampJson(model.rampDvRise, model.rampDtRise)},
                      {"falling", rampJson(model.rampDvFall, model.rampDtFall)},
                      {"R_load", optionalJson(model.rLoad)}});
  printArray(object.begin("tables"), namedTables(model),
             [&](const NamedTable& each) { printTable(out, each); });
  printArray(object.begin("waveforms"), namedWaveforms(model),
             [&](const NamedWaveform& each) { printWaveform(out, each); });
  object.add("driver", figuresJson(model));
  object.finish();
}

}  // namespace ibis::cli
