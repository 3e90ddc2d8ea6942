#pragma once

#include <cstdarg>
#include <string>

#include "host/diagnostics/error_handler.h"
#include "ibis/api.h"
#include "ibis/diagnostic.h"

namespace ibis {

struct MessageRow;

/// Makes a diagnostic from the format of a row of the message table and its arguments.
///
/// The diagnostic of any other format has no id and no line.
Diagnostic makeDiagnostic(Severity severity, const char* format, std::va_list arguments)
    IBIS_PRINTF_FORMAT(2, 0);

/// The same with the arguments themselves.
Diagnostic makeDiagnostic(Severity severity, const char* format, ...) IBIS_PRINTF_FORMAT(2, 3);

/// The same for a row of any table, or for null.
Diagnostic makeDiagnostic(const MessageRow* row, Severity severity, const char* format,
                          std::va_list arguments) IBIS_PRINTF_FORMAT(3, 0);

/// A diagnostic's text as the plug-in reports it, at most 1,023 bytes.
IBIS_API std::string messageText(const Diagnostic& diagnostic);

/// Ends a list of arguments, also when an exception leaves the function.
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
