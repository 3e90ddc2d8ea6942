#pragma once

#include "host/diagnostics/error_handler.h"
#include "ibis/model.h"

namespace ibis {

/// Gives a driver without any waveform two rising and two falling ones, with a warning.
///
/// Their levels are the DC points of the driver's tables on the load of the ramp; between them a
/// straight line of the ramp's duration is bent into the levels. The operations keep one order,
/// since results are compared to the last printed digit. Gives the number of points in all.
std::int64_t estimateWaveforms(IBISModel& model, IBISErrorHandler& errors);

/// One transition at one corner; seconds, volts and ohms.
struct EstimatedEdge {
  double duration = 0.0;
  double delay = 0.0;
  double vStart = 0.0;
  double vEnd = 0.0;
  double load = 0.0;
  double fixtureVoltage = 0.0;
  int corner = 0;
};

/// Fills the times of a waveform from the ramp times of all corners, and sets its kind.
///
/// Steps of a hundredth of the shortest ramp; no steps at all where that is not above 0 or where
/// there would be more than a million points.
void buildTimePoints(IBISWaveform& waveform, std::int32_t kind, bool noDelay,
                     const IBISTriple& rampTime);

/// Finds the levels of one corner and fills that corner of the model's estimated waveforms.
void solveCorner(IBISModel& model, int corner);

/// Computes one corner's voltages at the waveform's times and sets its fixture.
void fillWaveform(IBISWaveform& waveform, const EstimatedEdge& edge);

}  // namespace ibis
