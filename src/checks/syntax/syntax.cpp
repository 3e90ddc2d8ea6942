#include "checks/syntax/syntax.h"

#include <algorithm>
#include <cstring>

#include "ibis/ibis_string.h"

namespace ibis::checks {
namespace {

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";
constexpr std::string_view allowedCommentChars = "!\"#$%&'()*,:;<>?@\\^`{|}~";

bool isBlank(char c) { return c == ' ' || c == '\t'; }

bool isLetter(char c) { return upperCase(c) >= 'A' && upperCase(c) <= 'Z'; }

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::uint32_t count32(std::size_t count) { return static_cast<std::uint32_t>(count); }

// The longest keyword that a name without a closing bracket begins with.
std::size_t knownPrefix(std::string_view text) {
  std::size_t best = 0;
  for (std::size_t end = 1; end <= text.size(); ++end) {
    if (end < text.size() && !isBlank(text[end])) continue;
    if (end > 40) break;
    if (findStandardKeyword(text.substr(0, end)) != nullptr) best = end;
  }
  return best > 0 ? best : std::min(text.find_first_of(" \t"), text.size());
}

}  // namespace

Syntax::Syntax(std::string_view text) {
  const std::size_t nul = text.find('\0');
  const std::string_view kept = text.substr(0, nul);
  sections_.emplace_back();
  lines_.reserve(kept.size() / 40 + 1);
  words_.reserve(kept.size() / 8 + 1);
  const bool hasFeeds = kept.find('\n') != kept.npos;
  const char lineEnd = hasFeeds ? '\n' : '\r';
  std::size_t begin = kept.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
  while (begin < kept.size()) {
    const auto* end =
        static_cast<const char*>(std::memchr(kept.data() + begin, lineEnd, kept.size() - begin));
    const std::size_t stop =
        end == nullptr ? kept.size() : static_cast<std::size_t>(end - kept.data());
    std::string_view whole = kept.substr(begin, stop - begin);
    ++facts_.lineCount;
    if (end != nullptr) {
      ++facts_.feeds;
      if (whole.ends_with('\r')) ++facts_.returnFeeds;
    }
    while (whole.ends_with('\r')) whole.remove_suffix(1);
    takeLine(whole, facts_.lineCount);
    begin = stop + 1;
  }
  if (nul != text.npos) facts_.nulLine = std::max(facts_.lineCount, 1);
}

void Syntax::takeLine(std::string_view whole, std::int32_t number) {
  if (whole.empty()) return;
  if (whole.front() == commentChar_) {
    comments_.push_back({.text = whole, .line = number});
    return;
  }
  const auto* sign =
      static_cast<const char*>(std::memchr(whole.data(), commentChar_, whole.size()));
  SourceLine line{.whole = whole, .text = whole, .number = number};
  if (sign != nullptr) {
    const auto place = static_cast<std::size_t>(sign - whole.data());
    line.text = whole.substr(0, place);
    comments_.push_back({.text = whole.substr(place),
                         .line = number,
                         .column = static_cast<std::int32_t>(place) + 1});
  }
  std::size_t first = 0;
  while (first < line.text.size() && isBlank(line.text[first])) ++first;
  if (first == line.text.size()) return;
  if (line.text[first] == '[') return takeKeyword(line, first);
  takeData(line);
}

void Syntax::takeData(SourceLine line) {
  const Content content = blocks_.empty() || blocks_.back().keyword == nullptr
                              ? Content::rows
                              : blocks_.back().keyword->content;
  if (blocks_.empty()) ++facts_.textBeforeKeyword;
  const std::size_t first = line.text.find_first_not_of(" \t");
  const bool isRow =
      content == Content::table || (content == Content::waveform && !isLetter(line.text[first]));
  if (content != Content::text && !isRow) {
    splitWords(line, 0, content == Content::parameters || content == Content::waveform);
  }
  lines_.push_back(line);
  if (!blocks_.empty()) ++blocks_.back().lineCount;
}

// A keyword that is indented counts only if its name is known: else it is data.
void Syntax::takeKeyword(SourceLine line, std::size_t bracket) {
  Block block;
  std::size_t behind = 0;
  readName(block, line.text, bracket, behind);
  if (bracket > 0 && (block.keyword == nullptr || block.isMisspelled)) return takeData(line);
  if (open_ != nullptr) {
    const bool isLast = foldedName(block.name) == foldedName(open_->last);
    const bool opens = block.keyword != nullptr && block.keyword->opens != section::none &&
                       !block.isMisspelled && open_->opens != section::board;
    if (isLast || opens) open_ = nullptr;
    if (isLast || !opens) return takeData(line);
  }
  if (block.keyword == nullptr && isClosingName(block.name)) return takeData(line);
  block.column = static_cast<std::int32_t>(bracket) + 1;
  block.head = count32(lines_.size());
  const bool isComment = block.keyword != nullptr && block.keyword->name == "Comment Char";
  if (isComment) line.text = line.whole;
  splitWords(line, behind, false);
  block.argument = trimmed(line.text.substr(std::min(behind, line.text.size())));
  lines_.push_back(line);
  block.firstLine = count32(lines_.size());
  if (isComment) readCommentChar(line, behind);
  if (block.keyword != nullptr && block.keyword->opens != section::none) openSection(block);
  block.section = count32(sections_.size()) - 1;
  ++sections_.back().blockCount;
  if (block.keyword != nullptr && !block.keyword->last.empty()) open_ = block.keyword;
  blocks_.push_back(block);
}

void Syntax::readName(Block& block, std::string_view text, std::size_t bracket,
                      std::size_t& behind) {
  const std::string_view inside = text.substr(bracket + 1);
  const std::size_t close = inside.find(']');
  block.isUnclosed = close == inside.npos;
  const std::size_t length = block.isUnclosed ? knownPrefix(inside) : close;
  const std::string_view name = inside.substr(0, length);
  block.name = trimmed(name);
  block.hasBlankInBrackets = !block.isUnclosed && block.name.size() != name.size();
  block.isIndented = bracket > 0;
  behind = bracket + 1 + length + (block.isUnclosed ? 0 : 1);
  block.keyword = findStandardKeyword(block.name);
  if (block.keyword != nullptr || isClosingName(block.name)) return;
  constexpr std::size_t mostGuesses = 200;  // a file with more unknown keywords is something else
  if (++guesses_ > mostGuesses) return;
  block.keyword = nearestKeyword(block.name, sections_.back().kind);
  block.isMisspelled = block.keyword != nullptr;
}

void Syntax::openSection(const Block& block) {
  const bool isAfterEnd = facts_.hasEnd;
  if (block.keyword->name == "End" && !facts_.hasEnd) {
    facts_.hasEnd = true;
    facts_.endBlock = count32(blocks_.size());
  }
  sections_.push_back({.kind = block.keyword->opens,
                       .name = block.argument,
                       .firstBlock = count32(blocks_.size()),
                       .blockCount = 0,
                       .isAfterEnd = isAfterEnd});
}

void Syntax::readCommentChar(const SourceLine& line, std::size_t behind) {
  const std::string_view argument = trimmed(line.whole.substr(behind));
  CommentChange change{.line = count32(lines_.size()) - 1};
  const bool isAllowed =
      !argument.empty() && allowedCommentChars.find(argument[0]) != std::string_view::npos;
  const std::string_view tail = argument.empty() ? argument : argument.substr(1);
  change.isValid =
      isAllowed && equalIgnoringCase(tail.substr(0, tail.find_first_of(" \t")), "_char");
  if (change.isValid) change.sign = commentChar_ = argument[0];
  commentChanges_.push_back(change);
}

std::vector<Word> splitRow(const SourceLine& line) {
  std::vector<Word> words;
  const auto blanks = std::string_view(" \t\r");
  std::size_t begin = line.text.find_first_not_of(blanks);
  while (begin < line.text.size()) {
    const std::size_t end = std::min(line.text.find_first_of(blanks, begin), line.text.size());
    words.push_back({.text = line.text.substr(begin, end - begin),
                     .column = static_cast<std::int32_t>(begin) + 1});
    begin = line.text.find_first_not_of(blanks, end);
  }
  return words;
}

void Syntax::splitWords(SourceLine& line, std::size_t from, bool splitsAtEqual) {
  line.firstWord = count32(words_.size());
  const char* c = line.text.data() + std::min(from, line.text.size());
  const char* const end = line.text.data() + line.text.size();
  const char* const lineBegin = line.whole.data();
  const char equal = splitsAtEqual ? '=' : ' ';
  const auto separates = [equal](char each) {
    return each == ' ' || each == equal || each == '\t' || each == '\r';
  };
  while (c != end) {
    while (c != end && separates(*c)) ++c;
    const char* const begin = c;
    while (c != end && !separates(*c)) ++c;
    if (c == begin) break;
    words_.push_back({.text = {begin, static_cast<std::size_t>(c - begin)},
                      .column = static_cast<std::int32_t>(begin - lineBegin) + 1});
  }
  line.wordCount = count32(words_.size()) - line.firstWord;
}

}  // namespace ibis::checks
