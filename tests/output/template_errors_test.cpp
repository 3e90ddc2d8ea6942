#include <filesystem>

#include "harness/harness.h"
#include "output/stream/file_sink.h"
#include "output/template_engine.h"

namespace ibis::testing {
namespace {

// What a template writes and what it reports; its first line is line 2.
struct Outcome {
  std::string text;
  Texts errors;
  Texts warnings;
};

Outcome outcomeOf(std::string_view text) {
  IBISFile file;
  file.data().date = IBISString("today");
  Recorder sink;
  std::string written = expandTemplate(text, file, nullptr, sink);
  return {std::move(written), texts(sink.errors), texts(sink.warnings)};
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

TEST(TemplateErrors, NameAnUnknownKeywordAndGoOn) {
  const Outcome outcome = outcomeOf("a %nonsense% b\nc\n");
  EXPECT_EQ(outcome.text, "a  b\nc\n");
  EXPECT_MESSAGES(outcome.errors, "Template error : Unknown keyword 'nonsense' at line 2\n");
  EXPECT_MESSAGES(outcome.warnings);
}

TEST(TemplateErrors, KeepTheLineEndBehindAnUnknownKeyword) {
  const Outcome outcome = outcomeOf("%rootdir%%nonsense%\nb\n");
  EXPECT_EQ(outcome.text, "\nb\n");
  EXPECT_MESSAGES(outcome.errors, "Template error : Unknown keyword 'nonsense' at line 2\n");
}

TEST(TemplateErrors, ShowTheWholeTextOfAnUnknownKeyword) {
  const Outcome outcome = outcomeOf("%a b,gnd,,%\n%,a%\n%,%\n% ibisdate%\n");
  EXPECT_EQ(outcome.text, "\n\n\n\n");
  EXPECT_MESSAGES(outcome.errors, "Template error : Unknown keyword 'a b,gnd,,' at line 2\n",
                  "Template error : Unknown keyword ',a' at line 3\n",
                  "Template error : Unknown keyword ',' at line 4\n",
                  "Template error : Unknown keyword ' ibisdate' at line 5\n");
}

TEST(TemplateErrors, ComeFromKeywordsInTheWrongCase) {
  const Outcome outcome = outcomeOf("%foreachPin%%IBISDATE%%ifHasModelType,GND%\n");
  EXPECT_EQ(outcome.text, "\n");
  EXPECT_MESSAGES(outcome.errors, "Template error : Unknown keyword 'foreachPin' at line 2\n",
                  "Template error : Unknown keyword 'IBISDATE' at line 2\n",
                  "Template error : Unknown keyword 'ifHasModelType,GND' at line 2\n");
}

TEST(TemplateErrors, ComeFromTheFileKeywordInTheWrongCase) {
  EngineRun run;
  EXPECT_TRUE(run.expand("%FILE% %rootdir%/out\n"));
  EXPECT_EQ(run.engine.out(), nullptr);
  EXPECT_MESSAGES(run.sink.errors, "Template error : Unknown keyword 'FILE' at line 1\n");
}

TEST(TemplateErrors, ComeFromTheWordsThatNoKeywordHas) {
  EngineRun run;
  EXPECT_TRUE(run.expand("%append% %rootdir%/out\n%Include% %rootdir%/out\n"));
  EXPECT_EQ(run.engine.generatedFiles(), Texts{});
  EXPECT_MESSAGES(run.sink.errors, "Template error : Unknown keyword 'append' at line 1\n",
                  "Template error : Unknown keyword 'Include' at line 2\n");
}

TEST(TemplateErrors, ComeFromTheFirstPassOutsideALoop) {
  const Outcome outcome = outcomeOf("%iffirst%a\n");
  EXPECT_EQ(outcome.text, "a\n");
  EXPECT_MESSAGES(outcome.errors, "Template error : Unknown keyword 'iffirst' at line 2\n");
}

TEST(TemplateErrors, ComeFromALoopObjectsConditionOutsideALoop) {
  const Outcome outcome = outcomeOf("%ifisdiff%a\n");
  EXPECT_EQ(outcome.text, "a\n");
  EXPECT_MESSAGES(outcome.errors, "Template error : Unknown keyword 'ifisdiff' at line 2\n");
}

TEST(TemplateErrors, ComeFromALoopsEndOutsideALoop) {
  const Outcome outcome = outcomeOf("a%endforeach%\nb\n");
  EXPECT_EQ(outcome.text, "a\nb\n");
  EXPECT_MESSAGES(outcome.errors, "Template error : Unknown keyword 'endforeach' at line 2\n");
}

TEST(TemplateErrors, ComeFromFixedWordsWithArguments) {
  const Outcome outcome = outcomeOf("%else,x%a%endif,x%\n");
  EXPECT_EQ(outcome.text, "a\n");
  EXPECT_MESSAGES(outcome.errors, "Template error : Unknown keyword 'else,x' at line 2\n",
                  "Template error : Unknown keyword 'endif,x' at line 2\n");
}

TEST(TemplateErrors, ComeFromAClosedBranchToo) {
  const Outcome outcome = outcomeOf("%ifhaspackagemodel%\n%nonsense%\n%endif%\n");
  EXPECT_EQ(outcome.text, "");
  EXPECT_MESSAGES(outcome.errors, "Template error : Unknown keyword 'nonsense' at line 3\n");
}

TEST(TemplateErrors, ComeFromTheTextBeforeTheFirstFileToo) {
  EngineRun run;
  EXPECT_TRUE(run.expand("%ibisdate%%nonsense%\n"));
  EXPECT_MESSAGES(run.sink.errors, "Template error : Unknown keyword 'nonsense' at line 1\n");
}

TEST(TemplateErrors, ComeNotFromASkippedLoop) {
  const Outcome outcome = outcomeOf("%forallmodels%.%endforeach%\n%foreachpin%%no%%endforeach%\n");
  EXPECT_EQ(outcome.text, "...");
  EXPECT_MESSAGES(outcome.errors);
}

TEST(TemplateErrors, NameTheSameLineOnEveryPassOfALoop) {
  const Outcome outcome = outcomeOf("\n%forallmodels%\n# comment\n%nonsense%%endforeach%\n");
  EXPECT_EQ(outcome.text, "\n");
  EXPECT_MESSAGES(outcome.errors, "Template error : Unknown keyword 'nonsense' at line 5\n",
                  "Template error : Unknown keyword 'nonsense' at line 5\n",
                  "Template error : Unknown keyword 'nonsense' at line 5\n");
}

TEST(TemplateErrors, CountCommentLines) {
  const Outcome outcome = outcomeOf("# one\n# two\n\n%nonsense%\n");
  EXPECT_EQ(outcome.text, "\n\n");
  EXPECT_MESSAGES(outcome.errors, "Template error : Unknown keyword 'nonsense' at line 5\n");
}

TEST(TemplateErrors, CutALongKeywordAt127Characters) {
  const std::string kept(127, 'k');
  const Outcome outcome = outcomeOf("%" + kept + "%%" + kept + "l%%" + kept + kept + "%\n");
  const std::string message = "Template error : Unknown keyword '" + kept + "' at line 2\n";
  EXPECT_EQ(outcome.text, "\n");
  EXPECT_MESSAGES(outcome.errors, message, message, message);
}

TEST(TemplateErrors, AbandonATextWithALineEndInAKeyword) {
  const Outcome outcome = outcomeOf("a\nb  %ibisdate\n%nonsense%\nc\n");
  EXPECT_EQ(outcome.text, "a\nb");
  EXPECT_MESSAGES(outcome.errors, "Template error : Unterminated keyword at line 3\n");
}

TEST(TemplateErrors, NameTheCommentBehindALineEndInAKeyword) {
  const Outcome outcome = outcomeOf("%ibisdate\n# one\n# two\nc\n");
  EXPECT_EQ(outcome.text, "");
  EXPECT_MESSAGES(outcome.errors, "Template error : Unterminated keyword at line 4\n");
}

TEST(TemplateErrors, ComeFromALineEndInAKeywordOfASkippedLoop) {
  const Outcome outcome = outcomeOf("a%foreachpin%%letter\n%endforeach%b\n");
  EXPECT_EQ(outcome.text, "a");
  EXPECT_MESSAGES(outcome.errors, "Template error : Unterminated keyword at line 2\n");
}

TEST(TemplateErrors, LetTheNextTemplateRunAfterAnAbandonedOne) {
  EngineRun run;
  EXPECT_TRUE(run.expand("%file% %rootdir%/out\na %b\nc"));
  EXPECT_TRUE(run.expand("d\n"));
  run.engine.finish();
  EXPECT_EQ(readWholeFile(run.folder.file("out")), "ad\n");
  EXPECT_MESSAGES(run.sink.errors, "Template error : Unterminated keyword at line 2\n");
}

TEST(TemplateErrors, SayNothingAboutAKeywordThatTheTextEndsIn) {
  const Outcome outcome = outcomeOf("a %ibisdate");
  EXPECT_EQ(outcome.text, "a");
  EXPECT_MESSAGES(outcome.errors);
}

TEST(TemplateErrors, SayNothingAboutAConditionLeftOpen) {
  const Outcome outcome = outcomeOf("a%ifhaspackagemodel%b\n");
  EXPECT_EQ(outcome.text, "a");
  EXPECT_MESSAGES(outcome.errors);
}

TEST(TemplateErrors, ComeFromAnEndOfConditionWithoutItsTest) {
  const Outcome outcome = outcomeOf("a\n%endif%\nb\n%EndIf%\n");
  EXPECT_EQ(outcome.text, "a\nb\n");
  EXPECT_MESSAGES(outcome.errors, "Template error : %endif% without matching test at line 3\n",
                  "Template error : %endif% without matching test at line 5\n");
}

TEST(TemplateErrors, LeaveAFlippedTopLevelFlippedAtAStrayEnd) {
  const Outcome outcome = outcomeOf("%else%a%endif%b%else%c\n");
  EXPECT_EQ(outcome.text, "c\n");
  EXPECT_MESSAGES(outcome.errors, "Template error : %endif% without matching test at line 2\n");
}

TEST(TemplateErrors, HoldBackTheBlanksAroundAStrayEnd) {
  const Outcome outcome = outcomeOf("a %endif% b\n");
  EXPECT_EQ(outcome.text, "a  b\n");
  EXPECT_MESSAGES(outcome.errors, "Template error : %endif% without matching test at line 2\n");
}

TEST(TemplateErrors, FormatTheirArgumentsOnce) {
  EngineRun run;
  run.engine.reportError("%s at %d", "100%d%%s", 7);
  EXPECT_MESSAGES(run.sink.errors, "Template error : 100%d%%s at 7\n");
  EXPECT_MESSAGES(run.sink.warnings);
}

TEST(TemplateErrors, AreCutAt1023Characters) {
  EngineRun run;
  const std::string word(3000, 'w');
  run.engine.reportError("%s", word.c_str());
  EXPECT_MESSAGES(run.sink.errors, ("Template error : " + word).substr(0, 1023));
}

TEST(TemplateErrors, KeepTheOpenFileWhenAnotherCannotBeOpened) {
  EngineRun run;
  EXPECT_TRUE(run.expand("%file% %rootdir%/out\na\n%file% %rootdir%/missing/out\nb\n"));
  run.engine.finish();
  EXPECT_EQ(readWholeFile(run.folder.file("out")), "a\nb\n");
  EXPECT_EQ(run.engine.generatedFiles(), Texts{run.folder.file("out")});
  EXPECT_MESSAGES(run.sink.errors,
                  "Cannot open output file '" + run.folder.file("missing/out") + "'\n");
}

TEST(TemplateErrors, DropWhatFollowsAFirstFileThatCannotBeOpened) {
  EngineRun run;
  EXPECT_TRUE(run.expand("%file% %rootdir%/missing/out\nlost %ibisdate%\n"));
  EXPECT_EQ(run.engine.out(), nullptr);
  EXPECT_EQ(run.engine.generatedFiles(), Texts{});
  EXPECT_MESSAGES(run.sink.errors,
                  "Cannot open output file '" + run.folder.file("missing/out") + "'\n");
}

TEST(TemplateErrors, ComeFromAFolderAsOutputFile) {
  EngineRun run;
  run.engine.openOutputFile(run.folder.path());
  EXPECT_EQ(run.engine.out(), nullptr);
  EXPECT_MESSAGES(run.sink.errors, "Cannot open output file '" + run.folder.path() + "'\n");
}

TEST(TemplateErrors, ComeFromAnEmptyFileName) {
  EngineRun run;
  run.engine.openOutputFile("");
  EXPECT_MESSAGES(run.sink.errors, "Cannot open output file ''\n");
}

TEST(TemplateErrors, ReportAFullDeviceOnceWhenTheFileIsClosed) {
  EngineRun run;
  EXPECT_TRUE(run.expand("%file% /dev/full\na\n"));
  run.engine.finish();
  run.engine.finish();
  EXPECT_MESSAGES(run.sink.errors, "Cannot write output file '/dev/full'\n");
  EXPECT_MESSAGES(run.sink.warnings);
}

TEST(TemplateErrors, ReportAFullDeviceOnceForManyFailedWrites) {
  EngineRun run;
  std::string text = "%file% /dev/full\n";
  for (int line = 0; line < 20000; ++line) text += "a line of a long output file\n";
  EXPECT_TRUE(run.expand(text));
  run.engine.finish();
  EXPECT_MESSAGES(run.sink.errors, "Cannot write output file '/dev/full'\n");
}

TEST(TemplateErrors, ReportAFullDeviceWhenTheNextFileOpens) {
  EngineRun run;
  EXPECT_TRUE(run.expand("%file% /dev/full\na\n%file% %rootdir%/out\nb\n"));
  EXPECT_MESSAGES(run.sink.errors, "Cannot write output file '/dev/full'\n");
  run.engine.finish();
  EXPECT_EQ(readWholeFile(run.folder.file("out")), "b\n");
  EXPECT_MESSAGES(run.sink.errors, "Cannot write output file '/dev/full'\n");
}

TEST(TemplateErrors, ReportEachFileThatCannotBeWritten) {
  EngineRun run;
  std::filesystem::create_symlink("/dev/full", run.folder.file("link"));
  EXPECT_TRUE(run.expand("%file% /dev/full\na\n%file% %rootdir%/link\nb\n"));
  run.engine.finish();
  EXPECT_MESSAGES(run.sink.errors, "Cannot write output file '/dev/full'\n",
                  "Cannot write output file '" + run.folder.file("link") + "'\n");
}

TEST(TemplateErrors, ReportAFullDeviceWhenTheEngineGoes) {
  IBISFile file;
  Recorder sink;
  TextBuffer text("%file% /dev/full\na\n");
  FileSink files;
  TemplateEngine(file.data(), nullptr, "", sink, files).expand(text);
  EXPECT_MESSAGES(sink.errors, "Cannot write output file '/dev/full'\n");
}

TEST(TemplateErrors, SayNothingOfAFullDeviceThatNothingIsWrittenTo) {
  EngineRun run;
  EXPECT_TRUE(run.expand("%file% /dev/full\n"));
  run.engine.finish();
  EXPECT_MESSAGES(run.sink.errors);
}

}  // namespace
}  // namespace ibis::testing
