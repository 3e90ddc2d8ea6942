// The commands that write for open simulators, run as a user runs them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "ngspice.h"
#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

const std::string example = IBIS_SOURCE_DIR "/examples/push_pull_buffer.ibs";
const std::string seeHelp = "Run with --help for more information.\n";

// Two receivers that differ in name alone, which export without a message; 13 lines ahead of them.
const std::string receiversText =
    "[IBIS Ver] 4.2\n[Component] PAIR\n[Manufacturer] maker\n[Package]\nR_pkg 0.5 0.4 0.6\n"
    "L_pkg 2n NA NA\nC_pkg 1p NA NA\n[Pin] signal_name model_name\n1 A in\n2 B other\n3 C GND\n"
    "[Model] in\nModel_type Input\nVinl = 0.8\nVinh = 2.0\nC_comp 1p 1p 1p\n[Voltage Range] 3 NA "
    "NA\n"
    "[Model] other\nModel_type Input\nVinl = 0.8\nVinh = 2.0\nC_comp 1p 1p 1p\n[Voltage Range] 3 "
    "NA NA\n[End]\n";

// A receiver without thresholds, whose model stands on line 10.
const std::string oddText =
    "[IBIS Ver] 4.2\n[Component] ODD\n[Manufacturer] maker\n[Package]\nR_pkg 0.5 NA NA\n"
    "L_pkg 2n NA NA\nC_pkg 1p NA NA\n[Pin] signal_name model_name\n1 A in\n"
    "[Model] in\nModel_type Input\nC_comp 1p 1p 1p\n[Voltage Range] 3 NA NA\n[End]\n";

Outcome exportTo(const std::string& folder, const std::string& source,
                 std::vector<std::string> words = {}) {
  words.insert(words.begin(), {"export", source, "-o", folder});
  return run(words);
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string subcircuitsOf(const std::string& text) {
  std::string names;
  for (const std::string& line : linesOf(text)) {
    if (line.starts_with(".ends ")) names += line.substr(6) + ' ';
  }
  return names;
}

// From a subcircuit's first line to its last one.
std::string subcircuit(const std::string& text, const std::string& name) {
  const std::size_t start = text.find(".subckt " + name + ' ');
  const std::string end = ".ends " + name + '\n';
  const std::size_t stop = text.find(end, start);
  if (start == text.npos || stop == text.npos) return {};
  return text.substr(start, stop + end.size() - start);
}

// The search path of the runs, put back with the object.
class SearchPath {
 public:
  explicit SearchPath(const std::string& path) : before_(std::getenv("PATH")) {
    setenv("PATH", path.c_str(), 1);
  }
  ~SearchPath() { setenv("PATH", before_.c_str(), 1); }
  SearchPath(const SearchPath&) = delete;
  SearchPath& operator=(const SearchPath&) = delete;

 private:
  std::string before_;
};

bool hasNgspice() {
  try {
    cli::requireNgspice();
  } catch (const cli::SimulatorFault&) {
    return false;
  }
  return true;
}

TEST(ExportCommand, WritesTheComponentIntoAFolderThatItMakes) {
  const TemporaryFolder folder;
  const std::string source = folder.write("pair.ibs", receiversText);
  const std::string out = folder.file("made/for/it");
  const Outcome result = exportTo(out, source);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, out + "/PAIR_typ.inc\n0 warnings, 0 errors\n");
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(subcircuitsOf(readWholeFile(out + "/PAIR_typ.inc")),
            "in_typ in_typ_v other_typ other_typ_v PAIR_typ PAIR_typ_v ");
}

TEST(ExportCommand, WritesIntoTheCurrentFolderByDefault) {
  const TemporaryFolder folder;
  folder.write("pair.ibs", receiversText);
  const Outcome result = run({"export", "pair.ibs"}, {.folder = folder.path()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "./PAIR_typ.inc\n0 warnings, 0 errors\n");
  EXPECT_THAT(folder.names(), ElementsAre("PAIR_typ.inc", "pair.ibs"));
}

TEST(ExportCommand, JsonHoldsAllAndNothingStandsBesideIt) {
  const TemporaryFolder folder;
  const std::string source = folder.write("odd.ibs", oddText);
  const std::string file = folder.file("ODD_typ.inc");
  const std::string expected =
      R"({"status":0,"files":[")" + file +
      R"("],"subcircuits":[{"name":"in_typ","model":"in","component":"ODD","corner":"typ",)"
      R"("file":")" +
      file +
      R"(","ports":["pad","mon","pu","pd","pc","gc"],)"
      R"("rails":{"pu":3.0,"pd":0.0,"pc":3.0,"gc":0.0},"span":0.0,"rising":"none",)"
      R"("falling":"none"},{"name":"ODD_typ","model":null,"component":"ODD","corner":"typ",)"
      R"("file":")" +
      file +
      R"(","ports":["p_1","mon_1","pu","pd","pc","gc"],)"
      R"("rails":{"pu":3.0,"pd":0.0,"pc":3.0,"gc":0.0},"span":0.0,"rising":"none",)"
      R"("falling":"none","railSets":[{"ports":["pu","pd","pc","gc"],)"
      R"("rails":{"pu":3.0,"pd":0.0,"pc":3.0,"gc":0.0},"pins":["p_1"]}]}],"warnings":[)"
      R"({"id":"vinl-default","line":10,"text":"Model 'in': Vinl not defined using default 0.8V"},)"
      R"({"id":"vinh-default","line":10,"text":"Model 'in': Vinh not defined using default 2.0V"},)"
      R"({"id":"thresholds-defaulted","line":10,"text":"Model 'in', typ: input thresholds are not )"
      R"(given; the usual ones are taken"}],"errors":[]})"
      "\n";
  EXPECT_EQ(exportTo(folder.path(), source, {"--json"}).out, expected);
  EXPECT_EQ(exportTo(folder.path(), source, {"--json", "-q"}).out, expected);
}

TEST(ExportCommand, JsonTellsEachSetOfRailsWithItsPins) {
  const TemporaryFolder folder;
  std::string text = receiversText;
  text.replace(text.rfind("3 NA"), 4, "5 NA");
  text.insert(text.find("3 C GND"), "4 D in\n");
  const Outcome result =
      exportTo(folder.path(), folder.write("two.ibs", text), {"--json", "--corner", "typ"});
  const json component = json::parse(result.out)["subcircuits"].back();
  EXPECT_EQ(component["ports"].dump(),
            R"(["p_1","p_2","p_4","mon_1","mon_2","mon_4","pu","pd","pc","gc",)"
            R"("pu2","pd2","pc2","gc2"])");
  EXPECT_EQ(component["rails"], component["railSets"][0]["rails"]);
  EXPECT_EQ(component["railSets"], json::parse(R"([
      {"ports": ["pu", "pd", "pc", "gc"], "rails": {"pu": 3.0, "pd": 0.0, "pc": 3.0, "gc": 0.0},
       "pins": ["p_1", "p_4"]},
      {"ports": ["pu2", "pd2", "pc2", "gc2"], "rails": {"pu": 5.0, "pd": 0.0, "pc": 5.0, "gc": 0.0},
       "pins": ["p_2"]}])"));
}

TEST(ExportCommand, JsonTellsOfErrorsWithoutALine) {
  const Outcome result = run({"export", "nowhere.ibs", "--json"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, R"({"status":1,"files":[],"subcircuits":[],"warnings":[],"errors":[)"
                        R"({"id":"cannot-open-file","line":null,"text":)"
                        R"("Cannot open the file: No such file or directory"}]})"
                        "\n");
  EXPECT_EQ(result.err, "nowhere.ibs: error: Cannot open the file: No such file or directory\n");
}

TEST(ExportCommand, AllModelsGoIntoAFileOfTheSourcesName) {
  const TemporaryFolder folder;
  const std::string source = folder.write("pair.ibs", receiversText);
  const Outcome result = exportTo(folder.path(), source, {"--all-models"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, folder.file("pair_typ.inc") + "\n0 warnings, 0 errors\n");
  EXPECT_EQ(subcircuitsOf(readWholeFile(folder.file("pair_typ.inc"))),
            "in_typ in_typ_v other_typ other_typ_v ");
}

TEST(ExportCommand, WritesTheModelsAskedFor) {
  const TemporaryFolder folder;
  const std::string source = folder.write("pair.ibs", receiversText);
  ASSERT_EQ(exportTo(folder.path(), source, {"--model", "other"}).status, 0);
  EXPECT_EQ(subcircuitsOf(readWholeFile(folder.file("pair_typ.inc"))), "other_typ other_typ_v ");
  ASSERT_EQ(exportTo(folder.path(), source, {"--model", "other", "--model", "in"}).status, 0);
  EXPECT_EQ(subcircuitsOf(readWholeFile(folder.file("pair_typ.inc"))),
            "in_typ in_typ_v other_typ other_typ_v ");
}

TEST(ExportCommand, WritesThePinsAskedFor) {
  const TemporaryFolder folder;
  const std::string source = folder.write("pair.ibs", receiversText);
  ASSERT_EQ(exportTo(folder.path(), source, {"-p", "2"}).status, 0);
  const std::string text = readWholeFile(folder.file("PAIR_typ.inc"));
  EXPECT_EQ(subcircuitsOf(text), "other_typ other_typ_v PAIR_typ PAIR_typ_v ");
  EXPECT_THAT(text, HasSubstr("\n.subckt PAIR_typ p_2 mon_2 pu pd pc gc\n"));
}

TEST(ExportCommand, WritesTheComponentAskedFor) {
  const TemporaryFolder folder;
  std::string text = receiversText;
  text.insert(text.find("[Model] in"),
              "[Component] TWO\n[Manufacturer] maker\n[Package]\nR_pkg 1 NA NA\nL_pkg 1n NA NA\n"
              "C_pkg 1p NA NA\n[Pin] signal_name model_name\n7 Z in\n");
  const std::string source = folder.write("two.ibs", text);
  const Outcome result = exportTo(folder.path(), source, {"-c", "TWO"});
  EXPECT_EQ(result.out, folder.file("TWO_typ.inc") + "\n0 warnings, 0 errors\n");
  EXPECT_EQ(subcircuitsOf(readWholeFile(folder.file("TWO_typ.inc"))),
            "in_typ in_typ_v TWO_typ TWO_typ_v ");
}

TEST(ExportCommand, TakesTheSelectedModel) {
  const TemporaryFolder folder;
  std::string text = receiversText;
  text.insert(text.find("[Model] in"),
              "[Model Selector] choice\nin the first one\nother C:\\the second\n");
  text.replace(text.find("1 A in"), 6, "1 A choice");
  text.replace(text.find("2 B other"), 9, "2 B GND");
  const std::string source = folder.write("select.ibs", text);
  ASSERT_EQ(exportTo(folder.path(), source).status, 0);
  EXPECT_EQ(subcircuitsOf(readWholeFile(folder.file("PAIR_typ.inc"))),
            "in_typ in_typ_v PAIR_typ PAIR_typ_v ");
  const Outcome result = exportTo(folder.path(), source, {"--select", "C:\\the second"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(subcircuitsOf(readWholeFile(folder.file("PAIR_typ.inc"))),
            "other_typ other_typ_v PAIR_typ PAIR_typ_v ");
}

TEST(ExportCommand, WritesAFileForEachCorner) {
  const TemporaryFolder folder;
  const std::string source = folder.write("pair.ibs", receiversText);
  const Outcome result = exportTo(folder.path(), source, {"--corner", "min", "--corner", "max"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, folder.file("PAIR_min.inc") + '\n' + folder.file("PAIR_max.inc") +
                            "\n0 warnings, 0 errors\n");
  EXPECT_THAT(readWholeFile(folder.file("PAIR_min.inc")), HasSubstr("\nR_1 die_1 k_1 0.4\n"));
  EXPECT_THAT(readWholeFile(folder.file("PAIR_max.inc")), HasSubstr("\nR_1 die_1 k_1 0.6\n"));
}

TEST(ExportCommand, WritesThePackageAskedFor) {
  const TemporaryFolder folder;
  std::string text = receiversText;
  text.insert(text.find("[Package]"), "[Package Model] pack\n");
  text.insert(text.find("[End]"),
              "[Define Package Model] pack\n[Manufacturer] maker\n[OEM] maker\n[Description] two\n"
              "[Number Of Pins] 2\n[Pin Numbers]\n1\n2\n[Model Data]\n"
              "[Resistance Matrix] Sparse_matrix\n[Row] 1\n1 0.25\n[Row] 2\n2 0.25\n"
              "[Inductance Matrix] Sparse_matrix\n[Row] 1\n1 4n\n2 1n\n[Row] 2\n2 4n\n"
              "[Capacitance Matrix] Sparse_matrix\n[Row] 1\n1 2p\n2 -0.5p\n[Row] 2\n2 2p\n"
              "[End Model Data]\n[End Package Model]\n");
  const std::string source = folder.write("pack.ibs", text);
  const auto part = [&](const char* kind) {
    const Outcome result = exportTo(folder.path(), source, {"--package", kind});
    EXPECT_EQ(result.err, "") << kind;
    return subcircuit(readWholeFile(folder.file("PAIR_typ.inc")), "PAIR_typ");
  };
  const std::string head = ".subckt PAIR_typ p_1 p_2 mon_1 mon_2 pu pd pc gc\n";
  EXPECT_EQ(part("none"), head +
                              "X_1 p_1 mon_1 pu pd pc gc in_typ\n"
                              "X_2 p_2 mon_2 pu pd pc gc other_typ\n.ends PAIR_typ\n");
  const std::string inside = head +
                             "X_1 die_1 mon_1 pu pd pc gc in_typ\n"
                             "X_2 die_2 mon_2 pu pd pc gc other_typ\n"
                             "* package: die - R - L - pin, C at the pin\n";
  const std::string pins = inside +
                           "R_1 die_1 k_1 0.5\nL_1 k_1 p_1 2e-09\nC_1 p_1 gc 1e-12\n"
                           "R_2 die_2 k_2 0.5\nL_2 k_2 p_2 2e-09\nC_2 p_2 gc 1e-12\n"
                           ".ends PAIR_typ\n";
  EXPECT_EQ(part("pins"), pins);
  ASSERT_EQ(exportTo(folder.path(), source).status, 0);
  EXPECT_EQ(subcircuit(readWholeFile(folder.file("PAIR_typ.inc")), "PAIR_typ"), pins);
  EXPECT_EQ(part("coupled"), inside +
                                 "R_1 die_1 k_1 0.25\nL_1 k_1 p_1 4e-09\nC_1 p_1 gc 1.5e-12\n"
                                 "R_2 die_2 k_2 0.25\nL_2 k_2 p_2 4e-09\nC_2 p_2 gc 1.5e-12\n"
                                 "K1 L_1 L_2 0.25\nCM1 p_1 p_2 5e-13\n.ends PAIR_typ\n");
}

TEST(ExportCommand, WritesABenchBesideEachFile) {
  const TemporaryFolder folder;
  const Outcome result = exportTo(folder.path(), example, {"--bench", "--corner", "max"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, folder.file("EX3214_max.inc") + '\n' + folder.file("EX3214_max_bench.cir") +
                            "\n0 warnings, 0 errors\n");
  const std::string bench = readWholeFile(folder.file("EX3214_max_bench.cir"));
  EXPECT_TRUE(
      bench.starts_with("* bench: ex_out_max drives a line of 50 ohm\n"
                        ".include \"EX3214_max.inc\"\n"))
      << bench;
  EXPECT_TRUE(bench.ends_with("\n.end\n"));
}

TEST(ExportCommand, WritesTheDialectAskedFor) {
  const struct {
    const char* word;
    const char* title;
    const char* lookup;
  } cases[] = {{"ngspice", "ngspice", "=pwl("},
               {"xyce", "Xyce", "={table("},
               {"ltspice", "LTspice", "=table("}};
  for (const auto& [word, title, lookup] : cases) {
    const TemporaryFolder folder;
    const std::string source = folder.write("ex.ibs", readWholeFile(example));
    ASSERT_EQ(exportTo(folder.path(), source, {"-f", word, "--model", "ex_in"}).status, 0);
    const std::string text = readWholeFile(folder.file("ex_typ.inc"));
    EXPECT_EQ(linesOf(text).at(0), std::string("* subcircuits for ") + title +
                                       ", corner typ, made from the IBIS file ex.ibs");
    EXPECT_THAT(text, HasSubstr(std::string("\nBpc pad pc I") + lookup + "V(pc,pad)\n+ ,"));
  }
}

TEST(ExportCommand, QuietPrintsNothing) {
  const TemporaryFolder folder;
  const std::string source = folder.write("odd.ibs", oddText);
  const Outcome result = exportTo(folder.path(), source, {"-q"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err,
            source + ":10: warning: Model 'in': Vinl not defined using default 0.8V\n" + source +
                ":10: warning: Model 'in': Vinh not defined using default 2.0V\n" + source +
                ":10: warning: Model 'in', typ: input thresholds are not given; the usual ones are "
                "taken\n");
}

TEST(ExportCommand, WarningsAsErrorsChangeTheStatusAlone) {
  const TemporaryFolder folder;
  const std::string source = folder.write("odd.ibs", oddText);
  const Outcome result = exportTo(folder.path(), source, {"--werror"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, folder.file("ODD_typ.inc") + "\n3 warnings, 0 errors\n");
  EXPECT_THAT(folder.names(), ElementsAre("ODD_typ.inc", "odd.ibs"));
  const std::string good = folder.write("pair.ibs", receiversText);
  EXPECT_EQ(exportTo(folder.path(), good, {"--werror"}).status, 0);
}

TEST(ExportCommand, AnOutputFileIsNeverTheInputFile) {
  const TemporaryFolder folder;
  const std::string source = folder.write("PAIR_typ.inc", receiversText);
  const Outcome result = exportTo(folder.path(), source);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "0 warnings, 1 error\n");
  EXPECT_EQ(result.err,
            source + ": error: Output file '" + source + "' is the input file itself\n");
  EXPECT_EQ(readWholeFile(source), receiversText);
}

TEST(ExportCommand, WrongUseEndsInStatusTwoAndSaysWhy) {
  const struct {
    std::vector<std::string> words;
    std::string reason;
  } cases[] = {
      {{"export"}, "FILE is required"},
      {{"export", "a.ibs", "b.ibs"}, "The following argument was not expected: b.ibs"},
      {{"export", "a.ibs", "--unknown"}, "The following argument was not expected: --unknown"},
      {{"export", "a.ibs", "-f", "spice"}, "--format: spice not in {ngspice,xyce,ltspice}"},
      {{"export", "a.ibs", "--corner", "slow"}, "--corner: slow not in {typ,min,max}"},
      {{"export", "a.ibs", "--corner"}, "--corner: 1 required CORNER:{typ,min,max} missing"},
      {{"export", "a.ibs", "--package", "all"}, "--package: all not in {coupled,none,pins}"},
      {{"export", "a.ibs", "--package", "2"}, "--package: 2 not in {coupled,none,pins}"},
      {{"export", "a.ibs", "--min-coupling", "2"},
       "--min-coupling: Value 2 not in range 0.000000 to 1.000000"},
      {{"export", "a.ibs", "-p"}, "--pin: 1 required PIN missing"},
      {{"export", "a.ibs", "-o", ""}, "--output: A folder's name is not empty"},
      {{"verify"}, "FILE is required"},
      {{"verify", "a.ibs", "--limit", "0"}, "--limit: '0' is not a number above 0"},
      {{"verify", "a.ibs", "--limit", "much"}, "--limit: 'much' is not a number above 0"},
      {{"verify", "a.ibs", "--max-time", "0"}, "--max-time: Value 0 not in range 1 to 1000000"},
      {{"verify", "a.ibs", "-j", "1025"}, "--jobs: Value 1025 not in range 0 to 1024"},
      {{"verify", "a.ibs", "-j", "two"}, "--jobs: Value two not in range 0 to 1024"},
      {{"verify", "a.ibs", "--corner", "slow"}, "--corner: slow not in {typ,min,max}"},
      {{"verify", "a.ibs", "--model"}, "--model: 1 required NAME missing"},
  };
  for (const auto& [words, reason] : cases) {
    const Outcome result = run(words);
    EXPECT_EQ(result.status, 2) << reason;
    EXPECT_EQ(result.out, "") << reason;
    EXPECT_EQ(result.err, reason + '\n' + seeHelp);
  }
}

// Names that a simulator would take for statements, comments, strings or each other.
std::vector<std::string> hostileNames() {
  return {".ends",
          ".include",
          "\"quoted\"",
          "'quoted'",
          "*",
          "+",
          "{braces}",
          "$end",
          ";end",
          "CASE",
          "case",
          "a=b",
          "(x)",
          "%",
          "\\n",
          std::string(240, 'n'),
          std::string(239, 'n') + "o"};
}

// A pin's columns are cut at a length that a model's name may exceed.
bool isPinName(const std::string& name) { return name.size() < 40; }

std::string hostileText() {
  std::string text =
      "[IBIS Ver] 4.2\n[File Rev] 1\r.include rev\v.include rev\f.include rev\n"
      "[Component] .ends\n[Manufacturer] maker\n[Package]\nR_pkg 1 NA NA\nL_pkg 1n NA NA\n"
      "C_pkg 1p NA NA\n[Pin] signal_name model_name\n";
  for (const std::string& name : hostileNames()) {
    if (isPinName(name)) text += name + " .include " + name + '\n';
  }
  for (const std::string& name : hostileNames()) {
    text += "[Model] " + name +
            "\nModel_type I/O\nVinl = 0.8\nVinh = 1.2\nC_comp 0 0 0\n[Voltage Range] 2 NA NA\n"
            "[Pulldown]\n-2 -0.2 NA NA\n4 0.4 NA NA\n[Pullup]\n-2 0.2 NA NA\n4 -0.4 NA NA\n"
            "[Ramp]\ndV/dt_r 1/1n NA NA\ndV/dt_f 1/1n NA NA\n";
  }
  return text + "[End]\n";
}

// A line that a simulator reads holds no more than the words and signs that an export makes.
void expectPlain(const std::string& text) {
  constexpr const char* signs =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789 _.,:=?<>()+-*{}";
  int depth = 0;
  std::set<std::string> names;
  for (const std::string& line : linesOf(text)) {
    EXPECT_LE(line.size(), 400u);
    for (const char c : line) EXPECT_TRUE(c >= ' ' && c <= '~') << line;
    if (line.starts_with("* ") || line.empty()) continue;
    if (line.starts_with(".include ")) {
      EXPECT_THAT(line, MatchesRegex(".include \"[A-Za-z0-9_]+.inc\""));
      continue;
    }
    EXPECT_EQ(line.find_first_not_of(signs), line.npos) << line;
    if (line.starts_with("+ ")) continue;
    EXPECT_THAT(line, MatchesRegex("(\\.(subckt|ends|options|tran|meas|end)( .*)?|"
                                   "[BCKLRTVX][A-Za-z0-9_]+ .*)"));
    if (line.starts_with(".subckt ")) {
      std::string name = line.substr(8, line.find(' ', 8) - 8);
      for (char& c : name) c = static_cast<char>(std::tolower(c));
      EXPECT_TRUE(names.insert(name).second) << name;
      ++depth;
    }
    if (line.starts_with(".ends ")) --depth;
    EXPECT_TRUE(depth == 0 || depth == 1) << line;
  }
  EXPECT_EQ(depth, 0);
}

TEST(ExportCommand, HostileNamesNeverBecomeALine) {
  const TemporaryFolder folder;
  const std::string source = folder.write("odd\n.include \"name\"\n.ibs", hostileText());
  for (const std::string format : {"ngspice", "xyce", "ltspice"}) {
    for (const bool isAlone : {false, true}) {
      std::vector<std::string> words{"--bench", "--json", "-f", format};
      if (isAlone) words.push_back("--all-models");
      const Outcome result = exportTo(folder.file("out"), source, words);
      EXPECT_EQ(result.status, 0) << result.err;
      const json told = json::parse(result.out);
      EXPECT_EQ(told["files"].size(), 2u);
      const std::vector<std::string> names = hostileNames();
      const auto pins = static_cast<std::size_t>(std::ranges::count_if(names, isPinName));
      EXPECT_EQ(told["subcircuits"].size(), isAlone ? names.size() : pins + 1);
      for (const std::string name : told["files"]) expectPlain(readWholeFile(name));
    }
  }
}

TEST(VerifyCommand, SaysThatThereIsNoSimulator) {
  const TemporaryFolder folder;
  const SearchPath none("");
  const Outcome result = run({"verify", example}, {.folder = folder.path()});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err,
            "ibis-load: error: cannot start ngspice: No such file or directory; it must be on the "
            "PATH\n");
}

// Stands for the simulator: writes its number into a file and never ends.
void writeSimulator(const TemporaryFolder& folder, const std::string& lines) {
  const std::string name =
      folder.write("ngspice", "#!/bin/sh\n[ \"$1\" = -v ] && exit 0\n" + lines + "\n");
  std::filesystem::permissions(name, std::filesystem::perms::owner_all);
}

TEST(VerifyCommand, ShowsNamesAndLogsAsPlainText) {
  const TemporaryFolder tools;
  writeSimulator(tools, "printf 'Error: \\033[2J\\n'");
  const SearchPath path(tools.path() + ":/usr/bin:/bin");
  const TemporaryFolder folder;
  folder.write("a.ibs",
               "[IBIS Ver] 4.2\n[Component] C\n[Manufacturer] M\n[Pin] s m\n1 A m\x1b\n"
               "[Model] m\x1b\nModel_type Input\nVinl = 0.8\nVinh = 2\n[End]\n");
  const Outcome result = run({"verify", "a.ibs"}, {.folder = folder.path()});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.out, HasSubstr("m\\x1B  typ  run not complete: Error: \\x1B[2J\n"));
}

TEST(VerifyCommand, EndsASimulatorThatTakesTooMuch) {
  const TemporaryFolder folder;
  const struct {
    const char* lines;
    const char* reason;
  } cases[] = {
      {"while :; do :; done", "it took more than 1 s of processor time; --max-time gives more"},
      {"head -c 300000000 /dev/zero; exec head -c 300000000 /dev/zero",
       "it wrote more than 256 MB"},
      {"kill -SEGV $$", "a signal ended it: Segmentation fault"},
  };
  for (const auto& [lines, reason] : cases) {
    const TemporaryFolder tools;
    writeSimulator(tools, lines);
    const SearchPath path(tools.path() + ":/usr/bin:/bin");
    const Outcome result = run({"verify", example, "--model", "ex_in", "--max-time", "1"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              "model  corner waveform   error %     DC V   time s  made from\n"
              "ex_in  typ  run not complete: " +
                  std::string(reason) + "\n");
  }
}

TEST(VerifyCommand, TellsWhatTheFileLeavesOut) {
  const TemporaryFolder tools;
  writeSimulator(tools, "exit 0");
  const SearchPath path(tools.path() + ":/usr/bin:/bin");
  const TemporaryFolder folder;
  folder.write("a.ibs",
               "[IBIS Ver] 4.2\n[Component] C\n[Manufacturer] M\n[Pin] s m\n1 A m\n"
               "[Model] m\nModel_type Input\nVinl = 0.8\nVinh = 2\n[Model] n\n"
               "Model_type Outptu\n[End]\n");
  const Outcome result = run({"verify", "a.ibs"}, {.folder = folder.path()});
  EXPECT_EQ(result.err,
            "a.ibs:11: warning: Model type 'unknown' not currently supported\n"
            "a.ibs:10: warning: Model 'n' type is unknown\n");
}

TEST(VerifyCommand, TakesItsSimulatorAndFolderWithItWhenASignalEndsIt) {
  const TemporaryFolder tools;
  writeSimulator(tools, "echo $$ > " + tools.file("number") + "\nexec sleep 60");
  const SearchPath path(tools.path() + ":/usr/bin:/bin");
  const TemporaryFolder temporary;
  const Outcome result = run({"-c", "TMPDIR=\"$0\" exec timeout -s TERM 2 \"$1\" verify \"$2\"",
                              temporary.path(), IBIS_PROGRAM_PATH, example},
                             {.program = "/bin/sh"});
  EXPECT_EQ(result.status, 124);
  EXPECT_TRUE(temporary.names().empty());
  const int child = std::stoi(readWholeFile(tools.file("number")));
  EXPECT_EQ(kill(child, 0), -1);
}

TEST(VerifyCommand, FailsWhereThereIsNothingToVerify) {
  if (!hasNgspice()) GTEST_SKIP() << "ngspice is not on the PATH";
  const TemporaryFolder folder;
  folder.write("a.ibs", "[IBIS Ver] 4.2\n[Component] C\n[Manufacturer] M\n[End]\n");
  const Outcome result = run({"verify", "a.ibs"}, {.folder = folder.path()});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err,
            "a.ibs: error: Nothing to export: no driver, receiver or terminator is left\n");
}

TEST(VerifyCommand, SaysWhatIsNotThere) {
  if (!hasNgspice()) GTEST_SKIP() << "ngspice is not on the PATH";
  const Outcome noFile = run({"verify", "nowhere.ibs"});
  EXPECT_EQ(noFile.status, 1);
  EXPECT_EQ(noFile.err, "nowhere.ibs: error: Cannot open the file: No such file or directory\n");
  const Outcome noModel = run({"verify", example, "--model", "none"});
  EXPECT_EQ(noModel.status, 1);
  EXPECT_THAT(noModel.err,
              ::testing::StartsWith(
                  example + ": error: The file has no model 'none' that can be exported\n"));
}

TEST(VerifyCommand, PrintsATable) {
  if (!hasNgspice()) GTEST_SKIP() << "ngspice is not on the PATH";
  const Outcome result =
      run({"verify", example, "--model", "ex_out", "--model", "ex_in", "--limit", "1"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  const std::vector<std::string> lines = linesOf(result.out);
  ASSERT_EQ(lines.size(), 6u) << result.out;
  EXPECT_EQ(lines[0], "model   corner waveform   error %     DC V   time s  made from");
  const char* waveforms[] = {"rising    1", "rising    2", "falling   1", "falling   2"};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_THAT(lines[i + 1], MatchesRegex("ex_out  typ  " + std::string(waveforms[i]) +
                                           " +0\\.[0-9]+ +[0-9.e+-]+ +[0-9.]+  two waveforms"));
  }
  EXPECT_THAT(lines[5], MatchesRegex("ex_in   typ  - +[0-9.e+-]+ +[0-9.]+  none"));
  EXPECT_EQ(run({"verify", example, "--model", "ex_out", "--limit", "1e-9"}).status, 1);
}

TEST(VerifyCommand, PrintsJson) {
  if (!hasNgspice()) GTEST_SKIP() << "ngspice is not on the PATH";
  const Outcome result =
      run({"verify", example, "--model", "ex_out", "--corner", "min", "--limit", "1", "--json"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  const json told = json::parse(result.out);
  EXPECT_EQ(told["status"], 0);
  ASSERT_EQ(told["models"].size(), 1u);
  const json& model = told["models"][0];
  EXPECT_EQ(model["model"], "ex_out");
  EXPECT_EQ(model["corner"], "min");
  EXPECT_EQ(model["rising"], "two waveforms");
  EXPECT_EQ(model["falling"], "two waveforms");
  EXPECT_EQ(model["coefficientsOfTyp"], false);
  EXPECT_EQ(model["fault"], nullptr);
  EXPECT_LT(model["dcErrorVolts"], 1e-3);
  ASSERT_EQ(model["waveforms"].size(), 4u);
  for (const json& each : model["waveforms"]) {
    EXPECT_EQ(each["used"], true);
    EXPECT_LT(each["errorPercent"], 1.0);
  }
}

}  // namespace
}  // namespace ibis::testing
