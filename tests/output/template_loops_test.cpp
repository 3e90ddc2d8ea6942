#include "harness/harness.h"
#include "output/keyword_registry.h"
#include "output/stream/file_sink.h"

namespace ibis::testing {
namespace {

// What the engine asked of the letters since the start of the test.
struct Calls {
  int factory = 0;
  int questions = 0;  ///< What a word means.
  int conditions = 0;
};

Calls calls;

// A loop object that knows one letter, its own place in the template, and two conditions.
class Letter final : public ForEachObject {
 public:
  explicit Letter(char letter) : letter_(letter) {}

  LoopWord word(std::string_view keyword) const override {
    ++calls.questions;
    if (keyword == "letter" || keyword == "ibisdate" || keyword == "with,comma") {
      return {.write = writeLetter};
    }
    if (keyword == "place") return {.write = writePlace};
    if (keyword == "ifletter") return {.holds = isLetter};
    if (keyword == "ifhaspackagemodel") return {.holds = holds};
    return {};
  }

  const void* kind() const override { return &calls; }

 private:
  static char letterOf(const ForEachObject& object) {
    return static_cast<const Letter&>(object).letter_;
  }

  static void writeLetter(const void*, const ForEachObject& object, OutputStream& out,
                          const KeywordPosition& position) {
    out.writeBlanks(position.pendingSpaces);
    out.write(letterOf(object));
  }

  static void writePlace(const void*, const ForEachObject&, OutputStream& out,
                         const KeywordPosition& position) {
    out.writeBlanks(position.pendingSpaces);
    out.writeInteger(position.line);
    out.write('/');
    out.writeInteger(position.column);
    out.write(';');
  }

  static bool isLetter(const void*, const ForEachObject& object,
                       const KeywordArguments& arguments) {
    ++calls.conditions;
    const char letter = letterOf(object);
    return arguments.size() == 2 && arguments[1] == std::string_view(&letter, 1);
  }

  static bool holds(const void*, const ForEachObject&, const KeywordArguments&) {
    ++calls.conditions;
    return true;
  }

  char letter_;
};

bool threeLetters(OutputRun&, LoopItems& items) {
  ++calls.factory;
  for (const char letter : {'a', 'b', 'c'}) items.append<Letter>(letter);
  return true;
}

bool oneLetter(OutputRun&, LoopItems& items) {
  items.append<Letter>('a');
  return true;
}

bool noLetters(OutputRun&, LoopItems&) {
  ++calls.factory;
  return true;
}

// The result of a factory has no meaning.
bool refusingLetters(OutputRun& engine, LoopItems& items) {
  threeLetters(engine, items);
  return false;
}

[[maybe_unused]] const bool registered[] = {
    addLoopKeyword("eachletter", threeLetters), addLoopKeyword("eachone", oneLetter),
    addLoopKeyword("eachnothing", noLetters), addLoopKeyword("eachrefused", refusingLetters)};

std::string expandedInto(std::string_view text, Recorder& sink) {
  calls = {};
  IBISFile file;
  file.data().date = IBISString("today");
  return expandTemplate(text, file, nullptr, sink);
}

// Expands a template that has to pass without a message.
std::string expanded(std::string_view text) {
  Recorder sink;
  std::string result = expandedInto(text, sink);
  EXPECT_MESSAGES(sink.errors);
  return result;
}

TEST(TemplateLoops, RepeatTheirBodyForEachItemInOrder) {
  EXPECT_EQ(expanded("<%eachletter%[%letter%]%endforeach%>\n"), "<[a][b][c]>\n");
  EXPECT_EQ(expanded("<%eachone%[%letter%]%endforeach%>\n"), "<[a]>\n");
}

TEST(TemplateLoops, EatTheLineEndsOfTheirTwoKeywordLines) {
  EXPECT_EQ(expanded("x\n%eachletter%\n%letter%\n%endforeach%\ny\n"), "x\na\nb\nc\ny\n");
}

TEST(TemplateLoops, EatTheLineEndBehindTheLoopKeywordOnEveryPass) {
  EXPECT_EQ(expanded("%eachletter%\n\n%letter%%endforeach%\n\n"), "\na\nb\nc\n");
}

TEST(TemplateLoops, EndWithTheirWordInAnyCase) {
  for (const std::string word : {"endforeach", "endforEach", "EndForEach", "ENDFOREACH"}) {
    EXPECT_EQ(expanded("%eachletter%%letter%%" + word + "%;"), "abc;") << word;
  }
}

TEST(TemplateLoops, CarryBlanksOverTheirStart) {
  EXPECT_EQ(expanded("x  %eachletter%%letter%%endforeach%\ny\n"), "x  abcy\n");
}

TEST(TemplateLoops, LoseTheBlanksInFrontOfTheirEnd) {
  EXPECT_EQ(expanded("%eachletter%%letter%  %endforeach%x\n"), "abcx\n");
}

TEST(TemplateLoops, WriteNothingForAnEmptyList) {
  EXPECT_EQ(expanded("x\n%eachnothing%\n text %letter%\n\n%endforeach%\ny\n"), "x\ny\n");
  EXPECT_EQ(expanded("x%eachnothing%%%%endforeach%y\n"), "xy\n");
}

TEST(TemplateLoops, LoseTheBlanksAroundAnEmptyBody) {
  EXPECT_EQ(expanded("x  %eachnothing% %endforeach%y\n"), "xy\n");
}

TEST(TemplateLoops, LookForTheEndAloneWhenTheListIsEmpty) {
  EXPECT_EQ(expanded("x%eachnothing%%else%%endif%%ifhaspackagemodel%%iffirst%%nonsense%"
                     "%eachletter%%ibisdate%%file%%EndForEach%y\n"),
            "xy\n");
  EXPECT_EQ(calls.factory, 1);
}

TEST(TemplateLoops, BuildTheirListInAClosedBranchAndWriteNothing) {
  EXPECT_EQ(expanded("x%ifhaspackagemodel%%eachletter%t%letter%%ibisdate%\n%%%endforeach%%endif%y"),
            "xy");
  EXPECT_EQ(calls.factory, 1);
  EXPECT_EQ(calls.questions, 3);
}

TEST(TemplateLoops, EndTheirPassesInAClosedBranchWithTheirEmptyList) {
  EXPECT_EQ(expanded("x%ifhaspackagemodel%%eachnothing%t%endforeach%u%else%v%endif%y"), "xvy");
  EXPECT_EQ(calls.factory, 1);
}

TEST(TemplateLoops, IgnoreTheResultOfTheFactory) {
  EXPECT_EQ(expanded("%eachrefused%%letter%%endforeach%"), "abc");
}

TEST(TemplateLoops, LoseTheBlanksOfAnObjectsValueInAClosedBranch) {
  EXPECT_EQ(expanded("%eachletter%%ifletter,b%  %letter%%endif%x%endforeach%"), "x  bxx");
}

TEST(TemplateLoops, HoldTheBlanksOfAFilesValueInAClosedBranch) {
  EXPECT_EQ(expanded("%eachletter%%ifletter,b%  %ibisdate%%endif%x%endforeach%"), "  x  todayx  x");
}

TEST(TemplateLoops, PreferTheFilesValuesToTheObjects) {
  EXPECT_EQ(expanded("%eachletter%%ibisdate% %endforeach%"), "todaytodaytoday");
}

TEST(TemplateLoops, PreferTheObjectsConditionsToTheFiles) {
  EXPECT_EQ(expanded("%eachone%%ifhaspackagemodel%own%else%file's%endif%%endforeach%"), "own");
  EXPECT_EQ(expanded("%ifhaspackagemodel%own%else%file's%endif%"), "file's");
}

TEST(TemplateLoops, KnowTheFilesConditions) {
  EXPECT_EQ(expanded("%eachone%%ifhasmodeltype,Input%yes%else%no%endif%%endforeach%"), "no");
}

TEST(TemplateLoops, GiveAnObjectsConditionItsArguments) {
  EXPECT_EQ(expanded("%eachletter%%ifletter,b%<%letter%>%else%.%endif%%endforeach%"), ".<b>.");
  EXPECT_EQ(calls.conditions, 3);
}

TEST(TemplateLoops, TakeTheObjectsKeywordsByTheirWholeText) {
  EXPECT_EQ(expanded("%eachletter%%with,comma%%endforeach%"), "abc");
}

TEST(TemplateLoops, EatTheLineEndsOfTheObjectsConditions) {
  EXPECT_EQ(expanded("%eachletter%\n%ifletter,b%\nyes\n%else%\nno\n%endif%\n%endforeach%\n"),
            "no\nyes\nno\n");
}

TEST(TemplateLoops, KnowTheirFirstPass) {
  EXPECT_EQ(expanded("%eachletter%%iffirst%%else%,%endif%%letter%%endforeach%"), "a,b,c");
  EXPECT_EQ(expanded("%eachone%%iffirst%first%else%later%endif%%endforeach%"), "first");
}

TEST(TemplateLoops, HoldABlankThatEndsAClosedBranch) {
  EXPECT_EQ(expanded("%eachletter%%iffirst%%else%, %endif%%letter%%endforeach%"), " a, b, c");
}

TEST(TemplateLoops, KnowTheirFirstPassWithArguments) {
  EXPECT_EQ(expanded("%eachletter%%iffirst,x%%letter%%endif%%endforeach%"), "a");
}

TEST(TemplateLoops, EatTheLineEndBehindTheQuestionForTheFirstPass) {
  EXPECT_EQ(expanded("%eachletter%\n%iffirst%\nfirst\n%endif%\n%letter%\n%endforeach%\n"),
            "first\na\nb\nc\n");
}

TEST(TemplateLoops, KnowTheFirstPassOfEveryLoop) {
  const std::string loop = "%eachletter%%iffirst%<%endif%%letter%%endforeach%";
  EXPECT_EQ(expanded(loop + loop), "<abc<abc");
}

TEST(TemplateLoops, NestTheFirstPassInAClosedCondition) {
  EXPECT_EQ(expanded("%eachletter%%ifletter,b%%iffirst%x%else%y%endif%z%endif%.%endforeach%"),
            ".yz..");
}

TEST(TemplateLoops, RestoreLineAndColumnForEveryPass) {
  EXPECT_EQ(expanded("\n  %eachletter%%place%\n# comment\n\t%place%%endforeach%%eachone%\n%place%"),
            "\n  3/15;\n\t5/5;3/15;\n\t5/5;3/15;\n\t5/5;6/1;");
}

TEST(TemplateLoops, ResumeBehindTheClosingPercentSign) {
  EXPECT_EQ(expanded("%eachletter% %letter%%endforeach%"), " a b c");
}

TEST(TemplateLoops, KeepConditionsThatABodyLeavesOpen) {
  EXPECT_EQ(expanded("%eachletter%%iffirst%%letter%%endforeach%x%endif%y%endif%z%endif%."), "az.");
}

TEST(TemplateLoops, EndWithTheTextWithoutAMessage) {
  EXPECT_EQ(expanded("%eachletter%%letter%;"), "a;");
  EXPECT_EQ(expanded("%eachnothing%%letter%;"), "");
}

TEST(TemplateLoops, EndWithTheirTemplate) {
  const TemporaryFolder folder;
  IBISFile file;
  Recorder sink;
  FileSink files;
  TemplateEngine engine(file.data(), nullptr, folder.path(), sink, files);
  TextBuffer open("%file% %rootdir%/out\n%eachnothing%lost");
  TextBuffer next("kept %eachone%%letter%%endforeach%\n");
  EXPECT_TRUE(engine.expand(open));
  EXPECT_TRUE(engine.expand(next));
  engine.finish();
  EXPECT_EQ(readWholeFile(folder.file("out")), "kept a");
  EXPECT_MESSAGES(sink.errors);
}

TEST(TemplateLoops, OpenAFileForEveryPass) {
  const TemporaryFolder folder;
  IBISFile file;
  Recorder sink;
  FileSink files;
  TemplateEngine engine(file.data(), nullptr, folder.path(), sink, files);
  TextBuffer text("%eachletter%\n%file% %rootdir%/out\n%letter%\n%endforeach%\n.\n");
  EXPECT_TRUE(engine.expand(text));
  engine.finish();
  EXPECT_EQ(readWholeFile(folder.file("out")), "c\n.\n");
  EXPECT_EQ(engine.generatedFiles(), Texts{folder.file("out")});
}

TEST(TemplateLoops, AskAboutAWordOnceForAllPasses) {
  const TemporaryFolder folder;
  IBISFile file;
  Recorder sink;
  FileSink files;
  TemplateEngine engine(file.data(), nullptr, folder.path(), sink, files);
  TextBuffer text("%eachletter%%letter%%letter%%endforeach%");
  calls = {};
  EXPECT_TRUE(engine.expand(text));
  EXPECT_EQ(calls.questions, 2 + 2);  // the end of the loop might be a value or a condition
  EXPECT_MESSAGES(sink.errors);
}

TEST(TemplateLoops, DoNotNest) {
  Recorder sink;
  EXPECT_EQ(expandedInto("%eachletter%[%eachone%%letter%]%endforeach%\n", sink), "[a][b][c]");
  EXPECT_MESSAGES(sink.errors, "Template error : Unknown keyword 'eachone' at line 2\n",
                  "Template error : Unknown keyword 'eachone' at line 2\n",
                  "Template error : Unknown keyword 'eachone' at line 2\n");
  EXPECT_EQ(calls.factory, 1);
}

TEST(TemplateLoops, EndAtTheFirstEndOfANestedAttempt) {
  Recorder sink;
  EXPECT_EQ(expandedInto("%eachnothing%%eachletter%x%endforeach%y%endforeach%z\n", sink), "yz\n");
  EXPECT_MESSAGES(sink.errors, "Template error : Unknown keyword 'endforeach' at line 2\n");
}

TEST(TemplateLoops, TakeNoArgumentsOnTheirWords) {
  Recorder sink;
  EXPECT_EQ(expandedInto("%eachone,x%%eachone%%letter,x%%endforeach,x%%endforeach%\n", sink), "");
  EXPECT_MESSAGES(sink.errors, "Template error : Unknown keyword 'eachone,x' at line 2\n",
                  "Template error : Unknown keyword 'letter,x' at line 2\n",
                  "Template error : Unknown keyword 'endforeach,x' at line 2\n");
}

TEST(TemplateLoops, TakeTheFirstPassInLowerCaseAlone) {
  Recorder sink;
  EXPECT_EQ(expandedInto("%eachone%%IfFirst%%letter%%endforeach%\n", sink), "a");
  EXPECT_MESSAGES(sink.errors, "Template error : Unknown keyword 'IfFirst' at line 2\n");
}

TEST(TemplateLoops, ForgetTheirObjectBehindTheEnd) {
  Recorder sink;
  EXPECT_EQ(expandedInto("%eachone%%endforeach%%letter%%ifletter,a%%iffirst%\n", sink), "\n");
  EXPECT_MESSAGES(sink.errors, "Template error : Unknown keyword 'letter' at line 2\n",
                  "Template error : Unknown keyword 'ifletter,a' at line 2\n",
                  "Template error : Unknown keyword 'iffirst' at line 2\n");
}

}  // namespace
}  // namespace ibis::testing
