#include "message.h"

#include <charconv>

namespace ibis::cli {
namespace {

constexpr std::string_view lineWord = "Line ";
constexpr std::string_view quotedModelWord = "Model '";
constexpr std::string_view modelWord = "Model ";

std::optional<std::int32_t> toLine(std::string_view digits) {
  std::int32_t line = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, fault] = std::from_chars(digits.data(), end, line);
  return fault == std::errc() && stop == end ? std::optional(line) : std::nullopt;
}

// "Line 12: text" becomes line 12 and "text".
std::optional<Message> splitLinePrefix(std::string_view text) {
  const std::size_t colon = text.find(": ");
  if (!text.starts_with(lineWord) || colon == text.npos) return std::nullopt;
  const auto line = toLine(text.substr(lineWord.size(), colon - lineWord.size()));
  if (!line) return std::nullopt;
  return Message{line, std::string(text.substr(colon + 2))};
}

// A template's own lines are none of the IBIS file's.
std::optional<std::int32_t> lineAtEnd(std::string_view text) {
  if (text.starts_with("Template error")) return std::nullopt;
  const std::size_t blank = text.rfind(' ');
  if (blank == text.npos) return std::nullopt;
  const std::string_view front = text.substr(0, blank);
  if (!front.ends_with("starting line") && !front.ends_with(" at line")) return std::nullopt;
  return toLine(text.substr(blank + 1));
}

// The name in "Model 'name': text" or "Model name: text".
std::optional<std::string_view> modelName(std::string_view text) {
  if (!text.starts_with(modelWord)) return std::nullopt;
  const bool isQuoted = text.starts_with(quotedModelWord);
  text.remove_prefix(isQuoted ? quotedModelWord.size() : modelWord.size());
  const std::size_t end = text.find(isQuoted ? "': " : ": ");
  return end == text.npos ? std::nullopt : std::optional(text.substr(0, end));
}

}  // namespace

MessageLocator::MessageLocator(const IBISFileData& file) {
  for (const auto& model : file.models) {
    if (model->lineNumber == 0) continue;  // built in, so no line is its
    const auto place = static_cast<std::size_t>(models_.findOrAdd(model->name));
    if (place == lines_.size()) {
      lines_.push_back(model->lineNumber);
    } else {
      lines_[place] = 0;
    }
  }
}

Message MessageLocator::locate(std::string_view text) const {
  if (text.ends_with('\n')) text.remove_suffix(1);
  if (const auto message = splitLinePrefix(text)) return *message;
  const auto line = lineAtEnd(text);
  return {line ? line : modelLine(text), std::string(text)};
}

std::optional<std::int32_t> MessageLocator::modelLine(std::string_view text) const {
  const auto name = modelName(text);
  const std::int32_t place = name ? models_.find(*name) : models_.absent;
  if (place == models_.absent) return std::nullopt;
  const std::int32_t line = lines_[static_cast<std::size_t>(place)];
  return line == 0 ? std::nullopt : std::optional(line);
}

}  // namespace ibis::cli
