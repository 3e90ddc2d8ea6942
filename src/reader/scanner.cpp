#include "reader/scanner.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "host/diagnostics/format_message.h"
#include "host/diagnostics/messages.h"

namespace ibis {
namespace {

constexpr std::string_view allowedCommentChars = "!\"#$%&'()*,:;<>?@\\^`{|}~";
constexpr std::string_view commentCharTail = "_char";
constexpr std::int32_t standardLineLength = 120;
constexpr std::size_t longestKeywordName = 120;
constexpr char noComment = '\0';

// The keyword's id; underscores in the name count as blanks.
std::int32_t lookUp(std::string_view name, bool takesSeries) {
  if (name.size() > longestKeywordName) return keyword::none;
  char spaced[longestKeywordName];
  std::replace_copy(name.begin(), name.end(), spaced, '_', ' ');
  const std::int32_t id = keywordId({spaced, name.size()});
  return id == keyword::none && takesSeries ? seriesKeywordId({spaced, name.size()}) : id;
}

std::string withBlanks(std::string_view name) {
  std::string text(name);
  std::ranges::replace(text, '_', ' ');
  return text;
}

}  // namespace

IBISScanner::IBISScanner(std::string_view text, std::size_t minRecords, bool passesLater)
    : minRecords_(std::max<std::size_t>(minRecords, 1)), passesLater_(passesLater) {
  text = text.substr(0, text.find('\0'));
  cursor_ = text.data();
  end_ = text.data() + text.size();
  hasCarriageReturns_ = text.find('\r') != text.npos;
}

IBISRecords IBISScanner::nextPiece() {
  result_.records.clear();
  scanPiece();
  return result_.records;
}

void IBISScanner::scanPiece() {
  pieceEnded_ = false;
  while (cursor_ != end_ && !stopped_ && !pieceEnded_) scanLine();
}

void IBISScanner::scanLine() {
  ++line_;
  if (*cursor_ == commentChar_) {
    skipLine();
  } else if (*cursor_ == '[') {
    scanKeyword();
  } else {
    const IBISRecord record = readRecordLine(keyword::dataLine, commentChar_);
    if (passing_ == nullptr && !trimBlanks(record.text()).empty())
      result_.records.push_back(record);
  }
}

// The name may run over line ends, which the line counter misses.
void IBISScanner::scanKeyword() {
  const char* const begin = cursor_ + 1;
  const auto rest = static_cast<std::size_t>(end_ - begin);
  const auto* close = static_cast<const char*>(rest ? std::memchr(begin, ']', rest) : nullptr);
  const std::string_view name(begin, static_cast<std::size_t>((close ? close : end_) - begin));
  const std::int32_t id = lookUp(name, passesLater_);
  if (passing_ != nullptr && id != keyword::commentChar && passesOver(name, id)) {
    cursor_ = close ? close + 1 : end_;
    return skipLine();
  }
  if (endsPiece(id)) {
    pieceEnded_ = true;
    --line_;  // the next piece scans the line again
    return;
  }
  cursor_ = close ? close + 1 : end_;
  if (id == keyword::none) {
    takeUnknown(name);
  } else if (id == keyword::commentChar) {
    readCommentChar();
  } else {
    result_.records.push_back(readRecordLine(id, commentChar_));
  }
}

// Whether the keyword is the first of the next piece. No keyword inside [Model Data] is, except its
// own end.
bool IBISScanner::endsPiece(std::int32_t id) {
  if (id == keyword::modelData) inModelData_ = true;
  if (id == keyword::endModelData) inModelData_ = false;
  if (!endsSection(id) || inModelData_) return false;
  const bool ends = inSections_ && result_.records.size() >= minRecords_;
  inSections_ = true;
  return ends;
}

// Whether the keyword belongs to the one that is passed over; one that begins a section never does.
bool IBISScanner::passesOver(std::string_view name, std::int32_t id) {
  const std::string_view last = passing_->last;
  const bool isLast = equalIgnoringCase(withBlanks(name), last);
  const bool belongs = !last.empty() && !endsSection(id);
  if (!belongs || isLast) passing_ = nullptr;
  return belongs;
}

void IBISScanner::takeUnknown(std::string_view name) {
  reportUnknown(name);
  skipLine();
  if (!passesLater_) return;
  passing_ = findLaterKeyword(withBlanks(name));
  if (passing_ != nullptr) passed_.push_back({.keyword = passing_, .line = line_});
}

void IBISScanner::reportUnknown(std::string_view name) {
  if (!keepsMessages_) return;
  result_.errors.push_back(
      makeDiagnostic(Severity::error, message::unknownKeyword, withBlanks(name).c_str(), line_));
}

// Nothing on this line is a comment, or else the argument itself would be cut off.
void IBISScanner::readCommentChar() {
  const IBISRecord record = readRecordLine(keyword::commentChar, noComment);
  const IBISString argument = keywordText(record);
  const std::string_view text = argument;
  if (!text.empty() && allowedCommentChars.find(text[0]) == std::string_view::npos) {
    stop(makeDiagnostic(Severity::error, message::disallowedCommentChar, line_,
                        std::string(allowedCommentChars).c_str()));
  } else if (text.empty() || !equalIgnoringCase(text.substr(1), commentCharTail)) {
    stop(makeDiagnostic(Severity::error, message::incorrectCommentChar, line_));
  } else {
    commentChar_ = text[0];
  }
}

void IBISScanner::stop(Diagnostic reason) {
  result_.errors.push_back(std::move(reason));
  stopped_ = true;
}

// Takes the rest of the line up to its comment or to the limit, and drops what follows.
IBISRecord IBISScanner::readRecordLine(std::int32_t id, char commentChar) {
  const char* const begin = cursor_;
  skipLine();
  const char* end = cursor_;
  if (end != begin && end[-1] == '\n') --end;
  std::string_view text(begin, static_cast<std::size_t>(end - begin));
  if (commentChar != noComment) text = text.substr(0, text.find(commentChar));
  if (hasCarriageReturns_) text = withoutCarriageReturns(text);
  text = text.substr(0, IBISRecord::maximumLength);
  return {.begin = text.data(),
          .line = line_,
          .keyword = static_cast<std::uint8_t>(id),
          .length = static_cast<std::uint8_t>(text.size())};
}

std::string_view IBISScanner::withoutCarriageReturns(std::string_view text) {
  while (!text.empty() && text.back() == '\r') text.remove_suffix(1);
  if (text.find('\r') == std::string_view::npos) return text;
  std::string kept(text);
  std::erase(kept, '\r');
  return result_.rewritten.store(kept);
}

void IBISScanner::skipLine() {
  const auto rest = static_cast<std::size_t>(end_ - cursor_);
  const auto* feed = static_cast<const char*>(rest ? std::memchr(cursor_, '\n', rest) : nullptr);
  cursor_ = feed ? feed + 1 : end_;
}

void IBISScanner::checkLineLengths() {
  for (const IBISRecord& record : result_.records) {
    if (record.length == IBISRecord::maximumLength) {
      result_.errors.push_back(
          makeDiagnostic(Severity::error, message::lineTooLong, record.line, standardLineLength));
    } else if (record.length > standardLineLength) {
      result_.warnings.push_back(makeDiagnostic(Severity::warning, message::lineLong, record.line));
    }
  }
}

IBISScanResult scanIBISText(std::string_view text) {
  IBISScanner scanner(text, std::numeric_limits<std::size_t>::max());
  scanner.keepsMessages_ = true;
  scanner.scanPiece();
  scanner.checkLineLengths();
  return std::move(scanner.result_);
}

const IBISRecord& recordAt(IBISRecords records, std::int32_t index) {
  static constexpr IBISRecord absent;
  const auto place = static_cast<std::size_t>(index);
  return index >= 0 && place < records.size() ? records[place] : absent;
}

std::string_view trimBlanks(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

IBISString keywordText(const IBISRecord& record) { return trimBlanks(record.text()); }

bool nextDataLine(IBISRecords records, std::int32_t& index, std::string_view& text) {
  const IBISRecord& next = recordAt(records, index + 1);
  if (next.keyword != keyword::dataLine) return false;
  text = next.text();
  ++index;
  return true;
}

std::string multiLineText(IBISRecords records, std::int32_t& index) {
  std::string text(recordAt(records, index).text());
  std::string_view line;
  while (nextDataLine(records, index, line)) text.append(1, '\n').append(line);
  return text;
}

std::int32_t countDataLines(IBISRecords records, std::int32_t index) {
  std::int32_t count = 0;
  while (recordAt(records, index + 1 + count).keyword == keyword::dataLine) ++count;
  return count;
}

}  // namespace ibis
