// The rules about the rows and the values of a package model's matrix.

#include <algorithm>
#include <cmath>

#include "checks/package_matrix.h"

namespace ibis::checks {
namespace {

class MatrixChecker {
 public:
  MatrixChecker(const PackageModel& model, Findings& findings)
      : model_(model), findings_(findings) {}

  void checkMatrix(Matrix& matrix) {
    const Spot head = model_.view.spotOf(*matrix.block);
    if (matrix.kind == MatrixKind::banded && !matrix.hasBandwidth) {
      matrix.isSound = false;
      findings_.add(Rule::packageBandwidth, head, {"[" + matrix.name() + "] has no [Bandwidth]"});
    }
    checkRows(matrix, head);
    foldTriangles(matrix);
    if (matrix.kind == MatrixKind::unknown || !matrix.isSound) return;
    const bool isEnergy = matrix.isInductance() || matrix.isCapacitance();
    if (isEnergy && checkDiagonal(matrix, head)) checkCouplings(matrix, head);
  }

 private:
  void checkRows(const Matrix& matrix, const Spot& head) {
    if (matrix.kind == MatrixKind::sparse || matrix.kind == MatrixKind::unknown || !matrix.isSound)
      return;
    std::size_t missing = 0;
    std::string first;
    for (std::size_t i = 0; i < model_.count(); ++i) {
      if (matrix.rows[i] || missing++ > 0) continue;
      first = std::string(model_.pins[i]);
    }
    if (missing == 0) return;
    const std::string more =
        missing > 1 ? " (and " + countOf(missing - 1, "more row") + ")" : std::string();
    findings_.add(Rule::packageRowMissing, head, {matrix.name(), first, more});
  }

  // A value may stand in both triangles; then both must be equal.
  void foldTriangles(Matrix& matrix) {
    std::ranges::stable_sort(matrix.entries, [](const MatrixEntry& a, const MatrixEntry& b) {
      return a.row != b.row ? a.row < b.row : a.column < b.column;
    });
    std::size_t kept = 0;
    for (std::size_t i = 0; i < matrix.entries.size(); ++i) {
      const MatrixEntry entry = matrix.entries[i];
      const bool isSecond = kept > 0 && matrix.entries[kept - 1].row == entry.row &&
                            matrix.entries[kept - 1].column == entry.column;
      if (!isSecond) {
        matrix.entries[kept++] = entry;
        continue;
      }
      const MatrixEntry& first = matrix.entries[kept - 1];
      if (first.value == entry.value) continue;
      Finding* told = findings_.addOnce(
          Rule::packageNotSymmetric, entry.spot,
          {matrix.name(), std::string(model_.pins[entry.row]),
           std::string(model_.pins[entry.column]), quantity(first.value, unitOf(matrix)),
           quantity(entry.value, unitOf(matrix))});
      if (told != nullptr) addNote(*told, first.spot.line, "the first one is here");
    }
    matrix.entries.resize(kept, MatrixEntry{0, 0, 0.0, {}});
  }

  static std::string_view unitOf(const Matrix& matrix) {
    return matrix.isInductance() ? "H" : matrix.isCapacitance() ? "F" : "ohm";
  }

  // A place inside of a matrix, as one of its block.
  Spot spotIn(const Matrix& matrix, Spot spot) const {
    spot.block = model_.view.indexOf(*matrix.block);
    return spot;
  }

  // Whether each pin has a value of its own that is above 0.
  bool checkDiagonal(const Matrix& matrix, const Spot& head) {
    diagonal_.assign(model_.count(), notGiven);
    diagonalSpots_.assign(model_.count(), head);
    for (const MatrixEntry& entry : matrix.entries) {
      if (entry.row != entry.column) continue;
      diagonal_[entry.row] = entry.value;
      diagonalSpots_[entry.row] = spotIn(matrix, entry.spot);
    }
    std::vector<std::string> missing;
    std::vector<std::size_t> wrong;
    for (std::size_t i = 0; i < model_.count(); ++i) {
      if (std::isnan(diagonal_[i])) missing.emplace_back(model_.pins[i]);
      if (diagonal_[i] <= 0.0) wrong.push_back(i);
    }
    const auto more = [](std::size_t number) {
      return number > 1 ? " (and " + countOf(number - 1, "more pin") + ")" : std::string();
    };
    if (!missing.empty() && !findings_.wasTold(Rule::packageRowMissing, head.section)) {
      findings_.add(Rule::packageDiagonalMissing, head,
                    {matrix.name(), missing.front(), more(missing.size())});
    }
    if (!wrong.empty()) {
      findings_.add(Rule::packageDiagonalNotPositive, diagonalSpots_[wrong.front()],
                    {matrix.name(), std::string(model_.pins[wrong.front()]),
                     quantity(diagonal_[wrong.front()], unitOf(matrix)), more(wrong.size())});
    }
    return missing.empty() && wrong.empty() && model_.count() > 0;
  }

  void checkCouplings(const Matrix& matrix, const Spot& head) {
    if (matrix.isInductance()) checkInductances(matrix);
    if (matrix.isCapacitance()) checkCapacitances(matrix);
    const std::optional<std::size_t> bad = firstBadPivot(model_.count(), matrix.entries);
    if (bad == model_.count()) return;
    if (bad) {
      findings_.add(
          Rule::packageNotDefinite, diagonalSpots_[*bad],
          {matrix.name(), "positive definite (pin " + std::string(model_.pins[*bad]) + ")"});
      return;
    }
    Finding& told =
        findings_.add(Rule::packageNotDefinite, head,
                      {matrix.name(), "tested for being positive definite: it is too large"});
    told.diagnostic.severity = Severity::note;
    told.diagnostic.notes.clear();
  }

  void checkInductances(const Matrix& matrix) {
    const MatrixEntry* worst = nullptr;
    double most = 1.0;
    for (const MatrixEntry& entry : matrix.entries) {
      if (entry.row == entry.column) continue;
      const double coupling =
          std::abs(entry.value) / std::sqrt(diagonal_[entry.row] * diagonal_[entry.column]);
      if (coupling < most) continue;
      most = coupling;
      worst = &entry;
    }
    if (worst == nullptr) return;
    findings_.add(Rule::packageCoupling, spotIn(matrix, worst->spot),
                  {std::string(model_.pins[worst->row]), std::string(model_.pins[worst->column]),
                   quantity(worst->value, "H"), shortNumber(most, 3),
                   quantity(std::sqrt(diagonal_[worst->row] * diagonal_[worst->column]), "H")});
  }

  void checkCapacitances(const Matrix& matrix) {
    std::vector<double> sums(model_.count(), 0.0);
    const MatrixEntry* positive = nullptr;
    std::size_t positives = 0;
    for (const MatrixEntry& entry : matrix.entries) {
      if (entry.row == entry.column) continue;
      sums[entry.row] += std::abs(entry.value);
      sums[entry.column] += std::abs(entry.value);
      if (entry.value <= 0.0) continue;
      if (positives++ == 0) positive = &entry;
    }
    if (positive != nullptr) {
      findings_.add(Rule::packageCapacitanceSign, positive->spot,
                    {std::string(model_.pins[positive->row]),
                     std::string(model_.pins[positive->column]), quantity(positive->value, "F"),
                     positives > 1 ? " (and " + std::to_string(positives - 1) + " more)" : ""});
    }
    std::size_t rows = 0;
    std::size_t worst = 0;
    for (std::size_t i = 0; i < model_.count(); ++i) {
      if (sums[i] <= 1.0001 * diagonal_[i]) continue;
      if (rows++ == 0 || sums[i] / diagonal_[i] > sums[worst] / diagonal_[worst]) worst = i;
    }
    if (rows == 0) return;
    findings_.add(
        Rule::packageCapacitanceDominance, diagonalSpots_[worst],
        {std::string(model_.pins[worst]), shortNumber(100.0 * sums[worst] / diagonal_[worst]),
         rows > 1 ? " (" + std::to_string(rows) + " rows)" : ""});
  }

  const PackageModel& model_;
  Findings& findings_;
  std::vector<double> diagonal_;
  std::vector<Spot> diagonalSpots_;  // of the matrix, so that its findings are found by it
};

}  // namespace

void checkMatrix(const PackageModel& model, Matrix& matrix, Findings& findings) {
  MatrixChecker(model, findings).checkMatrix(matrix);
}

}  // namespace ibis::checks
