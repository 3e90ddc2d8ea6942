#pragma once

#if defined(__GNUC__)
#define IBIS_PRINTF_FORMAT(text, first) __attribute__((format(printf, text, first)))
#else
#define IBIS_PRINTF_FORMAT(text, first)
#endif

namespace ibis {

/// Takes the faults that readers and the template engine find; they never print or throw.
class IBISErrorHandler {
 public:
  virtual ~IBISErrorHandler() = default;

  /// Adds a fault that keeps output files from being written; takes printf's arguments.
  virtual void error(const char* format, ...) IBIS_PRINTF_FORMAT(2, 3) = 0;

  /// Adds a fault that stops nothing; takes printf's arguments.
  virtual void warning(const char* format, ...) IBIS_PRINTF_FORMAT(2, 3) = 0;
};

}  // namespace ibis
