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
  mergeSort(items.subspan(half), scratch, less);
  // Only the left half makes room: what is written never overtakes what is read of the right one.
  std::ranges::copy(items.first(half), scratch.begin());
  auto left = scratch.begin();
  const auto leftEnd = left + static_cast<std::ptrdiff_t>(half);
  auto right = items.begin() + static_cast<std::ptrdiff_t>(half);
  for (auto item = items.begin(); left != leftEnd; ++item) {
    const bool takeRight = right != items.end() && less(*right, *left);
    *item = takeRight ? *right++ : *left++;
  }
}

}  // namespace detail

/// Sorts from the top down: the first half holds n / 2 items, a right item goes ahead only if less.
///
/// For a comparison that is no strict order the steps of a sort decide its result. They are fixed
/// here, so that the result is the same wherever the library runs. Equal items keep their order.
template <class Item, class Less>
void mergeSort(std::span<Item> items, Less less) {
  std::vector<Item> scratch(items.size() / 2 + 1);
  detail::mergeSort(items, std::span<Item>(scratch), less);
}

}  // namespace ibis
