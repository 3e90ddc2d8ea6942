#pragma once

#include <span>
#include <vector>

#include "analysis/load_line.h"

namespace ibis {

/// What one waveform says at one time: up Ku + down Kd = current, in amperes.
struct CurrentRow {
  double up = 0.0;
  double down = 0.0;
  double current = 0.0;
};

/// Coefficients beyond this are no driver's; strong pre-emphasis needs nearly as much.
inline constexpr double smallestCoefficient = -3.0;
inline constexpr double largestCoefficient = 4.0;

/// Ku and Kd from two waveforms: least squares, drawn a little to a prior, inside the bounds.
///
///   (A'A + l^2) K = A'b + l^2 P,  l = 1e-5 sqrt(sum A^2 / 2) + 1e-10,
///
/// with P the least squares solution for Kd = 1 - Ku, between -0.2 and 1.2. Tikhonov's
/// regularisation: up to a condition of some hundreds the bias is below 0.01 %, and where the two
/// rows say the same the prior takes over.
Coefficients solvePair(const CurrentRow& first, const CurrentRow& second);

/// Ku from one waveform, Kd = 1 - Ku, inside the bounds.
Coefficients solveComplement(const CurrentRow& row);

/// The one coefficient of an open driver over time, from the rows of all waveforms at each time.
///
/// Least squares; where the table carries too little current to tell, the value goes over to the
/// straight line between the neighbours that can tell. `rows` holds `perTime` rows for each time.
std::vector<double> solveOpen(std::span<const CurrentRow> rows, std::size_t perTime,
                              std::span<const double> time, DriverKind driver);

}  // namespace ibis
