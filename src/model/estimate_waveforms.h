#pragma once

#include "host/diagnostics/error_handler.h"
#include "ibis/model.h"

namespace ibis {

/// Points of one estimated waveform at most; one that would have more has none.
inline constexpr std::int32_t maxTimePoints = 1'000'000;

/// Gives a driver without any waveform two rising and two falling ones, with a warning.
///
/// Their levels are the DC points of the driver's tables on the load of the ramp; between them a
/// straight line of the ramp's duration is bent into the levels. Their points are made by
/// withPoints() when they are wanted. The operations keep one order, since results are compared to
/// the last printed digit.
void estimateWaveforms(IBISModel& model, IBISErrorHandler& errors);

/// Finds the levels of one corner and hands them to the model's estimated waveforms of that corner.
void solveCorner(IBISModel& model, int corner);

/// A copy of an estimated waveform that holds its points, of so many corners from typ on.
IBISWaveform withPoints(const IBISWaveform& waveform, int corners = corner::count);

/// The times of an estimated waveform, which are those of every corner.
YVector<double> estimatedTimes(const IBISEstimate& estimate);

/// Whether an estimated waveform has no points because they would be too many.
bool hasTooManyPoints(const IBISWaveform& waveform);

/// Fills the times of a waveform from the ramp times of all corners, and sets its kind.
///
/// Steps of a hundredth of the shortest ramp; no steps at all where that is not above 0 or where
/// there would be more than maxTimePoints.
void buildTimePoints(IBISWaveform& waveform, std::int32_t kind, bool noDelay,
                     const IBISTriple& rampTime);

/// Computes one corner's voltages at the waveform's times and sets its fixture.
void fillWaveform(IBISWaveform& waveform, const EstimatedEdge& edge);

}  // namespace ibis
