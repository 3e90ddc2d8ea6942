#include "reader/text/name_index.h"

#include <string>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

using Exact = NameIndex<ExactCase>;
using Folding = NameIndex<IgnoringCase>;

TEST(NameIndex, FindsNothingInAnEmptyIndex) {
  const Exact index;
  EXPECT_EQ(index.size(), 0);
  EXPECT_EQ(index.find("a"), -1);
  EXPECT_EQ(index.find(""), -1);
  EXPECT_FALSE(index.contains(""));
}

TEST(NameIndex, NumbersNamesInTheOrderOfAdding) {
  Exact index;
  EXPECT_EQ(index.add("b"), 0);
  EXPECT_EQ(index.add("a"), 1);
  EXPECT_EQ(index.add(""), 2);
  EXPECT_EQ(index.find("a"), 1);
  EXPECT_EQ(index.find("b"), 0);
  EXPECT_EQ(index.find(""), 2);
  EXPECT_EQ(index.find("c"), -1);
  EXPECT_EQ(index.name(1), "a");
  EXPECT_EQ(index.size(), 3);
}

TEST(NameIndex, AddsANameOnceOnly) {
  Exact index;
  EXPECT_EQ(index.findOrAdd("a"), 0);
  EXPECT_EQ(index.findOrAdd("b"), 1);
  EXPECT_EQ(index.findOrAdd("a"), 0);
  EXPECT_EQ(index.size(), 2);
}

TEST(NameIndex, TellsCasesApartUnlessToldOtherwise) {
  Exact exact;
  exact.add("Clk");
  EXPECT_EQ(exact.find("CLK"), -1);
  Folding folding;
  folding.add("Clk");
  EXPECT_EQ(folding.find("cLK"), 0);
  EXPECT_EQ(folding.name(0), "Clk");
}

TEST(NameIndex, FoldsAsciiLettersOnly) {
  Folding index;
  index.add("[a]\xe4");
  EXPECT_EQ(index.find("[A]\xe4"), 0);
  EXPECT_EQ(index.find("{A}\xe4"), -1);
  EXPECT_EQ(index.find("[A]\xc4"), -1);
  index.add("@`");
  EXPECT_EQ(index.find("``"), -1);
}

TEST(NameIndex, TellsNamesOfZeroBytesApart) {
  Exact index;
  const std::string zeros(20, '\0');
  for (std::size_t length = 0; length <= zeros.size(); ++length) {
    EXPECT_EQ(index.findOrAdd(std::string_view(zeros).substr(0, length)),
              static_cast<std::int32_t>(length));
  }
}

TEST(NameIndex, TellsLongNamesApartByTheirLastByte) {
  Exact index;
  const std::string stem(1000, 'x');
  const std::string one = stem + "1";
  const std::string two = stem + "2";
  EXPECT_EQ(index.findOrAdd(one), 0);
  EXPECT_EQ(index.findOrAdd(two), 1);
  EXPECT_EQ(index.find(stem), -1);
}

TEST(NameIndex, KeepsEveryNameWhileItGrows) {
  std::vector<std::string> names;
  for (int i = 0; i < 50000; ++i) names.push_back("A" + std::to_string(i));
  Folding index;
  for (const std::string& name : names) index.add(name);
  std::int32_t misplaced = 0;
  for (std::int32_t i = 0; i < index.size(); ++i) {
    if (index.find("a" + std::to_string(i)) != i) ++misplaced;
  }
  EXPECT_EQ(index.size(), 50000);
  EXPECT_EQ(misplaced, 0);
  EXPECT_EQ(index.find("A50000"), -1);
}

TEST(NameMap, MakesAnEmptyValueForANewName) {
  NameMap<ExactCase, std::int32_t> counters;
  EXPECT_EQ(++counters["a"], 1);
  EXPECT_EQ(++counters["a"], 2);
  EXPECT_EQ(++counters["A"], 1);
  EXPECT_EQ(counters["b"], 0);
  EXPECT_EQ(counters["a"], 2);
  EXPECT_EQ(counters.size(), 3);
}

TEST(NameMap, SharesAValueByCasesIfToldSo) {
  NameMap<IgnoringCase, std::int32_t> counters;
  EXPECT_EQ(++counters["clk"], 1);
  EXPECT_EQ(++counters["CLK"], 2);
}

TEST(NameMap, KeepsTheFirstValueThatIsAdded) {
  NameMap<ExactCase, std::int32_t> map;
  EXPECT_EQ(map.find("a"), nullptr);
  EXPECT_TRUE(map.add("a", 1));
  EXPECT_FALSE(map.add("a", 2));
  ASSERT_NE(map.find("a"), nullptr);
  EXPECT_EQ(*map.find("a"), 1);
  EXPECT_TRUE(map.contains("a"));
  EXPECT_FALSE(map.contains("A"));
}

}  // namespace
}  // namespace ibis::testing
