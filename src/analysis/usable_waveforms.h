#pragma once

#include <cstddef>
#include <vector>

#include "analysis/device.h"
#include "analysis/waveform_points.h"

namespace ibis {

/// One waveform that coefficients can be made from.
struct UsableWaveform {
  std::size_t index = 0;  ///< In the model's list of the edge.
  WaveformPoints points;
  Fixture fixture;
  double swing = 0.0;  ///< In volts.
};

/// What the waveforms of an edge offer at a corner.
struct WaveformOffer {
  std::vector<UsableWaveform> usable;
  bool hasOwnPoints = false;  ///< Some waveform has points of this corner, usable or not.
  bool isEstimate = false;
};

/// A model's waveforms of an edge, in file order.
const std::vector<IBISWaveform>& waveformsOf(const IBISModel& model, Edge edge);

/// The waveforms of an edge that have points of a corner, time to move in and enough swing.
WaveformOffer offerOf(const IBISModel& model, Edge edge, int corner, Findings& findings);

/// The waveforms to solve with: for a push-pull driver the two whose equations differ most, in the
/// median over the span; else all. They live as long as the list.
std::vector<const UsableWaveform*> choose(const Device& device,
                                          const std::vector<UsableWaveform>& usable);

}  // namespace ibis
