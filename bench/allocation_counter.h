#pragma once

#include <cstddef>

namespace ibis::bench {

/// What a program with allocation_counter.cpp took from operator new, in all threads.
struct Allocations {
  std::size_t count = 0;  ///< Since the last restart.
  std::size_t bytes = 0;  ///< Held at the moment.
  std::size_t peak = 0;   ///< Most bytes held at once since the last restart.
};

Allocations allocations();

/// Begins a new count and a new peak; what is held stays held.
void restartAllocations();

/// Most memory that the process had resident, in bytes.
std::size_t peakResidentBytes();

/// Gives free memory back to the system and begins a new peak of resident memory.
void restartPeakResidentBytes();

}  // namespace ibis::bench
