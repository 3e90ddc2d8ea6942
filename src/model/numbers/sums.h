#pragma once

#include <cstdint>

namespace ibis {

/// How many of the sums start, start + step, start + 2 step, ... lie below the end, each rounded as
/// an addition rounds it.
///
/// Takes hardly longer for many sums than for few. The start is not below 0, the step is above 0,
/// and the end is less than 2^50 steps away.
std::int64_t countSums(double start, double end, double step);

}  // namespace ibis
