#pragma once

#include <cstdarg>
#include <string>

#include "host/diagnostics/error_handler.h"

namespace ibis {

/// A message's text from its format and arguments, cut to 1,023 bytes, reserved words folded.
std::string formatMessage(const char* format, ...) IBIS_PRINTF_FORMAT(1, 2);

/// The same from an argument list.
std::string formatMessageList(const char* format, std::va_list arguments) IBIS_PRINTF_FORMAT(1, 0);

}  // namespace ibis
