#pragma once

#include <span>

#include "host/diagnostics/error_handler.h"
#include "ibis/model.h"

namespace ibis {

/// Reports what each model lacks and completes those that lack nothing.
///
/// A model without an error gets its references, input defaults, waveforms and their order; the
/// built-in types stay as they are.
void checkModels(std::span<IBISModel* const> models, IBISErrorHandler& errors);

}  // namespace ibis
