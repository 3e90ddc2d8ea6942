#include "ibis/ibis_string.h"

#include <algorithm>

namespace ibis {
namespace {

constexpr std::string_view reservedNames[] = {"NC", "NA", "GND", "POWER"};
constexpr std::size_t shortestReserved = 2;
constexpr std::size_t longestReserved = 5;

}  // namespace

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return upperCase(x) == upperCase(y);
         });
}

std::string_view foldReservedName(std::string_view text) {
  if (text.size() < shortestReserved || text.size() > longestReserved) return text;
  for (std::string_view name : reservedNames) {
    if (equalIgnoringCase(text, name)) return name;
  }
  return text;
}

std::string_view StringPool::store(std::string_view text) {
  if (text.empty()) return {};
  if (!memory_) memory_ = std::make_unique<std::pmr::monotonic_buffer_resource>();
  char* copy = static_cast<char*>(memory_->allocate(text.size(), 1));
  std::copy(text.begin(), text.end(), copy);
  return {copy, text.size()};
}

}  // namespace ibis
