#include <algorithm>
#include <cmath>

#include "checks/package_matrix.h"

namespace ibis::checks {

std::optional<std::size_t> firstBadPivot(std::size_t count,
                                         const std::vector<MatrixEntry>& entries) {
  constexpr std::size_t mostPins = 1200;
  constexpr std::size_t mostSteps = 5'000'000;
  if (count > mostPins) return std::nullopt;
  std::vector<std::size_t> first(count);
  for (std::size_t i = 0; i < count; ++i) first[i] = i;
  double largest = 0.0;
  for (const MatrixEntry& entry : entries) {
    first[entry.column] = std::min<std::size_t>(first[entry.column], entry.row);
    if (entry.row == entry.column) largest = std::max(largest, std::abs(entry.value));
  }
  std::size_t steps = 0;
  for (std::size_t i = 0; i < count; ++i) steps += (i - first[i]) * (i - first[i]) / 2;
  if (steps > mostSteps) return std::nullopt;
  std::vector<std::vector<double>> lower(count);
  for (std::size_t i = 0; i < count; ++i) lower[i].assign(i - first[i] + 1, 0.0);
  for (const MatrixEntry& entry : entries)
    lower[entry.column][entry.row - first[entry.column]] = entry.value;
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t j = first[i]; j <= i; ++j) {
      double sum = lower[i][j - first[i]];
      for (std::size_t k = std::max(first[i], first[j]); k < j; ++k) {
        sum -= lower[i][k - first[i]] * lower[j][k - first[j]];
      }
      if (i != j) {
        lower[i][j - first[i]] = sum / lower[j][j - first[j]];
      } else if (!(sum > 1e-9 * largest)) {
        return i;
      } else {
        lower[i][i - first[i]] = std::sqrt(sum);
      }
    }
  }
  return count;
}

}  // namespace ibis::checks
