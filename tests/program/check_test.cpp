#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "program/run.h"

namespace ibis::testing {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;

const std::string seeHelp = "Run with --help for more information.\n";

std::string sound() { return readWholeFile(IBIS_SOURCE_DIR "/examples/push_pull_buffer.ibs"); }

std::string planted(const std::string& old, const std::string& other) {
  std::string text = sound();
  const std::size_t place = text.find(old);
  EXPECT_NE(place, text.npos) << old;
  return text.replace(place, old.size(), other);
}

std::string withComma() { return planted("4.5pF     3.8pF", "4,5pF     3.8pF"); }

TEST(CheckCommand, TellsNothingOfASoundFile) {
  const TemporaryFolder folder;
  const Outcome result = run({"check", folder.write("push_pull_buffer.ibs", sound())});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, "1 file: 0 errors, 0 warnings\n");
}

TEST(CheckCommand, TellsPlaceTextLineCaretAndRemedy) {
  const TemporaryFolder folder;
  const std::string name = folder.write("push_pull_buffer.ibs", withComma());
  const Outcome result = run({"check", name});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, name +
                            ":61:16: error: C_comp: '4,5pF' has a decimal comma; it is read as 4 F "
                            "(expected 4.5pF) [numeric-decimal-comma]\n"
                            "    C_comp         4,5pF     3.8pF     5.4pF\n"
                            "                   ^~~~~\n" +
                            name + ":61: note: write a point\n");
  EXPECT_EQ(result.out, "     1  numeric-decimal-comma\n1 file: 1 error, 0 warnings\n");
}

TEST(CheckCommand, TellsNoControlCharacterRaw) {
  const TemporaryFolder folder;
  const std::string text = planted("[Manufacturer] Example", "[Manufacturer] \x1b[31m\xc2\x9b\xff");
  const Outcome result = run({"check", folder.write("push_pull_buffer.ibs", text)});
  EXPECT_EQ(result.err.find('\x1b'), std::string::npos);
  EXPECT_EQ(result.err.find('\xff'), std::string::npos);
  EXPECT_THAT(result.err, HasSubstr("    [Manufacturer] \\x1B[31m\\xC2\\x9B\\xFF Devices\n"
                                    "                   ^~~~\n"));
}

TEST(CheckCommand, ColorsWhenItIsTold) {
  const TemporaryFolder folder;
  const std::string name = folder.write("push_pull_buffer.ibs", withComma());
  EXPECT_THAT(run({"check", name, "--color", "always"}).err,
              HasSubstr(" \x1b[1;31merror:\x1b[0m C_comp"));
  EXPECT_THAT(run({"check", name, "--color=never"}).err, Not(HasSubstr("\x1b")));
  EXPECT_THAT(run({"check", name}).err, Not(HasSubstr("\x1b")));
}

TEST(CheckCommand, TellsNotesWhenTheyAreWanted) {
  const TemporaryFolder folder;
  const std::string name = folder.write("other.ibs", sound());
  EXPECT_EQ(run({"check", name}).err, "");
  const std::string note = name +
                           ":6:16: note: [File Name] is 'push_pull_buffer.ibs', the file is "
                           "'other.ibs' [header-file-name-mismatch]\n";
  for (const std::string word : {"-Wall", "-Wheader", "-Wheader-file-name-mismatch"}) {
    const Outcome result = run({"check", name, word});
    EXPECT_EQ(result.status, 0) << word;
    EXPECT_THAT(result.err, HasSubstr(note)) << word;
  }
  EXPECT_EQ(run({"check", name, "-Wall", "-Wno-header"}).err, "");
}

TEST(CheckCommand, LeavesOutWhatIsSwitchedOff) {
  const TemporaryFolder folder;
  const std::string name = folder.write("push_pull_buffer.ibs", withComma());
  for (const std::string word : {"-Wno-numeric", "-Wno-numeric-decimal-comma"}) {
    const Outcome result = run({"check", name, word});
    EXPECT_EQ(result.status, 0) << word;
    EXPECT_EQ(result.err, "") << word;
  }
}

TEST(CheckCommand, MakesErrorsOfWarnings) {
  const TemporaryFolder folder;
  const std::string name =
      folder.write("push_pull_buffer.ibs", planted("Cref  = 50pF", "Cref  = 50"));
  EXPECT_EQ(run({"check", name}).status, 0);
  for (const std::string word : {"--werror", "--werror=model", "--werror=model-cref-implausible"}) {
    const Outcome result = run({"check", word, name});
    EXPECT_EQ(result.status, 1) << word;
    EXPECT_THAT(result.err, HasSubstr(": error: Cref of 'ex_out' is 50 F")) << word;
  }
  EXPECT_EQ(run({"check", "--werror=table", name}).status, 0);
}

TEST(CheckCommand, TellsFiveOfARuleAndCountsTheOthers) {
  std::string text = sound();
  char letter = 'k';
  for (const std::string pin : {"A1  ", "Y1  ", "A2  ", "Y2  ", "A3  ", "Y3  ", "B1  "}) {
    const std::size_t place = text.find("ex_", text.find("       " + pin));
    ASSERT_NE(place, text.npos);
    text[place] = letter++;
  }
  const TemporaryFolder folder;
  const std::string name = folder.write("push_pull_buffer.ibs", text);
  const Outcome result = run({"check", name});
  EXPECT_THAT(result.err, HasSubstr(name + ": ... 2 more of pin-model-undefined\n"));
}

TEST(CheckCommand, ExplainsARule) {
  const Outcome result = run({"check", "--explain", "numeric-decimal-comma"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out,
            "### numeric-decimal-comma\n\n"
            "*error*: `{}: '{}' has a decimal comma; it is read as {} (expected {})`\n\n"
            "A comma and a digit stand behind the digits of a number.\n"
            "Remedy: write a point.\n"
            "Basis: 4.2, section 3.\n");
  EXPECT_EQ(run({"check", "--explain", "all"}).out,
            readWholeFile(IBIS_SOURCE_DIR "/docs/checks.md"));
}

TEST(CheckCommand, WrongUseEndsInStatusTwoAndSaysWhy) {
  const struct {
    std::vector<std::string> words;
    std::string reason;
  } cases[] = {
      {{"check"}, "FILE is required"},
      {{"check", "a.ibs", "-Wno-numric"},
       "-W: 'no-numric' is no rule and no group; did you mean 'numeric'?"},
      {{"check", "a.ibs", "--werror=xyzzy"}, "--werror: 'xyzzy' is no rule and no group"},
      {{"check", "--explain", "table-outlir"},
       "--explain: 'table-outlir' is no rule and no group; did you mean 'table-outlier'?"},
      {{"check", "a.ibs", "--json", "--sarif"}, "--sarif: --json and --sarif exclude each other"},
      {{"check", "a.ibs", "--color", "red"}, "--color: red not in {auto,always,never}"},
  };
  for (const auto& [words, reason] : cases) {
    const Outcome result = run(words);
    EXPECT_EQ(result.status, 2) << reason;
    EXPECT_EQ(result.err, reason + '\n' + seeHelp);
  }
}

TEST(CheckCommand, TellsWhyAFileCannotBeRead) {
  const Outcome result = run({"check", "absent.ibs"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err,
            "absent.ibs: error: Cannot open the file: No such file or directory "
            "[cannot-open-file]\n");
}

TEST(CheckCommand, ChecksTheFilesOfAFolder) {
  const TemporaryFolder folder;
  folder.write("a.ibs", withComma());
  folder.write("b.IBS", sound());
  folder.write("c.txt", "no");
  const Outcome result = run({"check", folder.path()});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "     1  numeric-decimal-comma\n2 files: 1 error, 0 warnings\n");
}

constexpr const char* commaJson =
    R"json("diagnostics":[{"id":"numeric-decimal-comma","severity":"error","line":61,"column":16,)json"
    R"json("length":5,"text":"C_comp: '4,5pF' has a decimal comma; it is read as 4 F )json"
    R"json((expected 4.5pF)","notes":[{"line":null,"text":"write a point"}]}],)json"
    R"json("counts":{"error":1,"warning":0,"note":0}})json";

TEST(CheckCommand, ReportsOneFileAsAnObject) {
  const TemporaryFolder folder;
  const std::string name = folder.write("push_pull_buffer.ibs", withComma());
  const Outcome result = run({"check", name, "--json"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, "{\"file\":\"" + name + "\"," + commaJson + "\n");
}

TEST(CheckCommand, ReportsSeveralFilesAsAnArray) {
  const TemporaryFolder folder;
  const std::string bad = folder.write("a.ibs", withComma());
  const std::string good = folder.write("push_pull_buffer.ibs", sound());
  const std::string expected = "[{\"file\":\"" + bad + "\"," + commaJson + ",\n{\"file\":\"" +
                               good + R"(","diagnostics":[],)" +
                               R"("counts":{"error":0,"warning":0,"note":0}}])" + "\n";
  EXPECT_EQ(run({"check", bad, good, "--json"}).out, expected);
  EXPECT_EQ(run({"check", folder.path(), "--json"}).out, expected);
}

TEST(CheckCommand, ReportsAFolderOfOneFileAsAnArray) {
  const TemporaryFolder folder;
  const std::string name = folder.write("a.ibs", withComma());
  EXPECT_EQ(run({"check", folder.path(), "--json"}).out,
            "[{\"file\":\"" + name + "\"," + commaJson + "]\n");
}

TEST(CheckCommand, ReportsWhatHasNoPlaceAsNull) {
  const Outcome result = run({"check", "absent.ibs", "--json"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out,
            R"({"file":"absent.ibs","diagnostics":[{"id":"cannot-open-file","severity":"error",)"
            R"("line":null,"column":null,"length":null,)"
            R"("text":"Cannot open the file: No such file or directory","notes":[]}],)"
            R"("counts":{"error":1,"warning":0,"note":0}})"
            "\n");
}

TEST(CheckCommand, ReportsInAscii) {
  const TemporaryFolder folder;
  const std::string text = planted("[Manufacturer] Example", "[Manufacturer] \xc3\xa4\xff");
  const Outcome result = run({"check", folder.write("\xc3\xa4.ibs", text), "-Wall", "--json"});
  EXPECT_THAT(result.out, HasSubstr("/\\u00e4.ibs\""));
  for (const char c : result.out) EXPECT_TRUE(c == '\n' || (c >= ' ' && c <= '~')) << int{c};
}

TEST(CheckCommand, ReportsAsSarif) {
  const TemporaryFolder folder;
  const std::string name = folder.write("a b.ibs", withComma());
  const Outcome result = run({"check", name, "--sarif"});
  EXPECT_EQ(result.status, 1);
  const json log = json::parse(result.out);
  EXPECT_EQ(log["version"], "2.1.0");
  const json& tool = log["runs"][0]["tool"]["driver"];
  EXPECT_EQ(tool["name"], "ibis-load");
  const json& found = log["runs"][0]["results"][0];
  EXPECT_EQ(tool["rules"][found["ruleIndex"].get<std::size_t>()]["id"], "numeric-decimal-comma");
  EXPECT_EQ(found["ruleId"], "numeric-decimal-comma");
  EXPECT_EQ(found["level"], "error");
  const json& place = found["locations"][0]["physicalLocation"];
  EXPECT_EQ(place["artifactLocation"]["uri"], "file://" + folder.path() + "/a%20b.ibs");
  EXPECT_EQ(place["region"],
            json::parse(R"({"startLine": 61, "startColumn": 16, "endColumn": 21})"));
  EXPECT_EQ(found["relatedLocations"][0]["message"]["text"], "write a point");
}

TEST(CheckCommand, ReportsAllFilesInOneRunOfSarif) {
  const TemporaryFolder folder;
  folder.write("a.ibs", withComma());
  folder.write("b.ibs", sound());
  folder.write("c.ibs", withComma());
  const json log = json::parse(run({"check", folder.path(), "--sarif"}).out);
  ASSERT_EQ(log["runs"].size(), 1U);
  const std::string front = "file://" + folder.path() + "/";
  EXPECT_EQ(log["runs"][0]["artifacts"], json::array({{{"location", {{"uri", front + "a.ibs"}}}},
                                                      {{"location", {{"uri", front + "b.ibs"}}}},
                                                      {{"location", {{"uri", front + "c.ibs"}}}}}));
  const json& results = log["runs"][0]["results"];
  ASSERT_EQ(results.size(), 2U);
  const auto uri = [](const json& result) {
    return result["locations"][0]["physicalLocation"]["artifactLocation"]["uri"];
  };
  EXPECT_EQ(uri(results[0]), front + "a.ibs");
  EXPECT_EQ(uri(results[1]), front + "c.ibs");
}

TEST(CheckCommand, ReportsASoundFileAsSarifWithoutResults) {
  const TemporaryFolder folder;
  const Outcome result = run({"check", folder.write("push_pull_buffer.ibs", sound()), "--sarif"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(json::parse(result.out)["runs"][0]["results"], json::array());
}

}  // namespace
}  // namespace ibis::testing
