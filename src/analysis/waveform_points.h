#pragma once

#include <cstddef>
#include <vector>

#include "ibis/model.h"

namespace ibis {

/// One corner of a waveform, as far as the file gives it; seconds and volts.
struct WaveformPoints {
  std::vector<double> time;  ///< Strictly ascending.
  std::vector<double> voltage;
  std::size_t missingCells = 0;  ///< Rows that were left out because they have no own voltage.

  std::size_t size() const { return time.size(); }
};

/// What a waveform was measured into; ohms, volts, farads and henries.
struct Fixture {
  double resistance = 50.0;
  double voltage = 0.0;
  double capacitance = 0.0;
  double inductance = 0.0;
  double rDut = 0.0;
  double lDut = 0.0;
  double cDut = 0.0;

  /// Whether it is more than a resistor and a capacitor.
  bool isComplex() const { return inductance > 0.0 || rDut > 0.0 || lDut > 0.0 || cDut > 0.0; }
};

/// The rows of a corner with own finite numbers whose time is above that of the row before.
WaveformPoints ownPoints(const IBISWaveform& waveform, int corner);

/// The fixture at a corner; a voltage that the file leaves out is that of typ.
Fixture fixtureOf(const IBISWaveform& waveform, int corner);

/// Largest voltage less the smallest.
double swingOf(const WaveformPoints& points);

}  // namespace ibis
