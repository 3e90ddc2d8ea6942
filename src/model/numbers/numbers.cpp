#include "model/numbers/numbers.h"

#include <locale.h>
#include <stdlib.h>

#include <charconv>
#include <cstring>
#include <limits>
#include <string>
#include <system_error>

namespace ibis {
namespace {

constexpr double missingSingleValue = 0.8;

// Powers of ten that a double holds exactly.
constexpr int maxExactPower = 22;
constexpr double exactPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                  1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isBlank(char c) { return c == ' ' || c == '\t'; }
bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::size_t countSpaces(std::string_view text) {
  std::size_t count = 0;
  while (count < text.size() && isSpace(text[count])) ++count;
  return count;
}

// Frees the locale as the library unloads: a plug-in may be unloaded and loaded again.
class CLocale {
 public:
  CLocale() : locale_(newlocale(LC_ALL_MASK, "C", nullptr)) {}
  ~CLocale() { freelocale(locale_); }
  CLocale(const CLocale&) = delete;
  CLocale& operator=(const CLocale&) = delete;
  locale_t get() const { return locale_; }

 private:
  locale_t locale_;
};

const CLocale cLocale;

// Reads hexadecimal numbers, infinities, not-a-numbers and numbers beyond the range of a double.
NumberPrefix readUnusualNumber(std::string_view text) {
  const std::string copy(text);
  char* end = nullptr;
  const double value = strtod_l(copy.c_str(), &end, cLocale.get());
  return {value, static_cast<std::size_t>(end - copy.c_str())};
}

bool looksDecimal(std::string_view digits) {
  if (digits.empty() || !(isDigit(digits[0]) || digits[0] == '.')) return false;
  return digits.size() < 2 || digits[0] != '0' || (digits[1] != 'x' && digits[1] != 'X');
}

}  // namespace

NumberPrefix readShortNumber(std::string_view text) {
  constexpr int maxDigits = 19;  // as many as 64 bits hold
  constexpr std::uint64_t largestExact = std::uint64_t{1} << 53;
  const bool isNegative = text.starts_with('-');
  const std::size_t sign = isNegative || text.starts_with('+') ? 1 : 0;
  if (!looksDecimal(text.substr(sign))) return {};
  const char* c = text.data() + sign;
  const char* const end = text.data() + text.size();
  std::uint64_t digits = 0;
  const char* const first = c;
  for (; c != end && isDigit(*c); ++c) digits = digits * 10 + static_cast<std::uint64_t>(*c - '0');
  std::ptrdiff_t count = c - first;
  int exponent = 0;
  if (c != end && *c == '.') {
    const char* const fraction = ++c;
    for (; c != end && isDigit(*c); ++c) {
      digits = digits * 10 + static_cast<std::uint64_t>(*c - '0');
    }
    count += c - fraction;
    exponent = -static_cast<int>(c - fraction);
  }
  if (count == 0 || count > maxDigits) return {};
  if (c != end && (*c == 'e' || *c == 'E')) {
    const char* e = c + 1;
    const bool negative = e != end && *e == '-';
    if (e != end && (*e == '-' || *e == '+')) ++e;
    int power = 0;
    const char* const firstDigit = e;
    for (; e != end && isDigit(*e) && power < 1000; ++e) power = power * 10 + (*e - '0');
    if (e != firstDigit) c = e;  // without digits the number ends before its "e"
    if (power >= 1000) return {};
    exponent += negative ? -power : power;
  }
  if (digits > largestExact || exponent < -maxExactPower || exponent > maxExactPower) return {};
  const double value = isNegative ? -static_cast<double>(digits) : static_cast<double>(digits);
  const auto power = static_cast<std::size_t>(exponent < 0 ? -exponent : exponent);
  return {exponent < 0 ? value / exactPowers[power] : value * exactPowers[power],
          static_cast<std::size_t>(c - text.data())};
}

namespace {

double unitFactor(char c) {
  switch (c) {
    case 'T':
      return 1e12;
    case 'G':
      return 1e9;
    case 'M':
      return 1e6;
    case 'k':
      return 1e3;
    case 'm':
      return 1e-3;
    case 'u':
      return 1e-6;
    case 'n':
      return 1e-9;
    case 'p':
      return 1e-12;
    case 'f':
      return 1e-15;
    default:
      return 1.0;
  }
}

// Reads the next field of "typ min max" for a corner and notes whether the file has it.
double takeCorner(std::string_view& text, double fallback, int corner, MissingCorners& missing) {
  const std::string_view field = takeField(text);
  if (isMissingValue(field)) missing.set(corner);
  return parseNumber(field, fallback);
}

// The number of the next field, or of the filler if there is none.
//
// One pass reads nearly all numbers, without looking for the end of the field first.
double takeNumber(std::string_view& text, std::string_view filler, double fallback,
                  bool& isMissing) {
  while (!text.empty() && isBlank(text[0])) text.remove_prefix(1);
  const NumberPrefix number = readShortNumber(text);
  if (number.length == 0) {
    const std::string_view field = takeField(text);
    isMissing = isMissingValue(field);
    return parseNumber(field.empty() ? filler : field, fallback);
  }
  text.remove_prefix(number.length);
  if (text.empty()) return number.value;
  const double factor = unitFactor(text[0]);
  while (!text.empty() && !isBlank(text[0])) text.remove_prefix(1);
  return number.value * factor;
}

}  // namespace

NumberPrefix readNumber(std::string_view text) {
  std::size_t begin = countSpaces(text);
  if (begin == text.size()) return {};
  const NumberPrefix quick = readShortNumber(text.substr(begin));
  if (quick.length > 0) return {quick.value, begin + quick.length};
  const bool negative = text[begin] == '-';
  if (negative || text[begin] == '+') ++begin;
  if (!looksDecimal(text.substr(begin))) return readUnusualNumber(text);
  double value = 0.0;
  const char* const first = text.data() + begin;
  const auto [end, fault] = std::from_chars(first, text.data() + text.size(), value);
  if (fault == std::errc::result_out_of_range) return readUnusualNumber(text);
  if (fault != std::errc()) return {};
  return {negative ? -value : value, static_cast<std::size_t>(end - text.data())};
}

double parseNumber(std::string_view text, double fallback) {
  if (text == notAvailable) return fallback;
  const NumberPrefix number = readNumber(text);
  if (number.length == text.size()) return number.value;
  return number.value * unitFactor(text[number.length]);
}

std::int32_t parseInteger(std::string_view text) {
  std::size_t index = countSpaces(text);
  const bool negative = index < text.size() && text[index] == '-';
  if (index < text.size() && (negative || text[index] == '+')) ++index;
  constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
  std::int64_t value = 0;
  for (; index < text.size() && isDigit(text[index]); ++index) {
    const int digit = text[index] - '0';
    if (value > (largest - digit) / 10) {
      // As in the C library: the long integer saturates and atoi returns its low half.
      return static_cast<std::int32_t>(negative ? std::numeric_limits<std::int64_t>::min()
                                                : largest);
    }
    value = value * 10 + digit;
  }
  return static_cast<std::int32_t>(negative ? -value : value);
}

std::string_view takeField(std::string_view& text, std::string_view separators) {
  const char first = separators.front();
  const char second = separators[separators.size() > 1 ? 1 : 0];
  const char third = separators.back();
  const bool hasMore = separators.size() > 3;  // no set of a caller has
  const auto isSeparator = [=](char c) {
    return c == first || c == second || c == third ||
           (hasMore && separators.find(c) != separators.npos);
  };
  const char* c = text.data();
  const char* const end = c + text.size();
  while (c != end && isSeparator(*c)) ++c;
  const char* const begin = c;
  while (c != end && !isSeparator(*c)) ++c;
  text.remove_prefix(static_cast<std::size_t>(c - text.data()));
  return {begin, static_cast<std::size_t>(c - begin)};
}

void splitFields(std::string_view text, Fields& fields, std::int32_t minimumCount,
                 std::string_view filler, std::string_view separators) {
  for (std::string_view field = takeField(text, separators); !field.empty();
       field = takeField(text, separators)) {
    fields.append(field);
  }
  while (fields.size() < minimumCount) fields.append(filler);
}

IBISString popToken(std::string_view& line) {
  const std::size_t begin = std::min(line.find_first_not_of(delimiters::blanks), line.size());
  line.remove_prefix(begin);
  const std::size_t end = std::min(line.find_first_of(delimiters::blanksAndEqual), line.size());
  const std::string_view token = line.substr(0, end);
  line.remove_prefix(std::min(end + 1, line.size()));
  return token;
}

CornerRow readCornerRow(std::string_view text, std::string_view filler) {
  CornerRow row;
  bool isMissing = false;
  row.x = takeNumber(text, filler, 0.0, isMissing);
  const auto take = [&](int corner, double fallback) {
    isMissing = false;
    const double value = takeNumber(text, filler, fallback, isMissing);
    if (isMissing) row.missing.set(corner);
    return value;
  };
  row.typ = take(corner::typ, 0.0);
  row.min = take(corner::min, row.typ);
  row.max = take(corner::max, row.typ);
  return row;
}

void readTriple(std::string_view text, IBISTriple& triple) {
  triple = {.present = true};
  triple.typ = takeCorner(text, 0.0, corner::typ, triple.missing);
  triple.min = takeCorner(text, triple.typ, corner::min, triple.missing);
  triple.max = takeCorner(text, triple.typ, corner::max, triple.missing);
}

void readSingleAsTriple(std::string_view text, IBISTriple& triple) {
  const std::string_view field = takeField(text, delimiters::blanksAndEqual);
  const double value = parseNumber(field, missingSingleValue);
  triple = {.present = true, .typ = value, .max = value, .min = value};
  if (!isMissingValue(field)) return;
  for (int corner = 0; corner < corner::count; ++corner) triple.missing.set(corner);
}

bool readRatio(std::string_view text, double& numerator, double& denominator,
               double numeratorFallback, double denominatorFallback) {
  if (text == notAvailable) {
    numerator = numeratorFallback;
    denominator = denominatorFallback;
    return false;
  }
  const bool isGiven = !text.empty();
  numerator = parseNumber(takeField(text, delimiters::slash), numeratorFallback);
  denominator = parseNumber(takeField(text, delimiters::slash), denominatorFallback);
  return isGiven;
}

}  // namespace ibis
