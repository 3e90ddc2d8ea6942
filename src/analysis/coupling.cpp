#include "analysis/coupling.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <unordered_map>
#include <utility>

#include "analysis/curve.h"

namespace ibis {
namespace {

constexpr double scaleStep = 0.999;
constexpr int mostSteps = 10'000;

using RowMap = std::unordered_map<std::int32_t, std::size_t>;

RowMap indexRows(std::span<const std::int32_t> rows) {
  RowMap indices;
  for (std::size_t i = 0; i < rows.size(); ++i) indices.emplace(rows[i], i);
  return indices;
}

// Of two entries for one place the later counts.
using Cells = std::map<std::pair<std::size_t, std::size_t>, double>;

Cells cellsOf(const std::vector<IBISMatrixEntry>& entries, const RowMap& indices) {
  Cells cells;
  for (const IBISMatrixEntry& entry : entries) {
    const auto row = indices.find(entry.row);
    const auto column = indices.find(entry.column);
    if (row == indices.end() || column == indices.end()) continue;
    cells[std::minmax(row->second, column->second)] = entry.value;
  }
  return cells;
}

// Counts what is not finite, and takes 0 for it.
SymmetricMatrix submatrix(const std::vector<IBISMatrixEntry>& entries, const RowMap& indices,
                          std::size_t& dropped) {
  SymmetricMatrix matrix(indices.size());
  for (const auto& [place, value] : cellsOf(entries, indices)) {
    if (isUsableNumber(value)) {
      matrix.set(place.first, place.second, value);
    } else {
      ++dropped;
    }
  }
  return matrix;
}

std::vector<double> diagonalOf(const SymmetricMatrix& matrix, bool& isBad) {
  std::vector<double> diagonal;
  for (std::size_t i = 0; i < matrix.size(); ++i) {
    const double value = matrix.at(i, i);
    if (value < 0.0) isBad = true;
    diagonal.push_back(std::max(value, 0.0));
  }
  return diagonal;
}

// The normalised matrix of the couplings: 1 on its diagonal, k elsewhere.
SymmetricMatrix normalised(std::size_t size, const std::vector<InductiveCoupling>& couplings,
                           double scale) {
  SymmetricMatrix matrix(size);
  for (std::size_t i = 0; i < size; ++i) matrix.set(i, i, 1.0);
  for (const InductiveCoupling& each : couplings) {
    matrix.set(each.first, each.second, each.k * scale);
  }
  return matrix;
}

void takeInductances(CoupledPackage& package, const SymmetricMatrix& matrix, double smallest) {
  package.inductance = diagonalOf(matrix, package.hasBadDiagonal);
  for (std::size_t i = 0; i < matrix.size(); ++i) {
    for (std::size_t j = i + 1; j < matrix.size(); ++j) {
      const double product = package.inductance[i] * package.inductance[j];
      if (matrix.at(i, j) == 0.0 || !(product > 0.0)) continue;
      const double k = matrix.at(i, j) / std::sqrt(product);
      if (std::fabs(k) < smallest) {
        ++package.droppedCouplings;
      } else {
        package.couplings.push_back({i, j, k});
      }
    }
  }
}

// The fewest steps of scaling that make the couplings those of a passive network. Scaling brings a
// symmetric matrix nearer to the unit matrix, so from there on every step does, and halving finds
// it.
int stepsToPassive(const CoupledPackage& package, double scale) {
  const auto isPassive = [&](int steps) {
    return isPositiveDefinite(normalised(package.inductance.size(), package.couplings,
                                         scale * std::pow(scaleStep, steps)));
  };
  if (isPassive(0)) return 0;
  int least = 1;
  int most = mostSteps;
  while (least < most) {
    const int middle = (least + most) / 2;
    if (isPassive(middle)) {
      most = middle;
    } else {
      least = middle + 1;
    }
  }
  return least;
}

// Scales the couplings until they are those of a passive network.
void makeInductancesPassive(CoupledPackage& package) {
  double largest = 0.0;
  for (const InductiveCoupling& each : package.couplings) {
    largest = std::max(largest, std::fabs(each.k));
  }
  const double start = largest >= 1.0 ? scaleStep / largest : 1.0;
  package.inductanceScale = start * std::pow(scaleStep, stepsToPassive(package, start));
  for (InductiveCoupling& each : package.couplings) each.k *= package.inductanceScale;
}

void takeCapacitances(CoupledPackage& package, const SymmetricMatrix& matrix) {
  const bool isPassive = isPositiveDefinite(matrix);
  for (std::size_t i = 0; i < matrix.size(); ++i) {
    double toReference = 0.0;
    for (std::size_t j = 0; j < matrix.size(); ++j) toReference += matrix.at(i, j);
    if (toReference < 0.0 && !isPassive) {
      toReference = 0.0;
      ++package.droppedCapacitances;
    }
    package.capacitance.push_back(toReference);
    for (std::size_t j = i + 1; j < matrix.size(); ++j) {
      const double between = -matrix.at(i, j);
      if (between == 0.0) continue;
      if (between < 0.0 && !isPassive) {
        ++package.droppedCapacitances;
      } else {
        package.mutual.push_back({i, j, between});
      }
    }
  }
}

// What two pins share must be less than what each of them has, or else a current could make power.
void takeResistances(CoupledPackage& package, const SymmetricMatrix& matrix, double smallest) {
  package.resistance = diagonalOf(matrix, package.hasBadDiagonal);
  SymmetricMatrix taken(matrix.size());
  for (std::size_t i = 0; i < matrix.size(); ++i) {
    taken.set(i, i, package.resistance[i]);
    for (std::size_t j = i + 1; j < matrix.size(); ++j) {
      const double value = matrix.at(i, j);
      if (value == 0.0) continue;
      if (std::fabs(value) < smallest * std::sqrt(matrix.at(i, i) * matrix.at(j, j))) {
        ++package.droppedCouplings;
        continue;
      }
      taken.set(i, j, value);
      package.shared.push_back({i, j, value});
    }
  }
  if (package.shared.empty() || isPositiveDefinite(taken)) return;
  package.droppedResistances = package.shared.size();
  package.shared.clear();
}

}  // namespace

bool isPositiveDefinite(const SymmetricMatrix& matrix) {
  const std::size_t size = matrix.size();
  std::vector<double> factor(size * size);
  for (std::size_t i = 0; i < size; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      double sum = matrix.at(i, j);
      for (std::size_t k = 0; k < j; ++k) sum -= factor[i * size + k] * factor[j * size + k];
      if (i != j) {
        factor[i * size + j] = sum / factor[j * size + j];
      } else if (sum > 0.0) {
        factor[i * size + i] = std::sqrt(sum);
      } else {
        return false;
      }
    }
  }
  return true;
}

std::size_t countCouplings(const IBISPackageModel& model, std::span<const std::int32_t> rows,
                           double smallestCoupling) {
  const RowMap indices = indexRows(rows);
  const Cells cells = cellsOf(model.inductance, indices);
  std::vector<double> own(indices.size());
  for (const auto& [place, value] : cells) {
    if (place.first == place.second && isUsableNumber(value)) own[place.first] = value;
  }
  std::size_t count = 0;
  for (const auto& [place, value] : cells) {
    const double product = std::max(own[place.first], 0.0) * std::max(own[place.second], 0.0);
    if (place.first == place.second || !isUsableNumber(value) || !(product > 0.0)) continue;
    if (value != 0.0 && std::fabs(value / std::sqrt(product)) >= smallestCoupling) ++count;
  }
  return count;
}

CoupledPackage coupledPackage(const IBISPackageModel& model, std::span<const std::int32_t> rows,
                              double smallestCoupling) {
  const RowMap indices = indexRows(rows);
  CoupledPackage package;
  takeResistances(package, submatrix(model.resistance, indices, package.droppedEntries),
                  smallestCoupling);
  takeInductances(package, submatrix(model.inductance, indices, package.droppedEntries),
                  smallestCoupling);
  makeInductancesPassive(package);
  takeCapacitances(package, submatrix(model.capacitance, indices, package.droppedEntries));
  return package;
}

}  // namespace ibis
