#include "component/names/name_table.h"

#include <algorithm>
#include <string>

namespace ibis {
namespace {

constexpr std::string_view illegalInSpice = "*/-+.:<>|\\;{} \t";

bool isIllegalInSpice(char c) { return illegalInSpice.find(c) != std::string_view::npos; }

std::string numbered(std::string_view base, std::int32_t counter) {
  return std::string(base) + '_' + std::to_string(counter);
}

}  // namespace

void IBISNameTable::registerName(std::string_view name) {
  if (sources_.contains(name)) return;
  std::string_view spice = legalForm(name);
  if (spiceNames_.contains(spice)) spice = freeSpiceName(spice);
  sources_.add(name);
  spiceNames_.add(spice);
}

// Most names are legal as they are, so name and SPICE name share one text.
std::string_view IBISNameTable::legalForm(std::string_view name) {
  if (std::ranges::none_of(name, isIllegalInSpice)) return foldReservedName(name);
  std::string legal(name);
  std::ranges::replace_if(legal, isIllegalInSpice, '_');
  return strings_.store(foldReservedName(legal));
}

// A numbered name is never a reserved word, so no folding is needed here.
std::string_view IBISNameTable::freeSpiceName(std::string_view base) {
  std::int32_t& counter = spiceCounters_[base];
  std::string candidate;
  do {
    candidate = numbered(base, ++counter);
  } while (spiceNames_.contains(candidate));
  return strings_.store(candidate);
}

std::string_view IBISNameTable::freeSourceName(std::string_view name) {
  std::int32_t& counter = sourceCounters_[sources_.name(sources_.find(name))];
  std::string candidate;
  do {
    candidate = numbered(name, ++counter);
  } while (sources_.contains(candidate));
  return strings_.store(candidate);
}

IBISString IBISNameTable::makeUniqueName(std::string_view name) {
  if (sources_.contains(name)) name = freeSourceName(name);
  registerName(name);
  return sources_.name(sources_.find(name));
}

IBISString IBISNameTable::spiceName(std::string_view name) const {
  const std::int32_t index = sources_.find(name);
  return index == sources_.absent ? IBISString() : IBISString(spiceNames_.name(index));
}

void IBISNameTable::reserve(std::size_t count) {
  sources_.reserve(count);
  spiceNames_.reserve(count);
}

void IBISNameTable::forgetNames() {
  sources_ = {};
  spiceNames_ = {};
  sourceCounters_ = {};
  spiceCounters_ = {};
}

}  // namespace ibis
