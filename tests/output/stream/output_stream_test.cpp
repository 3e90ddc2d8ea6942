#include "output/stream/output_stream.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

// What a writer puts into a file.
template <class Writer>
std::string written(Writer write) {
  MemorySink sink;
  const std::unique_ptr<OutputStream> out = OutputStream::open(sink, "out");
  write(*out);
  EXPECT_TRUE(out->close());
  EXPECT_TRUE(sink.keep("out"));
  return sink.files().at("out");
}

std::string writtenNumber(double value, int precision) {
  return written([&](OutputStream& out) { out.writeNumber(value, precision); });
}

// The C library's text; a not-a-number goes without the sign that it may have there.
std::string printedNumber(double value, int precision) {
  if (std::isnan(value)) return "nan";
  char text[64];
  std::snprintf(text, sizeof text, "%.*g", precision, value);
  return text;
}

constexpr int precisions[] = {6, 12, 15};

std::string longText(std::size_t size) {
  std::string text;
  for (std::size_t i = 0; i < size; ++i) text += static_cast<char>('!' + i % 89);
  return text;
}

TEST(OutputStream, WritesTextInItsOrder) {
  const std::string text = written([](OutputStream& out) {
    out.write("a");
    out.write('b');
    out.write("");
    out.write(std::string_view("c\0\n\x80", 4));
    out.write('\0');
  });
  EXPECT_EQ(text, std::string_view("abc\0\n\x80\0", 7));
}

TEST(OutputStream, WritesAnEmptyFile) {
  EXPECT_EQ(written([](OutputStream&) {}), "");
}

TEST(OutputStream, KeepsItsName) {
  MemorySink sink;
  EXPECT_EQ(OutputStream::open(sink, "d\xc3\xa9j\xc3\xa0 vu")->name(), "d\xc3\xa9j\xc3\xa0 vu");
}

TEST(OutputStream, IsNullForANameThatTheSinkRefuses) {
  MemorySink sink;
  sink.refused = {"out"};
  EXPECT_EQ(OutputStream::open(sink, "out"), nullptr);
}

TEST(OutputStream, WritesBlanks) {
  const std::string text = written([](OutputStream& out) {
    for (std::int32_t count : {3, 0, -4, 1}) {
      out.writeBlanks(count);
      out.write('|');
    }
  });
  EXPECT_EQ(text, "   ||| |");
}

TEST(OutputStream, WritesMoreBlanksThanTheBufferHolds) {
  EXPECT_EQ(written([](OutputStream& out) { out.writeBlanks(200000); }), std::string(200000, ' '));
}

TEST(OutputStream, WritesIntegers) {
  const std::pair<std::int64_t, std::string> cases[] = {
      {0, "0"},
      {-1, "-1"},
      {4711, "4711"},
      {std::numeric_limits<std::int32_t>::min(), "-2147483648"},
      {std::numeric_limits<std::int64_t>::max(), "9223372036854775807"},
      {std::numeric_limits<std::int64_t>::min(), "-9223372036854775808"},
  };
  for (const auto& [value, text] : cases) {
    EXPECT_EQ(written([v = value](OutputStream& out) { out.writeInteger(v); }), text);
  }
}

TEST(OutputStream, WritesMoreThanTheBufferAtOnce) {
  for (std::size_t size : {65535U, 65536U, 65537U, 131072U, 300001U}) {
    const std::string text = longText(size);
    EXPECT_TRUE(written([&](OutputStream& out) { out.write(text); }) == text) << size;
  }
}

TEST(OutputStream, WritesMoreThanTheBufferInPieces) {
  std::string expected;
  const std::string text = written([&](OutputStream& out) {
    for (int i = 0; i < 30000; ++i) {
      out.writeInteger(i);
      out.write(", ");
      out.writeNumber(i / 3.0, 12);
      out.writeBlanks(i % 5);
      out.write('\n');
      expected += std::to_string(i) + ", " + printedNumber(i / 3.0, 12) +
                  std::string(static_cast<std::size_t>(i % 5), ' ') + "\n";
    }
  });
  ASSERT_EQ(text.size(), expected.size());
  EXPECT_TRUE(text == expected);
}

TEST(OutputStream, WritesALongTextBehindAShortOne) {
  const std::string text = longText(100000);
  EXPECT_TRUE(written([&](OutputStream& out) {
                out.write("abc");
                out.write(text);
                out.write("xyz");
              }) == "abc" + text + "xyz");
}

TEST(OutputStream, CountsWhatWasWritten) {
  MemorySink sink;
  const auto out = OutputStream::open(sink, "out");
  EXPECT_EQ(out->position(), 0U);
  out->write("abc");
  EXPECT_EQ(out->position(), 3U);
  out->writeBlanks(7);
  out->writeInteger(-10);
  out->writeNumber(0.25, 6);
  EXPECT_EQ(out->position(), 17U);
  out->flush();
  EXPECT_EQ(out->position(), 17U);
  out->write(longText(200000));
  out->write('x');
  EXPECT_EQ(out->position(), 200018U);
  EXPECT_TRUE(out->close());
  EXPECT_EQ(out->position(), 200018U);
}

// Keeps what it was handed where a test can look at it.
class Shown final : public Sink {
 public:
  class Target final : public SinkTarget {
   public:
    explicit Target(Shown& shown) : shown_(shown) {}
    bool write(std::string_view words) override {
      shown_.text += words;
      return !shown_.fails;
    }
    bool close() override {
      ++shown_.closed;
      return true;
    }

   private:
    Shown& shown_;
  };

  std::unique_ptr<SinkTarget> open(const std::string&) override {
    return std::make_unique<Target>(*this);
  }
  bool keep(const std::string&) override { return true; }

  std::string text;
  int closed = 0;
  bool fails = false;
};

TEST(OutputStream, HandsItsTextOverWhenFlushed) {
  Shown sink;
  const auto out = OutputStream::open(sink, "out");
  out->write("abc");
  EXPECT_EQ(sink.text, "");
  out->flush();
  EXPECT_EQ(sink.text, "abc");
  out->write("def");
  out->flush();
  EXPECT_EQ(sink.text, "abcdef");
  EXPECT_TRUE(out->close());
}

TEST(OutputStream, GivesItsTextUpWhenDestroyed) {
  Shown sink;
  OutputStream::open(sink, "out")->write("abc");
  EXPECT_EQ(sink.text, "");
  EXPECT_EQ(sink.closed, 0);
}

TEST(OutputStream, ClosesOnceAndKeepsTheAnswer) {
  Shown sink;
  const auto out = OutputStream::open(sink, "out");
  out->write("abc");
  EXPECT_TRUE(out->close());
  EXPECT_TRUE(out->close());
  EXPECT_EQ(sink.text, "abc");
  EXPECT_EQ(sink.closed, 1);
}

TEST(OutputStream, TellsWhenClosedOfAWriteThatFailed) {
  for (std::size_t size : {1U, 5000U, 65536U, 300000U}) {
    MemorySink sink;
    sink.room = 0;
    const auto out = OutputStream::open(sink, "out");
    out->write(longText(size));
    EXPECT_EQ(out->position(), size);
    EXPECT_FALSE(out->close()) << size;
    EXPECT_FALSE(out->close()) << size;
  }
}

TEST(OutputStream, TellsWhenClosedOfAFlushThatFailed) {
  MemorySink sink;
  sink.room = 4999;
  const auto out = OutputStream::open(sink, "out");
  out->write(longText(5000));
  out->flush();
  EXPECT_FALSE(out->close());
}

TEST(OutputStream, TakesASinkWithoutRoomForEnoughRoomForNothing) {
  MemorySink sink;
  sink.room = 0;
  EXPECT_TRUE(OutputStream::open(sink, "out")->close());
}

TEST(OutputStream, KnowsWhetherANumberWasNotFinite) {
  MemorySink sink;
  const auto out = OutputStream::open(sink, "out");
  out->writeNumber(1e308, 12);
  EXPECT_FALSE(out->hasNonFinite());
  out->writeNumber(std::nan(""), 12);
  out->writeNumber(1.0, 12);
  EXPECT_TRUE(out->hasNonFinite());
}

TEST(OutputStreamNumber, IsWrittenInTheShorterForm) {
  struct Case {
    double value;
    std::string sixDigits, twelveDigits, fifteenDigits;
  };
  const Case cases[] = {
      {0.0, "0", "0", "0"},
      {-0.0, "-0", "-0", "-0"},
      {1.0, "1", "1", "1"},
      {-2.5, "-2.5", "-2.5", "-2.5"},
      {0.1, "0.1", "0.1", "0.1"},
      {100000, "100000", "100000", "100000"},
      {999999.5, "1e+06", "999999.5", "999999.5"},
      {1234567, "1.23457e+06", "1234567", "1234567"},
      {1e15, "1e+15", "1e+15", "1e+15"},
      {1e-4, "0.0001", "0.0001", "0.0001"},
      {1e-5, "1e-05", "1e-05", "1e-05"},
      {1.0 / 3, "0.333333", "0.333333333333", "0.333333333333333"},
      {2.0 / 3, "0.666667", "0.666666666667", "0.666666666666667"},
      {-1e-300, "-1e-300", "-1e-300", "-1e-300"},
      {123456789012345678.0, "1.23457e+17", "1.23456789012e+17", "1.23456789012346e+17"},
      {0.5e-323, "4.94066e-324", "4.94065645841e-324", "4.94065645841247e-324"},
      {1.7976931348623157e308, "1.79769e+308", "1.79769313486e+308", "1.79769313486232e+308"},
  };
  for (const Case& row : cases) {
    EXPECT_EQ(writtenNumber(row.value, 6), row.sixDigits);
    EXPECT_EQ(writtenNumber(row.value, 12), row.twelveDigits);
    EXPECT_EQ(writtenNumber(row.value, 15), row.fifteenDigits);
  }
}

TEST(OutputStreamNumber, IsWrittenInFullWhereItIsDenormal) {
  const std::pair<double, const char*> cases[] = {
      {5e-324, "4.94065645841e-324"},
      {-5e-324, "-4.94065645841e-324"},
      {1e-323, "9.88131291682e-324"},
      {1.5e-323, "1.48219693752e-323"},
      {4.9406564584124654e-320, "4.94065645841e-320"},
      {1e-310, "1e-310"},
      {2.2250738585072009e-308, "2.22507385851e-308"},
      {2.2250738585072014e-308, "2.22507385851e-308"},
  };
  for (const auto& [value, text] : cases) {
    EXPECT_EQ(writtenNumber(value, 12), text);
    EXPECT_EQ(printedNumber(value, 12), text);
  }
}

TEST(OutputStreamNumber, IsNamedWhereItIsNotFinite) {
  for (int precision : precisions) {
    EXPECT_EQ(writtenNumber(std::numeric_limits<double>::infinity(), precision), "inf");
    EXPECT_EQ(writtenNumber(-std::numeric_limits<double>::infinity(), precision), "-inf");
    EXPECT_EQ(writtenNumber(std::numeric_limits<double>::quiet_NaN(), precision), "nan");
    EXPECT_EQ(
        writtenNumber(std::copysign(std::numeric_limits<double>::quiet_NaN(), -1.0), precision),
        "nan");
  }
}

// Each number at each precision on a line of its own, against the C library.
void expectPrinted(const std::vector<double>& values) {
  std::string expected;
  const std::string text = written([&](OutputStream& out) {
    for (double value : values) {
      for (int precision : precisions) {
        out.writeNumber(value, precision);
        out.write('\n');
        expected += printedNumber(value, precision) + '\n';
      }
    }
  });
  const auto [place, other] = std::ranges::mismatch(text, expected);
  if (place == text.end() && other == expected.end()) return;
  const auto offset = static_cast<std::size_t>(place - text.begin());
  const std::size_t line = offset == 0 ? 0 : expected.rfind('\n', offset - 1) + 1;
  EXPECT_EQ(text.substr(line, 40), expected.substr(line, 40));
}

TEST(OutputStreamNumber, IsWrittenAsTheCLibraryDoesAtAllMagnitudes) {
  std::mt19937_64 random(20240229);
  std::vector<double> values(100000);
  for (double& value : values) {
    const std::uint64_t bits = random();
    std::memcpy(&value, &bits, sizeof value);
  }
  expectPrinted(values);
}

// Every length of a denormal number, with the most and the fewest bits, and some between.
TEST(OutputStreamNumber, IsWrittenAsTheCLibraryDoesWhereItIsDenormal) {
  std::mt19937_64 random(324);
  std::vector<double> values;
  for (std::uint64_t highest = 1; highest < std::uint64_t{1} << 52; highest *= 2) {
    for (int i = 0; i < 20; ++i) {
      const std::uint64_t rest = i == 0 ? 0 : i == 1 ? highest - 1 : random() % highest;
      const std::uint64_t bits = highest | rest;
      double value = 0.0;
      std::memcpy(&value, &bits, sizeof value);
      ASSERT_EQ(std::fpclassify(value), FP_SUBNORMAL);
      values.insert(values.end(), {value, -value});
    }
  }
  expectPrinted(values);
}

TEST(OutputStreamNumber, IsWrittenAsTheCLibraryDoesNearDecimalTies) {
  std::mt19937_64 random(4711);
  std::vector<double> values;
  for (int i = 0; i < 30000; ++i) {
    const double digits = static_cast<double>(random() % 2000000) / 2;
    const double value = std::ldexp(digits, static_cast<int>(random() % 40) - 30);
    const double decimal = digits * std::pow(10.0, static_cast<int>(random() % 30) - 20);
    values.insert(values.end(), {digits, value, -decimal, std::nextafter(decimal, 0.0)});
  }
  expectPrinted(values);
}

}  // namespace
}  // namespace ibis::testing
