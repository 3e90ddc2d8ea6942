#pragma once

#include <span>

#include "host/diagnostics/error_handler.h"
#include "ibis/model.h"

namespace ibis {

/// Points of estimated waveforms in one load: those of thousands of drivers. A file that asks for
/// more would fill memory and disk.
inline constexpr std::int32_t mostEstimatedPoints = 8'000'000;

/// Reports what each model lacks and completes those that lack nothing.
///
/// A model without an error gets its references, input defaults, waveforms and their order; the
/// built-in types stay as they are. Estimated waveforms above the limit of points are an error,
/// with which the work ends.
void checkModels(std::span<IBISModel* const> models, IBISErrorHandler& errors,
                 std::int32_t pointLimit = mostEstimatedPoints);

}  // namespace ibis
