#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/load_sequence.h"

namespace ibis::fuzz {

using Strings = std::vector<std::string>;

/// The four arguments of a call; those behind the last that is given are absent.
using CallArrays = std::array<std::optional<Strings>, 4>;

/// Cuts a text at a separator; an empty text has no items.
inline Strings split(std::string_view text, char separator) {
  Strings items;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(separator), text.size());
    items.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return items;
}

/// What an IBIS text asks of its load, in a first line that is a comment to the reader.
///
/// "|:source;mode,component,root,subcircuit;pin,pin;selection,selection": arrays are parted by
/// semicolons, strings by commas. Without such a line it is a plain load in model mode.
inline CallArrays callArrays(std::string_view text) {
  constexpr std::string_view mark = "|:";
  if (!text.starts_with(mark)) return {Strings{"source"}, Strings{"model"}};
  text.remove_prefix(mark.size());
  const std::size_t end = text.find_first_of(std::string_view("\r\n\0", 3));
  const Strings arrays = split(text.substr(0, end), ';');
  CallArrays call;
  for (std::size_t i = 0; i < std::min(arrays.size(), call.size()); ++i) {
    call[i] = split(arrays[i], ',');
  }
  return call;
}

/// The same as a request of a load, of which the source is left to the caller.
inline LoadRequest requestOf(const CallArrays& call) {
  Strings settings = call[1].value_or(Strings());
  settings.resize(4);
  return {.source = {},
          .mode = settings[0],
          .component = settings[1],
          .rootDirectory = settings[2],
          .subcircuit = settings[3],
          .pins = call[2].value_or(Strings()),
          .selections = call[3].value_or(Strings())};
}

}  // namespace ibis::fuzz
