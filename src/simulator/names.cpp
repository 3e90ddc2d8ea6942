#include "simulator/names.h"

#include "ibis/ibis_string.h"

namespace ibis {
namespace {

constexpr std::size_t longestName = 60;
constexpr std::size_t longestComment = 400;

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::string inUpperCase(std::string_view text) {
  std::string upper;
  for (const char c : text) upper += upperCase(c);
  return upper;
}

}  // namespace

std::string spiceWord(std::string_view text) {
  std::string word = !text.empty() && isLetter(text.front()) ? "" : "m_";
  for (const char c : text.substr(0, longestName)) word += isLetter(c) || isDigit(c) ? c : '_';
  return word;
}

std::string UniqueNames::take(const std::string& word) {
  constexpr std::size_t firstNumber = 2;
  const auto [place, isNew] = taken_.try_emplace(inUpperCase(word), firstNumber);
  if (isNew) return word;
  std::string name;
  do {
    name = word + '_' + std::to_string(place->second++);
  } while (!taken_.try_emplace(inUpperCase(name), firstNumber).second);
  return name;
}

std::string commentText(std::string_view text) {
  std::string line;
  for (const char c : text.substr(0, longestComment)) line += c >= ' ' && c <= '~' ? c : '?';
  if (text.size() > longestComment) line += "...";
  return line;
}

}  // namespace ibis
