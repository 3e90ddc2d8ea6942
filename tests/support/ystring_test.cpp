#include "support/ystring.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace ibis::testing {
namespace {

struct FreeText {
  void operator()(char* text) const { std::free(text); }
};
using HeapText = std::unique_ptr<char, FreeText>;

// A host reads the text without the class, by the pointer that the object holds.
const char* heldPointer(const YString& string) {
  static_assert(sizeof(YString) == sizeof(const char*));
  const char* pointer = nullptr;
  std::memcpy(&pointer, &string, sizeof pointer);
  return pointer;
}

std::int32_t countOf(const YString& string) {
  std::int32_t count = 0;
  std::memcpy(&count, heldPointer(string), sizeof count);
  return count;
}

TEST(YString, HasItsTextFourBytesBehindItsPointer) {
  const YString string("C:\\parts\\a.ibs");
  EXPECT_EQ(string.text(), heldPointer(string) + 4);
  EXPECT_STREQ(heldPointer(string) + 4, "C:\\parts\\a.ibs");
}

TEST(YString, IsEmptyWithoutAText) {
  const YString string;
  EXPECT_STREQ(string.text(), "");
  EXPECT_STREQ(heldPointer(string) + 4, "");
}

TEST(YString, IsEmptyForNull) {
  const char* const none = nullptr;
  EXPECT_STREQ(YString(none).text(), "");
}

TEST(YString, CopiesTheTextItIsMadeOf) {
  char text[] = "before";
  const YString string(text);
  std::strcpy(text, "after");
  EXPECT_STREQ(string.text(), "before");
}

TEST(YString, KeepsBytesAbove0x7f) {
  EXPECT_STREQ(YString("\xc3\xa9\xff\x80").text(), "\xc3\xa9\xff\x80");
}

TEST(YString, IsTheDecimalTextOfANumber) {
  using Limits = std::numeric_limits<std::int32_t>;
  EXPECT_STREQ(YString(0).text(), "0");
  EXPECT_STREQ(YString(-7).text(), "-7");
  EXPECT_STREQ(YString(1234567).text(), "1234567");
  EXPECT_STREQ(YString(Limits::max()).text(), "2147483647");
  EXPECT_STREQ(YString(Limits::min()).text(), "-2147483648");
}

TEST(YString, SharesItsTextWithCopiesAndCountsThem) {
  const YString one("shared");
  EXPECT_EQ(countOf(one), 1);
  {
    const YString two(one);
    const YString three(two);
    EXPECT_EQ(two.text(), one.text());
    EXPECT_EQ(three.text(), one.text());
    EXPECT_EQ(countOf(one), 3);
  }
  EXPECT_EQ(countOf(one), 1);
  EXPECT_STREQ(one.text(), "shared");
}

TEST(YString, OutlivesTheStringThatItCopies) {
  auto one = std::make_unique<YString>("kept");
  const YString two(*one);
  one.reset();
  EXPECT_STREQ(two.text(), "kept");
  EXPECT_EQ(countOf(two), 1);
}

TEST(YString, ReleasesItsTextWhenAssignedAnother) {
  YString one("old");
  const YString old(one);
  const YString other("new");
  one = other;
  EXPECT_STREQ(one.text(), "new");
  EXPECT_STREQ(old.text(), "old");
  EXPECT_EQ(countOf(old), 1);
  EXPECT_EQ(countOf(other), 2);
}

TEST(YString, KeepsItsTextWhenAssignedToItself) {
  YString string("same");
  const YString& alias = string;
  string = alias;
  EXPECT_STREQ(string.text(), "same");
  EXPECT_EQ(countOf(string), 1);
}

TEST(YString, GivesACopyThatTheCallerFrees) {
  const YString string("text");
  const HeapText copy(string.copy());
  EXPECT_STREQ(copy.get(), "text");
  EXPECT_NE(copy.get(), string.text());
  EXPECT_STREQ(string.text(), "text");
  EXPECT_EQ(countOf(string), 1);
}

TEST(YString, GivesACopyOfTheEmptyText) {
  const HeapText copy(YString().copy());
  EXPECT_STREQ(copy.get(), "");
}

TEST(YString, HandsItsTextOverAndIsEmptyThen) {
  YString string("text");
  const HeapText detached(string.detach());
  EXPECT_STREQ(detached.get(), "text");
  EXPECT_STREQ(string.text(), "");
}

TEST(YString, LeavesCopiesTheirTextWhenItHandsItOver) {
  YString string("text");
  const YString other(string);
  const HeapText detached(string.detach());
  EXPECT_STREQ(detached.get(), "text");
  EXPECT_NE(detached.get(), other.text());
  EXPECT_STREQ(other.text(), "text");
  EXPECT_EQ(countOf(other), 1);
}

TEST(YString, CanBeUsedAfterItHandedItsTextOver) {
  YString string("first");
  const HeapText first(string.detach());
  const HeapText empty(string.detach());
  EXPECT_STREQ(empty.get(), "");
  string = YString("second");
  const HeapText second(string.detach());
  EXPECT_STREQ(second.get(), "second");
}

TEST(YString, HandsOverTextThatOutlivesIt) {
  const HeapText detached(YString(42).detach());
  EXPECT_STREQ(detached.get(), "42");
}

TEST(YString, CountsCopiesOnSeveralThreads) {
  const YString string("shared");
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&string] {
      for (int copy = 0; copy < 10000; ++copy) const YString other(string);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(countOf(string), 1);
}

TEST(DuplicateText, GivesAHeapCopyOfTheWholeText) {
  for (const char* text : {"", "a", "a longer text with \xff in it"}) {
    const HeapText copy(duplicateText(text));
    EXPECT_STREQ(copy.get(), text);
    EXPECT_NE(copy.get(), text);
  }
}

}  // namespace
}  // namespace ibis::testing
