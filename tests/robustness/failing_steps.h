#pragma once

#include <atomic>
#include <cerrno>

namespace ibis::testing {

/// Makes one step with a file fail, of whichever thread, for as long as it lives: an open, a read,
/// a write, a close or a rename that the program itself asks of the C library.
class FailingStep {
 public:
  /// Lets `successes` steps pass before the one that fails.
  explicit FailingStep(int successes) { left() = successes; }
  ~FailingStep() { left() = none; }
  FailingStep(const FailingStep&) = delete;
  FailingStep& operator=(const FailingStep&) = delete;

  bool hasFailed() const { return left() < 0 && left() > none; }

  /// Counts a step; true, with the reason as errno, for the one that is to fail.
  static bool fails(int reason) {
    if (left() == none || left()-- != 0) return false;
    errno = reason;
    return true;
  }

 private:
  static constexpr int none = -1'000'000'000;

  static std::atomic<int>& left() {
    static std::atomic<int> steps = none;
    return steps;
  }
};

}  // namespace ibis::testing
