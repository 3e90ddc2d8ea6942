#pragma once

#include <cstdarg>
#include <string>

#include "host/diagnostics/error_handler.h"
#include "ibis/api.h"
#include "ibis/diagnostic.h"

namespace ibis {

struct MessageRow;

/// What a handler was told, as data: the arguments of a row of the message table.
///
/// A format that is no row gives a diagnostic without id and line.
Diagnostic makeDiagnostic(Severity severity, const char* format, std::va_list arguments)
    IBIS_PRINTF_FORMAT(2, 0);

/// The same from its arguments.
Diagnostic makeDiagnostic(Severity severity, const char* format, ...) IBIS_PRINTF_FORMAT(2, 3);

/// The same for a row of any table, or for none.
Diagnostic makeDiagnostic(const MessageRow* row, Severity severity, const char* format,
                          std::va_list arguments) IBIS_PRINTF_FORMAT(3, 0);

/// A diagnostic's text as the plug-in reports it, at most 1,023 bytes.
IBIS_API std::string messageText(const Diagnostic& diagnostic);

/// Ends a list of arguments, also where an exception leaves its function.
class ArgumentsEnd {
 public:
  explicit ArgumentsEnd(std::va_list& arguments) : arguments_(arguments) {}
  ~ArgumentsEnd() { va_end(arguments_); }
  ArgumentsEnd(const ArgumentsEnd&) = delete;
  ArgumentsEnd& operator=(const ArgumentsEnd&) = delete;

 private:
  std::va_list& arguments_;
};

}  // namespace ibis
