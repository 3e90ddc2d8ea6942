#include "allocation_counter.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <new>
#include <string>

namespace {

std::atomic<std::size_t> count;
std::atomic<std::size_t> held;
std::atomic<std::size_t> peak;

void* counted(void* memory) {
  if (memory == nullptr) throw std::bad_alloc();
  count.fetch_add(1, std::memory_order_relaxed);
  const std::size_t size = malloc_usable_size(memory);
  const std::size_t now = held.fetch_add(size, std::memory_order_relaxed) + size;
  std::size_t before = peak.load(std::memory_order_relaxed);
  while (before < now && !peak.compare_exchange_weak(before, now)) {
  }
  return memory;
}

void release(void* memory) {
  if (memory != nullptr) held.fetch_sub(malloc_usable_size(memory), std::memory_order_relaxed);
  std::free(memory);
}

void* alignedMemory(std::size_t size, std::align_val_t alignment) {
  const auto bytes = static_cast<std::size_t>(alignment);
  return std::aligned_alloc(bytes, (size + bytes - 1) / bytes * bytes);
}

}  // namespace

// The forms for arrays and for no exceptions go through these.
void* operator new(std::size_t size) { return counted(std::malloc(size)); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return counted(alignedMemory(size, alignment));
}
void operator delete(void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { release(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { release(memory); }

namespace ibis::bench {

Allocations allocations() { return {count.load(), held.load(), peak.load()}; }

void restartAllocations() {
  count = 0;
  peak = held.load();
}

std::size_t peakResidentBytes() {
  constexpr std::size_t bytesOfUnit = 1024;
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    std::size_t amount = 0;
    if (word == "VmHWM:" && status >> amount) return amount * bytesOfUnit;
  }
  return 0;
}

void restartPeakResidentBytes() {
  constexpr char peakAlone = '5';
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << peakAlone;
}

}  // namespace ibis::bench
