#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ibis/diagnostic.h"
#include "ibis/ibis_string.h"
#include "reader/vocabulary.h"

namespace ibis {

/// One scanned line: a keyword with the text after its bracket, or a data line.
struct IBISRecord {
  static constexpr std::size_t maximumLength = 239;

  const char* begin = nullptr;           ///< First character, in the scanned text.
  std::int32_t line = 0;                 ///< Line number in the file, from 1.
  std::uint8_t keyword = keyword::none;  ///< Keyword id; 0 for a data line.
  std::uint8_t length = 0;               ///< Characters kept, at most maximumLength.

  /// The line without comment and carriage returns, not trimmed.
  std::string_view text() const { return {begin, length}; }
};

/// The records of one file in file order; readers walk them with a signed index.
using IBISRecords = std::span<const IBISRecord>;

/// What a scan yields; records point into the scanned text, or into `rewritten`.
struct IBISScanResult {
  std::vector<IBISRecord> records;
  std::vector<Diagnostic> errors;    ///< The scanner's own; no load shows them.
  std::vector<Diagnostic> warnings;  ///< The scanner's own; no load shows them.
  StringPool rewritten;              ///< Lines that had a carriage return inside.
};

/// Cuts a text into records; it ends at its first NUL and must outlive the result.
IBISScanResult scanIBISText(std::string_view text);

/// A keyword of a later version that a scan passed over, with its line.
struct PassedKeyword {
  const LaterKeywordRow* keyword = nullptr;
  std::int32_t line = 0;
};

/// Cuts a text into records piece by piece, without the scanner's messages.
///
/// A reader is done with one piece when it asks for the next. A piece ends before a keyword that
/// ends every section, so each section lies in one piece; the header lies in that of the first.
class IBISScanner {
 public:
  static constexpr std::size_t usualPiece = 4096;  ///< Records stay in a core's own cache.

  /// Each piece but the last has at least `minRecords` records.
  ///
  /// With `passesLater` the scan passes over the keywords of later versions with all that belongs
  /// to them; else what follows such a keyword goes to the reader of the keyword before it. It also
  /// knows the keywords of series elements that a load passes over.
  explicit IBISScanner(std::string_view text, std::size_t minRecords = usualPiece,
                       bool passesLater = false);

  /// The records of the next piece, valid until the next call; none at the end of the text.
  IBISRecords nextPiece();

  /// The keywords passed over so far, in file order.
  const std::vector<PassedKeyword>& passedKeywords() const { return passed_; }

  /// Frees the records of the piece in hand.
  void dropPiece() { result_.records = std::vector<IBISRecord>(); }

 private:
  friend IBISScanResult scanIBISText(std::string_view text);

  void scanPiece();
  void scanLine();
  void scanKeyword();
  bool endsPiece(std::int32_t id);
  bool passesOver(std::string_view name, std::int32_t id);
  void takeUnknown(std::string_view name);
  void reportUnknown(std::string_view name);
  void readCommentChar();
  void stop(Diagnostic reason);
  IBISRecord readRecordLine(std::int32_t id, char commentChar);
  std::string_view withoutCarriageReturns(std::string_view text);
  void skipLine();
  void checkLineLengths();

  const char* cursor_;
  const char* end_;
  IBISScanResult result_;
  std::int32_t line_ = 0;
  char commentChar_ = '|';
  bool hasCarriageReturns_;
  bool stopped_ = false;
  bool keepsMessages_ = false;
  std::size_t minRecords_;
  bool pieceEnded_ = false;
  bool inSections_ = false;
  bool inModelData_ = false;
  bool passesLater_;
  const LaterKeywordRow* passing_ = nullptr;  // what belongs to it is being passed over
  std::vector<PassedKeyword> passed_;
};

/// The record at an index, or an empty record where there is none.
const IBISRecord& recordAt(IBISRecords records, std::int32_t index);

/// A record's text without blanks and tabs around it.
IBISString keywordText(const IBISRecord& record);

/// Moves the index to the next record and sets `text` to its text, if it is a data line.
bool nextDataLine(IBISRecords records, std::int32_t& index, std::string_view& text);

/// The texts of the record at the index and of the data lines after it, untrimmed, joined by line
/// feeds.
///
/// The index is left on the last record used.
std::string multiLineText(IBISRecords records, std::int32_t& index);

/// How many data lines follow the index directly.
std::int32_t countDataLines(IBISRecords records, std::int32_t index);

/// A text without blanks and tabs around it; no other character is trimmed.
std::string_view trimBlanks(std::string_view text);

}  // namespace ibis
