#pragma once

#include <cstdint>

#include "analysis/device.h"
#include "analysis/thinning.h"
#include "analysis/waveform_points.h"

namespace ibis {

/// What an edge's coefficients are made from.
enum class EdgeMethod : std::uint8_t {
  none,
  twoWaveforms,
  oneWaveform,
  estimatedWaveforms,
  ramp,
};

/// How a driver's coefficients go through one edge of its input.
struct EdgeCoefficients {
  EdgeMethod method = EdgeMethod::none;
  CoefficientTable table;         ///< From the settled values to the settled values.
  double span = 0.0;              ///< Time that the waveforms cover, in seconds.
  double activeTime = 0.0;        ///< When the last of them has all but settled, in seconds.
  double deadTime = 0.0;          ///< Before the first of them moves, in seconds.
  std::vector<std::size_t> used;  ///< Waveforms that were used, in the model's list of the edge.
  bool isFromTyp = false;         ///< The corner has none of its own.
};

/// Finds a driver's coefficients for one edge from its waveforms, or from its ramp.
///
/// At each time the currents of all tables, of the die's capacitance and of the fixture add up to
/// 0, which is one linear equation for Ku and Kd a waveform. At the ends the coefficients are the
/// settled ones, so that the static levels are those of the tables: at the start the difference is
/// taken out during the dead time, at the end within a tenth of the span behind it.
EdgeCoefficients extractEdge(const IBISModel& model, const Device& device, Edge edge, int corner,
                             Findings& findings);

/// A smooth step of a 20 to 80 % time in seconds, as the coefficients of an edge.
CoefficientTable rampTable(DriverKind driver, Edge edge, double time);

/// Share of the swing by which a waveform's first and last levels miss the load line's.
double staticMismatch(const Device& device, Edge edge, const WaveformPoints& points,
                      const Fixture& fixture);

}  // namespace ibis
