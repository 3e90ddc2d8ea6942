#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "program/packing.h"
#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;

namespace fs = std::filesystem;

const std::string vinl = ":14: warning: Model 'in': Vinl not defined using default 0.8V\n";
const std::string vinh = ":14: warning: Model 'in': Vinh not defined using default 2.0V\n";
const std::string header = "  status   files  warnings  errors  folder\n";

// A folder with an empty folder "lib" in it, where the program works.
struct Library : TemporaryFolder {
  Library() { fs::create_directory(file("lib")); }

  void add(const std::string& name, const std::string& text = bufferText) const {
    fs::create_directories(fs::path(file(name)).parent_path());
    write(name, text);
  }

  Outcome convert(std::vector<std::string> words, const std::string& output = "out",
                  const std::string& mode = "package") const {
    words.insert(words.begin(), {"convert", "-m", mode, "-o", output});
    return run(words, {.folder = path()});
  }

  // The files below "out", sorted.
  std::vector<std::string> written() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(file("out"))) {
      if (!entry.is_directory()) names.push_back(fs::relative(entry, file("out")).string());
    }
    std::ranges::sort(names);
    return names;
  }
};

TEST(ManyFiles, EachGoesIntoAFolderOfItsName) {
  const Library library;
  library.add("a.ibs");
  library.add("b.txt", warningText);
  const Outcome result = library.convert({"a.ibs", "b.txt"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "file " + header +
                            "a.ibs  written      1         0       0  out/a\n"
                            "b.txt  written      1         2       0  out/b.txt\n"
                            "2 inputs: 2 written, 0 failed; 2 files, 2 warnings, 0 errors\n");
  EXPECT_EQ(result.err, "b.txt" + vinl + "b.txt" + vinh);
  EXPECT_THAT(library.written(), ElementsAre("a/BUF_1.lb", "b.txt/BUF_1.lb"));
}

TEST(ManyFiles, GetTheOutputThatEachGetsAlone) {
  const Library library;
  library.add("a.ibs");
  library.add("b.ibs", warningText);
  ASSERT_EQ(library.convert({"a.ibs", "b.ibs"}).status, 0);
  for (const std::string name : {"a", "b"}) {
    ASSERT_EQ(library.convert({name + ".ibs"}, name).status, 0);
    EXPECT_EQ(readWholeFile(library.file("out/" + name + "/BUF_1.lb")),
              readWholeFile(library.file(name + "/BUF_1.lb")));
  }
}

TEST(ManyFiles, ModelModeWritesLibraryAndPageOfEach) {
  const Library library;
  library.add("lib/a.ibs");
  library.add("lib/b.ibs");
  EXPECT_EQ(library.convert({"lib", "-q"}, "out", "model").out, "");
  EXPECT_THAT(library.written(),
              ElementsAre("a/BUF_1.lb", "a/BUF_1_INFO.html", "b/BUF_1.lb", "b/BUF_1_INFO.html"));
}

TEST(ManyFiles, AFolderStandsForItsFilesInAnyCaseSorted) {
  const Library library;
  for (const std::string name : {"z.ibs", "a.IBS", "m/n/c.Ibs", "m.ibs/d.iBS", "x.ibs.txt", "ibs"})
    library.add("lib/" + name);
  const Outcome result = library.convert({"lib/"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "file           " + header +
                            "lib/a.IBS        written      1         0       0  out/a\n"
                            "lib/m/n/c.Ibs    written      1         0       0  out/m/n/c\n"
                            "lib/m.ibs/d.iBS  written      1         0       0  out/m.ibs/d\n"
                            "lib/z.ibs        written      1         0       0  out/z\n"
                            "4 inputs: 4 written, 0 failed; 4 files, 0 warnings, 0 errors\n");
}

TEST(ManyFiles, AFolderOfOneFileGetsAFolderInItTooAndATable) {
  const Library library;
  library.add("lib/a.ibs");
  EXPECT_EQ(library.convert({"lib"}).out,
            "file     " + header +
                "lib/a.ibs  written      1         0       0  out/a\n"
                "1 input: 1 written, 0 failed; 1 file, 0 warnings, 0 errors\n");
}

TEST(ManyFiles, NamesThatAreTakenGetANumber) {
  const Library library;
  for (const std::string name : {"a.ibs", "old/a.ibs", "older/a.IBS", "a_2.ibs"}) library.add(name);
  EXPECT_EQ(library.convert({"a.ibs", "old/a.ibs", "older", "a_2.ibs"}).out,
            "file       " + header +
                "a.ibs        written      1         0       0  out/a\n"
                "old/a.ibs    written      1         0       0  out/a_2\n"
                "older/a.IBS  written      1         0       0  out/a_3\n"
                "a_2.ibs      written      1         0       0  out/a_2_2\n"
                "4 inputs: 4 written, 0 failed; 4 files, 0 warnings, 0 errors\n");
  EXPECT_THAT(library.written(),
              ElementsAre("a/BUF_1.lb", "a_2/BUF_1.lb", "a_2_2/BUF_1.lb", "a_3/BUF_1.lb"));
}

TEST(ManyFiles, NoNameLeadsOutOfTheOutputFolder) {
  const Library library;
  for (const std::string name : {"lib/...ibs", "lib/..ibs", "lib/.ibs"}) library.add(name);
  EXPECT_EQ(library.convert({"lib"}).status, 0);
  EXPECT_THAT(library.written(), ElementsAre("...ibs/BUF_1.lb", "..ibs/BUF_1.lb", ".ibs/BUF_1.lb"));
}

TEST(ManyFiles, BlanksPercentSignsAndOtherAlphabetsStayInTheName) {
  const Library library;
  library.add("lib/%rootdir% x.ibs");
  library.add("lib/Größe.ibs");
  EXPECT_EQ(library.convert({"lib"}).out,
            "file               " + header +
                "lib/%rootdir% x.ibs  written      1         0       0  out/%rootdir% x\n"
                "lib/Größe.ibs        written      1         0       0  out/Größe\n"
                "2 inputs: 2 written, 0 failed; 2 files, 0 warnings, 0 errors\n");
  EXPECT_THAT(library.written(), ElementsAre("%rootdir% x/BUF_1.lb", "Größe/BUF_1.lb"));
}

TEST(ManyFiles, AFileMayBeCalledLikeACommand) {
  const Library library;
  library.add("call");
  library.add("convert");
  EXPECT_EQ(library.convert({"call", "convert", "-q"}).status, 0);
  EXPECT_THAT(library.written(), ElementsAre("call/BUF_1.lb", "convert/BUF_1.lb"));
}

TEST(ManyFiles, AnOptionBehindAFileTakesOneWord) {
  const Library library;
  library.add("a.ibs");
  library.add("b.ibs");
  EXPECT_EQ(library.convert({"-p", "1", "a.ibs", "-j", "2", "b.ibs", "-q"}).status, 0);
  EXPECT_THAT(library.written(), ElementsAre("a/BUF_1.lb", "b/BUF_1.lb"));
}

TEST(ManyFiles, ABadFileStopsNoOther) {
  const Library library;
  library.add("lib/a.ibs", partText);
  library.add("lib/b.ibs", "");
  library.add("lib/c.ibs");
  const Outcome result = library.convert({"lib", "missing.ibs"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "file       " + header +
                            "lib/a.ibs    failed       0         0       1  -\n"
                            "lib/b.ibs    failed       0         0       1  -\n"
                            "lib/c.ibs    written      1         0       0  out/c\n"
                            "missing.ibs  failed       0         0       1  -\n"
                            "4 inputs: 1 written, 3 failed; 1 file, 0 warnings, 3 errors\n");
  EXPECT_EQ(result.err,
            "lib/a.ibs:12: error: Model referenced by pin '1' has not been defined\n"
            "lib/a.ibs: note: the pin names model 'in'\n"
            "lib/b.ibs: error: The file has no component\n"
            "lib/b.ibs: note: it is empty\n"
            "missing.ibs: error: Cannot open the file: No such file or directory\n");
  EXPECT_THAT(library.written(), ElementsAre("c/BUF_1.lb"));
}

TEST(ManyFiles, WarningsAsErrorsFailTheFilesThatHaveThem) {
  const Library library;
  library.add("lib/a.ibs", warningText);
  library.add("lib/b.ibs");
  const Outcome result = library.convert({"lib", "--werror"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "file     " + header +
                            "lib/a.ibs  failed       1         2       0  out/a\n"
                            "lib/b.ibs  written      1         0       0  out/b\n"
                            "2 inputs: 1 written, 1 failed; 2 files, 2 warnings, 0 errors\n");
}

TEST(ManyFiles, JsonIsOneArrayWithTheFileOfEachObject) {
  const Library library;
  library.add("a.ibs", warningText);
  const Outcome result = library.convert({"a.ibs", "missing.ibs", "--json"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(
      result.out,
      R"([{"file":"a.ibs","status":0,"files":["out/a/BUF_1.lb"],"warnings":[)"
      R"({"id":"vinl-default","line":14,"text":"Model 'in': Vinl not defined using default 0.8V"},)"
      R"({"id":"vinh-default","line":14,"text":"Model 'in': Vinh not defined using default 2.0V"}],)"
      R"("errors":[]},)"
      "\n"
      R"({"file":"missing.ibs","status":1,"files":[],"warnings":[],"errors":[)"
      R"({"id":"cannot-open-file","line":null,"text":"Cannot open the file: No such file or directory"})"
      "]}]\n");
}

TEST(ManyFiles, QuietLeavesTheMessagesAlone) {
  const Library library;
  library.add("lib/a.ibs", warningText);
  library.add("lib/b.ibs");
  const Outcome result = library.convert({"lib", "-q"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "lib/a.ibs" + vinl + "lib/a.ibs" + vinh);
}

TEST(ManyFiles, AFullStandardOutputEndsInStatusOne) {
  const Library library;
  library.add("lib/a.ibs");
  const Outcome result =
      run({"convert", "lib", "-o", "out"}, {.output = "/dev/full", .folder = library.path()});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "ibis-load: error: cannot write to standard output\n");
  EXPECT_THAT(library.written(), ElementsAre("a/BUF_1.lb", "a/BUF_1_INFO.html"));
}

// The first file takes longest, so that in several threads the others are done before it.
TEST(ManyFiles, ThreadsChangeNothingThatIsPrintedOrWritten) {
  const Library library;
  std::string pins;
  for (int pin = 3; pin < 5000; ++pin) pins += std::to_string(pin) + " VSS GND\n";
  library.add("lib/0.ibs", partText + pins + bareReceiverText);
  for (int i = 10; i < 60; ++i) {
    library.add("lib/" + std::to_string(i) + ".ibs", i % 3 == 0 ? partText : warningText);
  }
  const Outcome one = library.convert({"lib", "--json"});
  const json objects = json::parse(one.out);
  ASSERT_EQ(objects.size(), 51U);
  EXPECT_EQ(objects.front()["file"], "lib/0.ibs");
  for (const std::string jobs : {"0", "2", "7", "1024"}) {
    fs::remove_all(library.file("out"));
    const Outcome several = library.convert({"lib", "--json", "-j", jobs});
    EXPECT_EQ(several.status, 1);
    EXPECT_EQ(several.out, one.out);
    EXPECT_EQ(several.err, one.err);
    EXPECT_EQ(fs::file_size(library.file("out/59/BUF_1.lb")),
              fs::file_size(library.file("out/10/BUF_1.lb")));
  }
}

TEST(ManyFiles, AnEmptyFolderHasNothingToConvert) {
  const Library library;
  library.add("lib/readme.txt");
  library.add("a.ibs");
  const Outcome result = library.convert({"lib", "a.ibs"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "lib: error: Nothing to convert: no file ends in .ibs\n");
  EXPECT_EQ(result.out, "file " + header +
                            "lib    failed       0         0       1  -\n"
                            "a.ibs  written      1         0       0  out/a\n"
                            "2 inputs: 1 written, 1 failed; 1 file, 0 warnings, 1 error\n");
}

TEST(ManyFiles, LinksToFilesAndFoldersAreFollowed) {
  const Library library;
  library.add("real/a.ibs");
  fs::create_symlink("../real", library.file("lib/folder"));
  fs::create_symlink("../real/a.ibs", library.file("lib/file.ibs"));
  fs::create_symlink("nowhere", library.file("lib/dangling"));
  const Outcome result = library.convert({"lib"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_THAT(library.written(), ElementsAre("file/BUF_1.lb", "folder/a/BUF_1.lb"));
}

TEST(ManyFiles, LinksThatLeadBackArePassedOver) {
  const Library library;
  library.add("lib/in/a.ibs");
  fs::create_symlink("..", library.file("lib/in/up"));
  fs::create_symlink(".", library.file("lib/in/here"));
  fs::create_symlink("/", library.file("lib/root"));
  const Outcome result = library.convert({"lib"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_THAT(library.written(), ElementsAre("in/a/BUF_1.lb"));
}

TEST(ManyFiles, ALinkToItselfIsTold) {
  const Library library;
  library.add("lib/a.ibs");
  fs::create_symlink("self", library.file("lib/self"));
  const Outcome result = library.convert({"lib"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(
      result.err,
      "lib/self: error: Cannot tell whether it is a folder: Too many levels of symbolic links\n");
  EXPECT_THAT(library.written(), ElementsAre("a/BUF_1.lb"));
}

// Eight folders that link to one another have more than a hundred thousand paths.
TEST(ManyFiles, EachFolderIsSearchedOnceByItsOwnName) {
  const Library library;
  const std::string names = "bcdefghi";
  for (const char name : names) library.add(std::string("lib/") + name + "/x.ibs");
  for (const char name : names) {
    for (const char other : names) {
      if (name != other) {
        fs::create_symlink(std::string("../") + other,
                           library.file(std::string("lib/") + name + "/to_" + other));
      }
    }
  }
  fs::create_symlink("b", library.file("lib/a"));
  const Outcome result = library.convert({"lib"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(library.written(),
              ElementsAre("b/x/BUF_1.lb", "c/x/BUF_1.lb", "d/x/BUF_1.lb", "e/x/BUF_1.lb",
                          "f/x/BUF_1.lb", "g/x/BUF_1.lb", "h/x/BUF_1.lb", "i/x/BUF_1.lb"));
}

TEST(ManyFiles, FoldersThatDifferByCaseAloneAreKeptApart) {
  const Library library;
  library.add("lib/A.ibs");
  library.add("lib/a.ibs");
  EXPECT_EQ(library.convert({"lib"}).status, 0);
  EXPECT_THAT(library.written(), ElementsAre("A/BUF_1.lb", "a_2/BUF_1.lb"));
}

TEST(ManyFiles, NoFolderStandsWhereAFileOfAnotherSourceBelongs) {
  const Library library;
  library.add("lib/sub.ibs");
  library.add("lib/sub/BUF_1.lb.ibs");
  const Outcome result = library.convert({"lib"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(library.written(), ElementsAre("sub/BUF_1.lb", "sub/BUF_1.lb_/BUF_1.lb"));
}

TEST(OneFile, NeitherAnArchiveNorStandardInputIsReplacedByItsOutput) {
  const TemporaryFolder folder;
  const std::string archive = packedByZip({{"x.ibs", bufferText}});
  folder.write("dut.lb", archive);
  folder.write("BUF_1_typ.inc", archive);
  folder.write("st.lb", bufferText);
  const Streams here{.folder = folder.path()};
  EXPECT_EQ(run({"convert", "dut.lb/x.ibs", "-s", "dut", "-q"}, here).err,
            "dut.lb/x.ibs: error: Output file './dut.lb' is an input file of this run\n");
  EXPECT_THAT(
      run({"export", "BUF_1_typ.inc/x.ibs", "-q"}, here).err,
      ::testing::HasSubstr("error: Output file './BUF_1_typ.inc' is the input file itself\n"));
  EXPECT_EQ(run({"-c", "exec \"$0\" convert --no-check - -s st -q < st.lb", IBIS_PROGRAM_PATH},
                {.program = "/bin/sh", .folder = folder.path()})
                .err,
            "-: error: Output file './st.lb' is an input file of this run\n");
  EXPECT_EQ(folder.contents(),
            (std::map<std::string, std::string>{
                {"dut.lb", archive}, {"BUF_1_typ.inc", archive}, {"st.lb", bufferText}}));
}

TEST(ManyFiles, NoOutputReplacesAnInputOfTheRun) {
  const Library library;
  library.add("a.ibs");
  library.add("a/BUF_1.lb");
  const std::string before = readWholeFile(library.file("a/BUF_1.lb"));
  const Outcome result =
      run({"convert", "a.ibs", "a/BUF_1.lb", "-o", ".", "-q"}, {.folder = library.file("")});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "a.ibs: error: Output file './a/BUF_1.lb' is an input file of this run\n");
  EXPECT_EQ(readWholeFile(library.file("a/BUF_1.lb")), before);
}

// A link to nowhere stands for a file that goes away between the search and its turn.
TEST(ManyFiles, AFileThatIsGoneIsToldAndTheOthersAreConverted) {
  const Library library;
  fs::create_symlink("nowhere", library.file("lib/a.ibs"));
  library.add("lib/b.ibs");
  const Outcome result = library.convert({"lib", "-j", "2", "-q"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "lib/a.ibs: error: Cannot open the file: No such file or directory\n");
  EXPECT_THAT(library.written(), ElementsAre("b/BUF_1.lb"));
}

// A path beyond the system's limit is closed to the superuser too.
TEST(ManyFiles, AFolderThatCannotBeReachedIsTold) {
  const Library library;
  library.add("lib/a.ibs");
  const std::string part(250, 'd');
  std::string deepest = "lib";
  int folder = open(library.file("lib").c_str(), O_DIRECTORY);
  while (deepest.size() < 4096) {
    ASSERT_EQ(mkdirat(folder, part.c_str(), 0700), 0);
    const int inside = openat(folder, part.c_str(), O_DIRECTORY);
    close(folder);
    folder = inside;
    deepest += '/' + part;
  }
  close(folder);
  const Outcome result = library.convert({"lib", "-q"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, deepest + ": error: Cannot read the folder: File name too long\n");
  EXPECT_THAT(library.written(), ElementsAre("a/BUF_1.lb"));
}

TEST(ManyFiles, AFolderThatIsClosedIsTold) {
  if (geteuid() == 0 && !fs::exists("/usr/bin/setpriv")) GTEST_SKIP() << "setpriv is not here";
  const Library library;
  library.add("lib/a.ibs");
  library.add("lib/closed/b.ibs");
  fs::permissions(library.file("lib/closed"), fs::perms::none);
  Streams streams{.folder = library.path()};
  std::vector<std::string> words = {"convert", "--no-check", "lib", "-q", "-o", "out"};
  if (geteuid() == 0) {
    // The superuser reads every folder, unless these rights are taken away.
    words.insert(words.begin(),
                 {"--bounding-set=-dac_override,-dac_read_search", "--", streams.program});
    streams.program = "/usr/bin/setpriv";
  }
  const Outcome result = run(words, streams);
  fs::permissions(library.file("lib/closed"), fs::perms::owner_all);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "lib/closed: error: Cannot read the whole folder: Permission denied\n");
  EXPECT_THAT(library.written(), ElementsAre("a/BUF_1.lb", "a/BUF_1_INFO.html"));
}

TEST(ManyFiles, AnOutputFolderThatCannotBeMadeFailsItsFileAlone) {
  const Library library;
  library.add("lib/a.ibs");
  library.add("lib/b.ibs");
  library.add("out/a", "a file");
  const Outcome result = library.convert({"lib", "-q"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "lib/a.ibs: error: Cannot make folder 'out/a': Not a directory\n");
  EXPECT_THAT(library.written(), ElementsAre("a", "b/BUF_1.lb"));
}

}  // namespace
}  // namespace ibis::testing
