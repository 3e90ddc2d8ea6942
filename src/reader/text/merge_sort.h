#pragma once

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <span>
#include <utility>
#include <vector>

namespace ibis {

namespace detail {

template <class Item, class Less>
void mergeSort(std::span<Item> items, std::span<Item> scratch, Less less) {
  if (items.size() < 2) return;
  const std::size_t half = items.size() / 2;
  mergeSort(items.first(half), scratch.first(half), less);
  mergeSort(items.subspan(half), scratch, less);
  // Only the left half is copied: writing never overtakes reading in the right half.
  std::ranges::copy(items.first(half), scratch.begin());
  auto left = scratch.begin();
  const auto leftEnd = left + static_cast<std::ptrdiff_t>(half);
  auto right = items.begin() + static_cast<std::ptrdiff_t>(half);
  for (auto item = items.begin(); left != leftEnd; ++item) {
    const bool takeRight = right != items.end() && less(*right, *left);
    *item = takeRight ? *right++ : *left++;
  }
}

// Moves the item of index order[i] to index i, cycle by cycle.
template <class Item>
void reorder(std::span<Item> items, std::span<std::uint32_t> order) {
  for (std::uint32_t start = 0; start < order.size(); ++start) {
    const Item first = items[start];
    std::uint32_t index = start;
    while (order[index] != start) {
      const std::uint32_t next = std::exchange(order[index], index);
      items[index] = items[next];
      index = next;
    }
    items[index] = first;
    order[index] = index;
  }
}

}  // namespace detail

/// Sorts from the top down: the left half holds n / 2 items, and a right item comes first only if
/// it is less.
///
/// Where a comparison is not a strict order the steps of a sort decide its result. They are fixed
/// here, so that the result is the same on every machine. Equal items keep their order.
template <class Item, class Less>
void mergeSort(std::span<Item> items, Less less) {
  // Numbers take less room than items.
  std::vector<std::uint32_t> order(items.size());
  std::iota(order.begin(), order.end(), 0U);
  std::vector<std::uint32_t> scratch(items.size() / 2);
  detail::mergeSort(std::span(order), std::span(scratch),
                    [&](std::uint32_t a, std::uint32_t b) { return less(items[a], items[b]); });
  detail::reorder(items, std::span(order));
}

}  // namespace ibis
