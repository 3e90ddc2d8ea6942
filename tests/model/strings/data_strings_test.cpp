#include "model/strings/data_strings.h"

#include <cstdio>
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

std::string pairs(const YVector<double>& x, const YVector<double>& y, std::int32_t indent,
                  bool moreFollows) {
  return written([&](OutputStream& out) { writePairs(out, x, y, indent, moreFollows); });
}

std::string repeated(std::string_view text, int count) {
  std::string result;
  for (; count > 0; --count) result += text;
  return result;
}

std::string blanks(std::size_t count) { return std::string(count, ' '); }

YVector<double> same(double value, int count) {
  YVector<double> list;
  for (; count > 0; --count) list.append(value);
  return list;
}

IBISTable table() {
  return {.present = true,
          .direction = IBISTable::ascending,
          .voltage = {-1, 2},
          .typ = {3, 4},
          .max = {7, 8},
          .min = {5, 6}};
}

IBISWaveform waveform() {
  IBISWaveform result;
  result.time = {0, 1e-9};
  result.typ = {1, 2};
  result.max = {5, 6};
  result.min = {3, 4};
  return result;
}

std::string waveformCorners(const IBISWaveform& waveform, std::int32_t indent, bool moreFollows) {
  return written(
      [&](OutputStream& out) { writeWaveformCorners(waveform, out, indent, moreFollows); });
}

TEST(Pairs, EndWithoutACommaWhereNothingFollows) {
  EXPECT_EQ(pairs({0, 1, 2}, {3, 4, 5}, 10, false), "0, 3, 1, 4, 2, 5");
}

TEST(Pairs, EndInACommaAndABlankWhereMoreFollows) {
  EXPECT_EQ(pairs({0, 1, 2}, {3, 4, 5}, 10, true), "0, 3, 1, 4, 2, 5, ");
}

TEST(Pairs, OfOnePointHaveACommaWhereMoreFollowsAlone) {
  EXPECT_EQ(pairs({0.5}, {-2}, 10, false), "0.5, -2");
  EXPECT_EQ(pairs({0.5}, {-2}, 10, true), "0.5, -2, ");
}

TEST(Pairs, OfAnEmptyListAreNothing) {
  EXPECT_EQ(pairs({}, {}, 10, false), "");
  EXPECT_EQ(pairs({}, {1, 2}, 10, true), "");
}

TEST(Pairs, TakeZeroForAMissingValueAndLeaveOutOneTooMany) {
  EXPECT_EQ(pairs({1, 2, 3}, {5}, 10, false), "1, 5, 2, 0, 3, 0");
  EXPECT_EQ(pairs({1}, {5, 6, 7}, 10, false), "1, 5");
}

TEST(Pairs, ArePrintedAtTwelveDigits) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(
      pairs({0.12345678901234, 1e-13, -0.0}, {123456789012.5, 1234567890123, 1.0 / 3}, 2, false),
      "0.123456789012, 123456789012, 1e-13, 1.23456789012e+12, -0, 0.333333333333");
  EXPECT_EQ(pairs({infinity, std::numeric_limits<double>::quiet_NaN()},
                  {-infinity, -std::numeric_limits<double>::quiet_NaN()}, 2, false),
            "inf, -inf, nan, nan");
}

TEST(Pairs, AreFoldedBeyondEightyCharactersAndNotAtEighty) {
  const std::string ten = repeated("12, 34, ", 10);
  EXPECT_EQ(pairs(same(12, 11), same(34, 11), 4, true), ten + "12, 34, ");
  EXPECT_EQ(pairs(same(12, 12), same(34, 12), 4, false), ten + "12, 34, \n+  12, 34");
  YVector<double> longer = same(12, 11);
  longer.at(0) = 123;
  EXPECT_EQ(pairs(longer, same(34, 11), 4, false),
            "123, 34, " + repeated("12, 34, ", 9) + "\n+  12, 34");
}

TEST(Pairs, AreNeverFoldedBehindTheLast) {
  EXPECT_EQ(pairs(same(12, 11), same(34, 11), 4, false), repeated("12, 34, ", 10) + "12, 34");
  EXPECT_EQ(pairs(same(12, 22), same(34, 22), 4, true),
            repeated("12, 34, ", 11) + "\n+  " + repeated("12, 34, ", 11));
}

TEST(Pairs, OfALongFirstPointAreFoldedBeyondEightyCharactersAlone) {
  const double longest = -1.23456789012e-100;
  EXPECT_EQ(pairs({longest, 1}, {longest, 2}, 10, false),
            "-1.23456789012e-100, -1.23456789012e-100, 1, 2");
  EXPECT_EQ(pairs(same(longest, 3), same(longest, 3), 2, false),
            repeated("-1.23456789012e-100, ", 4) + "\n+-1.23456789012e-100, -1.23456789012e-100");
}

TEST(Pairs, ContinueUnderTheColumnWithinItsLimits) {
  const std::pair<std::int32_t, std::size_t> cases[] = {
      {-7, 0}, {0, 0},     {1, 0},     {2, 0},     {3, 1},
      {10, 8}, {254, 252}, {255, 253}, {256, 253}, {300, 253}};
  for (const auto& [indent, count] : cases) {
    EXPECT_EQ(pairs(same(12, 12), same(34, 12), indent, false),
              repeated("12, 34, ", 11) + "\n+" + blanks(count) + "12, 34")
        << indent;
  }
}

TEST(Pairs, MeasureEachLineWithoutItsContinuation) {
  const std::string line = repeated("12, 34, ", 11) + "\n+" + blanks(98);
  EXPECT_EQ(pairs(same(12, 34), same(34, 34), 100, false), line + line + line + "12, 34");
}

TEST(Pairs, DoNotMeasureWhatStandsAheadOfThem) {
  const std::string ahead(79, '*');
  const std::string text = written([&](OutputStream& out) {
    out.write(ahead);
    writePairs(out, {1, 2}, {3, 4}, 2, true);
    writePairs(out, {5, 6}, {7, 8}, 2, false);
  });
  EXPECT_EQ(text, ahead + "1, 3, 2, 4, 5, 7, 6, 8");
}

// The folding as told by the lines that it makes.
std::string foldedPairs(const YVector<double>& x, const YVector<double>& y, std::size_t indent) {
  std::string text;
  std::string line;
  for (std::int32_t i = 0; i < x.size(); ++i) {
    char pair[1000];
    std::snprintf(pair, sizeof pair, "%.12g, %.12g%s", x[i], y[i], i + 1 < x.size() ? ", " : "");
    line += pair;
    if (i + 1 == x.size() || line.size() <= 80) continue;
    text += line + "\n+" + blanks(indent - 2);
    line.clear();
  }
  return text + line;
}

TEST(Pairs, AreFoldedAlikeInFilesOfAnyLength) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> number(-1e3, 1e3);
  YVector<double> x;
  YVector<double> y;
  for (int i = 0; i < 20000; ++i) {
    x.append(i % 7);
    y.append(i % 3 == 0 ? number(random) : i);
  }
  const std::string expected = foldedPairs(x, y, 12);
  const std::string text = pairs(x, y, 12, false);
  ASSERT_EQ(text.size(), expected.size());
  EXPECT_TRUE(text == expected);
}

TEST(TablePairs, TakeOneCorner) {
  EXPECT_EQ(written([](OutputStream& out) { writeTypPairs(table(), out, 4); }), "-1, 3, 2, 4");
  EXPECT_EQ(written([](OutputStream& out) { writeMinPairs(table(), out, 4); }), "-1, 5, 2, 6");
  EXPECT_EQ(written([](OutputStream& out) { writeMaxPairs(table(), out, 4); }), "-1, 7, 2, 8");
}

TEST(TablePairs, ContinueUnderTheColumn) {
  const YVector<double> x = same(12, 12);
  const YVector<double> y = same(34, 12);
  const IBISTable wide{true, IBISTable::ascending, x, y, y, y};
  const std::string expected = repeated("12, 34, ", 11) + "\n+   12, 34";
  EXPECT_EQ(written([&](OutputStream& out) { writeTypPairs(wide, out, 5); }), expected);
  EXPECT_EQ(written([&](OutputStream& out) { writeMinPairs(wide, out, 5); }), expected);
  EXPECT_EQ(written([&](OutputStream& out) { writeMaxPairs(wide, out, 5); }), expected);
}

TEST(TableCorners, AreOneListInTheOrderTypMinMax) {
  const std::string corners = "-1, 3, 2, 4, -1, 5, 2, 6, -1, 7, 2, 8";
  EXPECT_EQ(written([](OutputStream& out) { writeTableCorners(table(), out, 4, false); }), corners);
  EXPECT_EQ(written([](OutputStream& out) { writeTableCorners(table(), out, 4, true); }),
            corners + ", ");
}

TEST(TableCorners, FoldEachCornerByItself) {
  const YVector<double> x = same(12, 12);
  const YVector<double> y = same(34, 12);
  const IBISTable wide{true, IBISTable::ascending, x, y, y, y};
  const std::string corner = repeated("12, 34, ", 11) + "\n+  12, 34";
  EXPECT_EQ(written([&](OutputStream& out) { writeTableCorners(wide, out, 4, false); }),
            corner + ", " + corner + ", " + corner);
}

TEST(TableCorners, OfAMissingPullupLeaveThePulldownAlone) {
  const std::string text = written([](OutputStream& out) {
    writeTableCorners(IBISTable(), out, 4, true);
    writeTableCorners(table(), out, 4, false);
  });
  EXPECT_EQ(text, "-1, 3, 2, 4, -1, 5, 2, 6, -1, 7, 2, 8");
}

TEST(TableCorners, OfAMissingPowerClampLeaveTheCommaOfTheGroundClamp) {
  const std::string text = written([](OutputStream& out) {
    writeTableCorners(table(), out, 4, true);
    writeTableCorners(IBISTable(), out, 4, false);
  });
  EXPECT_EQ(text, "-1, 3, 2, 4, -1, 5, 2, 6, -1, 7, 2, 8, ");
}

TEST(WaveformCorners, StandBehindALineOfAPlusSignEach) {
  EXPECT_EQ(waveformCorners(waveform(), 5, true),
            "\n+\n+   0, 1, 1e-09, 2, \n+\n+   0, 3, 1e-09, 4, \n+\n+   0, 5, 1e-09, 6, ");
}

TEST(WaveformCorners, EndWithoutACommaWhereNothingFollows) {
  EXPECT_EQ(waveformCorners(waveform(), 2, false),
            "\n+\n+0, 1, 1e-09, 2, \n+\n+0, 3, 1e-09, 4, \n+\n+0, 5, 1e-09, 6");
}

TEST(WaveformCorners, TakeTypForACornerWithoutValues) {
  IBISWaveform noMin = waveform();
  noMin.min.clear();
  EXPECT_EQ(waveformCorners(noMin, 2, false),
            "\n+\n+0, 1, 1e-09, 2, \n+\n+0, 1, 1e-09, 2, \n+\n+0, 5, 1e-09, 6");
  IBISWaveform noMax = waveform();
  noMax.max.clear();
  EXPECT_EQ(waveformCorners(noMax, 2, false),
            "\n+\n+0, 1, 1e-09, 2, \n+\n+0, 3, 1e-09, 4, \n+\n+0, 1, 1e-09, 2");
}

TEST(WaveformCorners, OfAnEmptyWaveformAreItsSeparators) {
  EXPECT_EQ(waveformCorners(IBISWaveform(), 4, true), "\n+\n+  \n+\n+  \n+\n+  ");
  EXPECT_EQ(waveformCorners(IBISWaveform(), 4, false), "\n+\n+  \n+\n+  \n+\n+  ");
}

TEST(WaveformCorners, BeginWithoutBlanksLeftOfTheThirdColumn) {
  for (std::int32_t indent : {-7, 0, 1, 2}) {
    EXPECT_EQ(waveformCorners(IBISWaveform(), indent, false), "\n+\n+\n+\n+\n+\n+") << indent;
  }
}

TEST(WaveformCorners, LimitTheColumnOfFoldedLinesAlone) {
  IBISWaveform wide;
  wide.time = same(12, 12);
  wide.typ = same(34, 12);
  const std::string corner =
      "\n+\n+" + blanks(298) + repeated("12, 34, ", 11) + "\n+" + blanks(253) + "12, 34";
  EXPECT_EQ(waveformCorners(wide, 300, false), corner + ", " + corner + ", " + corner);
}

TEST(WaveformPairs, TakeTimeAndTyp) {
  const std::string text =
      written([](OutputStream& out) { writeWaveformTypPairs(waveform(), out, 4); });
  EXPECT_EQ(text, "0, 1, 1e-09, 2");
  IBISWaveform wide;
  wide.time = same(12, 12);
  wide.typ = same(34, 12);
  EXPECT_EQ(written([&](OutputStream& out) { writeWaveformTypPairs(wide, out, 5); }),
            repeated("12, 34, ", 11) + "\n+   12, 34");
}

}  // namespace
}  // namespace ibis::testing
