#include "host/diagnostics/format_message.h"

#include <cstdio>

#include "ibis/ibis_string.h"

namespace ibis {
namespace {

constexpr std::size_t messageBufferSize = 1024;

}  // namespace

std::string formatMessageList(const char* format, std::va_list arguments) {
  char text[messageBufferSize];
  if (std::vsnprintf(text, sizeof text, format, arguments) < 0) text[0] = '\0';
  return std::string(foldReservedName(text));
}

std::string formatMessage(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::string text = formatMessageList(format, arguments);
  va_end(arguments);
  return text;
}

}  // namespace ibis
