#pragma once

#include "host/diagnostics/error_handler.h"
#include "ibis/model.h"

namespace ibis {

/// Fills the four reference voltages from [Voltage Range] and reports those that stay unknown.
///
/// False if a table has no reference. Differences between the references of a driver and of its
/// clamps are errors that do not change the result.
bool resolveReferences(IBISModel& model, IBISErrorHandler& errors);

}  // namespace ibis
