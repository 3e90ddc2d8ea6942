#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

#include "ibis/exception.h"

namespace ibis {

/// The reader's growing list: positions are signed, and a read beyond the end never fails.
///
/// at() appends empty elements up to the position; the constant operator returns an empty element
/// and changes nothing. A negative position is a fault of the program and raises
/// KelvrantException.
template <class T>
class YVector {
 public:
  YVector() = default;
  YVector(std::initializer_list<T> items) : items_(items) {}

  std::int32_t size() const { return static_cast<std::int32_t>(items_.size()); }
  bool empty() const { return items_.empty(); }
  void append(T item) { items_.push_back(std::move(item)); }
  void reserve(std::size_t count) { items_.reserve(count); }
  void clear() { items_.clear(); }

  /// Drops the element at the position and all after it.
  void shorten(std::int32_t position) {
    const std::size_t count = checked(position);
    if (count < items_.size()) items_.resize(count);
  }

  /// The element at the position, made if it was not there.
  T& at(std::int32_t position) {
    const std::size_t index = checked(position);
    if (index >= items_.size()) items_.resize(index + 1);
    return items_[index];
  }

  /// The element at the position, or an empty one that all readers share.
  const T& operator[](std::int32_t position) const {
    static const T empty{};
    const std::size_t index = checked(position);
    return index < items_.size() ? items_[index] : empty;
  }

  T& last() { return items_.back(); }
  const T& last() const { return items_.back(); }
  const T* data() const { return items_.data(); }
  auto begin() { return items_.begin(); }
  auto end() { return items_.end(); }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }
  friend bool operator==(const YVector&, const YVector&) = default;

 private:
  static std::size_t checked(std::int32_t position) {
    if (position < 0) throw KelvrantException("YVector index negative");
    return static_cast<std::size_t>(position);
  }

  std::vector<T> items_;
};

}  // namespace ibis
