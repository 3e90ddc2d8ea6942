#include "output/stream/number_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace ibis {
namespace {

__extension__ using Wide = unsigned __int128;

constexpr int maxDigits = 17;
constexpr int mantissaBits = 52;
constexpr int exponentBias = 1075;
constexpr int smallestFixedExponent = -4;

// As far as 53 bits of a double times the power fit in 128 bits.
constexpr std::size_t powersOfFive = 33;

constexpr auto fiveTo = [] {
  std::array<Wide, powersOfFive> powers{};
  powers[0] = 1;
  for (std::size_t i = 1; i < powersOfFive; ++i) powers[i] = powers[i - 1] * 5;
  return powers;
}();

constexpr auto tenTo = [] {
  std::array<std::uint64_t, maxDigits + 1> powers{};
  powers[0] = 1;
  for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
  return powers;
}();

// A decimal number of a given number of digits: number x 10^(exponent - digits + 1).
struct Decimal {
  std::uint64_t number;
  int exponent;
};

// A positive double as an integer and a power of two.
struct Binary {
  std::uint64_t integer;
  int exponent;
};

Binary split(double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const std::uint64_t fraction = bits & ((std::uint64_t{1} << mantissaBits) - 1);
  const int biased = static_cast<int>(bits >> mantissaBits);
  if (biased == 0) return {fraction, 1 - exponentBias};
  return {fraction | std::uint64_t{1} << mantissaBits, biased - exponentBias};
}

// The floor of the decimal exponent, or one less.
int estimateExponent(const Binary& binary) {
  const int bits = static_cast<int>(std::bit_width(binary.integer)) - 1 + binary.exponent;
  return (bits * 1233) >> 12;  // 1233 / 4096 is just below log10(2)
}

// Rounds exactly, half to even; false if 128 bits do not hold the product.
bool toDecimal(const Binary& binary, int digits, Decimal& decimal) {
  const auto last = static_cast<std::size_t>(digits);
  for (int exponent = estimateExponent(binary);; ++exponent) {
    const int power = digits - 1 - exponent;
    const int shift = -(binary.exponent + power);
    if (power < 0 || power >= static_cast<int>(powersOfFive) || shift <= 0 || shift >= 128) {
      return false;
    }
    const Wide product = fiveTo[static_cast<std::size_t>(power)] * binary.integer;
    const Wide whole = product >> shift;
    if (whole >= tenTo[last]) continue;  // the exponent was one too small
    const Wide rest = product - (whole << shift);
    const Wide half = Wide{1} << (shift - 1);
    auto number = static_cast<std::uint64_t>(whole);
    if (rest > half || (rest == half && number % 2 == 1)) ++number;
    decimal =
        number == tenTo[last] ? Decimal{number / 10, exponent + 1} : Decimal{number, exponent};
    return true;
  }
}

constexpr auto digitPairs = [] {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

// Writes exactly `count` digits.
void writeDigits(char* out, std::uint64_t number, int count) {
  for (; count >= 2; count -= 2) {
    std::memcpy(out + count - 2, &digitPairs[2 * (number % 100)], 2);
    number /= 100;
  }
  if (count == 1) *out = static_cast<char>('0' + number);
}

char* writeScientific(char* out, const char* digits, int count, int exponent) {
  *out++ = digits[0];
  if (count > 1) {
    *out++ = '.';
    out = std::copy_n(digits + 1, count - 1, out);
  }
  *out++ = 'e';
  *out++ = exponent < 0 ? '-' : '+';
  writeDigits(out, static_cast<std::uint64_t>(std::abs(exponent)), 2);
  return out + 2;
}

char* writeFixed(char* out, const char* digits, int count, int exponent) {
  const int whole = exponent + 1;
  if (whole <= 0) {
    out = std::copy_n("0.", 2, out);
    out = std::fill_n(out, -whole, '0');
    return std::copy_n(digits, count, out);
  }
  if (whole >= count) {
    out = std::copy_n(digits, count, out);
    return std::fill_n(out, whole - count, '0');
  }
  out = std::copy_n(digits, whole, out);
  *out++ = '.';
  return std::copy_n(digits + whole, count - whole, out);
}

char* writeDecimal(char* out, const Decimal& decimal, int count) {
  char digits[maxDigits];
  writeDigits(digits, decimal.number, count);
  const bool isFixed = decimal.exponent >= smallestFixedExponent && decimal.exponent < count;
  while (count > 1 && digits[count - 1] == '0') --count;
  return isFixed ? writeFixed(out, digits, count, decimal.exponent)
                 : writeScientific(out, digits, count, decimal.exponent);
}

}  // namespace

// Numbers of everyday size are computed in exact integers; the C++ library prints the others.
char* writeNumberText(char* begin, double value, int digits) {
  constexpr std::string_view notANumber = "nan";
  if (std::isnan(value)) return std::ranges::copy(notANumber, begin).out;
  if (value == 0.0) {
    if (std::signbit(value)) *begin++ = '-';
    *begin++ = '0';
    return begin;
  }
  Decimal decimal{};
  if (toDecimal(split(std::fabs(value)), digits, decimal)) {
    if (value < 0.0) *begin++ = '-';
    return writeDecimal(begin, decimal, digits);
  }
  return std::to_chars(begin, begin + maxNumberText, value, std::chars_format::general, digits).ptr;
}

std::string numberText(double value, int digits) {
  char text[maxNumberText];
  return {text, writeNumberText(text, value, digits)};
}

}  // namespace ibis
