#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "ibis/ibis_string.h"

namespace ibis {

/// Keys that are equal byte for byte.
struct ExactCase {
  static std::uint64_t hash(std::string_view key);
  static bool equal(std::string_view a, std::string_view b) { return a == b; }
};

/// Keys that are equal, apart from the case of ASCII letters.
struct IgnoringCase {
  static std::uint64_t hash(std::string_view key);
  static bool equal(std::string_view a, std::string_view b) { return equalIgnoringCase(a, b); }
};

/// Names in the order in which they were added, each once, found in nearly constant time.
///
/// Each process seeds the hash anew, so that nobody can make a file whose names collide. Nothing
/// that a load writes depends on it. Names are views; the caller keeps their text.
template <class Case>
class NameIndex {
 public:
  static constexpr std::int32_t absent = -1;

  std::int32_t size() const { return static_cast<std::int32_t>(names_.size()); }
  std::string_view name(std::int32_t index) const {
    return names_[static_cast<std::size_t>(index)];
  }

  /// The index of a name, from 0, or `absent`.
  std::int32_t find(std::string_view name) const {
    if (slots_.empty()) return absent;
    const auto hash = static_cast<std::uint32_t>(Case::hash(name));
    for (std::size_t i = hash & mask();; i = (i + 1) & mask()) {
      const Slot& slot = slots_[i];
      if (slot.index == absent) return absent;
      if (slot.hash == hash && Case::equal(this->name(slot.index), name)) return slot.index;
    }
  }

  /// Makes room for this many names.
  void reserve(std::size_t count) {
    names_.reserve(count);
    while (!hasRoomFor(count)) grow();
  }

  bool contains(std::string_view name) const { return find(name) != absent; }

  /// Adds a name that is not there yet and returns its index.
  std::int32_t add(std::string_view name) {
    if (!hasRoomFor(names_.size() + 1)) grow();
    const std::int32_t index = size();
    names_.push_back(name);
    enter({static_cast<std::uint32_t>(Case::hash(name)), index});
    return index;
  }

  /// The index of a name, added if it was not there.
  std::int32_t findOrAdd(std::string_view name) {
    const std::int32_t index = find(name);
    return index == absent ? add(name) : index;
  }

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::int32_t index = absent;
  };

  bool hasRoomFor(std::size_t count) const { return count * 5 <= slots_.size() * 4; }
  std::size_t mask() const { return slots_.size() - 1; }

  void enter(Slot slot) {
    std::size_t i = slot.hash & mask();
    while (slots_[i].index != absent) i = (i + 1) & mask();
    slots_[i] = slot;
  }

  void grow() {
    const std::vector<Slot> old = std::move(slots_);
    slots_.assign(old.empty() ? 16 : 2 * old.size(), Slot());
    for (const Slot& slot : old) {
      if (slot.index != absent) enter(slot);
    }
  }

  std::vector<std::string_view> names_;
  std::vector<Slot> slots_;  // their number is a power of two; at most four in five are in use
};

/// A value for each name, found as NameIndex finds it.
template <class Case, class Value>
class NameMap {
 public:
  std::int32_t size() const { return names_.size(); }
  bool contains(std::string_view name) const { return names_.contains(name); }

  /// The value of a name, or null.
  const Value* find(std::string_view name) const {
    const std::int32_t index = names_.find(name);
    return index == names_.absent ? nullptr : &values_[static_cast<std::size_t>(index)];
  }

  /// Adds a name with its value; false, changing nothing, for a name that has one.
  bool add(std::string_view name, Value value) {
    if (contains(name)) return false;
    names_.add(name);
    values_.push_back(std::move(value));
    return true;
  }

  /// The value of a name, made if there is none.
  Value& operator[](std::string_view name) {
    const auto index = static_cast<std::size_t>(names_.findOrAdd(name));
    if (index == values_.size()) values_.emplace_back();
    return values_[index];
  }

  /// Makes room for this many names.
  void reserve(std::size_t count) {
    names_.reserve(count);
    values_.reserve(count);
  }

 private:
  NameIndex<Case> names_;
  std::vector<Value> values_;
};

}  // namespace ibis
