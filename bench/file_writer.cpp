#include "file_writer.h"

#include <cmath>

namespace ibis::bench {
namespace {

constexpr double supply = 3.3;
constexpr std::size_t numbersOfHead = 2;       // the version, and the corner parameter
constexpr std::size_t numbersOfEachModel = 5;  // three of C_comp, the corner count, the polarity
constexpr std::size_t numbersOfTables = 8;     // two sizes, three of each reference
constexpr std::size_t numbersOfClamps = 2;     // two sizes
constexpr std::size_t numbersOfWaveform = 7;   // its size, three of resistance and voltage each
constexpr std::size_t numbersOfThresholds = 6;
constexpr std::size_t numbersOfTableRow = 6;

// Decimals of a second would leave nothing of the time.
void appendTime(std::string& text, double seconds, NumberStyle style) {
  if (style == NumberStyle::scientific) return appendNumber(text, seconds, style, "s");
  appendFixed(text, seconds * 1e9, 4);
  text += style == NumberStyle::plain ? "n" : "ns";
}

}  // namespace

FileWriter::FileWriter(Amount wanted) : wanted_(wanted) { counts().libraryNumbers = numbersOfHead; }

bool FileWriter::isFull() const {
  if (items_ == 0) return false;
  return wanted_.items != 0 ? items_ >= wanted_.items : bytes_ >= wanted_.bytes;
}

void FileWriter::endLine(Part part, bool isRecord) {
  text(part) += '\n';
  ++counts().lines;
  if (isRecord) ++counts().records;
  bytes_ = 0;
  for (const std::string& each : parts_) bytes_ += each.size();
}

void FileWriter::keyword(Part part, std::string_view name, std::string_view argument) {
  std::string& line = text(part);
  line += '[';
  line += name;
  line += ']';
  if (!argument.empty()) line += ' ';
  line += argument;
  endLine(part, true);
}

void FileWriter::data(Part part, std::initializer_list<std::string_view> words) {
  std::string& line = text(part);
  std::string_view separator;
  for (std::string_view word : words) {
    line += separator;
    line += word;
    separator = " ";
  }
  endLine(part, true);
}

void FileWriter::comment(Part part, std::string_view words) {
  text(part) += '|';
  text(part) += words;
  endLine(part, false);
}

void FileWriter::blank(Part part) { endLine(part, false); }

// No word of the header is a number, so that the numbers of the output can be counted.
void FileWriter::beginFile() {
  keyword(Part::header, "IBIS Ver", "4.2");
  keyword(Part::header, "File Name", "generated.ibs");
  keyword(Part::header, "File Rev", "rev1");
  keyword(Part::header, "Date", "2026-11-21");
  keyword(Part::header, "Source", "A generator of files by kind and size");
  keyword(Part::component, "Component", "GENERATED");
  keyword(Part::component, "Manufacturer", "Nobody");
  keyword(Part::component, "Package");
  data(Part::component, {"R_pkg", "50m", "40m", "60m"});
  data(Part::component, {"L_pkg", "4.1nH", "3.2nH", "5.3nH"});
  data(Part::component, {"C_pkg", "0.62pF", "0.48pF", "0.79pF"});
  keyword(Part::pins, "Pin", "signal_name model_name R_pin L_pin C_pin");
}

void FileWriter::pin(std::string_view name, std::string_view signal, std::string_view model) {
  data(Part::pins, {name, signal, model});
  ++counts().pins;
}

void FileWriter::pinWithValues(std::string_view name, std::string_view signal,
                               std::string_view model) {
  std::string values;
  appendNumber(values, 0.04 + 0.02 * dice_.fraction(), NumberStyle::scaled, "");
  values += ' ';
  appendNumber(values, 3e-9 + 2e-9 * dice_.fraction(), NumberStyle::scaled, "H");
  values += ' ';
  appendNumber(values, 5e-13 + 3e-13 * dice_.fraction(), NumberStyle::scaled, "F");
  data(Part::pins, {name, signal, model, values});
  ++counts().pins;
}

void FileWriter::beginModel(std::string_view name, const ModelShape& shape) {
  keyword(Part::models, "Model", name);
  data(Part::models, {"Model_type", shape.type});
  data(Part::models, {"Polarity", "Non-Inverting"});
  if (shape.hasEnable) data(Part::models, {"Enable", "Active-Low"});
  if (shape.listens) data(Part::models, {"Vinl", "=", "0.8V"});
  if (shape.listens) data(Part::models, {"Vinh", "=", "2.0V"});
  data(Part::models, {"C_comp", "4.5pF", "3.8pF", "5.4pF"});
  keyword(Part::models, "Voltage Range", "3.3V 3.0V 3.6V");
  ++counts().models;
  ++counts().usedModels;
  std::size_t& numbers = counts().libraryNumbers;
  numbers += numbersOfEachModel;
  if (shape.hasEnable) ++numbers;
  if (shape.listens) numbers += numbersOfThresholds;
  if (shape.drives) numbers += numbersOfTables;
  if (!shape.drives) return;
  keyword(Part::models, "Ramp");
  data(Part::models, {"dV/dt_r", "1.58/0.55n", "1.30/0.81n", "1.86/0.42n"});
  data(Part::models, {"dV/dt_f", "1.61/0.48n", "1.32/0.70n", "1.90/0.37n"});
  data(Part::models, {"R_load", "=", "50"});
}

// The three columns behind the first, and the end of the line.
void FileWriter::corners(double typ, std::string_view unit, Columns columns) {
  std::string& line = text(Part::models);
  for (const double factor : {1.0, 0.8, 1.25}) {
    line += "  ";
    if (columns.onlyTyp && factor != 1.0) {
      line += "NA";
    } else {
      appendNumber(line, typ * factor * (1.0 + 0.01 * dice_.fraction()), columns.style, unit);
    }
  }
  if (columns.hasComments && dice_.fraction() < 0.1) line += "  | measured at the die";
  endLine(Part::models, true);
}

void FileWriter::table(std::string_view name, int rows, double current, Columns columns) {
  keyword(Part::models, name);
  for (int i = 0; i < rows; ++i) {
    const double voltage = -supply + 3.0 * supply * i / rows;
    appendNumber(text(Part::models), voltage, columns.style, "V");
    corners(current * std::tanh(voltage), "A", columns);
  }
  counts().tableRows += static_cast<std::size_t>(rows);
  counts().libraryNumbers += numbersOfTableRow * static_cast<std::size_t>(rows);
  if (name == "GND Clamp") counts().libraryNumbers += numbersOfClamps;
}

void FileWriter::waveform(std::string_view edge, int rows, double fixtureVoltage, Columns columns) {
  keyword(Part::models, edge);
  std::string fixture;
  appendFixed(fixture, fixtureVoltage, 1);
  data(Part::models, {"R_fixture", "=", "50"});
  data(Part::models, {"V_fixture", "=", fixture});
  const bool rises = edge.starts_with("Rising");
  for (int i = 0; i < rows; ++i) {
    const double share = (i + 0.5) / rows;
    const double level = 0.5 + 0.5 * std::tanh(8.0 * (rises ? share - 0.5 : 0.5 - share));
    appendTime(text(Part::models), 5e-9 * i / rows, columns.style);
    corners(supply * level, "V", columns);
  }
  counts().waveformRows += static_cast<std::size_t>(rows);
}

void FileWriter::waveforms(const ModelShape& shape, int rows, Columns columns) {
  for (const std::string_view edge : {"Rising Waveform", "Falling Waveform"}) {
    waveform(edge, rows, 0.0, columns);
    if (shape.pullsUp) waveform(edge, rows, supply, columns);
  }
  counts().libraryNumbers += numbersOfWaveform * (shape.pullsUp ? 4 : 2);
}

GeneratedFile FileWriter::finish() {
  keyword(Part::end, "End");
  for (std::string& part : parts_) {
    file_.text += part;
    part = {};
  }
  return std::move(file_);
}

}  // namespace ibis::bench
