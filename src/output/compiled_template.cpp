#include "output/compiled_template.h"

#include <algorithm>
#include <type_traits>

#include "output/keyword_registry.h"

namespace ibis {
namespace {

constexpr std::size_t maxKeyword = 127;
constexpr std::int32_t noPiece = -1;

// Its objects live as long as the memory, which is freed as a whole.
using Memory = std::pmr::monotonic_buffer_resource;

template <class Item>
Item* makeRoom(Memory& memory, std::size_t count) {
  static_assert(std::is_trivially_destructible_v<Item>);
  return static_cast<Item*>(memory.allocate(count * sizeof(Item), alignof(Item)));
}

// A comma at the very end adds no empty item.
KeywordArguments splitAtCommas(std::string_view text, Memory& memory) {
  auto* const items =
      makeRoom<IBISString>(memory, static_cast<std::size_t>(std::ranges::count(text, ',')) + 1);
  std::size_t count = 0;
  do {
    const std::size_t end = std::min(text.find(','), text.size());
    new (items + count++) IBISString(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  } while (!text.empty());
  return {items, count};
}

bool isText(char c) {
  return static_cast<signed char>(c) > 0 && c != ' ' && c != '%' && c != '\n' && c != '\t' &&
         c != '\r';
}

}  // namespace

CompiledTemplate::CompiledTemplate(std::string_view text) : text_(text) {
  const auto* end =
      std::ranges::find_if(text, [](char c) { return static_cast<signed char>(c) <= 0; });
  text_ = text.substr(0, static_cast<std::size_t>(end - text.begin()));
  pieceAt_.assign(text_.size() + 1, noPiece);
}

std::size_t CompiledTemplate::pieceAt(std::int32_t index) {
  index = std::min(behindReturns(index), static_cast<std::int32_t>(text_.size()));
  const std::size_t first = pieces_.size();
  if (pieceAt_[static_cast<std::size_t>(index)] != noPiece) {
    return static_cast<std::size_t>(pieceAt_[static_cast<std::size_t>(index)]);
  }
  for (;;) {
    std::int32_t& known = pieceAt_[static_cast<std::size_t>(index)];
    if (known != noPiece) {
      pieces_.push_back({.kind = PieceKind::jump, .end = index, .count = known});
      return first;
    }
    known = static_cast<std::int32_t>(pieces_.size());
    pieces_.push_back(scan(index));
    if (pieces_.back().kind == PieceKind::end) return first;
    index = behindReturns(pieces_.back().end);
  }
}

char CompiledTemplate::at(std::int32_t index) const {
  const auto place = static_cast<std::size_t>(index);
  return place < text_.size() ? text_[place] : '\0';
}

// The index after any carriage returns, which count nowhere.
std::int32_t CompiledTemplate::behindReturns(std::int32_t index) const {
  while (at(index) == '\r') ++index;
  return index;
}

bool CompiledTemplate::isComment(std::int32_t index) const {
  return at(behindReturns(index)) == '#';
}

std::int32_t CompiledTemplate::lineEndFrom(std::int32_t index) const {
  while (at(index) != '\n' && at(index) != '\0') ++index;
  return index;
}

TemplatePiece CompiledTemplate::scan(std::int32_t index) {
  const auto piece = [&](PieceKind kind, std::int32_t end) {
    const auto size = static_cast<std::size_t>(end - index);
    return TemplatePiece{.kind = kind,
                         .end = end,
                         .count = end - index,
                         .text = text_.substr(static_cast<std::size_t>(index), size)};
  };
  std::int32_t end = index;
  switch (at(index)) {
    case '\0':
      return piece(PieceKind::end, index);
    case '%':
      return scanKeyword(index);
    case '\t':
      return piece(PieceKind::tab, index + 1);
    case '\n':
      if (!isComment(index + 1)) return piece(PieceKind::lineEnd, index + 1);
      return piece(PieceKind::commentLine, lineEndFrom(index + 1));
    case ' ':
      while (at(end) == ' ') ++end;
      return piece(PieceKind::blanks, end);
    default:
      break;
  }
  // Blanks belong to the text if more text follows them.
  for (std::int32_t next = index; isText(at(next)); end = next) {
    while (isText(at(next))) ++next;
    end = next;
    while (at(next) == ' ') ++next;
    if (!isText(at(next))) break;
  }
  return piece(PieceKind::text, end);
}

// A line feed that a comment follows is passed over with the comment, in a keyword too.
TemplatePiece CompiledTemplate::scanKeyword(std::int32_t index) {
  std::string text;
  std::int32_t lines = 0;
  std::int32_t end = index + 1;
  for (char c = at(end); c != '%'; c = at(end)) {
    if (c == '\0') return {.kind = PieceKind::end, .end = end};
    ++end;
    if (c == '\n') {
      ++lines;
      if (!isComment(end)) {
        return {.kind = PieceKind::unterminated, .end = end, .count = lines};
      }
      end = lineEndFrom(end);
    } else if (c != '\r' && text.size() < maxKeyword) {
      text += c;
    }
  }
  ++end;
  TemplatePiece piece{
      .kind = PieceKind::percent,
      .end = end,
      .text = text_.substr(static_cast<std::size_t>(index), static_cast<std::size_t>(end - index))};
  const auto returns = static_cast<std::int32_t>(std::ranges::count(piece.text, '\r'));
  const bool hasTabs = piece.text.find('\t') != piece.text.npos;
  piece.count = hasTabs ? 0 : end - index - returns;
  if (text.empty()) return piece;
  piece.kind = PieceKind::keyword;
  piece.keyword = makeKeyword(text);
  return piece;
}

TemplateKeyword* CompiledTemplate::makeKeyword(std::string_view text) {
  char* const copy = makeRoom<char>(memory_, text.size());
  std::ranges::copy(text, copy);
  auto* const keyword = new (makeRoom<TemplateKeyword>(memory_, 1)) TemplateKeyword;
  keyword->text = {copy, text.size()};
  keyword->arguments = splitAtCommas(keyword->text, memory_);
  keyword->value = valueKeyword(keyword->name());
  keyword->condition = conditionKeyword(keyword->name());
  keyword->loop = loopKeyword(keyword->text);
  const auto is = [&](std::string_view word) { return equalIgnoringCase(keyword->text, word); };
  keyword->worksUnopened = is("file") || is("append") || is("include");
  keyword->endsLoop = is("endforeach");
  keyword->isElse = is("else");
  keyword->isEndif = is("endif");
  keyword->isFirst = keyword->name() == "iffirst";
  return keyword;
}

}  // namespace ibis
