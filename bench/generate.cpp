#include "generate.h"

#include <algorithm>

#include "file_writer.h"

namespace ibis::bench {
namespace {

constexpr ModelShape inputOutput{
    .type = "I/O", .drives = true, .pullsUp = true, .listens = true, .hasEnable = true};
constexpr ModelShape threeState{
    .type = "3-state", .drives = true, .pullsUp = true, .hasEnable = true};
constexpr ModelShape pushPull{.type = "Output", .drives = true, .pullsUp = true};
constexpr ModelShape openDrain{.type = "Open_drain", .drives = true};
constexpr ModelShape inputOnly{.type = "Input", .listens = true};

std::string numbered(std::string_view prefix, std::size_t number) {
  return std::string(prefix) + std::to_string(number);
}

// Small files get small items, so that they hold some and their size is met.
int rowsFor(const FileWriter& writer, int usual, std::size_t bytesOfItem) {
  constexpr int fewest = 4;
  constexpr double itemsOfSmallFile = 4.0;
  if (writer.wanted().items != 0) return usual;
  const double share = static_cast<double>(writer.wanted().bytes) /
                       (itemsOfSmallFile * static_cast<double>(bytesOfItem));
  return std::max(fewest, static_cast<int>(std::min(share, 1.0) * usual));
}

NumberStyle styleOf(std::size_t number) {
  return static_cast<NumberStyle>(number % static_cast<std::size_t>(numberStyleCount));
}

// The pin that makes a model count as used.
void pinOfModel(FileWriter& writer, std::string_view model) {
  const std::string number = std::to_string(writer.counts().pins + 1);
  writer.pin(number, "S" + number, model);
}

void smallTables(FileWriter& writer, const ModelShape& shape) {
  constexpr int rows = 5;
  writer.table("Pulldown", rows, 0.05, {});
  if (shape.pullsUp) writer.table("Pullup", rows, -0.05, {});
}

void beginPlain(FileWriter&) {}

// Kinds whose load needs a model but is not about models.
void beginWithInput(FileWriter& writer) {
  writer.beginModel("input", inputOnly);
  pinOfModel(writer, "input");
}

void addWaveforms(FileWriter& writer) {
  const std::string name = numbered("buffer", writer.itemsWritten());
  pinOfModel(writer, name);
  writer.beginModel(name, inputOutput);
  smallTables(writer, inputOutput);
  writer.waveforms(inputOutput, rowsFor(writer, 500, 90'000),
                   {.style = styleOf(writer.itemsWritten())});
}

void addTables(FileWriter& writer) {
  const std::string name = numbered("buffer", writer.itemsWritten());
  const Columns columns{.style = styleOf(writer.itemsWritten())};
  const int rows = rowsFor(writer, 100, 17'000);
  pinOfModel(writer, name);
  writer.beginModel(name, inputOutput);
  writer.table("Pulldown", rows, 0.05, columns);
  writer.table("Pullup", rows, -0.05, columns);
  writer.table("GND Clamp", rows, 0.2, columns);
  writer.table("POWER Clamp", rows, -0.2, columns);
  writer.waveforms(inputOutput, 2, columns);
}

// Drivers without waveforms, which a load estimates.
void addRamps(FileWriter& writer) {
  constexpr std::size_t waveforms = 4;
  const std::string name = numbered("buffer", writer.itemsWritten());
  pinOfModel(writer, name);
  writer.beginModel(name, pushPull);
  const int rows = rowsFor(writer, 40, 3'000);
  writer.table("Pulldown", rows, 0.05, {});
  writer.table("Pullup", rows, -0.05, {});
  writer.counts().estimatedWaveforms += waveforms;
  writer.counts().libraryNumbers += waveforms * 7;
  ++writer.counts().warnings;
}

void addPin(FileWriter& writer) {
  const std::string number = std::to_string(writer.counts().pins + 1);
  writer.pinWithValues(number, "DATA" + number, "input");
}

void beginPackage(FileWriter& writer) {
  beginWithInput(writer);
  writer.keyword(Part::component, "Package Model", "frame");
  writer.keyword(Part::packageModel, "Define Package Model", "frame");
  writer.keyword(Part::pinNumbers, "Pin Numbers");
  writer.keyword(Part::resistance, "Model Data");
  writer.keyword(Part::resistance, "Resistance Matrix", "Sparse_matrix");
  writer.keyword(Part::inductance, "Inductance Matrix", "Sparse_matrix");
  writer.keyword(Part::capacitance, "Capacitance Matrix", "Sparse_matrix");
}

// One row of a matrix: the pin itself and its neighbours behind it.
void addMatrixRow(FileWriter& writer, Part part, std::size_t pin, double value) {
  constexpr std::size_t neighbours = 4;
  writer.keyword(part, "Row", std::to_string(pin));
  for (std::size_t i = 0; i <= std::min(neighbours, pin - 1); ++i) {
    std::string text;
    const double share = static_cast<double>(1 + i) * (1.0 + 0.01 * writer.dice().fraction());
    appendNumber(text, value / share, NumberStyle::scientific, "");
    writer.data(part, {std::to_string(pin - i), text});
    writer.counts().matrixEntries += i == 0 ? 1 : 2;
  }
}

void addPackagePin(FileWriter& writer) {
  const std::size_t pin = ++writer.counts().packagePins;
  const std::string number = std::to_string(pin);
  if (pin > 1) writer.pin(number, "S" + number, "input");
  writer.data(Part::pinNumbers, {number});
  addMatrixRow(writer, Part::resistance, pin, 0.05);
  addMatrixRow(writer, Part::inductance, pin, 4e-9);
  addMatrixRow(writer, Part::capacitance, pin, 6e-13);
}

void beginHeader(FileWriter& writer) {
  writer.keyword(Part::header, "Notes", "What a user should know:");
  beginWithInput(writer);
}

void addHeaderLine(FileWriter& writer) {
  writer.data(Part::header, {"    measured on", numbered("lot", writer.itemsWritten()),
                             "at room temperature, with the die alone and without its package"});
}

void addBanner(FileWriter& writer, std::string_view name, int lines) {
  const std::string rule(70, '*');
  writer.blank(Part::models);
  writer.comment(Part::models, rule);
  for (int i = 0; i < lines; ++i) {
    writer.comment(Part::models, " " + std::string(name) +
                                     ": extracted from the transistor netlist at three corners, "
                                     "checked against the bench");
    if (i % 8 == 7) writer.blank(Part::models);
  }
  writer.comment(Part::models, rule);
  writer.blank(Part::models);
}

void addMixedPins(FileWriter& writer, std::string_view model, int count) {
  for (int i = 0; i < count; ++i) {
    const std::string number = std::to_string(writer.counts().pins + 1);
    if (i % 3 == 0) {
      writer.pin(number, "ADDRESS" + number, model);
    } else {
      writer.pinWithValues(number, "DATA" + number + (i % 5 == 0 ? "-N" : "/P"), model);
    }
  }
  writer.comment(Part::pins, " next bank");
}

void addMixedTables(FileWriter& writer, const ModelShape& shape, int rows, Columns columns) {
  if (shape.drives) writer.table("Pulldown", rows, 0.05, columns);
  if (shape.pullsUp) writer.table("Pullup", rows, -0.05, columns);
  writer.blank(Part::models);
  writer.table("GND Clamp", rows, 0.2, columns);
  writer.comment(Part::models, "voltage   I(typ)   I(min)   I(max)");
  writer.table("POWER Clamp", rows, -0.2, columns);
  if (!shape.drives) return;
  writer.comment(Part::models, "time   V(typ)   V(min)   V(max)");
  writer.waveforms(shape, rows * 5 / 3, columns);
}

void addMixed(FileWriter& writer) {
  constexpr ModelShape shapes[] = {inputOutput, threeState, pushPull, openDrain, inputOutput};
  const std::size_t item = writer.itemsWritten();
  const ModelShape& shape = shapes[item % std::size(shapes)];
  const std::string name = numbered("buffer", item);
  const int rows = rowsFor(writer, 60, 32'000);
  const Columns columns{.style = styleOf(item), .onlyTyp = item % 8 == 7, .hasComments = true};
  addBanner(writer, name, rows);
  addMixedPins(writer, name, rows * 3 / 2);
  writer.beginModel(name, shape);
  addMixedTables(writer, shape, rows, columns);
  if (item % 4 != 0) return;
  const std::string receiver = numbered("receiver", item);
  addMixedPins(writer, receiver, 1);
  writer.beginModel(receiver, inputOnly);
  addMixedTables(writer, inputOnly, rows / 2, columns);
}

// From here on: kinds that grow.

void beginGround(FileWriter& writer) { ++writer.counts().usedModels; }

void addGroundPin(FileWriter& writer) {
  writer.pin(std::to_string(writer.counts().pins + 1), "GND", "GND");
}

// A text of letters that tells the number by their case alone.
std::string inCaseOf(std::size_t number) {
  std::string name = "datastrobecomplement";
  for (std::size_t i = 0; i < name.size(); ++i) {
    if ((number >> i) & 1) name[i] = static_cast<char>(name[i] - 'a' + 'A');
  }
  return name;
}

void addCasePin(FileWriter& writer) {
  writer.pin(std::to_string(writer.counts().pins + 1), inCaseOf(writer.itemsWritten()), "input");
}

// Names that are one name once a SPICE name may hold neither full stop nor minus.
void addSpiceNameModel(FileWriter& writer) {
  std::string name = "M....................";
  for (std::size_t i = 1; i < name.size(); ++i) {
    if ((writer.itemsWritten() >> (i - 1)) & 1) name[i] = '-';
  }
  pinOfModel(writer, name);
  writer.beginModel(name, inputOnly);
}

void addSelector(FileWriter& writer) {
  const std::string name = numbered("selector", writer.itemsWritten());
  pinOfModel(writer, name);
  writer.keyword(Part::selectors, "Model Selector", name);
  writer.data(Part::selectors, {"input", name, "as it comes"});
  writer.data(Part::selectors, {"input", name, "by choice"});
  ++writer.counts().selectors;
  writer.counts().selectorRows += 2;
  writer.file().selections.push_back(name + " by choice");
}

void beginSelectorRows(FileWriter& writer) {
  beginWithInput(writer);
  pinOfModel(writer, "choice");
  writer.keyword(Part::selectors, "Model Selector", "choice");
  ++writer.counts().selectors;
}

void addSelectorRow(FileWriter& writer) {
  const std::string description = numbered("setting ", writer.itemsWritten());
  writer.data(Part::selectors, {"input", description});
  ++writer.counts().selectorRows;
  writer.file().selections.push_back(description);
}

void beginPairs(FileWriter& writer) {
  beginWithInput(writer);
  writer.keyword(Part::diffPins, "Diff Pin", "inv_pin vdiff tdelay_typ tdelay_min tdelay_max");
}

void addPair(FileWriter& writer) {
  constexpr std::size_t numbersOfPair = 7;  // three of each threshold, the mark of a pair
  const std::string number = std::to_string(writer.itemsWritten());
  writer.pin("P" + number, "PLUS" + number, "input");
  writer.pin("N" + number, "MINUS" + number, "input");
  writer.data(Part::diffPins, {"P" + number, "N" + number, "200mV", "0ns", "NA", "NA"});
  ++writer.counts().pairs;
  writer.counts().libraryNumbers += numbersOfPair;
  writer.file().pinFilter.push_back("P" + number);
}

// Every model is told that both of its thresholds are missing.
void addSilentModel(FileWriter& writer) {
  writer.keyword(Part::models, "Model", numbered("silent", writer.itemsWritten()));
  writer.data(Part::models, {"Model_type", "Input"});
  ++writer.counts().models;
  writer.counts().warnings += 2;
}

void addLostPin(FileWriter& writer) {
  pinOfModel(writer, "nowhere");
  ++writer.counts().errors;
}

void beginRepeatedTable(FileWriter& writer) {
  beginWithInput(writer);
  pinOfModel(writer, "drain");
  writer.beginModel("drain", openDrain);
  writer.waveforms(openDrain, 2, {});
}

// Sections of one table, each with rows above those of the section before.
void addRepeatedTable(FileWriter& writer) {
  const std::size_t item = writer.itemsWritten();
  writer.keyword(Part::models, "Pulldown");
  for (const std::size_t voltage : {2 * item, 2 * item + 1}) {
    writer.data(Part::models, {std::to_string(voltage), "1m", "2m", "3m"});
  }
  writer.counts().tableRows += 2;
  writer.counts().libraryNumbers += 12;
}

// name, what an item is, begin, add
constexpr Kind contents[] = {
    {"waveforms", "model with four waveforms", beginPlain, addWaveforms},
    {"tables", "model with four tables", beginPlain, addTables},
    {"ramps", "driver without waveforms", beginPlain, addRamps},
    {"pins", "pin", beginWithInput, addPin},
    {"package", "pin of a package model", beginPackage, addPackagePin},
    {"header", "line of notes", beginHeader, addHeaderLine},
    {"mixed", "model with its pins and remarks", beginPlain, addMixed},
};

// name, what an item is, begin, add
constexpr Kind growing[] = {
    {"ground_pins", "pin called GND", beginGround, addGroundPin},
    {"case_pins", "pin whose signal differs in case only", beginWithInput, addCasePin},
    {"spice_names", "model that wants the same SPICE name", beginPlain, addSpiceNameModel},
    {"selectors", "selector with a choice", beginWithInput, addSelector},
    {"selector_rows", "row of one selector, with a choice", beginSelectorRows, addSelectorRow},
    {"diff_pins", "pair that the caller names", beginPairs, addPair},
    {"header_lines", "line of notes", beginHeader, addHeaderLine},
    {"warnings", "model with two warnings", beginWithInput, addSilentModel},
    {"errors", "pin with an error", beginWithInput, addLostPin},
    {"repeated_tables", "[Pulldown] section of one model", beginRepeatedTable, addRepeatedTable},
};

}  // namespace

std::span<const Kind> contentKinds() { return contents; }

std::span<const Kind> growthKinds() { return growing; }

const Kind* findKind(std::string_view name) {
  for (const std::span<const Kind> kinds : {contentKinds(), growthKinds()}) {
    for (const Kind& kind : kinds) {
      if (kind.name == name) return &kind;
    }
  }
  return nullptr;
}

GeneratedFile generate(const Kind& kind, Amount amount) {
  FileWriter writer(amount);
  writer.beginFile();
  kind.begin(writer);
  while (!writer.isFull()) {
    kind.addItem(writer);
    writer.countItem();
  }
  if (const std::size_t pins = writer.counts().packagePins; pins > 0) {
    writer.keyword(Part::packageModel, "Number Of Pins", std::to_string(pins));
    writer.keyword(Part::end, "End Model Data");
    writer.keyword(Part::end, "End Package Model");
  }
  return writer.finish();
}

}  // namespace ibis::bench
