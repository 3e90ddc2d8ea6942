#include "check.h"

#include <charconv>
#include <fstream>
#include <iterator>

#include "model/estimate_waveforms.h"

namespace ibis::bench {
namespace {

constexpr std::size_t builtInModels = 3;
constexpr std::size_t builtInRowsOfPage = 6;
constexpr std::size_t endsOfScriptLists = 7;
constexpr std::size_t numbersOfWaveformRow = 8;

// Collects what is not as it should be.
class Comparison {
 public:
  void expect(std::string_view what, std::size_t expected, std::size_t actual) {
    if (expected == actual) return;
    text_ += std::string(what) + ": " + std::to_string(actual) + ", not " +
             std::to_string(expected) + "; ";
  }
  std::string text() const { return text_; }

 private:
  std::string text_;
};

std::size_t countOf(std::string_view pattern, std::string_view text) {
  std::size_t count = 0;
  for (std::size_t at = text.find(pattern); at != text.npos; at = text.find(pattern, at + 1)) {
    ++count;
  }
  return count;
}

bool standsBefore(char c) {
  return std::string_view(" \t\n,[=(").find(c) != std::string_view::npos;
}
bool standsBehind(char c) {
  return std::string_view(" \t\n,])*").find(c) != std::string_view::npos;
}

std::size_t tableRows(const IBISModel& model) {
  return static_cast<std::size_t>(model.pulldown.voltage.size() + model.pullup.voltage.size() +
                                  model.gndClamp.voltage.size() + model.powerClamp.voltage.size());
}

std::size_t waveformRows(const IBISModel& model) {
  std::size_t rows = 0;
  for (const auto* list : {&model.risingWaveforms, &model.fallingWaveforms}) {
    for (const IBISWaveform& each : *list) {
      const YVector<double> times = each.estimate ? estimatedTimes(*each.estimate) : each.time;
      rows += static_cast<std::size_t>(times.size());
    }
  }
  return rows;
}

template <class Count>
std::size_t sum(const IBISFileData& data, Count countOfModel) {
  std::size_t total = 0;
  for (const auto& model : data.models) total += countOfModel(*model);
  return total;
}

std::size_t selectorRows(const IBISFileData& data) {
  std::size_t rows = 0;
  for (const IBISModelSelector& selector : data.modelSelectors) rows += selector.rows.size();
  return rows;
}

// A filter of the generator's names the pairs alone.
std::size_t expectedEntries(const GeneratedFile& file) {
  return file.pinFilter.empty() ? file.counts.pins : file.counts.pairs;
}

std::size_t estimatedWaveforms(const IBISFileData& data) {
  return sum(data, [](const IBISModel& model) {
    std::size_t count = 0;
    for (const auto* list : {&model.risingWaveforms, &model.fallingWaveforms}) {
      for (const IBISWaveform& each : *list) count += each.kind != IBISWaveform::fromFile;
    }
    return count;
  });
}

}  // namespace

void appendNumbers(std::string_view text, std::vector<double>& numbers) {
  const char* const end = text.data() + text.size();
  char before = '\n';
  for (const char* at = text.data(); at != end; before = *at++) {
    if (!standsBefore(before)) continue;
    double value = 0.0;
    const auto [behind, fault] = std::from_chars(at, end, value);
    if (fault == std::errc() && (behind == end || standsBehind(*behind))) numbers.push_back(value);
  }
}

std::string readFile(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string checkScan(const Counts& counts, const IBISScanResult& scan) {
  Comparison comparison;
  comparison.expect("records", counts.records, scan.records.size());
  comparison.expect("unknown lines", 0, scan.errors.size());
  return comparison.text();
}

std::string checkParsed(const Counts& counts, const IBISFileData& data) {
  if (data.components.size() != 1) return "no component";
  Comparison comparison;
  comparison.expect("pins", counts.pins, data.components[0]->pins.size());
  comparison.expect("pairs", counts.pairs, data.components[0]->diffPins.size());
  comparison.expect("models", counts.models + builtInModels, data.models.size());
  comparison.expect("selectors", counts.selectors, data.modelSelectors.size());
  comparison.expect("selector rows", counts.selectorRows, selectorRows(data));
  comparison.expect("table rows", counts.tableRows, sum(data, tableRows));
  comparison.expect("errors while reading", 0, data.errors.size());
  if (counts.packagePins == 0) return comparison.text();
  if (data.packageModels.size() != 1) return "no package model";
  const IBISPackageModel& package = *data.packageModels[0];
  comparison.expect("package pins", counts.packagePins,
                    static_cast<std::size_t>(package.pinNames.size()));
  comparison.expect(
      "matrix entries", counts.matrixEntries,
      package.resistance.size() + package.inductance.size() + package.capacitance.size());
  return comparison.text();
}

std::string checkResolved(const GeneratedFile& file, const IBISFileData& data) {
  const Counts& counts = file.counts;
  Comparison comparison;
  comparison.expect("errors", counts.errors, data.errors.size());
  comparison.expect("warnings", counts.warnings, data.warnings.size());
  comparison.expect("estimated waveforms", counts.estimatedWaveforms, estimatedWaveforms(data));
  if (counts.estimatedWaveforms == 0) {
    comparison.expect("waveform rows", counts.waveformRows, sum(data, waveformRows));
  }
  if (counts.errors != 0) return comparison.text();
  comparison.expect("entries", expectedEntries(file), data.components[0]->pinEntries.size());
  comparison.expect("used models", counts.usedModels, data.components[0]->models.size());
  return comparison.text();
}

std::string checkOutput(const GeneratedFile& file, const IBISFileData& data,
                        std::string_view templateName, std::string_view output) {
  const Counts& counts = file.counts;
  Comparison comparison;
  if (counts.errors != 0) {
    comparison.expect("bytes in spite of errors", 0, output.size());
  } else if (templateName == "component.tmpl") {
    const std::size_t rows = sum(data, waveformRows);
    std::vector<double> numbers;
    appendNumbers(output, numbers);
    comparison.expect("numbers", counts.libraryNumbers + numbersOfWaveformRow * rows,
                      numbers.size());
  } else if (templateName == "info.tmpl") {
    comparison.expect("rows", counts.usedModels + builtInRowsOfPage, countOf("<tr><td>", output));
  } else if (templateName == "script.tmpl") {
    const std::size_t models = counts.models + builtInModels;
    comparison.expect("items",
                      1 + counts.selectorRows + expectedEntries(file) + counts.pairs + 3 * models +
                          endsOfScriptLists,
                      countOf("\n+", output));
  } else if (counts.packagePins != 0) {
    comparison.expect("terms", counts.matrixEntries,
                      countOf("*V(", output) + countOf("*I(", output));
  } else {
    comparison.expect("pins", counts.pins, countOf("\nURLC_", output));
  }
  return comparison.text();
}

}  // namespace ibis::bench
