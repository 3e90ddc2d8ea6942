#include "model/numbers/float_environment.h"

#ifdef __SSE__
#include <xmmintrin.h>
#endif

namespace ibis {
namespace {

// The default environment of some C libraries leaves the bits that flush small numbers to zero.
void setControlOfVectors() {
#ifdef __SSE__
  constexpr unsigned allMasked = 0x1f80;  // to nearest, no flag, nothing flushed
  _mm_setcsr(allMasked);
#endif
}

}  // namespace

FloatEnvironment::FloatEnvironment() {
  std::fegetenv(&callers_);
  std::fesetenv(FE_DFL_ENV);
  setControlOfVectors();
}

FloatEnvironment::~FloatEnvironment() { std::fesetenv(&callers_); }

}  // namespace ibis
