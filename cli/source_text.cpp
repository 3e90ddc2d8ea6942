#include "source_text.h"

#include "ibis/ibis_string.h"

namespace ibis::cli {
namespace {

constexpr std::string_view blanks = " \t\r";
constexpr char usualComment = '|';

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(blanks);
  if (begin == text.npos) return {};
  return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

// What stands between the brackets in front of a line; empty for any other line.
std::string_view keywordOf(std::string_view line) {
  if (!line.starts_with('[')) return {};
  const std::size_t end = line.find(']');
  return end == line.npos ? std::string_view() : trimmed(line.substr(1, end - 1));
}

bool isMostlyZeroBytes(std::string_view text) {
  constexpr std::size_t looked = 64;
  const std::string_view front = text.substr(0, looked);
  std::size_t zeros = 0;
  for (const char c : front) {
    if (c == '\0') ++zeros;
  }
  return zeros * 3 >= front.size() && zeros > 0;
}

struct Kind {
  std::string_view front;
  std::string_view name;
};

constexpr Kind kinds[] = {
    {"\x1f\x8b", "gzip data"},
    {"PK\x03\x04", "a zip archive"},
    {"BZh", "bzip2 data"},
    {"\xfd"
     "7zXZ",
     "xz data"},
    {"7z\xbc\xaf\x27\x1c", "a 7z archive"},
    {"Rar!", "a RAR archive"},
    {"%PDF", "a PDF document"},
    {"\xff\xfe", "UTF-16 text"},
    {"\xfe\xff", "UTF-16 text"},
    {"\x7f"
     "ELF",
     "a program"},
};

bool beginsWith(std::string_view text, std::string_view front) {
  return text.size() >= front.size() && equalIgnoringCase(text.substr(0, front.size()), front);
}

}  // namespace

SourceText::SourceText(std::string_view text) {
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    lines_.push_back(text.substr(0, end));
    if (end == text.npos) break;
    text.remove_prefix(end + 1);
  }
}

std::string_view SourceText::line(std::int32_t number) const {
  const auto index = static_cast<std::size_t>(number) - 1;
  return index < lines_.size() ? lines_[index] : std::string_view();
}

std::vector<Note> SourceText::unclosedBrackets() const {
  constexpr std::size_t most = 5;
  std::vector<Note> notes;
  std::int32_t number = 0;
  for (const std::string_view each : lines_) {
    ++number;
    if (!each.starts_with('[') || notes.size() == most) continue;
    const std::string_view text = trimmed(each.substr(0, each.find(usualComment)));
    if (text.find(']') != text.npos) continue;
    notes.push_back(
        {.line = number, .text = "the bracket of '" + std::string(text) + "' is not closed"});
  }
  return notes;
}

std::int32_t SourceText::modelBehindEnd(std::string_view name) const {
  bool isBehind = false;
  std::int32_t number = 0;
  for (const std::string_view each : lines_) {
    ++number;
    const std::string_view keyword = keywordOf(each);
    if (keyword.empty()) continue;
    if (equalIgnoringCase(keyword, "End")) isBehind = true;
    if (!isBehind || !equalIgnoringCase(keyword, "Model")) continue;
    if (wordOf(each.substr(each.find(']') + 1), 0) == name) return number;
  }
  return 0;
}

std::string_view SourceText::kindOf(std::string_view text) {
  for (const Kind& kind : kinds) {
    if (text.starts_with(kind.front)) return kind.name;
  }
  const std::string_view front = trimmed(text.substr(0, text.find('\n')));
  for (const std::string_view html : {"<!doctype", "<html", "<?xml"}) {
    if (beginsWith(front, html)) return "an HTML or XML document";
  }
  return isMostlyZeroBytes(text) ? "UTF-16 text or other binary data" : "";
}

std::string_view wordOf(std::string_view line, int place) {
  constexpr std::string_view separators = " \t\r=";
  for (;; --place) {
    const std::size_t begin = line.find_first_not_of(separators);
    if (begin == line.npos) return {};
    line.remove_prefix(begin);
    const std::size_t end = line.find_first_of(separators);
    if (place == 0) return line.substr(0, end);
    if (end == line.npos) return {};
    line.remove_prefix(end);
  }
}

}  // namespace ibis::cli
