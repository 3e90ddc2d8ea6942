#include "near_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ibis::cli {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(NearNames, FindsOtherCaseFirstThenFewChanges) {
  EXPECT_THAT(nearNames("abcd", {"abce", "ABCD", "zzzz", "abc"}),
              ElementsAre("ABCD", "abce", "abc"));
  EXPECT_THAT(nearNames("odd_prat_1", {"odd_part_1", "other"}), ElementsAre("odd_part_1"));
  EXPECT_THAT(nearNames("4 mA driv", {"4 mA drive", "8 mA drive"}),
              ElementsAre("4 mA drive", "8 mA drive"));
}

TEST(NearNames, KeepsThreeAndEachOnce) {
  EXPECT_THAT(nearNames("A1", {"A2", "A2", "A3", "A4", "A5"}), ElementsAre("A2", "A3", "A4"));
}

TEST(NearNames, FindsNothingThatIsFar) {
  EXPECT_THAT(nearNames("frobnicate", {"in", "out"}), IsEmpty());
  EXPECT_THAT(nearNames("x", {"y", ""}), IsEmpty());
  EXPECT_THAT(nearNames("", {"y"}), IsEmpty());
  EXPECT_THAT(nearNames(std::string(1000, 'a'), {std::string(1000, 'a')}), IsEmpty());
}

TEST(NamesText, CountsWhatItLeavesOut) {
  EXPECT_EQ(namesText({}), "");
  EXPECT_EQ(namesText({"a"}), "a");
  EXPECT_EQ(namesText({"a", "b", "c"}, 2), "a, b and 1 more");
}

TEST(MeantText, AsksForTheNearNames) {
  EXPECT_EQ(meantText("x1", {"zz"}), "");
  EXPECT_EQ(meantText("in1", {"in2"}), "did you mean 'in2'?");
  EXPECT_EQ(meantText("in1", {"in2", "in3", "in4"}), "did you mean 'in2', 'in3' or 'in4'?");
}

}  // namespace
}  // namespace ibis::cli
