#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

using ::testing::HasSubstr;

const std::string seeHelp = "Run with --help for more information.\n";

TEST(Usage, TheVersionIsOneLine) {
  const Outcome result = run({"--version"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "ibis-load 0.1.0\n");
  EXPECT_EQ(result.err, "");
}

TEST(Usage, WrongUseEndsInStatusTwoAndSaysWhy) {
  const struct {
    std::vector<std::string> words;
    std::string reason;
  } cases[] = {
      {{"--unknown"}, "A subcommand is required"},
      {{"convert"}, "FILE is required"},
      {{"convert", "a.ibs", "--unknown"}, "The following argument was not expected: --unknown"},
      {{"convert", "a.ibs", "-m"}, "--mode: 1 required MODE:{model,package,script,symbol} missing"},
      {{"convert", "a.ibs", "-m", "models"}, "--mode: models not in {model,package,script,symbol}"},
      {{"convert", "a.ibs", "-m", ""}, "--mode:  not in {model,package,script,symbol}"},
      {{"convert", "a.ibs", "-m", "2"}, "--mode: 2 not in {model,package,script,symbol}"},
      {{"convert", "a.ibs", "-o", ""}, "--output: A folder's name is not empty"},
      {{"convert", "a.ibs", "-s", "a/b"},
       "--subcircuit: A subcircuit's name holds no blank, '/' or '%'"},
      {{"convert", "a.ibs", "-s", "a b"},
       "--subcircuit: A subcircuit's name holds no blank, '/' or '%'"},
      {{"convert", "a.ibs", "-s", "%rootdir%"},
       "--subcircuit: A subcircuit's name holds no blank, '/' or '%'"},
      {{"convert", "a.ibs", "b.ibs", "-s", "dut"},
       "--subcircuit: Only one FILE can be given a subcircuit's name"},
      {{"convert", ".", "-s", "dut"},
       "--subcircuit: Only one FILE can be given a subcircuit's name"},
      {{"convert", "a.ibs", "-j"}, "--jobs: 1 required N missing"},
      {{"convert", "a.ibs", "-j", ""}, "--jobs: '' is not a number from 0 to 1024"},
      {{"convert", "a.ibs", "-j", "two"}, "--jobs: 'two' is not a number from 0 to 1024"},
      {{"convert", "a.ibs", "-j", "-1"}, "--jobs: '-1' is not a number from 0 to 1024"},
      {{"convert", "a.ibs", "-j", "08"}, "--jobs: '08' is not a number from 0 to 1024"},
      {{"convert", "a.ibs", "-j", "1025"}, "--jobs: '1025' is not a number from 0 to 1024"},
      {{"convert", "a.ibs", "-j", "10000"}, "--jobs: '10000' is not a number from 0 to 1024"},
      {{"list", "a.ibs", "--\x1b[m"}, "The following argument was not expected: --\\x1B[m"},
      {{"call", "extra"}, "The following argument was not expected: extra"},
      {{"call", "--plugin"}, "--plugin: 1 required PATH missing"},
  };
  for (const auto& [words, reason] : cases) {
    const Outcome result = run(words);
    EXPECT_EQ(result.status, 2) << reason;
    EXPECT_EQ(result.out, "") << reason;
    EXPECT_EQ(result.err, reason + '\n' + seeHelp);
  }
}

TEST(Usage, AWordThatIsNoCommandSaysWhichWasMeant) {
  const TemporaryFolder folder;
  folder.write("part", "");
  const std::string rest =
      "\nThe commands are list, show, check, convert, export, verify, call.\n" + seeHelp;
  const struct {
    std::vector<std::string> words;
    std::string fault;
  } cases[] = {
      {{}, "a command is missing"},
      {{"conver", "a.ibs"}, "'conver' is not a command; did you mean 'convert'?"},
      {{"SHOW"}, "'SHOW' is not a command; did you mean 'show'?"},
      {{"frobnicate"}, "'frobnicate' is not a command"},
      {{"help"}, "'help' is not a command; did you mean 'ibis-load --help'?"},
      {{"a.ibs"},
       "'a.ibs' is not a command; did you mean 'ibis-load convert a.ibs' or 'ibis-load list "
       "a.ibs'?"},
      {{"part"},
       "'part' is not a command; did you mean 'ibis-load convert part' or 'ibis-load list part'?"},
      {{"\x1b[m"}, "'\\x1B[m' is not a command"},
  };
  for (const auto& [words, fault] : cases) {
    const Outcome result = run(words, {.folder = folder.path()});
    EXPECT_EQ(result.status, 2) << fault;
    EXPECT_EQ(result.out, "") << fault;
    EXPECT_EQ(result.err, "ibis-load: error: " + fault + rest);
  }
}

TEST(Usage, AFileMayBeCalledLikeAnOption) {
  const Outcome result = run({"convert", "--", "--json"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "--json: error: Cannot open the file: No such file or directory\n");
}

TEST(Usage, AFileMayBeCalledLikeACommand) {
  const Outcome result = run({"convert", "call"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "call: error: Cannot open the file: No such file or directory\n");
}

TEST(Usage, ThePinsNameMayBeginWithADash) {
  const TemporaryFolder folder;
  std::string text = bufferText;
  text.replace(text.find("1 A"), 1, "-1");
  for (const std::string option : {"-p=-1", "--pin=-1", "-p-1"}) {
    const Outcome result = run({"convert", folder.write("buffer.ibs", text), option, "-q", "-m",
                                "package", "-o", folder.path()});
    EXPECT_EQ(result.status, 0) << option;
    EXPECT_EQ(result.err, "") << option;
  }
}

TEST(Usage, ShortAndLongNamesMeanTheSame) {
  const TemporaryFolder folder;
  const std::string source = folder.write("warning.ibs", warningText);
  const Outcome brief = run({"convert", source, "-m", "package", "-c", "BUF-1", "-o", folder.path(),
                             "-s", "dut", "-p", "1", "-q"});
  const Outcome full =
      run({"convert", source, "--mode", "package", "--component", "BUF-1", "--output",
           folder.path(), "--subcircuit", "dut", "--pin", "1", "--quiet"});
  EXPECT_EQ(brief.status, 0);
  EXPECT_EQ(full.status, 0);
  EXPECT_EQ(brief.out + full.out, "");
  EXPECT_EQ(brief.err, full.err);
}

TEST(Usage, TheHelpOfTheProgramNamesItsCommands) {
  const Outcome result = run({"--help"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, R"(Turns IBIS files into SPICE libraries.
Usage: ibis-load [OPTIONS] SUBCOMMAND

Options:
  -h,--help                   Print this help message and exit
  -V,--version                Print the version and exit

Subcommands:
  list                        List components, models, selectors and packages of files.
  show                        Show a model, pin or component in full, or write one table as CSV.
  check                       Check IBIS files, line by line.
  convert                     Convert IBIS files, in the way that MODE tells.
  export                      Write models as plain SPICE for open simulators.
  verify                      Export models, simulate them and compare with the file.
  call                        Call the plug-in as a host does: JSON arguments in, JSON result out.

Exit status: 0 done; 1 errors, or nothing written; 2 usage error.

Examples:
  ibis-load list buffer.ibs
  ibis-load show buffer.ibs out_24mA
  ibis-load check buffer.ibs
  ibis-load convert buffer.ibs -o out
  ibis-load convert --help
)");
}

TEST(Usage, TheHelpOfConvertTellsOfEachOptionModeAndStatus) {
  const Outcome result = run({"convert", "--help"});
  EXPECT_EQ(result.status, 0);
  for (const std::string text :
       {"Usage: ibis-load convert [OPTIONS] FILE...\n", "\n  -j,--jobs N=1 ", "\n  -m,--mode MODE",
        "\n  -c,--component ", "\n  -o,--output DIR=.", "\n  -s,--subcircuit SUBCKT ",
        "\n  -p,--pin PIN ...", "\n  --select DESCRIPTION ...", "\n  --json ", "\n  -q,--quiet ",
        "\n  --werror ",
        "\nModes, and what each writes into DIR:\n"
        "  model    SUBCKT.lb, the SPICE library of the component and its "
        "models, and\n"
        "           SUBCKT_INFO.html, a page about them\n"
        "  package  SUBCKT.lb, the SPICE library of the component's "
        "package alone\n"
        "  script   ibis_components.kvscr, a host script about every "
        "component of the\n"
        "           file; it needs no COMPONENT, and with one leaves out "
        "the pins of the\n"
        "           others\n"
        "  symbol   nothing; the file is read and checked, which ends "
        "with status 1\n\n",
        "\nMany files: several FILEs, or a folder", "\nExit status: 0 files written",
        "\nExamples:\n"}) {
    EXPECT_THAT(result.out, HasSubstr(text));
  }
}

TEST(Usage, TheHelpOfExportTellsOfEachOptionAndStatus) {
  const Outcome result = run({"export", "--help"});
  EXPECT_EQ(result.status, 0);
  for (const std::string text :
       {"Usage: ibis-load export [OPTIONS] FILE\n", "\n  -f,--format SIMULATOR",
        "\n  --corner CORNER", "\n  -c,--component COMPONENT", "\n  -p,--pin PIN ...",
        "\n  --model NAME ...", "\n  --all-models ", "\n  --select DESCRIPTION ...",
        "\n  --package KIND ", "\n  --min-coupling K", "\n  --bench ", "\n  -o,--output DIR",
        "\n  --json ", "\n  -q,--quiet ", "\n  --werror ", "\nExit status: 0 files written",
        "\nExamples:\n"}) {
    EXPECT_THAT(result.out, HasSubstr(text));
  }
}

TEST(Usage, TheHelpOfVerifyTellsOfEachOptionAndStatus) {
  const Outcome result = run({"verify", "--help"});
  EXPECT_EQ(result.status, 0);
  for (const std::string text :
       {"Usage: ibis-load verify [OPTIONS] FILE\n", "\n  --model NAME ...", "\n  --corner CORNER",
        "\n  --limit PERCENT", "\n  -j,--jobs N", "\n  --max-time SECONDS", "\n  --max-messages N",
        "\n  --coarse ", "\n  --json ", "\nExit status: 0 all within the limit", "\nExamples:\n"}) {
    EXPECT_THAT(result.out, HasSubstr(text));
  }
}

TEST(Usage, TheHelpOfCallTellsOfTheRequestAndTheResult) {
  const Outcome result = run({"call", "--help"});
  EXPECT_EQ(result.status, 0);
  for (const std::string text :
       {"Usage: ibis-load call [OPTIONS]\n", "\n  --plugin PATH ", "\n  1  mode, component, root ",
        "\nThe result holds status ", "\nExit status: 0 the call was made", "\nExamples:\n"}) {
    EXPECT_THAT(result.out, HasSubstr(text));
  }
}

TEST(Usage, HelpForAReaderThatLeftEndsInStatusOne) {
  EXPECT_EQ(run({"convert", "--help"}, {.outputHasNoReader = true}).status, 1);
}

}  // namespace
}  // namespace ibis::testing
