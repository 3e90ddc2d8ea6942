#include "harness/message_ledger.h"

#include <algorithm>
#include <set>

#include "host/diagnostics/messages.h"

namespace ibis::testing {
namespace {

std::set<std::string>& notedTexts() {
  static std::set<std::string> texts;
  return texts;
}

// How many characters an integer takes at the start of a text.
std::size_t integerLength(std::string_view text) {
  const std::size_t sign = text.starts_with('-') ? 1 : 0;
  const std::size_t end = std::min(text.find_first_not_of("0123456789", sign), text.size());
  return end > sign ? end : 0;
}

// Whether printf can make the text from the format: %s is any text, %d an integer.
bool isInstance(std::string_view text, std::string_view format) {
  if (format.empty()) return text.empty();
  if (format.starts_with("%s")) {
    for (std::size_t i = 0; i <= text.size(); ++i) {
      if (isInstance(text.substr(i), format.substr(2))) return true;
    }
    return false;
  }
  if (format.starts_with("%d")) {
    const std::size_t length = integerLength(text);
    return length > 0 && isInstance(text.substr(length), format.substr(2));
  }
  const std::size_t width = format.starts_with("%%") ? 2 : 1;
  return !text.empty() && text[0] == format[0] && isInstance(text.substr(1), format.substr(width));
}

// The engine hands its own messages on inside the wrapping row.
bool isProven(const MessageRow& row) {
  const std::string wrapped = "Template error : " + std::string(row.text) + "\n";
  return std::ranges::any_of(notedTexts(), [&](const std::string& text) {
    return isInstance(text, row.text) || isInstance(text, wrapped);
  });
}

}  // namespace

std::vector<std::string> proven(std::vector<std::string> texts) {
  notedTexts().insert(texts.begin(), texts.end());
  return texts;
}

std::vector<std::string> unprovenMessages() {
  std::vector<std::string> unproven;
  for (const MessageRow& row : messageTable()) {
    if (!isProven(row)) unproven.emplace_back(row.identifier);
  }
  return unproven;
}

}  // namespace ibis::testing
