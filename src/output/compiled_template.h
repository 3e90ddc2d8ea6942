#pragma once

#include <cstdint>
#include <memory_resource>
#include <string_view>
#include <vector>

#include "output/keyword_handlers.h"

namespace ibis {

/// A keyword of a template with all that is known of it before the template is expanded.
struct TemplateKeyword {
  std::string_view text;       ///< Between the percent signs, at most 127 characters.
  KeywordArguments arguments;  ///< The text cut at commas.
  ValueHandler value = nullptr;
  ConditionHandler condition = nullptr;
  LoopFactory loop = nullptr;
  bool worksUnopened = false;  ///< Is also called without an open file.
  bool endsLoop = false;
  bool isElse = false;
  bool isEndif = false;
  bool isFirst = false;  ///< Asks for a loop's first pass.

  std::string_view name() const { return arguments.front(); }

  // Its meaning to the objects of a loop, looked up once for each kind.
  const void* loopKind = nullptr;
  LoopWord loopWord = {};
};

/// The kinds of pieces that a template consists of.
enum class PieceKind : std::uint8_t {
  text,          ///< Printable characters and the blanks between them.
  blanks,        ///< Held back until something follows.
  tab,           ///< One tab.
  lineEnd,       ///< One line feed.
  commentLine,   ///< A line feed and the comment that follows it.
  percent,       ///< Two percent signs.
  keyword,       ///< A keyword with its percent signs.
  unterminated,  ///< A percent sign and the rest of its line.
  jump,          ///< Goes on at another piece.
  end,
};

/// One piece; it moves line and column in the same way wherever it stands.
struct TemplatePiece {
  PieceKind kind = PieceKind::end;
  std::int32_t end = 0;                ///< Index in the template after the piece.
  std::int32_t count = 0;              ///< Characters; lines of an unterminated keyword; of a jump
                                       ///< the piece to go on at.
  std::string_view text = {};          ///< As it stands; of a keyword with percent signs and tabs.
  TemplateKeyword* keyword = nullptr;  ///< Of a keyword.
};

/// A template's text cut into pieces; it ends at its first NUL or byte above 0x7f.
///
/// The text must outlive it.
class CompiledTemplate {
 public:
  explicit CompiledTemplate(std::string_view text);

  /// The piece that begins at an index of the text, which is not inside a keyword or a comment.
  std::size_t pieceAt(std::int32_t index);

  const TemplatePiece& piece(std::size_t number) const { return pieces_[number]; }

 private:
  TemplatePiece scan(std::int32_t index);
  TemplatePiece scanKeyword(std::int32_t index);
  TemplateKeyword* makeKeyword(std::string_view text);
  char at(std::int32_t index) const;
  std::int32_t behindReturns(std::int32_t index) const;
  bool isComment(std::int32_t index) const;
  std::int32_t lineEndFrom(std::int32_t index) const;

  std::string_view text_;
  std::vector<TemplatePiece> pieces_;
  std::vector<std::int32_t> pieceAt_;  // by index of the text; -1 for none
  std::pmr::monotonic_buffer_resource memory_;
};

}  // namespace ibis
