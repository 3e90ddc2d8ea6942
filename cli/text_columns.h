#pragma once

#include <algorithm>
#include <string_view>

namespace ibis::cli {

/// How many columns a UTF-8 text takes, one for each character.
inline std::size_t columnsOf(std::string_view text) {
  const auto begins = [](char c) { return (c & 0xc0) != 0x80; };
  return static_cast<std::size_t>(std::ranges::count_if(text, begins));
}

}  // namespace ibis::cli
