#pragma once

#include <cstdint>

namespace ibis::bench {

/// What the floor has to write; the values of the sample follow as doubles.
///
/// The sample is spread over all of the output, in its order, and is printed over and over: so the
/// numbers have the digits of the output's, and the processor's cache holds them.
struct FloorPlanHead {
  std::uint64_t numbers = 0;  ///< In the output.
  std::uint64_t bytes = 0;    ///< Of the output.
  std::uint64_t sample = 0;   ///< How many values follow.
};

}  // namespace ibis::bench
