#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "checks/syntax/standard.h"

namespace ibis::checks {

/// A word of a line; columns count bytes from 1.
struct Word {
  std::string_view text;
  std::int32_t column = 0;
};

/// One line that is neither blank nor comment.
struct SourceLine {
  std::string_view whole;  ///< Without its line end.
  std::string_view text;   ///< Without its comment either.
  std::int32_t number = 0;
  std::uint32_t firstWord = 0;  ///< A keyword line begins behind its bracket.
  std::uint32_t wordCount = 0;  ///< None for a row of a table or a waveform.
};

/// The words of a row, cut anew.
std::vector<Word> splitRow(const SourceLine& line);

/// A keyword with its line and the lines below it.
struct Block {
  const StandardKeyword* keyword = nullptr;  ///< Null for an unknown name; a misspelled one's own.
  std::string_view name;                     ///< Between the brackets, without blanks around it.
  std::string_view argument;                 ///< Behind the bracket, without blanks around it.
  std::int32_t column = 1;                   ///< Of the bracket.
  std::uint32_t head = 0;                    ///< Index of its line.
  std::uint32_t firstLine = 0;               ///< Index of the first line below it.
  std::uint32_t lineCount = 0;
  std::uint32_t section = 0;
  bool isMisspelled = false;
  bool isUnclosed = false;
  bool isIndented = false;
  bool hasBlankInBrackets = false;
};

/// A keyword that opens a section with all keywords of it; the first section is the header.
struct Section {
  std::uint16_t kind = section::header;
  std::string_view name;
  std::uint32_t firstBlock = 0;
  std::uint32_t blockCount = 0;
  bool isAfterEnd = false;
};

/// What the bytes of a text hold that no line shows.
struct TextFacts {
  std::size_t feeds = 0;        ///< Line feeds.
  std::size_t returnFeeds = 0;  ///< Line feeds with a carriage return ahead of them.
  std::int32_t nulLine = 0;     ///< Line of the first NUL, which ends the text.
  std::int32_t lineCount = 0;   ///< Lines up to the end of the text.
  bool hasEnd = false;
  std::uint32_t endBlock = 0;           ///< The first [End], if there is one.
  std::uint32_t textBeforeKeyword = 0;  ///< Lines of data in front of the first keyword.
};

/// A comment with its sign, behind data or alone on its line.
struct Comment {
  std::string_view text;
  std::int32_t line = 0;
  std::int32_t column = 1;
};

/// A [Comment Char] line.
struct CommentChange {
  std::uint32_t line = 0;  ///< Index of the line.
  bool isValid = false;
  char sign = '|';
};

/// A text cut into lines, words, keywords and sections, each with its place.
///
/// All views point into the text, which must outlive it.
class Syntax {
 public:
  explicit Syntax(std::string_view text);

  const std::vector<SourceLine>& lines() const { return lines_; }
  const std::vector<Block>& blocks() const { return blocks_; }
  const std::vector<Section>& sections() const { return sections_; }
  const std::vector<CommentChange>& commentChanges() const { return commentChanges_; }
  const std::vector<Comment>& comments() const { return comments_; }
  const TextFacts& facts() const { return facts_; }

  /// The words of a line; rows of tables and waveforms, most lines of most files, keep none.
  std::span<const Word> words(const SourceLine& line) const {
    return std::span(words_).subspan(line.firstWord, line.wordCount);
  }
  std::span<const SourceLine> linesOf(const Block& block) const {
    return std::span(lines_).subspan(block.firstLine, block.lineCount);
  }
  std::span<const Block> blocksOf(const Section& section) const {
    return std::span(blocks_).subspan(section.firstBlock, section.blockCount);
  }
  const SourceLine& headOf(const Block& block) const { return lines_[block.head]; }
  const Section& sectionOf(const Block& block) const { return sections_[block.section]; }

 private:
  void takeLine(std::string_view whole, std::int32_t number);
  void takeData(SourceLine line);
  void takeKeyword(SourceLine line, std::size_t bracket);
  void readName(Block& block, std::string_view text, std::size_t bracket, std::size_t& behind);
  void openSection(const Block& block);
  void readCommentChar(const SourceLine& line, std::size_t behind);
  void splitWords(SourceLine& line, std::size_t from, bool splitsAtEqual);

  std::vector<Word> words_;
  std::vector<SourceLine> lines_;
  std::vector<Block> blocks_;
  std::vector<Section> sections_;
  std::vector<CommentChange> commentChanges_;
  std::vector<Comment> comments_;
  TextFacts facts_;
  char commentChar_ = '|';
  std::size_t guesses_ = 0;
  const StandardKeyword* open_ = nullptr;  // a keyword that its own last one ends
};

}  // namespace ibis::checks
