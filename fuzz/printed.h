#pragma once

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "fuzz.h"
#include "json_line.h"

namespace ibis::fuzz {

/// Whether no control character stands in a text that a terminal shows, but for line ends.
inline bool isPlainText(std::string_view text) {
  constexpr unsigned char firstPrintable = 0x20;
  constexpr unsigned char deletion = 0x7f;
  return std::ranges::none_of(text, [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return c != '\n' && (byte < firstPrintable || byte == deletion);
  });
}

/// Messages are whole lines, each of which begins with the name of the file that it is about.
inline void checkMessages(std::string_view text, std::string_view name) {
  REQUIRE(isPlainText(text));
  while (!text.empty()) {
    REQUIRE(text.starts_with(std::string(name) + ':'));
    REQUIRE(text.find('\n') != text.npos);
    text.remove_prefix(text.find('\n') + 1);
  }
}

/// JSON is one line of ASCII that reads as what was written; gives it as it reads.
inline nlohmann::ordered_json checkJson(const std::string& line) {
  REQUIRE(line.ends_with('\n') && line.find('\n') == line.size() - 1 && isPlainText(line));
  REQUIRE(std::ranges::all_of(line, [](char c) { return static_cast<signed char>(c) > 0; }));
  nlohmann::ordered_json value = nlohmann::ordered_json::parse(line);
  REQUIRE(cli::jsonLine(value) == line);
  return value;
}

}  // namespace ibis::fuzz
