#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace ibis {

/// A text as a name that every simulator takes: letters, digits and "_", a letter in front.
///
/// Any other character becomes "_"; a name that does not begin with a letter gets "m_" in front.
/// Long texts are cut.
std::string spiceWord(std::string_view text);

/// Names that differ in more than the case of their letters, since simulators fold it.
class UniqueNames {
 public:
  /// The word itself, or the first of word_2, word_3, ... that is new.
  std::string take(const std::string& word);

 private:
  // A name in upper case, and the first number behind it that may be new.
  std::map<std::string, std::size_t> taken_;
};

/// A text for a comment: one line of printable ASCII, other characters as "?", cut where long.
std::string commentText(std::string_view text);

}  // namespace ibis
