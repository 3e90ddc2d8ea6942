// The rules about bytes and lines: what a text holds before it is understood.

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "checks/families.h"

namespace ibis::checks {
namespace {

constexpr std::size_t keptLength = 239;  // of a line by a load

std::string_view standardLimitVersion(int version) { return version < 40 ? "3.2" : "4.2"; }

// A character of UTF-8 at a place: its length and number; length 1 and 0 for what is none.
struct Character {
  std::size_t length = 1;
  unsigned number = 0;
};

Character characterAt(std::string_view text, std::size_t place) {
  const auto byte = [&](std::size_t i) {
    return place + i < text.size() ? static_cast<unsigned char>(text[place + i]) : 0U;
  };
  const unsigned first = byte(0);
  const std::size_t length = first >= 0xf0 && first < 0xf8   ? 4
                             : first >= 0xe0 && first < 0xf0 ? 3
                             : first >= 0xc2 && first < 0xe0 ? 2
                                                             : 1;
  if (length == 1) return {};
  unsigned number = first & (0xffU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xc0U) != 0x80U) return {};
    number = number << 6U | (byte(i) & 0x3fU);
  }
  return {length, number};
}

struct CharacterRow {
  unsigned number;
  std::string_view name;
  std::string_view hint;
};

constexpr CharacterRow characters[] = {
    {0xfeff, "byte order mark", "; save the file without it"},
    {0x00ad, "soft hyphen", "; write -"},
    {0x00a0, "no-break blank", "; write a blank"},
    {0x2212, "minus sign", "; write -"},
    {0x2013, "dash", "; write -"},
    {0x00b5, "micro sign", "; it is no scale letter, write u"},
    {0x03bc, "Greek mu", "; it is no scale letter, write u"},
    {0x03a9, "Greek omega", "; write Ohm"},
    {0x2126, "ohm sign", "; write Ohm"},
};

std::string nameOf(std::string_view text, std::size_t place, std::string& hint) {
  const Character character = characterAt(text, place);
  char buffer[40];
  if (character.number == 0) {
    std::snprintf(buffer, sizeof buffer, "byte 0x%02x",
                  static_cast<unsigned>(static_cast<unsigned char>(text[place])));
    return buffer;
  }
  std::snprintf(buffer, sizeof buffer, "U+%04X", character.number);
  std::string name(buffer);
  const auto* row = std::ranges::find(characters, character.number, &CharacterRow::number);
  if (row == std::end(characters)) return name;
  hint = row->hint;
  return std::string(row->name) + " (" + name + ")";
}

bool isOdd(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte > 126 || (byte < 32 && c != '\t' && c != '\f' && c != '\r');
}

// Whether any line may hold such a byte. Whole blocks are looked at without a branch, which lets
// the compiler take many bytes at once.
bool mayBeOdd(std::string_view text) {
  constexpr std::size_t block = 64;
  for (; text.size() >= block; text.remove_prefix(block)) {
    unsigned char odd = 0;
    for (std::size_t i = 0; i < block; ++i) {
      const auto byte = static_cast<unsigned char>(text[i]);
      const auto isPlain = static_cast<unsigned char>((byte == '\t') | (byte == '\n') |
                                                      (byte == '\f') | (byte == '\r'));
      odd |= static_cast<unsigned char>((byte > 126) | ((byte < 32) & (isPlain ^ 1)));
    }
    if (odd != 0) return true;
  }
  return std::ranges::any_of(text, [](char c) { return c != '\n' && isOdd(c); });
}

class LineChecker {
 public:
  LineChecker(std::string_view text, const View& view, Findings& findings)
      : view_(view),
        findings_(findings),
        hasTabs_(text.find('\t') != text.npos),
        hasOdd_(mayBeOdd(text)) {}

  void check() {
    const Syntax& syntax = view_.syntax;
    for (const Block& block : syntax.blocks()) {
      block_ = view_.indexOf(block);
      if (syntax.sectionOf(block).isAfterEnd) continue;
      if (syntax.facts().hasEnd && block_ == syntax.facts().endBlock) continue;
      const bool isText = block.keyword != nullptr && block.keyword->content == Content::text;
      checkLine(syntax.headOf(block), isText);
      for (const SourceLine& line : syntax.linesOf(block)) checkLine(line, isText);
    }
    tellLengths(data_);
    block_ = Spot::nowhere;
    for (const Comment& comment : syntax.comments()) checkComment(comment);
    tellLengths(comments_);
    tellTabs();
  }

 private:
  void checkLine(const SourceLine& line, bool isText) {
    const bool isCut = line.text.size() > keptLength && !isText && tellCut(line);
    if (line.text.size() > limit() && !isCut) data_.note(line.number, line.text.size(), block_);
    if (hasTabs_ && !isText && line.text.find('\t') != line.text.npos) noteTab(line);
    if (!hasOdd_) return;
    const auto odd = std::ranges::find_if(line.text, isOdd);
    if (odd != line.text.end()) {
      const auto place = static_cast<std::size_t>(odd - line.text.begin());
      Finding* told = tellOdd(line, place, 0);
      const bool isControl = static_cast<unsigned char>(*odd) < 128;
      if (told != nullptr && isText && !isControl) told->diagnostic.severity = Severity::note;
    }
  }

  // What a comment holds harms no reader, but may harm people and editors.
  void checkComment(const Comment& comment) {
    const auto before = static_cast<std::size_t>(comment.column) - 1;
    const std::size_t length = before + comment.text.size();
    if (length > limit() && before <= limit()) comments_.note(comment.line, length, block_);
    if (!hasOdd_) return;
    const auto odd = std::ranges::find_if(comment.text, isOdd);
    if (odd == comment.text.end()) return;
    const SourceLine line{.whole = comment.text, .text = comment.text, .number = comment.line};
    Finding* told = tellOdd(line, static_cast<std::size_t>(odd - comment.text.begin()), before);
    if (told != nullptr) told->diagnostic.severity = Severity::note;
  }

  std::size_t limit() const { return view_.version != 0 && view_.version < 40 ? 80 : 120; }

  // Lines that are too long, and the longest of them.
  struct LongLines {
    std::size_t count = 0;
    std::size_t most = 0;
    std::int32_t line = 0;
    std::uint32_t block = Spot::nowhere;

    void note(std::int32_t number, std::size_t length, std::uint32_t place) {
      ++count;
      if (length <= most) return;
      most = length;
      line = number;
      block = place;
    }
  };

  void tellLengths(const LongLines& lines) {
    if (lines.count == 0) return;
    const bool isComment = &lines == &comments_;
    std::string more = isComment ? "; it ends in a comment" : "";
    if (lines.count > 1) more.append("; ").append(countOf(lines.count, "line"));
    if (lines.count > 1) more.append(isComment ? " end so" : " above the limit");
    Spot spot{.line = lines.line, .block = lines.block};
    if (spot.block != Spot::nowhere) spot.section = view_.block(spot.block).section;
    spot.column = static_cast<std::int32_t>(limit()) + 1;
    spot.length = static_cast<std::int32_t>(lines.most - limit());
    Finding& told = findings_.add(
        Rule::syntaxLineTooLong, spot,
        {std::to_string(lines.most), std::to_string(limit()),
         std::string(view_.version == 0 ? "4.2" : standardLimitVersion(view_.version)), more});
    if (isComment) told.diagnostic.severity = Severity::note;
  }

  // Whether a word is cut or lost.
  bool tellCut(const SourceLine& line) {
    std::size_t begin = keptLength;
    const auto isBlank = [&](std::size_t i) { return line.text[i] == ' ' || line.text[i] == '\t'; };
    while (begin > 0 && !isBlank(begin - 1)) --begin;
    std::size_t end = begin;
    while (end < line.text.size() && isBlank(end)) ++end;
    if (end == line.text.size()) return false;
    const std::size_t first = end;
    while (end < line.text.size() && !isBlank(end)) ++end;
    const std::string word(line.text.substr(first, end - first));
    const std::string kept =
        first < keptLength ? word.substr(0, keptLength - first) : std::string();
    if (kept == word) return false;
    Spot spot = view_.spotOf(line, block_);
    spot.column = static_cast<std::int32_t>(first) + 1;
    spot.length = static_cast<std::int32_t>(word.size());
    findings_.addOnce(Rule::syntaxLineCut, spot,
                      {std::to_string(line.text.size()), std::to_string(keptLength), word, kept});
    return true;
  }

  void noteTab(const SourceLine& line) {
    if (tabs_++ == 0) {
      tabSpot_ = view_.spotOf(line, block_);
      tabSpot_.column = static_cast<std::int32_t>(line.text.find('\t')) + 1;
      tabSpot_.length = 1;
    }
  }

  void tellTabs() {
    if (tabs_ == 0) return;
    findings_.add(Rule::syntaxTab, tabSpot_,
                  {countOf(tabs_, "line") + (tabs_ == 1 ? " holds" : " hold")});
  }

  // Told once a block; null for a repeat. The text begins so many columns behind its line.
  Finding* tellOdd(const SourceLine& line, std::size_t place, std::size_t before) {
    const auto byte = static_cast<unsigned char>(line.text[place]);
    Spot spot = view_.spotOf(line, block_);
    spot.column = static_cast<std::int32_t>(before + place) + 1;
    spot.length = 1;
    if (byte < 128) return tellControl(line, spot, byte);
    std::size_t begin = place;
    while (begin > 0 && line.text[begin - 1] != ' ' && line.text[begin - 1] != '\t') --begin;
    const std::size_t end = std::min(line.text.find_first_of(" \t", place), line.text.size());
    std::string hint;
    const std::string name = nameOf(line.text, place, hint);
    spot.length = static_cast<std::int32_t>(characterAt(line.text, place).length);
    return findings_.addOnce(Rule::syntaxNonAscii, spot,
                             {name, std::string(line.text.substr(begin, end - begin)), hint});
  }

  // Ctrl-Z alone on the last line is what old systems end a text with.
  Finding* tellControl(const SourceLine& line, const Spot& spot, unsigned byte) {
    const bool isEndMark = byte == 26 && line.number == view_.syntax.facts().lineCount;
    char text[48];
    std::snprintf(text, sizeof text, isEndMark ? "Ctrl-Z at the end" : "control character 0x%02x",
                  byte);
    Finding* told = findings_.addOnce(Rule::syntaxControlCharacter, spot, {text});
    if (told != nullptr && isEndMark) told->diagnostic.severity = Severity::note;
    return told;
  }

  const View& view_;
  Findings& findings_;
  bool hasTabs_;
  bool hasOdd_;
  std::uint32_t block_ = 0;
  LongLines data_;
  LongLines comments_;
  std::size_t tabs_ = 0;
  Spot tabSpot_;
};

}  // namespace

void checkBytes(std::string_view text, const View& view, Findings& findings) {
  const TextFacts& facts = view.syntax.facts();
  LineChecker(text, view, findings).check();
  if (text.starts_with("\xef\xbb\xbf")) {
    findings.add(Rule::syntaxNonAscii, {.line = 1, .column = 1, .length = 3},
                 {"byte order mark (U+FEFF)", "the first line", "; a load does not know the line"});
  }
  if (facts.nulLine > 0) {
    findings
        .add(Rule::syntaxControlCharacter, {.line = facts.nulLine},
             {"a NUL byte; a load reads nothing behind it"})
        .diagnostic.severity = Severity::error;
  }
  const std::size_t bare = facts.feeds - facts.returnFeeds;
  if (facts.returnFeeds > 0 && bare > 0) {
    findings.add(Rule::syntaxMixedLineEnds, {},
                 {std::to_string(facts.returnFeeds), std::to_string(bare)});
  }
}

}  // namespace ibis::checks
