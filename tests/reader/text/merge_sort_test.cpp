#include "reader/text/merge_sort.h"

#include <random>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

struct Item {
  int key = 0;
  int place = 0;
  friend bool operator==(const Item&, const Item&) = default;
};

std::ostream& operator<<(std::ostream& out, const Item& item) {
  return out << item.key << "#" << item.place;
}

std::vector<Item> sorted(std::vector<Item> items) {
  mergeSort(std::span<Item>(items), [](const Item& a, const Item& b) { return a.key < b.key; });
  return items;
}

/// Letters sorted with every pair of the list counting as less, "AB" for A before B.
std::string sortedByPairs(std::string letters, const Texts& lessPairs) {
  mergeSort(std::span<char>(letters), [&](char a, char b) {
    return std::ranges::find(lessPairs, std::string{a, b}) != lessPairs.end();
  });
  return letters;
}

TEST(MergeSort, LeavesShortListsAlone) {
  EXPECT_EQ(sorted({}), std::vector<Item>());
  EXPECT_EQ(sorted({{5, 0}}), (std::vector<Item>{{5, 0}}));
}

TEST(MergeSort, KeepsTheOrderOfEqualItems) {
  EXPECT_EQ(sorted({{2, 0}, {1, 1}, {2, 2}, {1, 3}, {0, 4}}),
            (std::vector<Item>{{0, 4}, {1, 1}, {1, 3}, {2, 0}, {2, 2}}));
}

TEST(MergeSort, SortsListsOfEveryLengthAsAStableSortDoes) {
  std::mt19937 engine(7);
  for (int length = 0; length < 70; ++length) {
    std::vector<Item> items;
    for (int i = 0; i < length; ++i) items.push_back({static_cast<int>(engine() % 20), i});
    std::vector<Item> expected = items;
    std::ranges::stable_sort(expected, {}, &Item::key);
    EXPECT_EQ(sorted(items), expected);
  }
}

TEST(MergeSort, TakesTheLeftItemWhereNeitherIsLess) {
  EXPECT_EQ(sortedByPairs("DCBA", {}), "DCBA");
  EXPECT_EQ(sortedByPairs("AB", {"AB", "BA"}), "BA");
}

// The first half of three is one letter: B and C are merged ahead of A.
TEST(MergeSort, SplitsAnOddListBehindItsSmallerHalf) {
  EXPECT_EQ(sortedByPairs("ABC", {"CA"}), "ABC");
  EXPECT_EQ(sortedByPairs("ABC", {"CB", "CA"}), "CAB");
  EXPECT_EQ(sortedByPairs("ABC", {"CB", "BA"}), "ACB");
}

TEST(MergeSort, MergesHalvesThatAreSortedThemselves) {
  // Halves BA and DC become AB and CD; C is less than A but D is not.
  EXPECT_EQ(sortedByPairs("BADC", {"AB", "CD", "CA"}), "CABD");
}

TEST(MergeSort, EndsForAComparisonInACircle) {
  EXPECT_EQ(sortedByPairs("ABC", {"AB", "BC", "CA"}), "ABC");
  EXPECT_EQ(sortedByPairs("BCA", {"AB", "BC", "CA"}), "BCA");
  EXPECT_EQ(sortedByPairs("ACB", {"AB", "BC", "CA"}), "ABC");
}

}  // namespace
}  // namespace ibis::testing
