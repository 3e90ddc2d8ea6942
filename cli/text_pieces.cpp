#include "text_pieces.h"

#include <algorithm>

namespace ibis::cli {

std::vector<std::string_view> wordsOf(std::string_view text) {
  constexpr std::string_view blanks = " \t\n\v\f\r";
  std::vector<std::string_view> words;
  std::size_t begin = text.find_first_not_of(blanks);
  while (begin != text.npos) {
    const std::size_t end = std::min(text.find_first_of(blanks, begin), text.size());
    words.push_back(text.substr(begin, end - begin));
    begin = text.find_first_not_of(blanks, end);
  }
  return words;
}

std::vector<std::string_view> piecesOf(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find(separator, begin), text.size());
    pieces.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return pieces;
}

}  // namespace ibis::cli
