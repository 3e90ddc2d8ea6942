#pragma once

#include "ibis/model.h"

namespace ibis::cli {

/// Whether each value of the model's tables and waveforms in a library is a finite number.
bool hasFiniteData(const IBISModel& model);

/// Whether an estimated waveform of the model is empty because it would have too many points.
bool lacksPoints(const IBISModel& model);

}  // namespace ibis::cli
