#pragma once

#include "host/diagnostics/error_handler.h"
#include "ibis/model.h"

namespace ibis {

/// Warns of missing input thresholds and writes their defaults, 0.8 and 2.0 V, ECL -1.475 and
/// -1.165 V.
///
/// Either default goes to vinl.typ, vinl.min and vinh.max, as the simulator's users have come to
/// expect; the present flags stay clear. Hysteresis thresholds get a warning.
void applyInputDefaults(IBISModel& model, IBISErrorHandler& errors);

}  // namespace ibis
