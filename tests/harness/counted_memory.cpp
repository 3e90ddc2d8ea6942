#include "harness/counted_memory.h"

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

#include "harness/sanitizer.h"

namespace ibis::testing {
namespace {

thread_local MemoryUse use;
thread_local FailingMemory* failing = nullptr;

constexpr std::size_t anySize = std::numeric_limits<std::size_t>::max();
std::atomic<std::size_t> smallestRefused = anySize;

bool fails(FailingMemory::Source source) { return failing != nullptr && failing->fails(source); }

void* take(std::size_t size) {
  const bool isRefused = size >= smallestRefused || fails(FailingMemory::Source::operatorNew);
  void* const block = isRefused ? nullptr : std::malloc(size > 0 ? size : 1);
  if (block == nullptr) return nullptr;
  ++use.allocations;
  use.bytes += size;
  ++use.live;
  return block;
}

void* takeOrThrow(std::size_t size) {
  void* const block = take(size);
  if (block != nullptr) return block;
  if (failing != nullptr && failing->hasFailed()) failing->raise();
  throw std::bad_alloc();
}

void giveBack(void* block) {
  if (block != nullptr) --use.live;
  std::free(block);
}

}  // namespace

MemoryUse memoryUse() { return use; }

FailingMemory::FailingMemory(Source source, Duration duration, std::uint64_t successes,
                             Thrown thrown)
    : source_(source), duration_(duration), thrown_(thrown), successes_(successes) {
  failing = this;
}

void FailingMemory::raise() const {
  if (thrown_ == Thrown::number) throw 7;
  throw std::bad_alloc();
}

FailingMemory::~FailingMemory() { failing = nullptr; }

NoLargeMemory::NoLargeMemory(std::size_t size) { smallestRefused = size; }

NoLargeMemory::~NoLargeMemory() { smallestRefused = anySize; }

bool FailingMemory::fails(Source source) {
  if (source != source_) return false;
  if (successes_ > 0) {
    --successes_;
    return false;
  }
  if (failures_ > 0 && duration_ == Duration::once) return false;
  ++failures_;
  return true;
}

}  // namespace ibis::testing

using ibis::testing::giveBack;
using ibis::testing::take;
using ibis::testing::takeOrThrow;

void* operator new(std::size_t size) { return takeOrThrow(size); }
void* operator new[](std::size_t size) { return takeOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return take(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return take(size); }
void operator delete(void* block) noexcept { giveBack(block); }
void operator delete[](void* block) noexcept { giveBack(block); }
void operator delete(void* block, std::size_t) noexcept { giveBack(block); }
void operator delete[](void* block, std::size_t) noexcept { giveBack(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { giveBack(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { giveBack(block); }

#if IBIS_HAS_SANITIZER

bool ibis::testing::canFailMalloc() { return false; }

#else

bool ibis::testing::canFailMalloc() { return true; }

// The C library's own, by the name that it keeps for those who replace malloc.
extern "C" void* __libc_malloc(std::size_t size);

extern "C" void* malloc(std::size_t size) {
  using ibis::testing::FailingMemory;
  return ibis::testing::fails(FailingMemory::Source::malloc) ? nullptr : __libc_malloc(size);
}

#endif
