#include "host/diagnostics/format_message.h"

#include <cstdio>
#include <string_view>

#include "host/diagnostics/messages.h"
#include "ibis/ibis_string.h"

namespace ibis {
namespace {

constexpr std::size_t maxTextSize = 1023;

std::string leadOf(std::int32_t line) { return "Line " + std::to_string(line) + ": "; }

bool endsInLineFeed(const MessageRow& row) { return std::string_view(row.format).ends_with('\n'); }

// The line among the arguments of a row; 0 if the row has none.
std::int32_t lineAmong(const MessageRow& row, std::va_list& arguments) {
  if (row.place == LinePlace::none) return 0;
  if (row.place == LinePlace::second) static_cast<void>(va_arg(arguments, const char*));
  return va_arg(arguments, int);
}

std::int32_t lineOf(const MessageRow& row, std::va_list arguments) {
  std::va_list copy;
  va_copy(copy, arguments);
  const std::int32_t line = lineAmong(row, copy);
  va_end(copy);
  return line;
}

// The text after the leading line number, without a line end.
std::string_view ownText(const MessageRow& row, std::int32_t line, std::string_view text) {
  if (row.place == LinePlace::shown || row.place == LinePlace::silent) {
    text.remove_prefix(leadOf(line).size());
  }
  if (endsInLineFeed(row) && text.ends_with('\n')) text.remove_suffix(1);
  return text;
}

}  // namespace

Diagnostic makeDiagnostic(Severity severity, const char* format, std::va_list arguments) {
  return makeDiagnostic(findMessage(format), severity, format, arguments);
}

Diagnostic makeDiagnostic(const MessageRow* row, Severity severity, const char* format,
                          std::va_list arguments) {
  Diagnostic diagnostic;
  diagnostic.severity = severity;
  if (row != nullptr) {
    diagnostic.id = row->id.view();
    diagnostic.line = lineOf(*row, arguments);
  }
  char buffer[maxTextSize + 1];
  const bool isWritten = std::vsnprintf(buffer, sizeof buffer, format, arguments) >= 0;
  const std::string_view text = isWritten ? buffer : "";
  diagnostic.text = row != nullptr ? ownText(*row, diagnostic.line, text) : foldReservedName(text);
  return diagnostic;
}

Diagnostic makeDiagnostic(Severity severity, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const ArgumentsEnd end(arguments);
  return makeDiagnostic(severity, format, arguments);
}

std::string messageText(const Diagnostic& diagnostic) {
  const MessageRow* row = findMessageById(diagnostic.id);
  if (row == nullptr) return diagnostic.text;
  std::string text = row->place == LinePlace::shown ? leadOf(diagnostic.line) : "";
  text += diagnostic.text;
  if (endsInLineFeed(*row)) text += '\n';
  if (text.size() > maxTextSize) text.resize(maxTextSize);
  return text;
}

}  // namespace ibis
