#include "checks/row_reader.h"

#include <cmath>

namespace ibis::checks {
namespace {

void skipBlanks(std::string_view& text) {
  while (!text.empty() && (text[0] == ' ' || text[0] == '\t' || text[0] == '\r')) {
    text.remove_prefix(1);
  }
}

}  // namespace

Rows RowReader::readRows(const Block& block) {
  Rows rows{.block = view_.indexOf(block)};
  reserve(rows, block.lineCount);
  for (const SourceLine& line : view_.syntax.linesOf(block)) readRow(rows, line);
  tellMilli(rows);
  rows.isSound = rows.isSound && !findings_.hasWrongNumber(rows.block);
  return rows;
}

void RowReader::reserve(Rows& rows, std::size_t count) {
  rows.x.reserve(count);
  rows.lines.reserve(count);
  for (auto& column : rows.y) column.reserve(count);
}

void RowReader::readRow(Rows& rows, const SourceLine& line) {
  double values[1 + corners] = {notGiven, notGiven, notGiven, notGiven};
  readCells(rows, line, values);
  rows.lines.push_back(static_cast<std::uint32_t>(&line - view_.syntax.lines().data()));
  const bool isFirst = rows.x.empty();
  rows.rises = rows.rises && (isFirst ? !std::isnan(values[0]) : values[0] > rows.x.back());
  rows.falls = rows.falls && (isFirst ? !std::isnan(values[0]) : values[0] < rows.x.back());
  rows.x.push_back(values[0]);
  for (std::size_t c = 0; c < corners; ++c) {
    rows.y[c].push_back(values[1 + c]);
    rows.isWhole[c] = rows.isWhole[c] && std::isfinite(values[1 + c]);
  }
}

// Nearly every word is a plain number, which has nothing to tell of.
void RowReader::readCells(Rows& rows, const SourceLine& line, double (&values)[1 + corners]) {
  bool hasDetached = false;
  std::size_t count = 0;
  std::size_t index = 0;
  std::string_view rest = line.text;
  for (skipBlanks(rest); count < 1 + corners && !rest.empty(); skipBlanks(rest)) {
    if (const PlainNumber plain = plainNumber(rest); plain.length > 0) {
      rest.remove_prefix(plain.length);
      hasMilli_ = hasMilli_ || plain.isMilli;
      values[count++] = plain.value;
      ++index;
      continue;
    }
    std::size_t length = 0;
    const NumberWord read = takeNumberWord(rest, length);
    const auto column = static_cast<std::int32_t>(rest.data() - line.whole.data()) + 1;
    const Word word{.text = rest.substr(0, length), .column = column};
    rest.remove_prefix(length);
    ++index;
    if (read.fault > NumberFault::notAvailable) {
      if (count > 0 && isUnitWord(word.text)) {
        tellDetached(line, index - 1, splitRow(line), rows.block,
                     view_.nameOf(view_.block(rows.block)), columnNames(rows));
        rows.isSound = false;
        hasDetached = true;
        continue;
      }
      tellCell(rows, read, line, word, count);
    }
    if (!read.tail.empty()) noteMilli(line, word, read.tail, count);
    values[count++] = read.value;
  }
  if (count < 1 + corners && !hasDetached) tellShortRow(rows, line, count);
}

void RowReader::tellCell(Rows& rows, const NumberWord& read, const SourceLine& line,
                         const Word& word, std::size_t column) {
  rows.isSound = false;
  tellFault(read, view_.spotOf(line, word, rows.block), word.text, cellLabel(rows, column),
            around(rows, line, column));
}

std::span<const std::string_view> RowReader::columnNames(const Rows& rows) const {
  static constexpr std::string_view table[] = {"voltage", "I(typ)", "I(min)", "I(max)"};
  static constexpr std::string_view waveform[] = {"time", "V(typ)", "V(min)", "V(max)"};
  const bool isTable = view_.block(rows.block).keyword->content == Content::table;
  return isTable ? table : waveform;
}

std::string RowReader::cellLabel(const Rows& rows, std::size_t column) const {
  return view_.nameOf(view_.block(rows.block)) + ", column " + std::to_string(column + 1) + " (" +
         std::string(columnNames(rows)[column]) + ")";
}

// A scale letter M counts as a slip only beside the small one, so it is told at the end.
void RowReader::noteMilli(const SourceLine& line, const Word& word, std::string_view tail,
                          std::size_t column) {
  if (tail[0] == 'm') hasMilli_ = true;
  if (tail[0] != 'M' || capital_.line != nullptr || !maySayMilli(tail)) return;
  capital_ = {.line = &line, .word = word, .column = column};
}

void RowReader::tellMilli(Rows& rows) {
  if (hasMilli_ && capital_.line != nullptr) {
    tellCapital(*capital_.line, capital_.word, rows.block, cellLabel(rows, capital_.column));
    rows.isSound = false;
  }
  hasMilli_ = false;
  capital_ = {};
}

// What stands in the rows above and below.
std::string RowReader::around(const Rows& rows, const SourceLine& line, std::size_t column) const {
  if (rows.x.empty()) return {};
  const double above = column == 0 ? rows.x.back() : rows.y[column - 1].back();
  const SourceLine* const next = &line + 1;
  if (next == view_.syntax.lines().data() + view_.syntax.lines().size()) return {};
  const std::vector<Word> words = splitRow(*next);
  if (column >= words.size()) return {};
  const double below = readNumberWord(words[column].text).value;
  if (std::isnan(above) || std::isnan(below)) return {};
  return "; the rows around hold " + shortNumber(above, 6) + " and " + shortNumber(below, 6);
}

void RowReader::tellShortRow(Rows& rows, const SourceLine& line, std::size_t count) {
  if (!isCounted()) return;
  const Block& block = view_.block(rows.block);
  const bool isTable = block.keyword->content == Content::table;
  const std::string_view columns[] = {"", "typ, min and max", "min and max", "max"};
  std::string text(columns[count]);
  text.append(isTable && count > 1 ? " would be taken from typ" : " would be read as 0");
  Finding* told =
      findings_.addOnce(Rule::numericMissingColumn, view_.spotOf(line, rows.block),
                        {view_.nameOf(block), "row has " + std::to_string(count), "4", text});
  if (told != nullptr && count > 1) told->diagnostic.severity = Severity::warning;
}

}  // namespace ibis::checks
