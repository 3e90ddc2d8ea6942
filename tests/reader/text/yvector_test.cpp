#include "ibis/yvector.h"

#include <limits>
#include <string>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

TEST(YVector, IsEmptyAtFirst) {
  const YVector<double> list;
  EXPECT_EQ(list.size(), 0);
  EXPECT_TRUE(list.empty());
}

TEST(YVector, KeepsTheOrderOfAppending) {
  YVector<std::string> list = {"a"};
  list.append("b");
  list.append("c");
  EXPECT_EQ(list, (YVector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(list.size(), 3);
  EXPECT_EQ(list.last(), "c");
}

TEST(YVector, GrowsWithZerosWhenWrittenBeyondItsEnd) {
  YVector<double> list = {1.0};
  list.at(3) = 4.0;
  EXPECT_EQ(list, (YVector<double>{1.0, 0.0, 0.0, 4.0}));
}

TEST(YVector, GrowsWithEmptyElementsWhenReadBeyondItsEnd) {
  YVector<std::string> list = {"a"};
  EXPECT_EQ(list.at(2), "");
  EXPECT_EQ(list, (YVector<std::string>{"a", "", ""}));
}

TEST(YVector, DoesNotGrowWhenReadWithinItsEnd) {
  YVector<double> list = {1.0, 2.0};
  EXPECT_EQ(list.at(1), 2.0);
  EXPECT_EQ(list.size(), 2);
}

TEST(YVector, ReadsZeroBeyondItsEndThroughTheConstantAccess) {
  const YVector<double> list = {1.0};
  EXPECT_EQ(list[0], 1.0);
  EXPECT_EQ(list[1], 0.0);
  EXPECT_EQ(list[1000000], 0.0);
  EXPECT_EQ(list.size(), 1);
}

TEST(YVector, SharesOneEmptyElementBetweenConstantReads) {
  const YVector<std::string> one = {"a"};
  const YVector<std::string> other;
  EXPECT_EQ(one[7], "");
  EXPECT_EQ(&one[7], &other[0]);
  EXPECT_EQ(one.size(), 1);
}

template <class Access>
void expectRefusal(Access access) {
  try {
    access();
    ADD_FAILURE() << "no exception";
  } catch (const KelvrantException& exception) {
    EXPECT_EQ(exception.code, 8);
    EXPECT_STREQ(exception.message, "YVector index negative");
  }
}

TEST(YVector, RefusesANegativePosition) {
  YVector<double> list = {1.0};
  const YVector<double>& constant = list;
  expectRefusal([&] { list.at(-1); });
  expectRefusal([&] { static_cast<void>(constant[-1]); });
  expectRefusal([&] { static_cast<void>(constant[std::numeric_limits<std::int32_t>::min()]); });
  expectRefusal([&] { list.shorten(-1); });
  EXPECT_EQ(list, YVector<double>{1.0});
}

TEST(YVector, ShortensToAPositionAndNeverGrowsByIt) {
  YVector<double> list = {1.0, 2.0, 3.0};
  list.shorten(5);
  EXPECT_EQ(list, (YVector<double>{1.0, 2.0, 3.0}));
  list.shorten(1);
  EXPECT_EQ(list, YVector<double>{1.0});
  list.shorten(0);
  EXPECT_TRUE(list.empty());
}

TEST(YVector, ReadsZerosAgainBehindAShortening) {
  YVector<double> list = {1.0, 2.0};
  list.shorten(1);
  EXPECT_EQ(list.at(1), 0.0);
}

TEST(YVector, IsEmptyOnceCleared) {
  YVector<double> list = {1.0};
  list.clear();
  EXPECT_EQ(list, YVector<double>());
}

}  // namespace
}  // namespace ibis::testing
