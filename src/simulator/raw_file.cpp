#include "simulator/raw_file.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace ibis {
namespace {

constexpr std::string_view dataLead = "Binary:\n";

// What the header says.
struct RawHeader {
  std::size_t variables = 0;
  std::size_t points = 0;
  std::vector<std::string> names;
};

std::string inLowerCase(std::string_view text) {
  std::string lower;
  for (const char c : text) lower += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return lower;
}

std::string_view takeLine(std::string_view& text) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

std::string_view takeWord(std::string_view& text) {
  const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
  text.remove_prefix(begin);
  const std::size_t end = std::min(text.find_first_of(" \t"), text.size());
  const std::string_view word = text.substr(0, end);
  text.remove_prefix(end);
  return word;
}

std::size_t countIn(std::string_view line, std::string_view title) {
  std::size_t value = 0;
  line.remove_prefix(title.size());
  const std::string_view word = takeWord(line);
  std::from_chars(word.data(), word.data() + word.size(), value);
  return value;
}

void readNames(RawHeader& header, std::string_view& text) {
  for (std::size_t i = 0; i < header.variables && !text.empty(); ++i) {
    std::string_view line = takeLine(text);
    takeWord(line);
    header.names.push_back(inLowerCase(takeWord(line)));
  }
}

// Leaves the text at the data; false for one that has none of real values.
bool readHeader(RawHeader& header, std::string_view& text) {
  while (!text.empty()) {
    if (text.starts_with(dataLead)) {
      text.remove_prefix(dataLead.size());
      return header.names.size() == header.variables && header.variables != 0;
    }
    const std::string_view line = takeLine(text);
    if (line.starts_with("Flags:") && line.find("complex") != line.npos) return false;
    if (line.starts_with("No. Variables:")) header.variables = countIn(line, "No. Variables:");
    if (line.starts_with("No. Points:")) header.points = countIn(line, "No. Points:");
    if (line.starts_with("Variables:")) readNames(header, text);
  }
  return false;
}

}  // namespace

const std::vector<double>* RawPlot::find(std::string_view name) const {
  const auto found = vectors.find(name);
  return found == vectors.end() ? nullptr : &found->second;
}

std::optional<RawPlot> readRawPlot(std::string_view text) {
  RawHeader header;
  if (!readHeader(header, text)) return std::nullopt;
  const std::size_t rowSize = header.variables * sizeof(double);
  const std::size_t rows = std::min(header.points, text.size() / rowSize);
  RawPlot plot;
  for (std::size_t v = 0; v < header.variables; ++v) {
    std::vector<double>& values = plot.vectors[header.names[v]];
    values.resize(rows);
    for (std::size_t i = 0; i < rows; ++i) {
      std::memcpy(&values[i], text.data() + i * rowSize + v * sizeof(double), sizeof(double));
    }
  }
  return plot;
}

}  // namespace ibis
