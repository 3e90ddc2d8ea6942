#include "output/template_engine.h"

#include "harness/harness.h"
#include "output/stream/file_sink.h"

namespace ibis::testing {
namespace {

// Writes where it stands and eats no line end; the blanks stay unwritten so that they show.
bool writePosition(OutputRun&, OutputStream* out, const KeywordPosition& position, TextBuffer&,
                   const KeywordArguments&) {
  for (const std::int32_t number : {position.line, position.column, position.pendingSpaces}) {
    out->write('/');
    out->writeInteger(number);
  }
  return false;
}

bool writeArguments(OutputRun&, OutputStream* out, const KeywordPosition&, TextBuffer&,
                    const KeywordArguments& arguments) {
  for (const IBISString& argument : arguments) {
    out->write('[');
    out->write(argument);
    out->write(']');
  }
  return false;
}

bool holds(OutputRun&, TextBuffer&, const KeywordArguments&) { return true; }
bool fails(OutputRun&, TextBuffer&, const KeywordArguments&) { return false; }

// Gives whether its first argument is the word that the second asks for.
bool argumentsAgree(OutputRun&, TextBuffer&, const KeywordArguments& arguments) {
  return arguments.size() == 3 && arguments[1] == arguments[2];
}

[[maybe_unused]] const bool registered[] = {
    addValueKeyword("position", writePosition), addValueKeyword("arguments", writeArguments),
    addConditionKeyword("ifyes", holds), addConditionKeyword("ifno", fails),
    addConditionKeyword("ifsame", argumentsAgree)};

// Expands a template that has to pass without a message.
std::string expanded(std::string_view text) {
  IBISFile file;
  file.data().date = IBISString("today");
  Recorder sink;
  std::string result = expandTemplate(text, file, nullptr, sink);
  EXPECT_MESSAGES(sink.errors);
  return result;
}

// An engine with a folder of its own and no component.
struct EngineRun {
  IBISFile file;
  Recorder sink;
  TemporaryFolder folder;
  FileSink files;
  TemplateEngine engine{file.data(), nullptr, folder.path(), sink, files};

  bool expand(std::string_view text) {
    TextBuffer buffer(text);
    return engine.expand(buffer);
  }
};

struct Example {
  std::string_view text;
  std::string_view expected;
};

void expectEach(std::initializer_list<Example> examples) {
  for (const Example& example : examples) {
    EXPECT_EQ(expanded(example.text), example.expected) << example.text;
  }
}

TEST(TemplateEngine, CopiesWhatIsNoKeyword) {
  expectEach({{"", ""},
              {"one line\n", "one line\n"},
              {"no line end", "no line end"},
              {"\n\ntwo empty lines\n\n", "\n\ntwo empty lines\n\n"},
              {"a\tb \t c\n", "a\tb \t c\n"}});
}

TEST(TemplateEngine, WritesHeldBackBlanksInFrontOfTheNextCharacter) {
  expectEach({{"  a   b\n", "  a   b\n"},
              {"trailing  \n", "trailing  \n"},
              {"at the end  ", "at the end"}});
}

TEST(TemplateEngine, DropsCarriageReturns) {
  expectEach({{"a\r\nb\rc\r", "a\nbc"}, {"%ibis\rdate%\r\n", "today\n"}});
}

TEST(TemplateEngine, EndsAtANul) { EXPECT_EQ(expanded(std::string_view("a\n\0b\n", 5)), "a\n"); }

TEST(TemplateEngine, EndsAtAByteAbove0x7f) {
  expectEach({{"last\n\x80 more\n", "last\n"}, {"\xff", ""}, {"a\x7f\n", "a\x7f\n"}});
}

TEST(TemplateEngine, DropsACommentLineWithoutATrace) {
  expectEach({{"a\n# comment\nb\n", "a\nb\n"},
              {"a\n# one\n# two\n#\nb\n", "a\nb\n"},
              {"a\r\n\r# behind a carriage return\r\nb\n", "a\nb\n"},
              {"a\n\n# below an empty line\nb\n", "a\n\nb\n"}});
}

TEST(TemplateEngine, LosesTheLineEndInFrontOfACommentThatEndsTheText) {
  EXPECT_EQ(expanded("a\n# comment"), "a");
}

TEST(TemplateEngine, TakesNoKeywordFromAComment) {
  EXPECT_EQ(expanded("a\n# 5 % or %nonsense% or %else%\nb\n"), "a\nb\n");
}

TEST(TemplateEngine, SeesACommentAtTheStartOfALineAlone) {
  expectEach({{"a # b\n", "a # b\n"}, {"a\n #b\n", "a\n #b\n"}, {"a\n\t#b\n", "a\n\t#b\n"}});
}

TEST(TemplateEngine, NeverTakesTheFirstLineForAComment) {
  EngineRun run;
  run.engine.openOutputFile(run.folder.file("out"));
  EXPECT_TRUE(run.expand("# first\n# second\nthird\n"));
  run.engine.finish();
  EXPECT_EQ(readWholeFile(run.folder.file("out")), "# first\nthird\n");
}

TEST(TemplateEngine, HoldsBlanksBackOverAComment) {
  EXPECT_EQ(expanded("a  \n# com ment\nb\n"), "a  \nb\n");
}

TEST(TemplateEngine, EatsTheLineEndOfACommentBehindAKeyword) {
  EXPECT_EQ(expanded("%rootdir%\n# comment\nb\n"), "b\n");
}

TEST(TemplateEngine, WritesOnePercentSignForTwo) {
  expectEach({{"100%%\n", "100%\n"}, {"%%%%", "%%"}, {"%%ibisdate%%\n", "%ibisdate%\n"}});
}

TEST(TemplateEngine, WritesTheBlankInFrontOfTwoPercentSignsBehindThem) {
  EXPECT_EQ(expanded("width: %%;\n"), "width:% ;\n");
}

TEST(TemplateEngine, WritesNoPercentSignInAClosedBranch) {
  EXPECT_EQ(expanded("%ifno%%%%else%+%endif%."), "+.");
}

TEST(TemplateEngine, EatsTheLineEndDirectlyBehindAKeyword) {
  expectEach({{"%rootdir%\nb\n", "b\n"},
              {"%rootdir%\n\nb\n", "\nb\n"},
              {"%rootdir%  \nb\n", "  b\n"},
              {"%ibisdate%\nb\n", "today\nb\n"}});
}

TEST(TemplateEngine, KeepsALineEndBehindAnythingElse) {
  expectEach({{"%rootdir%x\nb\n", "x\nb\n"},
              {"%rootdir%\t\nb\n", "\t\nb\n"},
              {"%rootdir%%ibisdate%\nb\n", "today\nb\n"},
              {"%rootdir%%%\nb\n", "%\nb\n"}});
}

TEST(TemplateEngine, LosesBlanksThatAValueKeywordDoesNotWrite) {
  expectEach({{"a  %rootdir%b\n", "ab\n"}, {"a  %ibisdate% b\n", "a  today b\n"}});
}

TEST(TemplateEngine, TellsAKeywordItsPlace) {
  expectEach({{"%position%\n", "/2/1/0\n"},
              {"a\n  b %position%%position%\n", "a\n  b/3/5/1/3/15/0\n"},
              {"a\n# comment\n\n   %position%\n", "a\n\n/5/4/3\n"},
              {"%position,some,arguments% %position%\n", "/2/1/0/2/27/1\n"}});
}

TEST(TemplateEngine, MeasuresAColumnBehindTabsOnTheExpandedLine) {
  expectEach({{"\t%position%", "\t/2/5/0"},
              {"abc\t%position%", "abc\t/2/5/0"},
              {"abcd\t%position%", "abcd\t/2/9/0"},
              {"+\t\t%position%", "+\t\t/2/9/0"},
              {"+ \t%position%", "+ \t/2/5/0"}});
}

TEST(TemplateEngine, CutsAKeywordAtCommas) {
  expectEach({{"%arguments%", "[arguments]"},
              {"%arguments,a,b%", "[arguments][a][b]"},
              {"%arguments,,b%", "[arguments][][b]"},
              {"%arguments,a,%", "[arguments][a]"},
              {"%arguments,%", "[arguments]"},
              {"%arguments,,%", "[arguments][]"},
              {"%arguments, a\t,  %", "[arguments][ a\t][  ]"}});
}

TEST(TemplateEngine, FoldsReservedNamesInArguments) {
  expectEach({{"%arguments,gnd,Power,nc,Na%", "[arguments][GND][POWER][NC][NA]"},
              {"%arguments,gnd ,grnd%", "[arguments][gnd ][grnd]"}});
}

TEST(TemplateEngine, CutsKeywordTextAt127Characters) {
  const std::string start = "arguments,";
  const std::string fits(127 - start.size(), 'x');
  EXPECT_EQ(expanded("%" + start + fits + "%\n"), "[arguments][" + fits + "]\n");
  EXPECT_EQ(expanded("%" + start + fits + "y%\n"), "[arguments][" + fits + "]\n");
  EXPECT_EQ(expanded("%" + start + std::string(5000, 'x') + "%\n"), "[arguments][" + fits + "]\n");
}

TEST(TemplateEngine, WritesTheBranchThatHolds) {
  expectEach({{"%ifyes%a%endif%", "a"},
              {"%ifno%a%endif%", ""},
              {"%ifyes%a%else%b%endif%c", "ac"},
              {"%ifno%a%else%b%endif%c", "bc"},
              {"%ifyes%a%else%b%else%c%endif%", "ac"}});
}

TEST(TemplateEngine, GivesAConditionItsArguments) {
  expectEach({{"%ifsame,a,a%yes%else%no%endif%", "yes"},
              {"%ifsame,a,A%yes%else%no%endif%", "no"},
              {"%ifsame,gnd,GND%yes%else%no%endif%", "yes"},
              {"%ifsame,a, a%yes%else%no%endif%", "no"}});
}

TEST(TemplateEngine, NestsConditions) {
  const std::string_view behind = "%A%else%B%endif%C%else%D%endif%E";
  expectEach({{"%ifyes%%ifyes" + std::string(behind), "ACE"},
              {"%ifyes%%ifno" + std::string(behind), "BCE"},
              {"%ifno%%ifyes" + std::string(behind), "DE"},
              {"%ifno%%ifno" + std::string(behind), "DE"}});
}

TEST(TemplateEngine, StaysClosedUntilTheOuterConditionEnds) {
  expectEach({{"%ifno%%ifyes%%ifno%a%endif%b%endif%c%endif%d", "d"},
              {"%ifyes%%ifno%%ifyes%a%endif%b%else%c%endif%d%endif%e", "cde"},
              {"%ifno%%ifno%%else%%ifyes%a%endif%b%endif%c%else%d%endif%e", "de"}});
}

TEST(TemplateEngine, EatsTheLineEndsOfConditionLines) {
  EXPECT_EQ(expanded("%ifyes%\na\n%else%\nb\n%endif%\nc\n"), "a\nc\n");
  EXPECT_EQ(expanded("%ifno%\na\n%else%\nb\n%endif%\nc\n"), "b\nc\n");
}

TEST(TemplateEngine, EatsTheLineEndOfATextLineThatEndsInAnEndOfCondition) {
  EXPECT_EQ(expanded("a%ifyes%b%endif%\nc\n\n"), "abc\n\n");
}

TEST(TemplateEngine, AddsUpTheBlanksAroundConditions) {
  expectEach({{"a %ifyes% %endif% b\n", "a   b\n"},
              {"a %ifno% %else%  %endif%   b\n", "a       b\n"},
              {"a %ifyes% x %endif% b\n", "a  x  b\n"}});
}

TEST(TemplateEngine, DropsTheBlanksInFrontOfTextInAClosedBranch) {
  EXPECT_EQ(expanded("a %ifno% x %endif% b\n"), "a  b\n");
}

TEST(TemplateEngine, HoldsTheBlanksOfAValueThatIsNotCalled) {
  EXPECT_EQ(expanded("a%ifno%  %ibisdate%%endif%b\n"), "a  b\n");
}

TEST(TemplateEngine, TakesFixedWordsInAnyCase) {
  EXPECT_EQ(expanded("%ifno%a%ELSE%b%EndIf%c\n%ifyes%d%eLSe%e%ENDIF%f\n"), "bc\ndf\n");
}

TEST(TemplateEngine, FlipsTheTopLevelAtAStrayElse) {
  expectEach({{"a%else%b%else%c\n", "ac\n"}, {"%else%b%ifyes%c%else%d%endif%e%else%f\n", "f\n"}});
}

TEST(TemplateEngine, DropsWhatStandsBeforeTheFirstFile) {
  EngineRun run;
  EXPECT_TRUE(run.expand("lost %ibisdate%%arguments%%%\n\n%file% %rootdir%/out\nkept\n"));
  run.engine.finish();
  EXPECT_EQ(run.folder.contents(), (std::map<std::string, std::string>{{"out", "kept\n"}}));
  EXPECT_MESSAGES(run.sink.errors);
}

TEST(TemplateEngine, CallsTheFileKeywordAloneWithoutAFile) {
  EngineRun run;
  EXPECT_TRUE(run.expand("%file,x% %rootdir%/out\nlost\n"));
  EXPECT_EQ(run.engine.out(), nullptr);
  EXPECT_EQ(run.engine.generatedFiles(), Texts{});
  EXPECT_MESSAGES(run.sink.errors);
}

TEST(TemplateEngine, OpensNoFileInAClosedBranch) {
  EngineRun run;
  EXPECT_TRUE(run.expand("%ifno%\n%file% %rootdir%/out\n%endif%\nlost\n"));
  EXPECT_EQ(run.engine.generatedFiles(), Texts{});
}

TEST(TemplateEngine, ContinuesTheFileOfTheTemplateBefore) {
  EngineRun run;
  EXPECT_TRUE(run.expand("%file% %rootdir%/out\none\n"));
  EXPECT_TRUE(run.expand("two\n"));
  run.engine.finish();
  EXPECT_EQ(readWholeFile(run.folder.file("out")), "one\ntwo\n");
}

TEST(TemplateEngine, StartsEveryTemplateAfresh) {
  EngineRun run;
  EXPECT_TRUE(run.expand("%file% %rootdir%/out\na\n%ifno%\nb  "));
  EXPECT_TRUE(run.expand("%position%\n%else%c"));
  EXPECT_TRUE(run.expand("d %open"));
  EXPECT_TRUE(run.expand("e\n"));
  run.engine.finish();
  EXPECT_EQ(readWholeFile(run.folder.file("out")), "a\n/1/1/0\nde\n");
  EXPECT_MESSAGES(run.sink.errors);
}

TEST(TemplateEngine, EndsOneFileWithTheNext) {
  EngineRun run;
  EXPECT_TRUE(run.expand("%file% %rootdir%/a\none\n%file% %rootdir%/b\ntwo\n"));
  run.engine.finish();
  EXPECT_EQ(readWholeFile(run.folder.file("a")), "one\n");
  EXPECT_EQ(readWholeFile(run.folder.file("b")), "two\n");
  EXPECT_EQ(run.engine.generatedFiles(), (Texts{run.folder.file("a"), run.folder.file("b")}));
}

TEST(TemplateEngine, NamesAFileOpenedTwiceOnce) {
  EngineRun run;
  const std::string a = run.folder.file("a");
  EXPECT_TRUE(run.expand("%file% %rootdir%/a\n1\n%file% %rootdir%/b\n2\n%file% %rootdir%/a\n3\n"));
  run.engine.finish();
  EXPECT_EQ(run.engine.generatedFiles(), (Texts{a, run.folder.file("b")}));
  EXPECT_EQ(readWholeFile(a), "3\n");
}

TEST(TemplateEngine, ReplacesAFileThatIsOpenAlready) {
  for (const std::size_t oldSize : {std::size_t{2}, std::size_t{20}, std::size_t{200000}}) {
    EngineRun run;
    const std::string old(oldSize, 'o');
    EXPECT_TRUE(run.expand("%file% %rootdir%/a\n" + old + "\n%file% %rootdir%/a\nnew\n"));
    run.engine.finish();
    EXPECT_EQ(run.engine.generatedFiles(), Texts{run.folder.file("a")});
    EXPECT_EQ(readWholeFile(run.folder.file("a")), "new\n") << oldSize;
  }
}

TEST(TemplateEngine, ComparesFileNamesExactly) {
  EngineRun run;
  EXPECT_TRUE(run.expand("%file% %rootdir%/a\n%file% %rootdir%//a\n"));
  EXPECT_EQ(run.engine.generatedFiles(),
            (Texts{run.folder.path() + "/a", run.folder.path() + "//a"}));
}

}  // namespace
}  // namespace ibis::testing
