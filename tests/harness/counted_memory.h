#pragma once

#include <cstddef>
#include <cstdint>

namespace ibis::testing {

/// What a thread took from `operator new` since it began.
struct MemoryUse {
  std::uint64_t allocations = 0;
  std::uint64_t bytes = 0;
  std::int64_t live = 0;  ///< Allocations that were not given back.
};

/// The use of the thread that asks.
MemoryUse memoryUse();

/// Whether this build can make malloc fail; a sanitizer has a malloc of its own.
bool canFailMalloc();

/// Makes allocations of this thread fail for as long as it lives.
class FailingMemory {
 public:
  enum class Source { operatorNew, malloc };
  enum class Duration { once, forEver };

  /// What a failing `operator new` throws: std::bad_alloc, or what is no std::exception.
  enum class Thrown { badAlloc, number };

  /// Lets `successes` allocations pass before the first failure.
  FailingMemory(Source source, Duration duration, std::uint64_t successes,
                Thrown thrown = Thrown::badAlloc);
  ~FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;

  /// Whether any allocation failed.
  bool hasFailed() const { return failures_ > 0; }

  /// Counts one allocation; true for one that is to fail.
  bool fails(Source source);

  /// What stands for the memory that is not given.
  [[noreturn]] void raise() const;

 private:
  Source source_;
  Duration duration_;
  Thrown thrown_;
  std::uint64_t successes_;
  std::uint64_t failures_ = 0;
};

/// Makes each `operator new` of so many bytes or more fail, on every thread, for as long as it
/// lives.
class NoLargeMemory {
 public:
  explicit NoLargeMemory(std::size_t smallestRefused);
  ~NoLargeMemory();
  NoLargeMemory(const NoLargeMemory&) = delete;
  NoLargeMemory& operator=(const NoLargeMemory&) = delete;
};

}  // namespace ibis::testing
