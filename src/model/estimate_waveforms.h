#pragma once

#include "host/diagnostics/error_handler.h"
#include "ibis/model.h"

namespace ibis {

/// Max points of one estimated waveform; a waveform that would have more has none.
inline constexpr std::int32_t maxTimePoints = 1'000'000;

/// Adds two rising and two falling waveforms to a driver without any, with a warning.
///
/// Their levels are the DC points of the driver's tables on the load of the ramp. A straight line
/// of the ramp's duration leads from one level to the other and is bent into both. withPoints()
/// makes the points when they are wanted. The operations keep one order, since results are compared
/// to the last printed digit.
void estimateWaveforms(IBISModel& model, IBISErrorHandler& errors);

/// Finds the levels of one corner and stores them in the model's estimated waveforms.
void solveCorner(IBISModel& model, int corner);

/// A copy of an estimated waveform with the points of the first `corners` corners by index.
IBISWaveform withPoints(const IBISWaveform& waveform, int corners = corner::count);

/// The times of an estimated waveform in seconds, the same for every corner.
YVector<double> estimatedTimes(const IBISEstimate& estimate);

/// Whether an estimated waveform has no points because they would be too many.
bool hasTooManyPoints(const IBISWaveform& waveform);

/// Fills the times of a waveform from the ramp times of all corners, and sets its kind.
///
/// A step is a hundredth of the shortest ramp. There are no steps if that is not above 0, or if
/// there would be more than maxTimePoints points.
void buildTimePoints(IBISWaveform& waveform, std::int32_t kind, bool noDelay,
                     const IBISTriple& rampTime);

/// Computes one corner's voltages at the waveform's times and sets its fixture.
void fillWaveform(IBISWaveform& waveform, const EstimatedEdge& edge);

}  // namespace ibis
