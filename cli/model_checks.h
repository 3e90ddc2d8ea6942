#pragma once

#include "ibis/model.h"

namespace ibis::cli {

/// Whether each table and waveform value that a library holds of the model is a finite number.
bool hasFiniteData(const IBISModel& model);

/// Whether an estimated waveform of the model is empty because it would have too many points.
bool lacksPoints(const IBISModel& model);

}  // namespace ibis::cli
