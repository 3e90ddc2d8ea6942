#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "program/packing.h"
#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

// What a conversion in a folder of its own told and left behind; the file is "part.ibs" there.
struct Done {
  Outcome outcome;
  std::map<std::string, std::string> files;
};

Done convertText(const std::string& text, const std::vector<std::string>& options) {
  const TemporaryFolder folder;
  folder.write("part.ibs", text);
  std::vector<std::string> words = {"convert", "part.ibs"};
  words.insert(words.end(), options.begin(), options.end());
  Done done{.outcome = run(words, {.folder = folder.path()}), .files = folder.contents()};
  done.files.erase("part.ibs");
  return done;
}

std::vector<std::string> namesOf(const Done& done) {
  std::vector<std::string> names;
  for (const auto& [name, text] : done.files) names.push_back(name);
  return names;
}

// Pin 3 has a model that is refused, pin 4 one that is not there.
const std::string mixedText = partText + "3 C hold\n4 D gone\n" + receiverText +
                              "[Model] hold\nModel_type Input\nVinl = 0.8\nVinh = 2.0\n"
                              "[Add Submodel]\nkeeper All\n[Submodel] keeper\n[End]\n";

TEST(KeepGoing, LeavesOutModelsWithTheirPinsAndSaysSo) {
  const Done done = convertText(mixedText, {"-k"});
  EXPECT_EQ(done.outcome.status, 0);
  EXPECT_EQ(done.outcome.out, "./BUF_1.lb\n./BUF_1_INFO.html\n5 warnings, 0 errors\n");
  EXPECT_EQ(done.outcome.err,
            "part.ibs:25: warning: Model definition 'hold': Keyword 'Add Submodel' not currently "
            "supported\n"
            "part.ibs:27: warning: Keyword 'Submodel' not supported\n"
            "part.ibs:15: warning: Model referenced by pin '4' has not been defined\n"
            "part.ibs:21: warning: Component 'BUF-1': pins of model 'hold' are left out: 3\n"
            "part.ibs: warning: Component 'BUF-1': pins of model 'gone' are left out: 4\n");
  const std::string& library = done.files.at("BUF_1.lb");
  EXPECT_THAT(library, HasSubstr(".MODEL M_in "));
  EXPECT_THAT(library, Not(HasSubstr("hold")));
  EXPECT_THAT(library, Not(HasSubstr("T_C")));
  EXPECT_THAT(library, Not(HasSubstr("T_D")));
}

TEST(KeepGoing, WritesWhatAFileWithoutTheseModelsGives) {
  const Done done = convertText(mixedText, {"--keep-going", "-q"});
  EXPECT_EQ(done.files, convertText(bufferText, {"-q"}).files);
}

TEST(KeepGoing, ChangesNothingForASoundFile) {
  for (const std::string mode : {"model", "package"}) {
    const Done plain = convertText(warningText, {"-m", mode});
    const Done kept = convertText(warningText, {"-m", mode, "-k", "--as-version", "4.2"});
    EXPECT_EQ(plain.files, kept.files);
    EXPECT_EQ(plain.outcome.err, kept.outcome.err);
    EXPECT_EQ(plain.outcome.out, kept.outcome.out);
  }
}

TEST(KeepGoing, APackageKeepsThePinsOfModelsThatAreRefused) {
  const Done done = convertText(mixedText, {"-k", "-q", "-m", "package"});
  EXPECT_THAT(done.outcome.err, Not(HasSubstr("'hold' are left out")));
  EXPECT_THAT(done.files.at("BUF_1.lb"), HasSubstr("T_C"));
}

TEST(KeepGoing, JsonHasThePinsThatAreLeftOut) {
  const Done done = convertText(mixedText, {"-k", "--json"});
  EXPECT_EQ(json::parse(done.outcome.out)["leftOut"], json::parse(R"([
    {"component": "BUF-1", "model": "hold", "line": 21, "pins": ["3"]},
    {"component": "BUF-1", "model": "gone", "line": null, "pins": ["4"]}])"));
  EXPECT_FALSE(
      json::parse(convertText(bufferText, {"-k", "--json"}).outcome.out).contains("leftOut"));
}

TEST(KeepGoing, AChoiceThatIsNotThereIsAnErrorAllTheSame) {
  const std::vector<std::vector<std::string>> choices = {
      {"-k", "-c", "NONE"}, {"-k", "-p", "9"}, {"-k", "--select", "none"}};
  for (const auto& options : choices) {
    const Done done = convertText(bufferText, options);
    EXPECT_EQ(done.outcome.status, 1) << options[1];
    EXPECT_THAT(done.outcome.out, HasSubstr("0 warnings, 1 error\n")) << options[1];
    EXPECT_THAT(done.outcome.err, HasSubstr("part.ibs: error: ")) << options[1];
    EXPECT_THAT(namesOf(done), IsEmpty()) << options[1];
  }
}

TEST(AsVersion, ReadsANewerFileWithAWarning) {
  std::string text = bufferText;
  text.replace(text.find("4.2"), 3, "6.0");
  EXPECT_EQ(convertText(text, {}).outcome.status, 1);
  const Done done = convertText(text, {"--as-version", "4.2"});
  EXPECT_EQ(done.outcome.status, 0);
  EXPECT_EQ(done.outcome.err,
            "part.ibs:1: warning: Version '6.0' is read as far as version 4.2 goes\n");
  EXPECT_THAT(namesOf(done), ElementsAre("BUF_1.lb", "BUF_1_INFO.html"));
}

TEST(AsVersion, IsOneVersion) {
  const Outcome result = run({"convert", "a.ibs", "--as-version", "5.0"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "--as-version: 5.0 not in {4.2}\nRun with --help for more information.\n");
}

// Two components; a third one repeats the name of the first.
const std::string twoText = partText +
                            "[Component] BUF-2\n[Manufacturer] Exemplary\n[Pin] signal_name "
                            "model_name\nB7 X in\n[Component] BUF-1\n[Pin] signal_name model_name\n"
                            "1 A in\n" +
                            receiverText + "[End]\n";

TEST(Components, TheOthersAreMentioned) {
  const std::string note =
      "part.ibs: note: component 'BUF-1' is the first of 3; -c or --all-components writes the "
      "others: BUF-2, BUF-1\n";
  const Done done = convertText(twoText, {});
  EXPECT_EQ(done.outcome.err, note);
  EXPECT_EQ(done.outcome.out, "./BUF_1.lb\n./BUF_1_INFO.html\n0 warnings, 0 errors\n");
  EXPECT_EQ(done.outcome.status, 0);
  EXPECT_EQ(convertText(twoText, {"-m", "package", "--werror"}).outcome.err, note);
  EXPECT_EQ(convertText(twoText, {"-m", "package", "--werror"}).outcome.status, 0);
  EXPECT_EQ(convertText(twoText, {"-m", "script"}).outcome.err, "");
  EXPECT_EQ(convertText(twoText, {"-c", "BUF-2"}).outcome.err, "");
  EXPECT_EQ(json::parse(convertText(twoText, {"--json"}).outcome.out)["notes"][0]["line"], json());
}

TEST(Components, AllAreWritten) {
  const Done done = convertText(twoText, {"--all-components", "-m", "package"});
  EXPECT_EQ(done.outcome.status, 0);
  EXPECT_EQ(done.outcome.err, "");
  EXPECT_EQ(done.outcome.out, "./BUF_1.lb\n./BUF_2.lb\n0 warnings, 0 errors\n");
  EXPECT_EQ(done.files.at("BUF_2.lb"),
            convertText(twoText, {"-c", "BUF-2", "-m", "package"}).files.at("BUF_2.lb"));
}

TEST(Components, AllOfAScriptAreOneFile) {
  const Done done = convertText(twoText, {"--all-components", "-m", "script"});
  EXPECT_EQ(done.outcome.out, "./ibis_components.kvscr\n0 warnings, 0 errors\n");
}

TEST(Components, AllSayOnceWhatIsWrongWithTheFile) {
  const std::string twice = partText + "[Component] BUF-2\n[Pin] signal_name model_name\n1 A in\n" +
                            bareReceiverText + "[End]\n";
  EXPECT_EQ(convertText(twice, {"--all-components"}).outcome.err,
            "part.ibs:17: warning: Model 'in': Vinl not defined using default 0.8V\n"
            "part.ibs:17: warning: Model 'in': Vinh not defined using default 2.0V\n");
  EXPECT_EQ(convertText("", {"--all-components"}).outcome.err,
            "part.ibs: error: The file has no component\npart.ibs: note: it is empty\n");
  EXPECT_EQ(run({"convert", "/none.ibs", "--all-components"}).err,
            "/none.ibs: error: Cannot open the file: No such file or directory\n");
}

TEST(Components, AllExcludeChoicesOfOne) {
  const struct {
    std::vector<std::string> option;
    std::string name;
  } cases[] = {{{"-c", "A"}, "component"}, {{"-s", "A"}, "subcircuit"}, {{"-p", "A"}, "pin"}};
  for (const auto& [option, name] : cases) {
    const Outcome result = run({"convert", "a.ibs", "--all-components", option[0], option[1]});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "--all-components: It excludes --" + name +
                              "\nRun with --help for more information.\n");
  }
}

TEST(Modes, SeveralAreWrittenUnderNamesOfTheirOwn) {
  const Done done =
      convertText(bufferText, {"-m", "model", "-m", "PACKAGE", "-m", "script", "-m", "model"});
  EXPECT_EQ(done.outcome.status, 0);
  EXPECT_EQ(done.outcome.out,
            "./BUF_1.lb\n./BUF_1_INFO.html\n./BUF_1_package.lb\n./ibis_components.kvscr\n"
            "0 warnings, 0 errors\n");
  EXPECT_THAT(done.files.at("BUF_1_package.lb"), HasSubstr(".SUBCKT BUF_1_package"));
  EXPECT_EQ(done.files.at("BUF_1.lb"), convertText(bufferText, {}).files.at("BUF_1.lb"));
}

TEST(Modes, APackageAloneKeepsItsName) {
  const Done done = convertText(bufferText, {"-m", "package", "-m", "script"});
  EXPECT_THAT(namesOf(done), ElementsAre("BUF_1.lb", "ibis_components.kvscr"));
  const Done named = convertText(bufferText, {"-m", "package", "-m", "model", "-s", "dut"});
  EXPECT_THAT(namesOf(named), ElementsAre("dut.lb", "dut_INFO.html", "dut_package.lb"));
}

const std::string selectorText =
    partText + "3 B pi=ck\n[Model Selector] pi=ck\nin the first\nend other=one\n" + receiverText +
    "[Model] end\nModel_type Terminator\nC_comp 2p 2p 2p\n[End]\n";

TEST(Select, TakesAModelByTheNamesOfSelectorAndModel) {
  const Done named = convertText(selectorText, {"--select", "pi=ck=end"});
  EXPECT_EQ(named.outcome.status, 0);
  EXPECT_EQ(named.outcome.err, "");
  const Done described = convertText(selectorText, {"--select", "other=one"});
  EXPECT_EQ(described.outcome.err, "");
  EXPECT_EQ(named.files.at("BUF_1.lb"), described.files.at("BUF_1.lb"));
  EXPECT_THAT(named.files.at("BUF_1.lb"), HasSubstr(".MODEL M_end "));
}

TEST(Select, SaysWhichModelsWereTakenUnasked) {
  const Done done = convertText(selectorText, {});
  EXPECT_EQ(done.outcome.err,
            "part.ibs: note: selectors take their first model: pi=ck=in; --select takes another\n");
  EXPECT_EQ(convertText(selectorText, {"--select", "pi=ck=in"}).outcome.err, "");
  EXPECT_EQ(convertText(selectorText, {"--select", "the first"}).outcome.err, "");
  EXPECT_EQ(convertText(selectorText, {"-p", "1"}).outcome.err, "");
  EXPECT_EQ(convertText(selectorText, {"-m", "package"}).outcome.err, "");
}

TEST(Select, AModelThatTheSelectorLacksIsAnError) {
  const Done done = convertText(selectorText, {"--select", "pi=ck=out"});
  EXPECT_EQ(done.outcome.status, 1);
  EXPECT_EQ(done.outcome.err,
            "part.ibs: error: Model selector 'pi=ck=out' not found in IBIS file\n"
            "part.ibs: note: selector 'pi=ck' has in, end\n");
}

TEST(NoClobber, KeepsAFileThatIsThere) {
  const TemporaryFolder folder;
  folder.write("part.ibs", bufferText);
  folder.write("BUF_1_INFO.html", "kept");
  const Outcome result = run({"convert", "part.ibs", "--no-clobber"}, {.folder = folder.path()});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err,
            "part.ibs: error: Output file './BUF_1_INFO.html' is there already; --no-clobber keeps "
            "it\n");
  EXPECT_THAT(folder.names(), ElementsAre("BUF_1_INFO.html", "part.ibs"));
  EXPECT_EQ(readWholeFile(folder.file("BUF_1_INFO.html")), "kept");
  EXPECT_EQ(
      run({"convert", "part.ibs", "--no-clobber", "-o", "new"}, {.folder = folder.path()}).status,
      0);
}

TEST(DryRun, TellsWhatWouldBeWrittenAndWritesNothing) {
  const Done done = convertText(bufferText, {"--dry-run", "-o", "out"});
  EXPECT_EQ(done.outcome.status, 0);
  EXPECT_EQ(done.outcome.out, "out/BUF_1.lb\nout/BUF_1_INFO.html\n0 warnings, 0 errors\n");
  EXPECT_THAT(namesOf(done), IsEmpty());
  const Done bad = convertText(partText, {"--dry-run"});
  EXPECT_EQ(bad.outcome.status, 1);
  EXPECT_EQ(bad.outcome.out, "0 warnings, 1 error\n");
}

TEST(StandardInput, IsReadForADash) {
  const TemporaryFolder folder;
  const Outcome result =
      run({"convert", "-", "-m", "package"}, {.input = bufferText, .folder = folder.path()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "./BUF_1.lb\n0 warnings, 0 errors\n");
  EXPECT_EQ(readWholeFile(folder.file("BUF_1.lb")),
            convertText(bufferText, {"-m", "package"}).files.at("BUF_1.lb"));
  EXPECT_EQ(run({"-c", "exec \"$0\" list - < /", IBIS_PROGRAM_PATH}, {.program = "/bin/sh"}).err,
            "-: error: Cannot read the whole file\n");
  EXPECT_EQ(run({"convert", "-", "-q"}, {.input = "", .folder = folder.path()}).err,
            "-: error: The file has no component\n-: note: it is empty\n");
}

std::string componentsText(const std::vector<std::string>& names) {
  std::string text = "[IBIS Ver] 4.2\n";
  for (const std::string& name : names) {
    text += "[Component] " + name + "\n[Manufacturer] M\n[Pin] signal_name model_name\n1 S GND\n";
  }
  return text;
}

TEST(Components, OfLikeNamesGetFilesOfTheirOwn) {
  EXPECT_EQ(
      convertText(componentsText({"A-1", "A_1", "a_1"}), {"--all-components", "-m", "package"})
          .outcome.out,
      "./A_1.lb\n./A_1_1.lb\n./a_1_2.lb\n0 warnings, 0 errors\n");
}

// The package of one has the name of the other's model.
TEST(Components, NeverReplaceEachOthersFiles) {
  EXPECT_EQ(convertText(componentsText({"X", "x_package"}),
                        {"--all-components", "-m", "model", "-m", "package"})
                .outcome.out,
            "./X.lb\n./X_INFO.html\n./x_package.lb\n./x_package_INFO.html\n./X_package_2.lb\n"
            "./x_package_package.lb\n0 warnings, 0 errors\n");
}

TEST(StandardInput, IsReadOnceForAllComponents) {
  const TemporaryFolder folder;
  EXPECT_EQ(run({"convert", "-", "--all-components", "-m", "package"},
                {.input = twoText, .folder = folder.path()})
                .out,
            "./BUF_1.lb\n./BUF_2.lb\n0 warnings, 0 errors\n");
}

TEST(Gzip, IsReadAsTheTextThatItHolds) {
  const std::string half = bufferText.substr(0, 100);
  const std::string rest = bufferText.substr(100);
  const std::string whole = convertText(bufferText, {"-m", "package"}).files.at("BUF_1.lb");
  for (const std::string& text :
       {packedByGzip(bufferText), packedByGzip(half) + packedByGzip(rest)}) {
    const Done done = convertText(text, {"-m", "package"});
    EXPECT_EQ(done.outcome.err, "");
    EXPECT_EQ(done.outcome.status, 0);
    EXPECT_EQ(done.files.at("BUF_1.lb"), whole);
  }
  EXPECT_THAT(run({"list", "-"}, {.input = packedByGzip(bufferText)}).out,
              HasSubstr("-: IBIS 4.2, "));
}

TEST(Gzip, ThatIsCutIsAnError) {
  const std::string cut = packedByGzip(bufferText).substr(0, 50);
  EXPECT_EQ(convertText(cut, {"-q"}).outcome.err,
            "part.ibs: error: Cannot unpack the file: truncated gzip input\n");
  const Outcome listed = run({"list", "-"}, {.input = cut});
  EXPECT_EQ(listed.status, 1);
  EXPECT_EQ(listed.err, "-: error: Cannot unpack the file: truncated gzip input\n");
}

TEST(Gzip, IsCheckedAsTheTextThatItHolds) {
  const Outcome result =
      run({"check", "-", "-Wno-model-voltage-range-missing"}, {.input = packedByGzip(bufferText)});
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, "1 file: 0 errors, 0 warnings\n");
}

const std::vector<Member> members = {
    {"b.ibs", bufferText}, {"sub/größe.IBS", bufferText}, {"readme.txt", "no model"}};

TEST(Zip, StandsForItsFilesAsAFolderDoes) {
  const TemporaryFolder folder;
  folder.write("parts.zip", packedByZip(members));
  const Outcome result =
      run({"convert", "parts.zip", "-m", "package", "-o", "out"}, {.folder = folder.path()});
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out,
            "file                     status   files  warnings  errors  folder\n"
            "parts.zip/b.ibs          written      1         0       0  out/b\n"
            "parts.zip/sub/größe.IBS  written      1         0       0  out/sub/größe\n"
            "2 inputs: 2 written, 0 failed; 2 files, 0 warnings, 0 errors\n");
  EXPECT_EQ(readWholeFile(folder.file("out/sub/größe/BUF_1.lb")),
            convertText(bufferText, {"-m", "package"}).files.at("BUF_1.lb"));
}

TEST(Zip, HasAFileThatIsNamedBehindIt) {
  const TemporaryFolder folder;
  folder.write("parts.zip", packedByZip(members));
  const Outcome shown = run({"show", "parts.zip/sub/größe.IBS", "in"}, {.folder = folder.path()});
  EXPECT_EQ(shown.err, "");
  EXPECT_THAT(shown.out, HasSubstr("Model in (line 14)"));
  EXPECT_THAT(run({"list", "parts.zip"}, {.folder = folder.path()}).out,
              ::testing::AllOf(HasSubstr("parts.zip/b.ibs: IBIS 4.2"),
                               HasSubstr("parts.zip/sub/größe.IBS: IBIS 4.2")));
}

TEST(Zip, HasFilesThatAreExported) {
  const TemporaryFolder folder;
  folder.write("parts.zip", packedByZip(members));
  const Outcome result =
      run({"export", "parts.zip/b.ibs", "-o", "out", "-q"}, {.folder = folder.path()});
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(std::filesystem::exists(folder.file("out/BUF_1_typ.inc")));
}

TEST(Zip, ThatIsCutIsAnError) {
  const TemporaryFolder folder;
  const std::string packed = packedByZip(members);
  folder.write("parts.zip", packed.substr(0, packed.size() / 4));
  const Outcome result = run({"list", "parts.zip"}, {.folder = folder.path()});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, ::testing::StartsWith("parts.zip"));
  EXPECT_THAT(result.err, HasSubstr(": error: Cannot unpack the file: "));
}

// Names of members are the sender's; none may lead out of the output folder.
TEST(Zip, WritesNothingOutsideOfTheFolder) {
  const TemporaryFolder folder;
  const std::vector<Member> hostile = {{"../../up.ibs", bufferText}, {"/top.ibs", bufferText}};
  std::filesystem::create_directory(folder.file("in"));
  folder.write("in/parts.zip", packedByZip(hostile));
  const Outcome result = run({"convert", "in/parts.zip", "-m", "package", "-o", "in/out", "-q"},
                             {.folder = folder.path()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(folder.names(), std::vector<std::string>{"in"});
  EXPECT_TRUE(std::filesystem::exists(folder.file("in/out/up/BUF_1.lb")));
  EXPECT_TRUE(std::filesystem::exists(folder.file("in/out/top/BUF_1.lb")));
}

TEST(StandardInput, IsListedAndShown) {
  EXPECT_THAT(run({"list", "-"}, {.input = bufferText}).out, HasSubstr("-: IBIS 4.2, "));
  EXPECT_THAT(run({"show", "-", "in"}, {.input = bufferText}).out, HasSubstr("Model in (line 14)"));
}

}  // namespace
}  // namespace ibis::testing
