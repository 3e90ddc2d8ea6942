#include <algorithm>
#include <cmath>

#include "checks/number_word.h"
#include "checks/package_matrix.h"
#include "ibis/ibis_string.h"

namespace ibis::checks {
namespace {

constexpr std::string_view matrixKinds[] = {"Banded_matrix", "Sparse_matrix", "Full_matrix"};
constexpr std::string_view matrixNames[] = {"Resistance Matrix", "Inductance Matrix",
                                            "Capacitance Matrix"};

class MatrixReader {
 public:
  MatrixReader(const PackageModel& model, Findings& findings)
      : model_(model), findings_(findings) {}

  std::vector<Matrix> read() {
    std::vector<Matrix> matrices;
    Matrix* matrix = nullptr;
    for (const Block& block : model_.view.syntax.blocksOf(model_.part)) {
      if (block.keyword == nullptr) continue;
      const std::string_view name = block.keyword->name;
      if (std::ranges::find(matrixNames, name) != std::end(matrixNames)) {
        matrix = &matrices.emplace_back(Matrix{.block = &block});
        matrix->rows.assign(model_.count(), false);
        lastRow_ = 0;
        readKind(*matrix, block);
      } else if (name == "Bandwidth" && matrix != nullptr) {
        readBandwidth(*matrix, block);
      } else if (name == "Row" && matrix != nullptr) {
        readRow(*matrix, block);
      } else if (name == "End Model Data") {
        matrix = nullptr;
      }
    }
    return matrices;
  }

 private:
  void readKind(Matrix& matrix, const Block& block) {
    for (std::size_t i = 0; i < std::size(matrixKinds); ++i) {
      if (!equalIgnoringCase(matrixKinds[i], block.argument)) continue;
      matrix.kind = static_cast<MatrixKind>(i);
      if (block.argument == matrixKinds[i]) return;
      findings_.add(Rule::packageMatrixKind, model_.view.argumentSpot(block),
                    {std::string(block.keyword->name), std::string(block.argument),
                     "write '" + std::string(matrixKinds[i]) + "'"});
      return;
    }
    const std::string_view near = nearestWord(block.argument, matrixKinds);
    findings_
        .add(Rule::packageMatrixKind, model_.view.argumentSpot(block),
             {std::string(block.keyword->name), std::string(block.argument),
              near.empty() ? "this is no kind of a matrix"
                           : "did you mean '" + std::string(near) + "'?"})
        .diagnostic.severity = Severity::error;
  }

  void readBandwidth(Matrix& matrix, const Block& block) {
    matrix.hasBandwidth = true;
    const double number = readNumberWord(block.argument).value;
    const bool isWhole = number >= 0.0 && number == std::floor(number);
    if (isWhole && number <= static_cast<double>(model_.count()) / 2.0) {
      matrix.bandwidth = static_cast<std::size_t>(number);
      return;
    }
    matrix.isSound = false;
    findings_.add(Rule::packageBandwidth, model_.view.argumentSpot(block),
                  {"[Bandwidth] '" + std::string(block.argument) +
                   "' is no whole number from 0 to " + std::to_string(model_.count() / 2)});
  }

  void readRow(Matrix& matrix, const Block& block) {
    const std::uint32_t* row = model_.byName.find(block.argument);
    if (row == nullptr) {
      matrix.isSound = false;
      findings_.add(Rule::packageRowUnknown, model_.view.argumentSpot(block),
                    {std::string(block.argument)});
      return;
    }
    matrix.rows[*row] = true;
    if (*row < lastRow_ && matrix.kind != MatrixKind::sparse) {
      findings_.add(Rule::packageRowOrder, model_.view.argumentSpot(block),
                    {matrix.name(), std::string(block.argument)});
    }
    lastRow_ = std::max(lastRow_, *row);
    if (matrix.kind == MatrixKind::sparse) return readSparseRow(matrix, block, *row);
    if (matrix.kind != MatrixKind::unknown) readWholeRow(matrix, block, *row);
  }

  void readSparseRow(Matrix& matrix, const Block& block, std::uint32_t row) {
    const std::uint32_t index = model_.view.indexOf(block);
    for (const SourceLine& line : model_.view.syntax.linesOf(block)) {
      const auto words = model_.view.syntax.words(line);
      if (words.empty()) continue;
      const std::uint32_t* column = model_.byName.find(words[0].text);
      if (column == nullptr) {
        matrix.isSound = false;
        findings_.addOnce(Rule::packageRowUnknown, model_.view.spotOf(line, words[0], index),
                          {std::string(words[0].text)});
      } else if (words.size() < 2) {
        findings_.addOnce(Rule::numericMissingValue, model_.view.spotOf(line, words[0], index),
                          {"[" + matrix.name() + "] row " + std::string(block.argument)});
      } else {
        addEntry(matrix, row, *column, line, words[1], index);
      }
    }
  }

  // Values from the diagonal on, over any number of lines.
  void readWholeRow(Matrix& matrix, const Block& block, std::uint32_t row) {
    const std::size_t rest = model_.count() - row;
    const std::size_t limit =
        matrix.kind == MatrixKind::full ? rest : std::min(rest, matrix.bandwidth + 1);
    std::size_t given = 0;
    for (const SourceLine& line : model_.view.syntax.linesOf(block)) {
      for (const Word& word : model_.view.syntax.words(line)) {
        if (given < limit) {
          addEntry(matrix, row, row + static_cast<std::uint32_t>(given), line, word,
                   model_.view.indexOf(block));
        }
        ++given;
      }
    }
    const std::string name(block.argument);
    if (given > limit && matrix.isSound && matrix.kind == MatrixKind::banded) {
      findings_.add(Rule::packageBandwidth, model_.view.argumentSpot(block),
                    {"[" + matrix.name() + "] row " + name + " has " + countOf(given, "value") +
                     ", limit " + std::to_string(limit)});
    } else if (given > limit && matrix.isSound) {
      findings_.add(Rule::packageRowTooLong, model_.view.argumentSpot(block),
                    {matrix.name(), name, std::to_string(given), std::to_string(limit)});
    } else if (given < limit && matrix.kind == MatrixKind::full) {
      findings_.add(Rule::packageRowShort, model_.view.argumentSpot(block),
                    {matrix.name(), name, std::to_string(given), std::to_string(limit)});
    }
  }

  void addEntry(Matrix& matrix, std::uint32_t row, std::uint32_t column, const SourceLine& line,
                const Word& word, std::uint32_t block) {
    const NumberWord read = readNumberWord(word.text);
    const Spot spot = model_.view.spotOf(line, word, block);
    if (std::isnan(read.value)) {
      if (read.fault == NumberFault::notAvailable) return;
      matrix.isSound = false;
      findings_.addOnce(Rule::numericNotANumber, spot,
                        {"[" + matrix.name() + "] row " + std::string(model_.pins[row]),
                         std::string(word.text), "0"});
      return;
    }
    matrix.entries.push_back({.row = std::min(row, column),
                              .column = std::max(row, column),
                              .value = read.value,
                              .spot = spot});
  }

  const PackageModel& model_;
  Findings& findings_;
  std::uint32_t lastRow_ = 0;
};

}  // namespace

std::vector<Matrix> readMatrices(const PackageModel& model, Findings& findings) {
  return MatrixReader(model, findings).read();
}

}  // namespace ibis::checks
