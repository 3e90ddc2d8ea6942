#include "reader/scanner.h"

#include <tuple>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

/// Line, keyword id and text of one record.
using Line = std::tuple<int, int, std::string>;
using Lines = std::vector<Line>;

Lines linesOf(IBISRecords records) {
  Lines found;
  for (const IBISRecord& record : records) {
    found.emplace_back(record.line, record.keyword, record.text());
  }
  return found;
}

Lines linesOf(std::string_view text) { return linesOf(Scanned(text).records()); }

const std::string disallowedAtLine1 =
    "Line 1: Disallowed [Comment Char] character. Only the characters "
    "'!\"#$%&'()*,:;<>?@\\^`{|}~' may be used as a comment char. Read in aborted";

TEST(Scanner, GivesNothingForAnEmptyFile) {
  const Scanned scanned("");
  EXPECT_EQ(linesOf(scanned.records()), Lines());
  EXPECT_MESSAGES(scanned.result.errors);
  EXPECT_MESSAGES(scanned.result.warnings);
}

TEST(Scanner, StoresALastDataLineWithoutLineFeed) {
  EXPECT_EQ(linesOf("1 2\n3 4"), Lines({{1, 0, "1 2"}, {2, 0, "3 4"}}));
}

TEST(Scanner, StoresALastKeywordLineWithoutLineFeed) {
  EXPECT_EQ(linesOf("[Date] today"), Lines({{1, 6, " today"}}));
  EXPECT_EQ(linesOf("1\n[End]"), Lines({{1, 0, "1"}, {2, 71, ""}}));
}

TEST(Scanner, StoresAKeywordWithNothingBehindIt) {
  const Scanned scanned("[Pin]\n");
  EXPECT_EQ(linesOf(scanned.records()), Lines({{1, 14, ""}}));
  EXPECT_EQ(scanned.records()[0].length, 0);
}

TEST(Scanner, StoresAKeywordWithOnlyACommentBehindIt) {
  EXPECT_EQ(linesOf("[Pin]| signal\n[Pin] | signal\n"), Lines({{1, 14, ""}, {2, 14, " "}}));
}

TEST(Scanner, LeavesNoRecordForBlanksAndAComment) { EXPECT_EQ(linesOf("  |word\n"), Lines()); }

TEST(Scanner, KeepsWhatStandsAheadOfAComment) {
  EXPECT_EQ(linesOf("1 2 |word\n"), Lines({{1, 0, "1 2 "}}));
}

TEST(Scanner, CountsLinesThatLeaveNoRecord) {
  EXPECT_EQ(linesOf("| head\n\n \t \n  | more\n[Date] d\n\nx\n"),
            Lines({{5, 6, " d"}, {7, 0, "x"}}));
}

TEST(Scanner, EndsWithACommentThatHasNoLineFeed) {
  EXPECT_EQ(linesOf("a\n| the end"), Lines({{1, 0, "a"}}));
}

TEST(Scanner, StartsACommentInsideQuotesToo) {
  EXPECT_EQ(linesOf("\"a|b\" c\n"), Lines({{1, 0, "\"a"}}));
}

TEST(Scanner, TakesABlankForNothingButBlankAndTab) {
  EXPECT_EQ(linesOf("\f\n\v\n\t\n"), Lines({{1, 0, "\f"}, {2, 0, "\v"}}));
}

TEST(Scanner, KeepsBlanksAroundADataLine) {
  EXPECT_EQ(linesOf(" \ta b \n"), Lines({{1, 0, " \ta b "}}));
}

TEST(Scanner, TakesABracketForAKeywordInTheFirstColumnOnly) {
  EXPECT_EQ(linesOf(" [Pin]\nx [Pin]\n"), Lines({{1, 0, " [Pin]"}, {2, 0, "x [Pin]"}}));
}

TEST(Scanner, KnowsKeywordsInAnyCaseWithUnderscoresForBlanks) {
  EXPECT_EQ(linesOf("[Pin Mapping]a\n[Pin_Mapping]b\n[pin mapping]c\n[PIN_MAPPING]d\n"),
            Lines({{1, 16, "a"}, {2, 16, "b"}, {3, 16, "c"}, {4, 16, "d"}}));
}

TEST(Scanner, KnowsEveryKeywordButThoseWithAnUnderscoreInTheirName) {
  Texts unknown;
  for (const KeywordRow& row : keywordTable()) {
    const Lines found = linesOf("[" + std::string(row.name) + "] x\n");
    if (found.empty()) {
      unknown.emplace_back(row.name);
    } else {
      EXPECT_EQ(found, Lines({{1, row.id, " x"}}));
    }
  }
  EXPECT_EQ(unknown, Texts({"Comment Char", "C_Series", "POWER_Pulse_Table"}));
}

TEST(Scanner, KnowsKeywordsOfSeriesElementsWhereItReadsOnPastLaterOnes) {
  const std::string text = "[Rl Series] 1\n[c_series] 2\n[Rc Series] 3\n[Bogus] 4\n";
  EXPECT_EQ(linesOf(text), Lines());
  IBISScanner scanner(text, IBISScanner::usualPiece, true);
  EXPECT_EQ(linesOf(scanner.nextPiece()), Lines({{1, keyword::r1Series, " 1"},
                                                 {2, keyword::cSeries, " 2"},
                                                 {3, keyword::rcSeries, " 3"}}));
}

TEST(Scanner, ReportsAKeywordWithBlanksInsideItsBrackets) {
  const Scanned scanned("\n[ Pin ]\n[Pin ]\n[]\n");
  EXPECT_EQ(linesOf(scanned.records()), Lines());
  EXPECT_MESSAGES(scanned.result.errors, "Unknown keyword [ Pin ] detected at line 2",
                  "Unknown keyword [Pin ] detected at line 3",
                  "Unknown keyword [] detected at line 4");
}

TEST(Scanner, ReportsAnUnknownKeywordWithBlanksForUnderscores) {
  const Scanned scanned("[C_Series] 1\n[POWER_Pulse_Table]\n[my_Own__]\n");
  EXPECT_EQ(linesOf(scanned.records()), Lines());
  EXPECT_MESSAGES(scanned.result.errors, "Unknown keyword [C Series] detected at line 1",
                  "Unknown keyword [POWER Pulse Table] detected at line 2",
                  "Unknown keyword [my Own  ] detected at line 3");
}

TEST(Scanner, LeavesTheDataLinesOfAnUnknownKeywordToTheOneBefore) {
  const Scanned scanned("[Notes] n\n[Bogus] b\none\ntwo\n[End]\n");
  EXPECT_EQ(linesOf(scanned.records()),
            Lines({{1, 8, " n"}, {3, 0, "one"}, {4, 0, "two"}, {5, 71, ""}}));
  EXPECT_MESSAGES(scanned.result.errors, "Unknown keyword [Bogus] detected at line 2");
  EXPECT_EQ(Parsed(scanned.text).data().notes, " n\none\ntwo");
}

TEST(Scanner, EndsWithAnUnknownKeywordThatHasNoLineFeed) {
  const Scanned scanned("a\n[Bogus] b");
  EXPECT_EQ(linesOf(scanned.records()), Lines({{1, 0, "a"}}));
  EXPECT_MESSAGES(scanned.result.errors, "Unknown keyword [Bogus] detected at line 2");
}

TEST(Scanner, LooksForTheClosingBracketBeyondTheLine) {
  const Scanned scanned("[Pin\nMap_ping] rest\nnext\n");
  EXPECT_EQ(linesOf(scanned.records()), Lines({{2, 0, "next"}}));
  EXPECT_MESSAGES(scanned.result.errors, "Unknown keyword [Pin\nMap ping] detected at line 1");
}

TEST(Scanner, TakesACommentAndAnotherBracketIntoAKeywordLeftOpen) {
  const Scanned scanned("[Pin | name\n[Date] today\n[End]\n");
  EXPECT_EQ(linesOf(scanned.records()), Lines({{2, 71, ""}}));
  EXPECT_MESSAGES(scanned.result.errors, "Unknown keyword [Pin | name\n[Date] detected at line 1");
}

TEST(Scanner, EndsAKeywordLeftOpenAtTheEndOfTheText) {
  EXPECT_EQ(linesOf("a\n[Pin"), Lines({{1, 0, "a"}, {2, 14, ""}}));
  const Scanned scanned("a\n[Oops\nb\nc\n");
  EXPECT_EQ(linesOf(scanned.records()), Lines({{1, 0, "a"}}));
  EXPECT_MESSAGES(scanned.result.errors, "Unknown keyword [Oops\nb\nc\n] detected at line 2");
}

TEST(Scanner, TakesABracketAtTheEndOfTheTextForAnUnknownKeyword) {
  const Scanned scanned("[");
  EXPECT_MESSAGES(scanned.result.errors, "Unknown keyword [] detected at line 1");
}

TEST(Scanner, TakesAKeywordNameOfAnyLengthForUnknown) {
  for (const std::size_t length : {119u, 120u, 121u, 500u}) {
    const std::string name(length, 'k');
    const Scanned scanned("[" + name + "] x\ny\n");
    EXPECT_EQ(linesOf(scanned.records()), Lines({{2, 0, "y"}}));
    EXPECT_MESSAGES(scanned.result.errors, "Unknown keyword [" + name + "] detected at line 1");
  }
  EXPECT_EQ(linesOf("[" + std::string(100000, '_') + "] x\ny\n"), Lines({{2, 0, "y"}}));
}

TEST(CommentChar, ReplacesTheBar) {
  EXPECT_EQ(linesOf("[Comment Char] #_char\n#hidden\na | b # c\n| d\n"),
            Lines({{3, 0, "a | b "}, {4, 0, "| d"}}));
}

TEST(CommentChar, LeavesNoRecordForItselfAndItsCommentLine) {
  const Scanned scanned("[Comment Char]#_char\n#hidden\n");
  EXPECT_EQ(linesOf(scanned.records()), Lines());
  EXPECT_MESSAGES(scanned.result.errors);
}

TEST(CommentChar, TakesItsTailInAnyCase) {
  EXPECT_EQ(linesOf("[comment_char] #_CHAR\na#b\n"), Lines({{2, 0, "a"}}));
  EXPECT_EQ(linesOf("[COMMENT CHAR]\t#_cHaR \t\na#b\n"), Lines({{2, 0, "a"}}));
}

TEST(CommentChar, ChangesAnyNumberOfTimesFromTheNextLineOn) {
  EXPECT_EQ(linesOf("a|b\n[Comment Char] !_char\na|b!c\n[Component] x!y\n"
                    "[Comment Char] |_char\na!b|c\n"),
            Lines({{1, 0, "a"}, {3, 0, "a|b"}, {4, 11, " x"}, {6, 0, "a!b"}}));
}

TEST(CommentChar, MayBeTheCharacterThatIsInForce) {
  EXPECT_EQ(linesOf("[Comment Char] |_char\na|b\n"), Lines({{2, 0, "a"}}));
}

TEST(CommentChar, WithoutLineFeedEndsTheScan) {
  const Scanned scanned("a\n[Comment Char] #_char");
  EXPECT_EQ(linesOf(scanned.records()), Lines({{1, 0, "a"}}));
  EXPECT_MESSAGES(scanned.result.errors);
}

TEST(CommentChar, AllowsTheSignsOfItsSetAndStopsAtAnyOther) {
  const std::string allowed = "!\"#$%&'()*,:;<>?@\\^`{|}~";
  ASSERT_EQ(allowed.size(), 24u);
  for (int code = 1; code < 256; ++code) {
    const char c = static_cast<char>(code);
    if (std::string_view(" \t\r\n").find(c) != std::string_view::npos) continue;
    const Scanned scanned(std::string("[Comment Char] ") + c + "_char\na" + c + "b\n");
    if (allowed.find(c) != std::string::npos) {
      EXPECT_MESSAGES(scanned.result.errors);
      EXPECT_EQ(linesOf(scanned.records()), Lines({{2, 0, "a"}})) << code;
    } else {
      EXPECT_MESSAGES(scanned.result.errors, disallowedAtLine1);
      EXPECT_EQ(linesOf(scanned.records()), Lines()) << code;
    }
  }
}

TEST(CommentChar, ThatIsALetterStopsTheScanButNotTheParser) {
  const Parsed parsed("[Date] today\n[Comment Char] c_char\n[Source] lost\n[Submodel]\n");
  EXPECT_EQ(linesOf(parsed.scanned.records()), Lines({{1, 6, " today"}}));
  EXPECT_EQ(parsed.file.data().date, "today");
  EXPECT_EQ(parsed.file.data().source, "");
  EXPECT_MESSAGES(parsed.errors());
}

TEST(CommentChar, ThatIsALetterIsMissedByALoad) {
  const Loaded loaded = loadText("[Comment Char] c_char\n[Submodel]\n");
  EXPECT_MESSAGES(loaded.errors);
  EXPECT_MESSAGES(loaded.warnings);
}

TEST(CommentChar, WithNothingBehindItStopsTheScan) {
  const Scanned scanned("a\n[Comment Char] #\nb\n");
  EXPECT_EQ(linesOf(scanned.records()), Lines({{1, 0, "a"}}));
  EXPECT_MESSAGES(scanned.result.errors,
                  "Line 2: Incorrect [Comment Char] syntax. Read in aborted");
}

TEST(CommentChar, WithAnythingButItsTailStopsTheScan) {
  for (const char* argument : {"", " ", " #_chars", " #_cha", " # _char", " ##_char",
                               " #_char | the comment", " |", " #char"}) {
    const Scanned scanned("[Comment Char]" + std::string(argument) + "\nb\n");
    EXPECT_EQ(linesOf(scanned.records()), Lines()) << argument;
    EXPECT_MESSAGES(scanned.result.errors,
                    "Line 1: Incorrect [Comment Char] syntax. Read in aborted");
  }
}

TEST(RecordText, OfALongLineIsCutTo239Characters) {
  const std::string kept = "1 " + std::string(237, 'x');
  const Scanned scanned(kept + std::string(61, 'y') + "\nnext\n");
  EXPECT_EQ(linesOf(scanned.records()), Lines({{1, 0, kept}, {2, 0, "next"}}));
  EXPECT_EQ(scanned.records()[0].length, 239);
}

TEST(RecordText, BehindAKeywordIsCutTo239CharactersWithoutTheBrackets) {
  EXPECT_EQ(linesOf("[Copyright]" + std::string(300, 'x') + "\n"),
            Lines({{1, 10, std::string(239, 'x')}}));
}

TEST(RecordText, HasNoCarriageReturn) {
  EXPECT_EQ(linesOf("[Date] today\r\n[End]\r\n1 2\r\n3 | 4\r\n5\r"),
            Lines({{1, 6, " today"}, {2, 71, ""}, {3, 0, "1 2"}, {4, 0, "3 "}, {5, 0, "5"}}));
  EXPECT_EQ(linesOf("\r\n \t\r\n\r\r\n"), Lines());
}

TEST(RecordText, HasNoCarriageReturnInsideALineEither) {
  EXPECT_EQ(linesOf("a\rb\r\rc\r\n[Da_te]\r\n[Date]\r x \ry\n"),
            Lines({{1, 0, "abc"}, {3, 6, " x y"}}));
}

TEST(RecordText, IsCutAfterItsCarriageReturnsAreGone) {
  const std::string half(119, 'x');
  EXPECT_EQ(linesOf(half + "\r" + half + "\rab\n"), Lines({{1, 0, half + half + "a"}}));
}

TEST(RecordText, KeepsBytesAbove127) {
  EXPECT_EQ(linesOf("\xff\xfe\x80\n"), Lines({{1, 0, "\xff\xfe\x80"}}));
}

TEST(RecordText, EndsWithTheFirstZeroByteOfTheFile) {
  EXPECT_EQ(linesOf(std::string_view("a\nb\0c\nd\n", 8)), Lines({{1, 0, "a"}, {2, 0, "b"}}));
  EXPECT_EQ(linesOf(std::string_view("\0\0\0", 3)), Lines());
  EXPECT_EQ(linesOf(std::string_view("[Pin\0]", 6)), Lines({{1, 14, ""}}));
}

struct LengthCase {
  std::size_t length;
  Texts errors;
  Texts warnings;
};

const Texts tooLong = {
    "Line 1: line too long. IBIS standard maximum line length is 120 characters"};
const Texts overStandard = {
    "Line 1: line too long. IBIS standard maximum line length is C_comp_pulldown"};

const std::vector<LengthCase> lengthCases = {
    {1, {}, {}},
    {119, {}, {}},
    {120, {}, {}},
    {121, {}, overStandard},
    {122, {}, overStandard},
    {238, {}, overStandard},
    {239, tooLong, {}},
    {240, tooLong, {}},
    {300, tooLong, {}},
};

TEST(LineLength, IsCheckedForDataLines) {
  for (const LengthCase& example : lengthCases) {
    const Scanned scanned(std::string(example.length, 'x') + "\n");
    EXPECT_EQ(texts(scanned.result.errors), proven(example.errors)) << example.length;
    EXPECT_EQ(texts(scanned.result.warnings), proven(example.warnings)) << example.length;
  }
}

TEST(LineLength, LeavesOutKeywordCommentAndCarriageReturns) {
  for (const LengthCase& example : lengthCases) {
    const Scanned scanned("[Manufacturer]" + std::string(example.length, 'x') + "\r|" +
                          std::string(300, 'c') + "\r\n");
    EXPECT_EQ(texts(scanned.result.errors), example.errors) << example.length;
    EXPECT_EQ(texts(scanned.result.warnings), example.warnings) << example.length;
  }
}

TEST(LineLength, IsNotCheckedForLinesWithoutRecord) {
  const Scanned scanned(std::string(300, ' ') + "\n|" + std::string(300, 'c') + "\n[Bogus]" +
                        std::string(300, 'x') + "\n");
  EXPECT_MESSAGES(scanned.result.errors, "Unknown keyword [Bogus] detected at line 3");
  EXPECT_MESSAGES(scanned.result.warnings);
}

TEST(LineLength, IsCheckedWhenTheScanIsOver) {
  const std::string filler(300, 'x');
  const Scanned scanned(filler + "\n[Bogus]\n" + filler.substr(0, 150) + "\n" + filler +
                        "\n[Comment Char] #\n" + filler + "\n");
  EXPECT_MESSAGES(scanned.result.errors, "Unknown keyword [Bogus] detected at line 2",
                  "Line 5: Incorrect [Comment Char] syntax. Read in aborted",
                  "Line 1: line too long. IBIS standard maximum line length is 120 characters",
                  "Line 4: line too long. IBIS standard maximum line length is 120 characters");
  EXPECT_MESSAGES(scanned.result.warnings,
                  "Line 3: line too long. IBIS standard maximum line length is C_comp_pulldown");
}

TEST(LineLength, IsMissedByALoad) {
  const Loaded loaded = loadText("[IBIS Ver] 4.2\n[Bogus]\n[Notes] " + std::string(150, 'x') +
                                 "\n" + std::string(300, 'x') + "\n[End]\n");
  EXPECT_MESSAGES(loaded.errors);
  EXPECT_MESSAGES(loaded.warnings);
}

TEST(RecordAt, GivesAnEmptyRecordOutsideTheList) {
  const Scanned scanned("[End] x\n");
  for (const std::int32_t index : {-1, 1, 1000, -1000}) {
    const IBISRecord& record = recordAt(scanned.records(), index);
    EXPECT_EQ(Line(record.line, record.keyword, record.text()), Line(0, 1, "")) << index;
    EXPECT_EQ(record.length, 0);
  }
  EXPECT_EQ(recordAt(scanned.records(), 0).keyword, 71);
}

TEST(KeywordText, HasNoBlanksOrTabsAroundIt) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", ""},         {" \t ", ""},           {" \t4.2\t ", "4.2"},
      {"a b", "a b"},   {" a \t b ", "a \t b"}, {" \fa\v ", "\fa\v"},
      {" gnd ", "GND"}, {"\tPower", "POWER"},   {" nc", "NC"},
      {"na", "NA"},     {" gnd x", "gnd x"},    {" \"nc\"", "\"nc\""},
  };
  for (const auto& [text, expected] : cases) {
    const Scanned scanned("[Component]" + text + "\n");
    EXPECT_EQ(keywordText(scanned.records()[0]), expected) << text;
  }
}

TEST(NextDataLine, WalksOverDataLinesWithTheirBlanks) {
  const Scanned scanned("[Ramp] x\n  1 2 \n3\n[End]\n4\n");
  std::int32_t index = 0;
  std::string_view text;
  EXPECT_TRUE(nextDataLine(scanned.records(), index, text));
  EXPECT_EQ(text, "  1 2 ");
  EXPECT_EQ(index, 1);
  EXPECT_TRUE(nextDataLine(scanned.records(), index, text));
  EXPECT_EQ(text, "3");
  EXPECT_EQ(index, 2);
}

TEST(NextDataLine, ChangesNothingAtAKeywordAndAtTheEnd) {
  const Scanned scanned("1\n[End]\n2\n");
  for (const std::int32_t start : {0, 2}) {
    std::int32_t index = start;
    std::string_view text = "kept";
    EXPECT_FALSE(nextDataLine(scanned.records(), index, text));
    EXPECT_EQ(text, "kept");
    EXPECT_EQ(index, start);
  }
}

TEST(MultiLineText, JoinsTheRawLinesUpToTheNextKeyword) {
  const Scanned scanned("[Notes]  head \n  one\n\n\ttwo \n[End]\nthree\n");
  std::int32_t index = 0;
  EXPECT_EQ(multiLineText(scanned.records(), index), "  head \n  one\n\ttwo ");
  EXPECT_EQ(index, 2);
}

TEST(MultiLineText, OfALastKeywordStaysOnIt) {
  const Scanned scanned("[End]\n[Notes]");
  std::int32_t index = 1;
  EXPECT_EQ(multiLineText(scanned.records(), index), "");
  EXPECT_EQ(index, 1);
}

TEST(MultiLineText, BeginsWithALineFeedBehindAnEmptyKeyword) {
  const Scanned scanned("[Notes]\none\ntwo");
  std::int32_t index = 0;
  EXPECT_EQ(multiLineText(scanned.records(), index), "\none\ntwo");
  EXPECT_EQ(index, 2);
}

TEST(MultiLineText, KeepsReservedWordsAsTheyAre) {
  const Scanned scanned("[Notes]gnd\nnc\n power\n");
  std::int32_t index = 0;
  EXPECT_EQ(multiLineText(scanned.records(), index), "gnd\nnc\n power");
}

TEST(CountDataLines, CountsThoseDirectlyBehind) {
  const Scanned scanned("[Ramp]\n1\n2\n[End]\n3\n");
  const std::vector<std::int32_t> expected = {2, 1, 0, 1, 0};
  for (std::int32_t index = 0; index < 5; ++index) {
    EXPECT_EQ(countDataLines(scanned.records(), index), expected[static_cast<std::size_t>(index)]);
  }
}

}  // namespace
}  // namespace ibis::testing
