#pragma once

#include <cinttypes>
#include <span>

#include "host/diagnostics/error_handler.h"
#include "host/diagnostics/messages.h"
#include "ibis/diagnostic.h"

namespace ibis::cli {

/// The texts of the program's own messages, each a printf format with the name of its row.
namespace message {
#define IBIS_MESSAGE(identifier, place, text) \
  inline constexpr char identifier[] = IBIS_LEAD_##place text;
#include "messages.def"
#undef IBIS_MESSAGE
}  // namespace message

/// The table of the program's own messages.
std::span<const MessageRow> messageTable();

/// Makes a diagnostic from a row of the program's own table and its arguments.
Diagnostic tell(Severity severity, const char* format, ...) IBIS_PRINTF_FORMAT(2, 3);

}  // namespace ibis::cli
