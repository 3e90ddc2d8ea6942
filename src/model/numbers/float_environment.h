#pragma once

#include <cfenv>

namespace ibis {

/// Gives the thread, for as long as it lives, the floating-point environment on which printed
/// digits rest; then the caller's again, with its flags as they were.
///
/// Numbers are rounded to nearest, nothing traps, and numbers below the smallest normal one stay.
class FloatEnvironment {
 public:
  FloatEnvironment();
  ~FloatEnvironment();
  FloatEnvironment(const FloatEnvironment&) = delete;
  FloatEnvironment& operator=(const FloatEnvironment&) = delete;

 private:
  std::fenv_t callers_;
};

}  // namespace ibis
