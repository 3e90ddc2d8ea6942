#pragma once

#include "ibis/model.h"

namespace ibis {

/// Puts waveforms with the smallest fixture resistance first, where an edge has more than it needs.
///
/// Equal resistances keep their order; a not-a-number is neither less nor greater.
void sortWaveforms(IBISModel& model);

}  // namespace ibis
