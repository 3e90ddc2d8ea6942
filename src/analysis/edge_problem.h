#pragma once

#include <vector>

#include "analysis/coefficient_solver.h"
#include "analysis/die_waveform.h"
#include "analysis/usable_waveforms.h"

namespace ibis {

/// The equations of one edge: one for each chosen waveform at each time of a common grid.
struct EdgeProblem {
  const Device* device;
  Edge edge;
  std::vector<double> grid;  ///< In seconds, from 0 to the last waveform's end.
  std::vector<const UsableWaveform*> chosen;
  std::vector<DieWaveform> waves;  ///< One for each chosen waveform.
  std::vector<CurrentRow> rows;    ///< For each time one for each chosen waveform.
};

/// Coefficients at each time of a grid.
using CoefficientList = std::vector<Coefficients>;

/// Where an edge's first step off time 0 ends, as a share of its span.
inline constexpr double firstStep = 1e-5;

/// A driver's coefficients before an edge.
Coefficients startOf(DriverKind driver, Edge edge);

/// A driver's coefficients after an edge.
Coefficients endOf(DriverKind driver, Edge edge);

/// The equations of an edge; device and waveforms must outlive them.
EdgeProblem makeProblem(const Device& device, Edge edge, std::vector<const UsableWaveform*> chosen);

/// The coefficients that solve the equations, at each time on its own.
CoefficientList solveAll(const EdgeProblem& problem);

/// The solution at the start as if nothing had moved yet.
Coefficients restingSolution(const EdgeProblem& problem);

/// The time before the first waveform has moved by a hundredth of its swing, in seconds.
double deadTimeOf(const EdgeProblem& problem);

/// The time after which all waveforms stay within half a hundredth of their swing, in seconds.
double activeTimeOf(const EdgeProblem& problem);

}  // namespace ibis
