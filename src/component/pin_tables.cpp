#include "component/pin_tables.h"

#include "component/pin_reader.h"
#include "model/numbers/numbers.h"

namespace ibis {
namespace {

constexpr std::string_view diffPinColumns[] = {"inv_pin", "vdiff", "tdelay_typ", "tdelay_min",
                                               "tdelay_max"};
constexpr std::string_view pinMappingColumns[] = {"pulldown_ref", "pullup_ref", "gnd_clamp_ref",
                                                  "power_clamp_ref"};
constexpr std::string_view seriesPinColumns[] = {"pin_2", "model_name", "function_table_group"};
constexpr double assumedThreshold = 0.2;  // volts
constexpr std::string_view groupEnd = "/";

// What the three tables with a header have in common.
struct TableShape {
  std::span<const std::string_view> columns;
  std::int32_t minimumFields;
  std::string_view filler;
};

constexpr TableShape diffPinShape{diffPinColumns, 6, notAvailable};
constexpr TableShape pinMappingShape{pinMappingColumns, 5, "NC"};
constexpr TableShape seriesPinShape{seriesPinColumns, 6, notAvailable};

// Calls add(pin, token of a column, line) for each row.
template <class Add>
void readRows(const TableShape& shape, IBISRecords records, std::int32_t& index, Add add) {
  const std::vector<std::int32_t> columns =
      mapColumns(recordAt(records, index).text(), shape.columns);
  Fields fields;
  std::string_view text;
  while (nextDataLine(records, index, text)) {
    fields.clear();
    splitFields(text, fields, shape.minimumFields, shape.filler);
    const auto token = [&](std::size_t column) { return fields.at(columns[column] + 1); };
    add(IBISString(fields.at(0)), token, recordAt(records, index).line);
  }
}

// Takes pins up to the slash that ends a group; false if the line has no slash.
bool takeGroupPins(const Fields& fields, std::int32_t first, std::vector<IBISString>& pins) {
  for (std::int32_t i = first; i < fields.size(); ++i) {
    if (fields[i] == groupEnd) return true;
    pins.push_back(fields[i]);
  }
  return false;
}

void skipGroupLines(IBISRecords records, std::int32_t& index) {
  Fields fields;
  std::vector<IBISString> dropped;
  std::string_view text;
  bool ended = false;
  while (!ended && nextDataLine(records, index, text)) {
    fields.clear();
    dropped.clear();
    splitFields(text, fields);
    ended = takeGroupPins(fields, 0, dropped);
  }
}

}  // namespace

void readDiffPins(IBISComponent& component, IBISRecords records, std::int32_t& index) {
  readRows(diffPinShape, records, index, [&](IBISString pin, auto token, std::int32_t line) {
    IBISDiffPin& row = component.diffPins.emplace_back();
    row.pin = pin;
    row.inv_pin = token(0);
    row.vdiff = parseNumber(token(1), assumedThreshold);
    row.tdelay_typ = parseNumber(token(2), 0.0);
    row.tdelay_min = parseNumber(token(3), row.tdelay_typ);
    row.tdelay_max = parseNumber(token(4), row.tdelay_typ);
    row.line = line;
  });
}

void readPinMappings(IBISComponent& component, IBISRecords records, std::int32_t& index) {
  readRows(pinMappingShape, records, index, [&](IBISString pin, auto token, std::int32_t) {
    IBISPinMapping& row = component.pinMappings.emplace_back();
    row.pin = pin;
    row.pulldown_ref = token(0);
    row.pullup_ref = token(1);
    row.gnd_clamp_ref = token(2);
    row.power_clamp_ref = token(3);
  });
}

void readSeriesPinMappings(IBISComponent& component, IBISRecords records, std::int32_t& index) {
  readRows(seriesPinShape, records, index, [&](IBISString pin, auto token, std::int32_t) {
    IBISSeriesPinMapping& row = component.seriesPinMappings.emplace_back();
    row.pin = pin;
    row.pin_2 = token(0);
    row.model_name = token(1);
    row.function_table_group = token(2);
  });
}

void readSeriesSwitchGroups(IBISComponent& component, IBISRecords records, std::int32_t& index) {
  Fields fields;
  std::string_view text;
  while (nextDataLine(records, index, text)) {
    IBISSeriesSwitchGroup& group = component.seriesSwitchGroups.emplace_back();
    fields.clear();
    splitFields(text, fields);
    const std::string_view word = fields.at(0);
    if (word != "On" && word != "Off") continue;
    group.state = word == "On" ? IBISSeriesSwitchGroup::on : IBISSeriesSwitchGroup::off;
    if (!takeGroupPins(fields, 1, group.pins)) skipGroupLines(records, index);
  }
}

}  // namespace ibis
