#pragma once

#include <string_view>
#include <vector>

namespace ibis::cli {

// A stream that lacks memory for a word ends as if the text did, so that none is used here.

/// The words of a text, between blanks, tabs and line ends.
std::vector<std::string_view> wordsOf(std::string_view text);

/// What stands between separators; a last separator ends its piece and begins none.
std::vector<std::string_view> piecesOf(std::string_view text, char separator);

}  // namespace ibis::cli
