#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "ibis/ibis_string.h"

namespace ibis {

/// Keys that are equal byte for byte.
struct ExactCase {
  static std::uint64_t hash(std::string_view key);
  static bool equal(std::string_view a, std::string_view b) { return a == b; }
};

/// Keys that are equal but for the case of ASCII letters.
struct IgnoringCase {
  static std::uint64_t hash(std::string_view key);
  static bool equal(std::string_view a, std::string_view b) { return equalIgnoringCase(a, b); }
};

/// Names in the order in which they were added, each once, found in near constant time.
///
/// The hash is seeded anew in each process, so that no file can be made to collide. Nothing that
/// a load writes depends on it. Names are views; the caller keeps their text.
template <class Case>
class NameIndex {
 public:
  static constexpr std::int32_t absent = -1;

  std::int32_t size() const { return static_cast<std::int32_t>(names_.size()); }
  std::string_view name(std::int32_t place) const {
    return names_[static_cast<std::size_t>(place)];
  }

  /// The place of a name, from 0, or `absent`.
  std::int32_t find(std::string_view name) const {
    if (slots_.empty()) return absent;
    const auto hash = static_cast<std::uint32_t>(Case::hash(name));
    for (std::size_t i = hash & mask();; i = (i + 1) & mask()) {
      const Slot& slot = slots_[i];
      if (slot.place == absent) return absent;
      if (slot.hash == hash && Case::equal(this->name(slot.place), name)) return slot.place;
    }
  }

  /// Makes room for so many names.
  void reserve(std::size_t count) {
    names_.reserve(count);
    while (!hasRoomFor(count)) grow();
  }

  bool contains(std::string_view name) const { return find(name) != absent; }

  /// Adds a name that is not there yet and gives its place.
  std::int32_t add(std::string_view name) {
    if (!hasRoomFor(names_.size() + 1)) grow();
    const std::int32_t place = size();
    names_.push_back(name);
    enter({static_cast<std::uint32_t>(Case::hash(name)), place});
    return place;
  }

  /// The place of a name, added if it was not there.
  std::int32_t findOrAdd(std::string_view name) {
    const std::int32_t place = find(name);
    return place == absent ? add(name) : place;
  }

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::int32_t place = absent;
  };

  bool hasRoomFor(std::size_t count) const { return count * 5 <= slots_.size() * 4; }
  std::size_t mask() const { return slots_.size() - 1; }

  void enter(Slot slot) {
    std::size_t i = slot.hash & mask();
    while (slots_[i].place != absent) i = (i + 1) & mask();
    slots_[i] = slot;
  }

  void grow() {
    const std::vector<Slot> old = std::move(slots_);
    slots_.assign(old.empty() ? 16 : 2 * old.size(), Slot());
    for (const Slot& slot : old) {
      if (slot.place != absent) enter(slot);
    }
  }

  std::vector<std::string_view> names_;
  std::vector<Slot> slots_;  // a power of two of them, at most four in five in use
};

/// A running number for each name, 0 at first.
template <class Case>
class NameCounters {
 public:
  std::int32_t& operator[](std::string_view name) {
    const auto place = static_cast<std::size_t>(names_.findOrAdd(name));
    if (place == counters_.size()) counters_.push_back(0);
    return counters_[place];
  }

 private:
  NameIndex<Case> names_;
  std::vector<std::int32_t> counters_;
};

}  // namespace ibis
