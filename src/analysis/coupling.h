#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "ibis/package_model.h"

namespace ibis {

/// A symmetric matrix, held whole.
class SymmetricMatrix {
 public:
  explicit SymmetricMatrix(std::size_t size = 0) : size_(size), values_(size * size) {}

  std::size_t size() const { return size_; }
  double at(std::size_t row, std::size_t column) const { return values_[row * size_ + column]; }
  void set(std::size_t row, std::size_t column, double value) {
    values_[row * size_ + column] = value;
    values_[column * size_ + row] = value;
  }

 private:
  std::size_t size_;
  std::vector<double> values_;
};

/// Whether a matrix is positive definite: Cholesky's factorisation finds a root of every pivot.
bool isPositiveDefinite(const SymmetricMatrix& matrix);

/// A coupled inductance between two of the pins, by index; k = L_ij / sqrt(L_ii L_jj).
struct InductiveCoupling {
  std::size_t first = 0;
  std::size_t second = 0;
  double k = 0.0;
};

/// A capacitor between two of the pins, by index, in farads.
struct MutualCapacitance {
  std::size_t first = 0;
  std::size_t second = 0;
  double value = 0.0;
};

/// A resistance that the current of each of two pins meets from the other's, by index, in ohms.
struct ResistiveCoupling {
  std::size_t first = 0;
  std::size_t second = 0;
  double value = 0.0;
};

/// The elements that stand for a coupled package's matrices, for some of its pins.
struct CoupledPackage {
  std::vector<double> resistance;   ///< Of each pin, in ohms.
  std::vector<double> inductance;   ///< Of each pin, in henries.
  std::vector<double> capacitance;  ///< Of each pin to the reference, in farads; may be negative.
  std::vector<InductiveCoupling> couplings;
  std::vector<MutualCapacitance> mutual;
  std::vector<ResistiveCoupling> shared;  ///< Only between pins that have a resistance.
  std::size_t droppedCouplings = 0;       ///< Below the smallest coupling wanted.
  std::size_t droppedResistances = 0;     ///< Between pins, of a network that is not passive.
  std::size_t droppedCapacitances =
      0;                           ///< Set to 0, since they were negative without being passive.
  double inductanceScale = 1.0;    ///< What the couplings were multiplied by to be passive.
  bool hasBadDiagonal = false;     ///< A pin's own value is negative.
  std::size_t droppedEntries = 0;  ///< Of the matrices, since they are not finite.
};

/// How many inductive couplings of at least the smallest there are between pins of a package model,
/// each given by its row in the model, from 1.
std::size_t countCouplings(const IBISPackageModel& model, std::span<const std::int32_t> rows,
                           double smallestCoupling);

/// The elements for pins of a package model, each given by its row in the model, from 1.
///
/// The capacitance matrix is a Maxwell matrix: between two pins stands -C_ij, to the reference the
/// sum of the row over the pins taken, so a pin left out counts as grounded. Leaving a pin out of
/// the inductances and resistances is exact when it carries no current. Inductances and resistances
/// between two pins are dropped where they are below the smallest coupling: that share of the
/// geometric mean of the two pins' own.
CoupledPackage coupledPackage(const IBISPackageModel& model, std::span<const std::int32_t> rows,
                              double smallestCoupling);

}  // namespace ibis
