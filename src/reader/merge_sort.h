#pragma once

#include <algorithm>
#include <span>
#include <vector>

namespace ibis {

namespace detail {

template <class Item, class Less>
void mergeSort(std::span<Item> items, std::span<Item> scratch, Less less) {
  if (items.size() < 2) return;
  const std::size_t half = items.size() / 2;
  mergeSort(items.first(half), scratch.first(half), less);
  mergeSort(items.subspan(half), scratch.subspan(half), less);
  std::ranges::copy(items, scratch.begin());
  auto left = scratch.begin();
  auto right = scratch.begin() + static_cast<std::ptrdiff_t>(half);
  const auto leftEnd = right;
  for (Item& item : items) {
    const bool takeRight = left == leftEnd || (right != scratch.end() && less(*right, *left));
    item = takeRight ? *right++ : *left++;
  }
}

}  // namespace detail

/// Sorts from the top down: the first half holds n / 2 items, a right item goes ahead only if less.
///
/// For a comparison that is no strict order the steps of a sort decide its result. They are fixed
/// here, so that the result is the same wherever the library runs. Equal items keep their order.
template <class Item, class Less>
void mergeSort(std::span<Item> items, Less less) {
  std::vector<Item> scratch(items.size());
  detail::mergeSort(items, std::span<Item>(scratch), less);
}

}  // namespace ibis
