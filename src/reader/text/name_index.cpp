#include "reader/text/name_index.h"

#include <chrono>

namespace ibis {
namespace {

constexpr std::uint64_t multiplier = 0x9fb21c651e98df25U;  // odd, its bits well mixed

std::uint64_t mix(std::uint64_t value) {
  value ^= value >> 32;
  value *= multiplier;
  value ^= value >> 29;
  value *= multiplier;
  return value ^ (value >> 32);
}

// The program's address in memory and the time differ from process to process.
std::uint64_t makeSeed() {
  static const char place = 0;
  const auto time = std::chrono::steady_clock::now().time_since_epoch().count();
  return mix(reinterpret_cast<std::uintptr_t>(&place) ^ (static_cast<std::uint64_t>(time) << 20));
}

const std::uint64_t seed = makeSeed();

template <class Fold>
std::uint64_t hashBytes(std::string_view key, Fold fold) {
  std::uint64_t hash = seed ^ key.size();
  for (std::size_t begin = 0; begin < key.size(); begin += 8) {
    std::uint64_t block = 0;
    for (const char c : key.substr(begin, 8)) {
      block = block << 8 | static_cast<unsigned char>(fold(c));
    }
    hash = mix(hash ^ block) + seed;
  }
  return hash;
}

}  // namespace

std::uint64_t ExactCase::hash(std::string_view key) {
  return hashBytes(key, [](char c) { return c; });
}

std::uint64_t IgnoringCase::hash(std::string_view key) { return hashBytes(key, upperCase); }

}  // namespace ibis
