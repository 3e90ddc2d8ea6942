#include "output/outputs.h"

#include <set>

#include "harness/harness.h"
#include "output/embedded_templates.h"

namespace ibis::testing {
namespace {

const OutputPlace place = {.rootDirectory = "root", .subcircuit = "dut", .spiceComponentName = "C"};

TEST(Outputs, AreFoundByTheirModeAndTheirWord) {
  std::set<std::string_view> words;
  std::set<OutputMode> modes;
  for (const Output& output : outputTable()) {
    EXPECT_EQ(findOutput(output.mode), &output);
    EXPECT_EQ(outputMode(output.word), output.mode);
    EXPECT_TRUE(words.insert(output.word).second) << output.word;
    EXPECT_TRUE(modes.insert(output.mode).second) << output.word;
  }
  EXPECT_EQ(modes, std::set<OutputMode>({OutputMode::script, OutputMode::model, OutputMode::symbol,
                                         OutputMode::package}));
  EXPECT_EQ(findOutput(OutputMode::unknown), nullptr);
}

TEST(Outputs, HaveWordsInLowerCaseAndSummariesOfOneLine) {
  for (const Output& output : outputTable()) {
    EXPECT_FALSE(output.word.empty());
    EXPECT_EQ(output.word.find_first_not_of("abcdefghijklmnopqrstuvwxyz"), output.word.npos);
    EXPECT_FALSE(output.summary.empty()) << output.word;
    EXPECT_EQ(output.summary.find_first_of("\n\t"), output.summary.npos) << output.word;
    EXPECT_FALSE(output.templates.empty()) << output.word;
  }
}

TEST(Outputs, AreNamedByTheirTemplates) {
  const std::map<OutputMode, Texts> names = {
      {OutputMode::model, {"root/dut.lb", "root/dut_INFO.html"}},
      {OutputMode::package, {"root/dut.lb"}},
      {OutputMode::script, {"root/ibis_components.kvscr"}},
      {OutputMode::symbol, {}},
  };
  for (const Output& output : outputTable()) {
    EXPECT_EQ(output.names(output, place), names.at(output.mode)) << output.word;
  }
}

// What a load of a text writes is what the table says before.
TEST(Outputs, AreWrittenUnderTheNamesThatTheySay) {
  Parsed parsed("[IBIS Ver] 4.2\n[Component] C\n[Pin] signal_name model_name\n1 A NC\n");
  parsed.resolve();
  parsed.file.setUserSubcircuitName("dut");
  for (const Output& output : outputTable()) {
    MemorySink sink;
    Recorder errors;
    TemplateEngine engine(parsed.data(), &parsed.component(), "root", errors, sink);
    output.write(output, engine);
    engine.finish();
    EXPECT_EQ(engine.generatedFiles(), output.names(output, place)) << output.word;
    EXPECT_EQ(sink.files().size(), engine.generatedFiles().size()) << output.word;
    EXPECT_MESSAGES(errors.errors);
  }
}

TEST(Outputs, AreNamedBySubcircuitUnlessTheyServeTheWholeFile) {
  for (const Output& output : outputTable()) {
    const bool isNamed = output.mode == OutputMode::model || output.mode == OutputMode::package;
    EXPECT_EQ(isNamedBySubcircuit(output), isNamed) << output.word;
  }
}

TEST(Outputs, UseEveryTemplate) {
  std::set<std::string> used;
  for (const Output& output : outputTable())
    used.insert(output.templates.begin(), output.templates.end());
  for (const EmbeddedTemplate& each : embeddedTemplates()) {
    EXPECT_EQ(used.count(std::string(each.name)), 1U) << each.name;
  }
}

TEST(FileName, ReplacesEachWordOnce) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},
      {"a.lb", "a.lb"},
      {"%rootdir%/%subcktname%.lb", "root/dut.lb"},
      {"%spicecomponentname%-%subcktname%", "C-dut"},
      {"%subcktname%%subcktname%", "dut%subcktname%"},
      {"%rootdir%%rootdir%", "root%rootdir%"},
      {"%ROOTDIR%", "%ROOTDIR%"},
      {"%other%", "%other%"},
  };
  for (const auto& [word, name] : cases) EXPECT_EQ(fileName(word, place), name) << word;
}

TEST(FileName, ReplacesAWordThatAnEarlierOneBrought) {
  EXPECT_EQ(fileName("%subcktname%", {.rootDirectory = "root",
                                      .subcircuit = "%spicecomponentname%",
                                      .spiceComponentName = "%rootdir%"}),
            "root");
}

}  // namespace
}  // namespace ibis::testing
