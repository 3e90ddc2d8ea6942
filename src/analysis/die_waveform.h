#pragma once

#include <span>
#include <vector>

#include "analysis/waveform_points.h"

namespace ibis {

/// What a waveform tells about the die's pad, at the times of a grid.
struct DieWaveform {
  std::vector<double> voltage;  ///< Of the pad, in volts.
  std::vector<double> slope;    ///< Of that voltage, in volts a second.
  std::vector<double> load;     ///< Current out of the pad into what hangs there, in amperes.
  double restingLoad = 0.0;     ///< That current at the first time, as if nothing had moved.
};

/// Works back from the waveform at the pin to the pad, through the fixture and the device's leads.
///
/// The pin has C_dut to ground, and L_fixture to a node with C_fixture to ground and R_fixture to
/// V_fixture; the pad has R_dut and L_dut to the pin. Between its points the waveform is the
/// monotone cubic. Without inductors and without leads,
///
///   load = (V - V_fixture) / R_fixture + C_fixture V'.
DieWaveform dieWaveform(const WaveformPoints& points, const Fixture& fixture,
                        std::span<const double> grid);

}  // namespace ibis
