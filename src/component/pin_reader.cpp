#include "component/pin_reader.h"

#include "component/names/name_table.h"
#include "model/numbers/numbers.h"

namespace ibis {
namespace {

constexpr std::string_view columnNames[] = {"signal_name", "model_name", "R_pin", "L_pin", "C_pin"};
constexpr std::int32_t ownRLCTokens = 6;

enum Column : std::size_t { signalName, modelName, resistance, inductance, capacitance };

class PinRow {
 public:
  PinRow(const std::vector<std::int32_t>& columns, Fields& fields)
      : columns_(columns), fields_(fields) {}

  std::string_view token(Column column) { return fields_.at(columns_[column] + 1); }

  // NA takes the package's typ as read so far.
  double value(Column column, const IBISTriple& package) {
    return parseNumber(token(column), package.typ);
  }

 private:
  const std::vector<std::int32_t>& columns_;
  Fields& fields_;
};

void readRow(IBISPin& pin, IBISComponent& component, const std::vector<std::int32_t>& columns,
             Fields& fields) {
  PinRow row(columns, fields);
  pin.parsed = true;
  pin.name = fields.at(0);
  const IBISString signal = row.token(signalName);
  pin.model_name = row.token(modelName);
  pin.signal_name = component.nameTable->makeUniqueName(signal);
  pin.spiceName = component.nameTable->spiceName(pin.signal_name);
  pin.package = &component.packagesOfPins.front();
  // Reading a column lengthens the row up to it, so the header's columns may make a row complete.
  pin.hasOwnRLC = fields.size() >= ownRLCTokens;
  if (!pin.hasOwnRLC) return;
  pin.ownR = row.value(resistance, pin.package->R_pkg);
  pin.ownL = row.value(inductance, pin.package->L_pkg);
  pin.ownC = row.value(capacitance, pin.package->C_pkg);
  pin.missingR = isMissingValue(row.token(resistance));
  pin.missingL = isMissingValue(row.token(inductance));
  pin.missingC = isMissingValue(row.token(capacitance));
}

std::int32_t findLast(const Fields& tokens, std::string_view name) {
  for (std::int32_t i = tokens.size() - 1; i >= 0; --i) {
    if (tokens[i] == name) return i;
  }
  return -1;
}

}  // namespace

std::vector<std::int32_t> mapColumns(IBISString header, std::span<const std::string_view> names) {
  Fields tokens;
  splitFields(header, tokens);
  std::vector<std::int32_t> columns;
  for (std::string_view name : names) {
    const std::int32_t index = findLast(tokens, name);
    columns.push_back(index >= 0 ? index : static_cast<std::int32_t>(columns.size()));
  }
  return columns;
}

void readPins(IBISComponent& component, IBISRecords records, std::int32_t& index) {
  const std::vector<std::int32_t> columns =
      mapColumns(recordAt(records, index).text(), columnNames);
  component.packagesOfPins.push_front(component.package);
  if (!component.nameTable) component.nameTable = std::make_shared<IBISNameTable>();
  if (component.pins.empty()) {
    const auto rows = static_cast<std::size_t>(countDataLines(records, index));
    component.pins.reserve(rows);
    component.nameTable->reserve(rows);
  }
  Fields fields;
  std::string_view text;
  while (nextDataLine(records, index, text)) {
    IBISPin& pin = component.pins.emplace_back();
    pin.line = recordAt(records, index).line;
    fields.clear();
    splitFields(text, fields);
    readRow(pin, component, columns, fields);
  }
}

}  // namespace ibis
