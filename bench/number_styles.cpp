#include "number_styles.h"

#include <charconv>
#include <cmath>

namespace ibis::bench {
namespace {

constexpr std::size_t longestText = 64;

struct Scale {
  double factor;
  std::string_view suffix;
};

constexpr Scale scales[] = {{1e-12, "p"}, {1e-9, "n"}, {1e-6, "u"}, {1e-3, "m"}, {1.0, ""}};

const Scale& scaleOf(double value) {
  const Scale* fitting = &scales[0];
  for (const Scale& scale : scales) {
    if (std::abs(value) >= scale.factor) fitting = &scale;
  }
  return *fitting;
}

void appendAs(std::string& text, double value, std::chars_format format, int digits) {
  char buffer[longestText];
  text.append(buffer, std::to_chars(buffer, buffer + longestText, value, format, digits).ptr);
}

}  // namespace

// The generator of Steele, Lea and Flood: short, and the same everywhere.
double Dice::fraction() {
  state_ += 0x9e3779b97f4a7c15;
  std::uint64_t bits = state_;
  bits = (bits ^ (bits >> 30)) * 0xbf58476d1ce4e5b9;
  bits = (bits ^ (bits >> 27)) * 0x94d049bb133111eb;
  bits ^= bits >> 31;
  return static_cast<double>(bits >> 11) * 0x1p-53;
}

void appendFixed(std::string& text, double value, int decimals) {
  appendAs(text, value, std::chars_format::fixed, decimals);
}

void appendNumber(std::string& text, double value, NumberStyle style, std::string_view unit) {
  switch (style) {
    case NumberStyle::scientific:
      return appendAs(text, value, std::chars_format::scientific, 6);
    case NumberStyle::plain:
      return appendFixed(text, value, 6);
    case NumberStyle::withUnit:
      appendFixed(text, value, 4);
      break;
    case NumberStyle::scaled:
      const Scale& scale = scaleOf(value);
      appendFixed(text, value / scale.factor, 2);
      text += scale.suffix;
      break;
  }
  text += unit;
}

}  // namespace ibis::bench
