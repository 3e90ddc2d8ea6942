#include "messages.h"

#include <algorithm>

#include "host/diagnostics/format_message.h"

namespace ibis::cli {
namespace {

constexpr MessageRow rows[] = {
#define IBIS_MESSAGE(identifier, place, text) \
  {MessageId(#identifier), LinePlace::place, message::identifier},
#include "messages.def"
#undef IBIS_MESSAGE
};

}  // namespace

std::span<const MessageRow> messageTable() { return rows; }

Diagnostic tell(Severity severity, const char* format, ...) {
  const auto* row = std::ranges::find(rows, format, &MessageRow::format);
  std::va_list arguments;
  va_start(arguments, format);
  const ArgumentsEnd end(arguments);
  return makeDiagnostic(row == std::end(rows) ? nullptr : row, severity, format, arguments);
}

}  // namespace ibis::cli
