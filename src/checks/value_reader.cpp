#include "checks/value_reader.h"

#include <algorithm>
#include <cmath>

#include "ibis/ibis_string.h"
#include "model/numbers/numbers.h"

namespace ibis::checks {
namespace {

std::string_view equalButForCase(std::span<const std::string_view> words, std::string_view word) {
  for (const std::string_view each : words) {
    if (equalIgnoringCase(each, word)) return each;
  }
  return {};
}

}  // namespace

bool startsAsValue(std::string_view word) {
  return word.find_first_of("+-.0123456789") == 0 || equalIgnoringCase(word, "NA");
}

// A number of a word; faults are told with what the number is called.
double ValueReader::number(const SourceLine& line, const Word& word, std::uint32_t block,
                           const std::string& label) {
  const NumberWord read = readNumberWord(word.text);
  if (read.fault > NumberFault::notAvailable) {
    tellFault(read, view_.spotOf(line, word, block), word.text, label, {});
  }
  return read.value;
}

void ValueReader::tellFault(const NumberWord& read, const Spot& spot, std::string_view word,
                            const std::string& label, const std::string& around) {
  if (!isCounted()) return;
  const std::string text(word);
  const std::string tail(read.tail);
  const std::string value = readValue(read);
  switch (read.fault) {
    case NumberFault::decimalComma: {
      std::string expected = text;
      expected[text.size() - tail.size()] = '.';
      findings_.addOnce(Rule::numericDecimalComma, spot, {label, text, value, expected});
      return;
    }
    case NumberFault::suffixCase: {
      std::string expected = text;
      char& letter = expected[text.size() - tail.size()];
      letter = static_cast<char>(letter - 'A' + 'a');
      findings_.addOnce(Rule::numericSuffixCase, spot,
                        {label, text, value, tail.substr(0, 1), "no scale letter", expected});
      return;
    }
    case NumberFault::notANumber:
      findings_.addOnce(Rule::numericNotANumber, spot,
                        {label, text, shortNumber(parseNumber(word, 0.0), 6)});
      return;
    default: {
      Finding* told =
          findings_.addOnce(Rule::numericUnknownSuffix, spot, {label, text, value, tail, around});
      const bool hasDigit = read.fault == NumberFault::digitInSuffix;
      if (told != nullptr && hasDigit) told->diagnostic.severity = Severity::error;
      return;
    }
  }
}

// A unit behind the last value shifts nothing.
void ValueReader::tellDetached(const SourceLine& line, std::size_t index, Words words,
                               std::uint32_t block, const std::string& label,
                               std::span<const std::string_view> columns) {
  if (!isCounted()) return;
  const Word& word = words[index];
  const bool isLast = index >= columns.size();
  const auto begin = static_cast<std::size_t>(words.front().column) - 1;
  const std::size_t end =
      static_cast<std::size_t>(words.back().column) - 1 + words.back().text.size();
  Finding* told =
      findings_.addOnce(Rule::numericDetachedUnit, view_.spotOf(line, word, block),
                        {label, std::string(line.whole.substr(begin, end - begin)),
                         isLast ? std::string() : "; it is read as " + readingOf(words, columns)});
  if (told != nullptr && isLast) told->diagnostic.severity = Severity::note;
}

// What a reader that counts words takes for each column.
std::string ValueReader::readingOf(Words words, std::span<const std::string_view> columns) {
  std::vector<std::string> parts;
  for (std::size_t i = 0; i < std::min(words.size(), columns.size()); ++i) {
    const double value = readNumberWord(words[i].text).value;
    parts.push_back(std::string(columns[i]) + " " +
                    (std::isnan(value) ? "no number" : shortNumber(value, 6)));
  }
  return joined(parts);
}

// typ, min and max from a line; units that stand by themselves are passed over.
Triple ValueReader::triple(const SourceLine& line, Words words, std::uint32_t block,
                           const std::string& label, std::string_view absentMeans) {
  Triple triple{.given = true, .spot = view_.spotOf(line, block)};
  std::size_t count = 0;
  bool hasDetached = false;
  const auto capital = milliInCapitals(words);
  for (const Word& word : words) {
    if (count > 0 && isUnitWord(word.text)) {
      tellDetached(line, static_cast<std::size_t>(&word - words.data()), words, block, label,
                   cornerNames);
      hasDetached = true;
      continue;
    }
    if (count == corners) break;
    if (count == 0) triple.spot = view_.spotOf(line, word, block);
    if (&word == capital) {
      tellCapital(line, word, block, label);
    }
    triple.spots[count] = view_.spotOf(line, word, block);
    triple.at[count++] = number(line, word, block, label);
  }
  if (count == 0) {
    tellMissingValue(line, block, label);
    triple.given = false;
  } else if (count < corners && !hasDetached && isCounted()) {
    const bool hasMin = count == 2;
    findings_
        .add(Rule::numericMissingColumn, view_.spotOf(line, block),
             {label, std::to_string(count), "3",
              std::string(hasMin ? "max" : "min and max").append(std::string(absentMeans))})
        .diagnostic.severity = Severity::warning;
  }
  return triple;
}

void ValueReader::tellMissingValue(const SourceLine& line, std::uint32_t block,
                                   const std::string& label) {
  if (isCounted()) findings_.add(Rule::numericMissingValue, view_.spotOf(line, block), {label});
}

// A word with a capital M among words with the small letter, or null.
const Word* ValueReader::milliInCapitals(Words words) const {
  const Word* capital = nullptr;
  bool hasSmall = false;
  for (const Word& word : words) {
    const NumberWord read = readNumberWord(word.text);
    if (read.tail.starts_with('m')) hasSmall = true;
    if (maySayMilli(read.tail) && capital == nullptr) capital = &word;
  }
  return hasSmall ? capital : nullptr;
}

void ValueReader::tellCapital(const SourceLine& line, const Word& word, std::uint32_t block,
                              const std::string& label) {
  if (!isCounted()) return;
  const NumberWord read = readNumberWord(word.text);
  std::string expected(word.text);
  expected[word.text.size() - read.tail.size()] = 'm';
  findings_.addOnce(Rule::numericSuffixCase, view_.spotOf(line, word, block),
                    {label, std::string(word.text), readValue(read), "M", "mega", expected});
}

Single ValueReader::single(const SourceLine& line, Words words, std::uint32_t block,
                           const std::string& label) {
  if (words.empty()) {
    tellMissingValue(line, block, label);
    return {};
  }
  Single value{.given = true, .word = words[0].text, .spot = view_.spotOf(line, words[0], block)};
  value.value = number(line, words[0], block, label);
  if (words.size() > 1 && isUnitWord(words[1].text)) {
    tellDetached(line, 1, words, block, label, std::span(cornerNames).first(1));
  }
  return value;
}

void ValueReader::checkTyp(const Triple& triple, const std::string& label, Rule rule) {
  const bool isNA = triple.given && std::isnan(triple.at[typ]);
  if (!isNA || !isCounted() || findings_.hasWrongNumber(triple.spot.block)) return;
  findings_.add(rule, triple.spot, {label});
}

// The standard's word that a line begins with; one in another case is told and taken.
std::string_view ValueReader::knownWord(const SourceLine& line, Words words,
                                        std::span<const std::string_view> known,
                                        std::uint32_t block) {
  if (words.empty()) return {};
  if (std::ranges::find(known, words[0].text) != known.end()) return words[0].text;
  const std::string_view meant = equalButForCase(known, words[0].text);
  if (!meant.empty() && isCounted()) {
    findings_.add(Rule::syntaxWordCase, view_.spotOf(line, words[0], block),
                  {std::string(words[0].text), std::string(meant)});
  }
  return meant;
}
void ValueReader::tellUnknownParameter(const SourceLine& line, const Word& word,
                                       std::uint32_t block,
                                       std::span<const std::string_view> known) {
  if (startsAsValue(word.text)) {
    findings_.addOnce(Rule::syntaxStrayText, view_.spotOf(line, block),
                      {std::string(line.text.substr(0, line.text.find_last_not_of(" \t\r") + 1)),
                       std::string(view_.block(block).keyword->name), "rows"});
    return;
  }
  const std::string_view near = nearestWord(word.text, known);
  Finding& told = findings_.add(Rule::modelUnknownParameter, view_.spotOf(line, word, block),
                                {std::string(word.text), didYouMean(near)});
  if (!near.empty()) told.diagnostic.severity = Severity::error;
}

}  // namespace ibis::checks
