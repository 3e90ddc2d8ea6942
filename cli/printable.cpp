#include "printable.h"

#include <cstdint>

namespace ibis::cli {
namespace {

constexpr std::uint32_t firstPrintable = 0x20;
constexpr std::uint32_t firstBehindAscii = 0x7f;
constexpr std::uint32_t firstPrintableBehindAscii = 0xa0;

std::uint32_t byteAt(std::string_view text, std::size_t place) {
  return static_cast<unsigned char>(text[place]);
}

// How many bytes the character takes that a byte begins; 0 for a byte that begins none.
std::size_t lengthFrom(std::uint32_t byte) {
  if (byte < 0x80) return 1;
  if (byte >= 0xc2 && byte < 0xe0) return 2;
  if (byte >= 0xe0 && byte < 0xf0) return 3;
  return byte >= 0xf0 && byte < 0xf5 ? 4 : 0;
}

// The bytes of the character that stands in front, 0 where they are none in UTF-8.
std::size_t characterLength(std::string_view text, std::uint32_t& character) {
  constexpr std::uint32_t leastOfLength[] = {0, 0, 0x80, 0x800, 0x10000};
  const std::size_t length = lengthFrom(byteAt(text, 0));
  if (length == 0 || length > text.size()) return 0;
  character = length == 1 ? byteAt(text, 0) : byteAt(text, 0) & (0x7fU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byteAt(text, i) & 0xc0U) != 0x80) return 0;
    character = character << 6U | (byteAt(text, i) & 0x3fU);
  }
  const bool isSurrogate = character >= 0xd800 && character < 0xe000;
  const bool isOne = character >= leastOfLength[length] && character < 0x110000 && !isSurrogate;
  return isOne ? length : 0;
}

// Characters that turn the direction of writing would show other text than there is.
bool isShown(std::uint32_t character) {
  const bool isControl = character < firstPrintable ||
                         (character >= firstBehindAscii && character < firstPrintableBehindAscii);
  const bool turns = (character >= 0x202a && character < 0x202f) ||
                     (character >= 0x2066 && character < 0x206a) || character == 0x200e ||
                     character == 0x200f;
  const bool endsLine = character == 0x2028 || character == 0x2029;
  return !isControl && !turns && !endsLine;
}

void appendEscaped(std::string& out, std::string_view bytes) {
  constexpr char digits[] = "0123456789ABCDEF";
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    out += "\\x";
    out += digits[byteAt(bytes, i) >> 4U];
    out += digits[byteAt(bytes, i) & 0xfU];
  }
}

}  // namespace

std::string printable(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    std::uint32_t character = 0;
    const std::size_t length = characterLength(text, character);
    const std::string_view bytes = text.substr(0, length == 0 ? 1 : length);
    if (length > 0 && isShown(character)) {
      out += bytes;
    } else {
      appendEscaped(out, bytes);
    }
    text.remove_prefix(bytes.size());
  }
  return out;
}

}  // namespace ibis::cli
