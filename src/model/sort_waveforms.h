#pragma once

#include "ibis/model.h"

namespace ibis {

/// Sorts the waveforms by fixture resistance where an edge has more than it needs, smallest first.
///
/// Equal resistances keep their order; a not-a-number is neither less nor greater.
void sortWaveforms(IBISModel& model);

}  // namespace ibis
