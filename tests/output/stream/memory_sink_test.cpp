#include "output/stream/memory_sink.h"

#include "harness/harness.h"

namespace ibis::testing {
namespace {

using Files = std::map<std::string, std::string>;

bool put(Sink& sink, const std::string& name, std::string_view text) {
  const std::unique_ptr<SinkTarget> target = sink.open(name);
  if (!target) return false;
  const bool isTaken = target->write(text);
  return target->close() && isTaken;
}

TEST(MemorySinks, HoldATextOnceItIsKept) {
  MemorySink sink;
  EXPECT_TRUE(put(sink, "a", std::string_view("b\0\n", 3)));
  EXPECT_EQ(sink.files(), Files());
  EXPECT_TRUE(sink.keep("a"));
  EXPECT_EQ(sink.files(), Files({{"a", std::string("b\0\n", 3)}}));
}

TEST(MemorySinks, HoldTheEarlierTextUntilThen) {
  MemorySink sink;
  EXPECT_TRUE(put(sink, "a", "first") && sink.keep("a"));
  EXPECT_TRUE(put(sink, "a", "second"));
  EXPECT_EQ(sink.files(), Files({{"a", "first"}}));
  EXPECT_TRUE(sink.keep("a"));
  EXPECT_EQ(sink.files(), Files({{"a", "second"}}));
}

TEST(MemorySinks, KeepTheLastOfAName) {
  MemorySink sink;
  EXPECT_TRUE(put(sink, "a", "first"));
  EXPECT_TRUE(put(sink, "a", "second"));
  EXPECT_TRUE(sink.keep("a"));
  EXPECT_EQ(sink.files(), Files({{"a", "second"}}));
}

TEST(MemorySinks, KeepNothingTwiceAndNothingUnknown) {
  MemorySink sink;
  EXPECT_FALSE(sink.keep("a"));
  EXPECT_TRUE(put(sink, "a", "text"));
  EXPECT_TRUE(sink.keep("a"));
  EXPECT_FALSE(sink.keep("a"));
  EXPECT_EQ(sink.files(), Files({{"a", "text"}}));
}

TEST(MemorySinks, RefuseTheEmptyNameAndThoseThatTheyAreTold) {
  MemorySink sink;
  sink.refused = {"a", "c"};
  for (const char* name : {"", "a", "c"}) EXPECT_EQ(sink.open(name), nullptr) << name;
  EXPECT_TRUE(put(sink, "b", "text"));
}

TEST(MemorySinks, TakeAsMuchAsThereIsRoomFor) {
  for (const std::size_t room : {0U, 1U, 5U, 6U, 7U}) {
    MemorySink sink;
    sink.room = room;
    const std::unique_ptr<SinkTarget> target = sink.open("a");
    EXPECT_EQ(target->write("abc"), room >= 3) << room;
    EXPECT_EQ(target->write("def"), room >= 6) << room;
    EXPECT_EQ(target->write(""), room >= 6) << room;
    EXPECT_EQ(target->close(), room >= 6) << room;
    EXPECT_TRUE(sink.keep("a"));
    EXPECT_EQ(sink.files().at("a"), std::string("abcdef").substr(0, room));
  }
}

TEST(MemorySinks, FailWhereTheyAreTold) {
  MemorySink sink;
  sink.closingFails = true;
  EXPECT_FALSE(put(sink, "a", "text"));
  sink.closingFails = false;
  sink.keepingFails = true;
  EXPECT_TRUE(put(sink, "a", "text"));
  EXPECT_FALSE(sink.keep("a"));
  EXPECT_EQ(sink.files(), Files());
}

TEST(MemorySinks, LetATargetOutliveThem) {
  std::unique_ptr<SinkTarget> target;
  {
    MemorySink sink;
    target = sink.open("a");
  }
  EXPECT_TRUE(target->write("text"));
  EXPECT_TRUE(target->close());
}

}  // namespace
}  // namespace ibis::testing
