#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;

Outcome convert(std::vector<std::string> words, const Streams& streams = {}) {
  words.insert(words.begin(), "convert");
  return run(words, streams);
}

// What the plug-in writes for the same request into a folder of its own.
std::string writtenByCall(const json& request, const std::string& name) {
  const TemporaryFolder folder;
  json inFolder = request;
  inFolder[1][2] = folder.path();
  EXPECT_EQ(run({"call"}, {.input = inFolder.dump()}).status, 0);
  return readWholeFile(folder.file(name));
}

TEST(Convert, WritesLibraryAndPageIntoTheFolder) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  const std::string out = folder.file("made/for/it");
  const Outcome result = convert({source, "-o", out});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, out + "/BUF_1.lb\n" + out + "/BUF_1_INFO.html\n0 warnings, 0 errors\n");
  EXPECT_EQ(result.err, "");
}

TEST(Convert, WritesWhatThePluginWrites) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  ASSERT_EQ(convert({source, "-o", folder.path()}).status, 0);
  const json request = {{source}, {"model", "", "", "BUF_1"}};
  const std::string library = readWholeFile(folder.file("BUF_1.lb"));
  EXPECT_NE(library, "");
  EXPECT_EQ(library, writtenByCall(request, "BUF_1.lb"));
  EXPECT_EQ(readWholeFile(folder.file("BUF_1_INFO.html")),
            writtenByCall(request, "BUF_1_INFO.html"));
}

TEST(Convert, WritesIntoTheCurrentFolderByDefault) {
  const TemporaryFolder folder;
  folder.write("buffer.ibs", bufferText);
  const Outcome result = convert({"buffer.ibs"}, {.folder = folder.path()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "./BUF_1.lb\n./BUF_1_INFO.html\n0 warnings, 0 errors\n");
  EXPECT_THAT(folder.names(), ElementsAre("BUF_1.lb", "BUF_1_INFO.html", "buffer.ibs"));
}

TEST(Convert, LeavesOutSlashesBehindTheFolder) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  const Outcome result = convert({source, "-m", "package", "-o", folder.path() + "//"});
  EXPECT_EQ(result.out, folder.file("BUF_1.lb") + "\n0 warnings, 0 errors\n");
}

TEST(Convert, PackageModeWritesThePackageAlone) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  const Outcome result = convert({source, "-m", "package", "-s", "dut"}, {.folder = folder.path()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "./dut.lb\n0 warnings, 0 errors\n");
  EXPECT_EQ(readWholeFile(folder.file("dut.lb")), R"(
*******************************************************************************
** IBIS PACKAGE MODEL
*******************************************************************************

** IBIS original file: buffer.ibs
** IBIS version:       4.2
** Component:          BUF-1
** Manufacturer:       Exemplary
** File revision:      1.0
** Date:               today
** Source: 

** Notes:

** Disclaimer

** Copyright




.SUBCKT dut REF
+ IN_A
+ IN_VSS
+ OUT_A
+ OUT_VSS
+ PARAMS: CORNER=0

** Package RLC
URLC_A IN_A OUT_A REF RLC L=[2e-09, 2e-09, 2e-09] C=[1e-12, 1e-12, 1e-12] R=[0.5, 0.5, 0.5]
URLC_VSS IN_VSS OUT_VSS REF RLC L=[2e-09, 2e-09, 2e-09] C=[1e-12, 1e-12, 1e-12] R=[0.5, 0.5, 0.5]

.model RLC IBIS_rlc_package N_CORNER=3 CORNER={corner}
.ENDS IBIS_PKG_BUF-1

)");
}

TEST(Convert, ScriptModeWritesTheScript) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  const Outcome result = convert({source, "-m", "script", "-o", folder.path()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, folder.file("ibis_components.kvscr") + "\n0 warnings, 0 errors\n");
  EXPECT_EQ(readWholeFile(folder.file("ibis_components.kvscr")),
            writtenByCall({{source}, {"script", "", "", ""}}, "ibis_components.kvscr"));
}

TEST(Convert, SymbolModeWritesNothingAndSaysSo) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  const Outcome result = convert({source, "-m", "symbol", "-o", folder.file("out")});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "0 warnings, 1 error\n");
  EXPECT_EQ(result.err, source + ": error: Mode 'symbol' writes nothing\n");
  EXPECT_THAT(folder.names(), ElementsAre("buffer.ibs"));
}

TEST(Convert, TakesModesInAnyCase) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  const Outcome result = convert({source, "--mode", "PacKage", "-o", folder.path()});
  EXPECT_EQ(result.out, folder.file("BUF_1.lb") + "\n0 warnings, 0 errors\n");
}

TEST(Convert, WritesTheComponentAskedFor) {
  const TemporaryFolder folder;
  const std::string second = "[Component] TWO\n[Pin] signal_name model_name\n7 Z in\n";
  const std::string source = folder.write("two.ibs", partText + second + receiverText);
  const Outcome result = convert({source, "-c", "TWO", "-o", folder.path()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(readWholeFile(folder.file("TWO.lb")),
            writtenByCall({{source}, {"model", "TWO", "", "TWO"}}, "TWO.lb"));
}

TEST(Convert, WritesThePinsAskedFor) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  const json onlyOne = {{source}, {"model", "", "", "dut"}, {"1"}};
  const json both = {{source}, {"model", "", "", "dut"}, {"1", "2"}};
  ASSERT_NE(writtenByCall(onlyOne, "dut.lb"), writtenByCall(both, "dut.lb"));
  ASSERT_EQ(convert({"-p", "1", source, "-s", "dut", "-o", folder.path()}).status, 0);
  EXPECT_EQ(readWholeFile(folder.file("dut.lb")), writtenByCall(onlyOne, "dut.lb"));
  ASSERT_EQ(convert({"-p", "1", "-p", "2", source, "-s", "dut", "-o", folder.path()}).status, 0);
  EXPECT_EQ(readWholeFile(folder.file("dut.lb")), writtenByCall(both, "dut.lb"));
}

TEST(Convert, TakesSelectionsAsPlainText) {
  const TemporaryFolder folder;
  const std::string selector = "[Model Selector] in\nslow the slow one\nfast C:\\slew\\fast\n";
  const std::string models =
      "[Model] slow\nModel_type Terminator\n[Model] fast\nModel_type Terminator\n";
  const std::string source = folder.write("select.ibs", partText + selector + models);
  const Outcome result =
      convert({source, "--select", R"(C:\slew\fast)", "-s", "dut", "-o", folder.path()});
  EXPECT_EQ(result.err, "");
  const json request = {{source}, {"model", "", "", "dut"}, json::array(), {R"(C:\\slew\\fast)"}};
  EXPECT_EQ(readWholeFile(folder.file("dut.lb")), writtenByCall(request, "dut.lb"));
}

TEST(Convert, QuietPrintsNothing) {
  const TemporaryFolder folder;
  const std::string source = folder.write("warning.ibs", warningText);
  const Outcome result = convert({source, "-q", "-m", "package", "-o", folder.path()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, source + ":14: warning: Model 'in': Vinl not defined using default 0.8V\n" +
                            source +
                            ":14: warning: Model 'in': Vinh not defined using default 2.0V\n");
}

TEST(Convert, JsonHoldsAllAndNothingStandsBesideIt) {
  const TemporaryFolder folder;
  const std::string source = folder.write("warning.ibs", warningText);
  for (const bool isQuiet : {false, true}) {
    std::vector<std::string> words = {source, "--json", "-m", "package", "-o", folder.path()};
    if (isQuiet) words.push_back("-q");
    EXPECT_EQ(
        convert(words).out,
        R"({"status":0,"files":[")" + folder.file("BUF_1.lb") +
            R"("],"warnings":[)"
            R"({"id":"vinl-default","line":14,"text":"Model 'in': Vinl not defined using default 0.8V"},)"
            R"({"id":"vinh-default","line":14,"text":"Model 'in': Vinh not defined using default 2.0V"}],)"
            R"("errors":[]})"
            "\n");
  }
}

TEST(Convert, JsonTellsOfErrorsWithoutALine) {
  const Outcome result = convert({"nowhere.ibs", "--json"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(
      result.out,
      R"({"status":1,"files":[],"warnings":[],"errors":[{"id":"cannot-open-file","line":null,"text":)"
      R"("Cannot open the file: No such file or directory"}]})"
      "\n");
}

TEST(Convert, JsonReplacesBytesThatAreNotUtf8) {
  const TemporaryFolder folder;
  const std::string source = folder.write(
      "bytes.ibs",
      "[IBIS Ver] 4.2\n[Component] X\n[Pin] signal_name model_name\n\xff\xe2\x82 A none\n");
  const Outcome result = convert({source, "--json"});
  EXPECT_EQ(json::parse(result.out)["errors"][0]["text"],
            "Model referenced by pin '\uFFFD\uFFFD' has not been defined");
  EXPECT_EQ(result.err,
            source + ":4: error: Model referenced by pin '\\xFF\\xE2\\x82' has not been defined\n" +
                source + ": note: the pin names model 'none'\n");
}

TEST(Convert, WarningsAsErrorsChangeTheStatusAlone) {
  const TemporaryFolder folder;
  const std::string source = folder.write("warning.ibs", warningText);
  const Outcome result = convert({source, "--werror", "-m", "package", "-o", folder.path()});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, folder.file("BUF_1.lb") + "\n2 warnings, 0 errors\n");
  EXPECT_THAT(folder.names(), ElementsAre("BUF_1.lb", "warning.ibs"));
}

TEST(Convert, WarningsAsErrorsPassAFileWithoutWarnings) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  EXPECT_EQ(convert({source, "--werror", "-o", folder.path()}).status, 0);
}

TEST(Convert, NothingIsWrittenForAFileWithErrors) {
  const TemporaryFolder folder;
  const std::string source = folder.write("bad.ibs", partText + "[End]\n");
  const Outcome result = convert({source, "-o", folder.file("out")});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "0 warnings, 1 error\n");
  EXPECT_EQ(result.err, source + ":12: error: Model referenced by pin '1' has not been defined\n" +
                            source + ": note: the pin names model 'in'\n");
  EXPECT_THAT(folder.names(), ElementsAre("bad.ibs"));
}

TEST(Convert, AnOutputFileIsNeverTheInputFile) {
  const struct {
    const char* mode;
    const char* name;
  } cases[] = {{"model", "dut.lb"},
               {"model", "dut_INFO.html"},
               {"package", "dut.lb"},
               {"script", "ibis_components.kvscr"}};
  for (const auto& [mode, name] : cases) {
    const TemporaryFolder folder;
    const std::string source = folder.write(name, bufferText);
    const Outcome result = convert({source, "-m", mode, "-s", "dut", "-o", folder.path()});
    EXPECT_EQ(result.status, 1) << mode << ' ' << name;
    EXPECT_EQ(result.err,
              source + ": error: Output file '" + source + "' is the input file itself\n");
    EXPECT_EQ(readWholeFile(source), bufferText);
    EXPECT_THAT(folder.names(), ElementsAre(name));
  }
}

TEST(Convert, AnOutputFileIsNeverALinkToTheInputFile) {
  for (const bool isSymbolic : {false, true}) {
    const TemporaryFolder folder;
    const std::string source = folder.write("buffer.ibs", bufferText);
    if (isSymbolic) {
      std::filesystem::create_symlink(source, folder.file("BUF_1.lb"));
    } else {
      std::filesystem::create_hard_link(source, folder.file("BUF_1.lb"));
    }
    const Outcome result = convert({source, "-o", folder.path()});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, source + ": error: Output file '" + folder.file("BUF_1.lb") +
                              "' is the input file itself\n");
    EXPECT_EQ(readWholeFile(source), bufferText);
  }
}

TEST(Convert, WritesOverEarlierOutput) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  folder.write("BUF_1.lb", std::string(100'000, 'x'));
  EXPECT_EQ(convert({source, "-m", "package", "-o", folder.path()}).status, 0);
  EXPECT_EQ(readWholeFile(folder.file("BUF_1.lb")),
            writtenByCall({{source}, {"package", "", "", "BUF_1"}}, "BUF_1.lb"));
}

TEST(Convert, AReaderThatLeftEndsInStatusOne) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  const Outcome result = convert({source, "-o", folder.path()}, {.outputHasNoReader = true});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "ibis-load: error: cannot write to standard output\n");
}

TEST(Convert, AFullStandardOutputEndsInStatusOne) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  const Outcome result = convert({source, "--json", "-o", folder.path()}, {.output = "/dev/full"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "ibis-load: error: cannot write to standard output\n");
  EXPECT_THAT(folder.names(), ElementsAre("BUF_1.lb", "BUF_1_INFO.html", "buffer.ibs"));
}

}  // namespace
}  // namespace ibis::testing
