#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "checks/package_model.h"

namespace ibis::checks {

/// How a matrix gives its values.
enum class MatrixKind : std::uint8_t { banded, sparse, full, unknown };

/// A value of a matrix; rows and columns count pins from 0.
struct MatrixEntry {
  std::uint32_t row;
  std::uint32_t column;
  double value;
  Spot spot;
};

/// A matrix of a package model; its entries lie in the upper triangle.
struct Matrix {
  const Block* block = nullptr;
  MatrixKind kind = MatrixKind::unknown;
  std::size_t bandwidth = 0;
  bool hasBandwidth = false;
  bool isSound = true;          ///< Whether each row and each number could be read.
  std::vector<bool> rows = {};  ///< Which pins have a [Row].
  std::vector<MatrixEntry> entries = {};

  std::string name() const { return std::string(block->keyword->name); }
  bool isInductance() const { return block->keyword->name == "Inductance Matrix"; }
  bool isCapacitance() const { return block->keyword->name == "Capacitance Matrix"; }
};

/// Reads all matrices of a package model; what cannot be read is told.
std::vector<Matrix> readMatrices(const PackageModel& model, Findings& findings);

/// Tells what is wrong with the rows and with the values of a matrix.
void checkMatrix(const PackageModel& model, Matrix& matrix, Findings& findings);

/// The index of the first row whose pivot is not positive; the count of rows if there is none.
///
/// Works in the envelope of the matrix, and gives nothing for one that would cost too many steps.
std::optional<std::size_t> firstBadPivot(std::size_t count,
                                         const std::vector<MatrixEntry>& entries);

}  // namespace ibis::checks
