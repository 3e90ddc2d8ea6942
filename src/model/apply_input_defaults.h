#pragma once

#include "host/diagnostics/error_handler.h"
#include "ibis/model.h"

namespace ibis {

/// Warns of missing input thresholds and writes their defaults, 0.8 and 2.0 V, ECL -1.475 and
/// -1.165 V.
///
/// Either default goes to vinl.typ, vinl.min and vinh.max, which is what the simulator's users
/// have come to rely on; the present flags stay clear. Hysteresis thresholds are warned of.
void applyInputDefaults(IBISModel& model, IBISErrorHandler& errors);

}  // namespace ibis
