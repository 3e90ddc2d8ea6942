#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

/// What every target defines: takes one input; 0, or an end of the program for a finding.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Ends the program, as a finding, if the condition does not hold.
#define REQUIRE(condition) \
  ((condition) ? void() : ::ibis::fuzz::fail(#condition, __FILE__, __LINE__))

namespace ibis::fuzz {

[[noreturn]] inline void fail(const char* condition, const char* file, int line) {
  std::fprintf(stderr, "%s:%d: does not hold: %s\n", file, line, condition);
  std::abort();
}

/// The input itself, not a copy, so that a read beyond its end is seen.
inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

inline std::string replaceAll(std::string_view text, std::string_view old, std::string_view by) {
  std::string replaced;
  for (std::size_t place = text.find(old); place != text.npos; place = text.find(old)) {
    replaced.append(text.substr(0, place)).append(by);
    text.remove_prefix(place + old.size());
  }
  return replaced.append(text);
}

}  // namespace ibis::fuzz
