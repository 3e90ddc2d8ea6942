#include "checks/number_word.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "checks/findings.h"
#include "ibis/ibis_string.h"
#include "model/numbers/numbers.h"

namespace ibis::checks {
namespace {

constexpr std::string_view units[] = {"V",    "A",    "F",     "H",     "s",    "Ohm",   "Ohms",
                                      "C",    "Hz",   "W",     "sec",   "volt", "volts", "amp",
                                      "amps", "degC", "farad", "henry", "Deg",  "%"};
constexpr std::string_view scaleLetters = "TGMkmunpf";
constexpr double scaleFactors[] = {1e12, 1e9, 1e6, 1e3, 1e-3, 1e-6, 1e-9, 1e-12, 1e-15};
constexpr std::string_view smallScaleLetters = "PNUK";
constexpr double missing = std::numeric_limits<double>::quiet_NaN();

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }
bool isLetter(char c) { return upperCase(c) >= 'A' && upperCase(c) <= 'Z'; }

bool isUnit(std::string_view text) {
  return std::ranges::any_of(units,
                             [&](std::string_view unit) { return equalIgnoringCase(unit, text); });
}

// What may follow a scale letter: letters, percent signs, slashes and brackets.
bool isCleanRest(std::string_view text) {
  return std::ranges::all_of(text, [](char c) {
    return isLetter(c) || c == '%' || c == '/' || c == '(' || c == ')' || c == '[' || c == ']';
  });
}

NumberFault faultOfTail(std::string_view tail) {
  if (tail.empty() || tail == "V" || tail == "A") return NumberFault::none;  // nearly all
  if (tail[0] == ',' && tail.size() > 1 && isDigit(tail[1])) return NumberFault::decimalComma;
  const bool hasScale = scaleLetters.find(tail[0]) != tail.npos;
  if (hasScale && isCleanRest(tail.substr(1))) return NumberFault::none;
  if (!hasScale && isUnit(tail)) return NumberFault::none;
  const bool isSmallScale = smallScaleLetters.find(tail[0]) != tail.npos;
  if (isSmallScale && (tail.size() == 1 || isUnit(tail.substr(1)))) return NumberFault::suffixCase;
  return std::ranges::any_of(tail, isDigit) ? NumberFault::digitInSuffix
                                            : NumberFault::unknownSuffix;
}

NumberWord withTail(double value, std::string_view tail) {
  const std::size_t scale = scaleLetters.find(tail[0]);
  const double factor = scale == scaleLetters.npos ? 1.0 : scaleFactors[scale];
  return {.value = value * factor, .fault = faultOfTail(tail), .tail = tail};
}

bool startsAsNumber(std::string_view word) {
  if (!word.empty() && (word[0] == '+' || word[0] == '-')) word.remove_prefix(1);
  if (!word.empty() && word[0] == '.') word.remove_prefix(1);
  return !word.empty() && isDigit(word[0]);
}

bool isHexadecimal(std::string_view word) {
  if (word[0] == '+' || word[0] == '-') word.remove_prefix(1);
  return word.size() > 1 && word[0] == '0' && (word[1] == 'x' || word[1] == 'X');
}

}  // namespace

NumberWord readNumberWord(std::string_view word) {
  std::size_t length = 0;
  return takeNumberWord(word, length);
}

NumberWord takeNumberWord(std::string_view text, std::size_t& length) {
  const bool isNumber = startsAsNumber(text) && !isHexadecimal(text);
  const NumberPrefix number = isNumber ? readNumber(text) : NumberPrefix();
  length = number.length;
  while (length < text.size() && !isBlank(text[length])) ++length;
  const std::string_view word = text.substr(0, length);
  if (isNumber && length == number.length) return {.value = number.value};
  if (isNumber) return withTail(number.value, word.substr(number.length));
  const bool isNA = equalIgnoringCase(word, notAvailable);
  return {.value = missing,
          .fault = isNA ? NumberFault::notAvailable : NumberFault::notANumber,
          .tail = isNA ? std::string_view() : word};
}

PlainNumber plainNumber(std::string_view text) {
  const NumberPrefix number = readShortNumber(text);
  std::size_t length = number.length;
  if (length == 0) return {};
  const auto next = [&] { return length < text.size() ? text[length] : ' '; };
  const char scale = next();
  const double factor = scale == 'm'   ? 1e-3
                        : scale == 'u' ? 1e-6
                        : scale == 'n' ? 1e-9
                        : scale == 'p' ? 1e-12
                                       : 1.0;
  if (factor != 1.0) ++length;
  if (next() == 'V' || next() == 'A' || next() == 's') ++length;
  if (!isBlank(next())) return {};
  return {.value = number.value * factor, .length = length, .isMilli = scale == 'm'};
}

bool isUnitWord(std::string_view word) {
  if (word.empty() || word.size() > 6) return false;
  if (isUnit(word)) return true;
  const bool hasScale = scaleLetters.find(word[0]) != word.npos;
  return hasScale && word.size() > 1 && isUnit(word.substr(1)) && !equalIgnoringCase(word, "NA");
}

bool maySayMilli(std::string_view tail) {
  return tail.size() > 1 && tail[0] == 'M' && isUnit(tail.substr(1));
}

std::string_view unitOf(std::string_view tail) {
  const auto isNoUnit = [](char c) { return !isLetter(c); };
  while (!tail.empty() && isNoUnit(tail.front())) tail.remove_prefix(1);
  if (isUnit(tail)) return tail;
  if (tail.size() < 2 || !isUnit(tail.substr(1))) return {};
  const bool isScale = std::string_view("TGMKkmUuNnPpf").find(tail[0]) != std::string_view::npos;
  return isScale ? tail.substr(1) : std::string_view();
}

std::string readValue(const NumberWord& read) {
  std::string text = shortNumber(read.value, 6);
  const std::string_view unit = unitOf(read.tail);
  if (!unit.empty()) text.append(" ").append(unit);
  return text;
}

}  // namespace ibis::checks
