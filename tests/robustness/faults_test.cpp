#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <fstream>
#include <thread>

#include "robustness/failing_steps.h"
#include "robustness/load_call.h"

namespace ibis::testing {
namespace {

// What happens ahead of each read of the C library, on the thread that asks for it.
struct Meddler {
  std::function<void()> beforeRead = [] {};
};

thread_local Meddler* meddler = nullptr;

// Meddles for as long as it lives.
class Meddling {
 public:
  explicit Meddling(Meddler& with) { meddler = &with; }
  ~Meddling() { meddler = nullptr; }
  Meddling(const Meddling&) = delete;
  Meddling& operator=(const Meddling&) = delete;
};

}  // namespace
}  // namespace ibis::testing

// The linker sends the calls of the static libraries here.
extern "C" {
std::size_t __real_fread(void* room, std::size_t size, std::size_t count, std::FILE* file);

std::size_t __wrap_fread(void* room, std::size_t size, std::size_t count, std::FILE* file) {
  if (ibis::testing::meddler != nullptr) ibis::testing::meddler->beforeRead();
  if (ibis::testing::FailingStep::fails(EIO)) return 0;
  return __real_fread(room, size, count, file);
}
}

namespace ibis::testing {
namespace {

namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>;

const std::string earlier = "what an earlier load left\n";

// A source, a folder for output, and the loads of the one into the other.
class Faults : public ::testing::Test {
 protected:
  Faults() { writeWholeFile(source, smallText); }

  LoadRequest request(const std::string& mode = "model") const {
    return {.source = source,
            .mode = mode,
            .component = {},
            .rootDirectory = root,
            .subcircuit = subcircuit,
            .pins = {},
            .selections = {}};
  }

  // What the mode writes when nothing is in its way; the folder is empty afterwards.
  Files whole(const std::string& mode = "model") const {
    callLoad(request(mode));
    const Files files = output.contents();
    for (const auto& entry : fs::directory_iterator(output.path())) fs::remove(entry);
    return files;
  }

  std::string place(const std::string& name) const { return root + "/" + name; }

  TemporaryFolder input;
  TemporaryFolder output;
  std::string source = input.file("small.ibs");
  std::string root = output.path();
  std::string subcircuit = "dut";
};

std::string cannotOpen(const std::string& name) {
  return "Cannot open output file '" + name + "'\n";
}
std::string cannotWrite(const std::string& name) {
  return "Cannot write output file '" + name + "'\n";
}

// A soft limit of the process for as long as it lives.
class Limit {
 public:
  Limit(__rlimit_resource resource, rlim_t value) : resource_(resource) {
    getrlimit(resource_, &before_);
    rlimit limit = before_;
    limit.rlim_cur = value;
    setrlimit(resource_, &limit);
  }
  ~Limit() { setrlimit(resource_, &before_); }
  Limit(const Limit&) = delete;
  Limit& operator=(const Limit&) = delete;

 private:
  __rlimit_resource resource_;
  rlimit before_{};
};

// A file-size limit as a disk that fills shows it: as a failed write.
class DiskOf {
 public:
  explicit DiskOf(std::size_t bytes)
      : handler_(std::signal(SIGXFSZ, SIG_IGN)), limit_(RLIMIT_FSIZE, bytes) {}
  ~DiskOf() { std::signal(SIGXFSZ, handler_); }
  DiskOf(const DiskOf&) = delete;
  DiskOf& operator=(const DiskOf&) = delete;

 private:
  void (*handler_)(int);
  Limit limit_;
};

// However many waveforms there would be, none takes room before it is written.
TEST_F(Faults, ThousandsOfDriversOfWhichOneIsUsedAreLoaded) {
  std::string text = "[IBIS Ver] 4.2\n[Component] Part\n[Pin] signal_name model_name\n1 a D7\n";
  Texts result = {"1", root, "2000", "0"};
  for (int i = 0; i < 2000; ++i) {
    const std::string name = "D" + std::to_string(i);
    text += "[Model] " + name +
            "\nModel_type Output\n[Voltage Range] 3 3 3\n[Pulldown]\n-3 -1\n6 1\n"
            "[Pullup]\n-3 1\n6 -1\n[Ramp]\ndV/dt_r 1/1n 1/2n 1/3n\ndV/dt_f 1/1n NA NA\n";
    result.push_back("Model " + name + smallWarning.substr(smallWarning.find(':')));
  }
  writeWholeFile(source, text);
  EXPECT_EQ(callLoad(request()), result);
  const Files files = output.contents();
  EXPECT_EQ(files.size(), 2U);
  EXPECT_NE(files.at("dut.lb").find("\n.MODEL M_D7 "), std::string::npos);
  EXPECT_EQ(files.at("dut.lb").find("\n.MODEL M_D8 "), std::string::npos);
}

using OpeningFaults = Faults;

// In every mode the load names each file that it could not open.
void expectNothingOpens(LoadRequest request) {
  const std::string& root = request.rootDirectory;
  const std::string named = root + "/" + request.subcircuit;
  EXPECT_MESSAGES(callLoad(request), "2", root, "1", "2", smallWarning, cannotOpen(named + ".lb"),
                  cannotOpen(named + "_INFO.html"));
  request.mode = "package";
  EXPECT_MESSAGES(callLoad(request), "2", root, "1", "1", smallWarning, cannotOpen(named + ".lb"));
  request.mode = "script";
  EXPECT_MESSAGES(callLoad(request), "2", root, "1", "1", smallWarning,
                  cannotOpen(root + "/ibis_components.kvscr"));
}

TEST_F(OpeningFaults, RootIsAFile) {
  root = output.file("file");
  writeWholeFile(root, earlier);
  expectNothingOpens(request());
  EXPECT_EQ(readWholeFile(root), earlier);
}

TEST_F(OpeningFaults, RootIsMissing) {
  root = output.file("none");
  expectNothingOpens(request());
  EXPECT_FALSE(fs::exists(root));
}

TEST_F(OpeningFaults, RootIsALinkToNothing) {
  root = output.file("link");
  fs::create_symlink("nothing", root);
  expectNothingOpens(request());
  EXPECT_FALSE(fs::exists(output.file("nothing")));
}

TEST_F(OpeningFaults, RootIsALinkToItself) {
  root = output.file("link");
  fs::create_symlink("link", root);
  expectNothingOpens(request());
}

// The kernel's own folder, in which not even its administrator makes files.
TEST_F(OpeningFaults, RootMayNotBeWritten) {
  root = "/proc/self";
  expectNothingOpens(request());
}

TEST_F(OpeningFaults, RootMayNotBeWrittenByItsMode) {
  if (geteuid() == 0) GTEST_SKIP() << "the administrator may write anywhere";
  fs::permissions(root, fs::perms::owner_read | fs::perms::owner_exec);
  expectNothingOpens(request());
  fs::permissions(root, fs::perms::owner_all);
}

TEST_F(OpeningFaults, OutputNameHas300Characters) {
  subcircuit = std::string(300, 'x');
  EXPECT_MESSAGES(callLoad(request()), "2", root, "1", "2", smallWarning,
                  cannotOpen(place(subcircuit + ".lb")),
                  cannotOpen(place(subcircuit + "_INFO.html")));
  EXPECT_TRUE(fs::is_empty(root));
}

// A message ends at 1,023 bytes, so the end of such a name is not told.
TEST_F(OpeningFaults, OutputNameIsLongerThanAnyPath) {
  subcircuit = std::string(5000, 'x');
  const std::string cut = cannotOpen(place(subcircuit)).substr(0, 1023);
  EXPECT_EQ(callLoad(request()), Texts({"2", root, "1", "2", smallWarning, cut, cut}));
}

TEST_F(OpeningFaults, OutputNameIsAFolder) {
  fs::create_directory(place("dut.lb"));
  EXPECT_MESSAGES(callLoad(request("package")), "2", root, "1", "1", smallWarning,
                  cannotOpen(place("dut.lb")));
  EXPECT_TRUE(fs::is_directory(place("dut.lb")));
}

TEST_F(OpeningFaults, OutputNameIsALinkIntoNoFolder) {
  fs::create_symlink("none/dut.lb", place("dut.lb"));
  EXPECT_MESSAGES(callLoad(request("package")), "2", root, "1", "1", smallWarning,
                  cannotOpen(place("dut.lb")));
}

TEST_F(OpeningFaults, OneFileIsMissedAndTheOtherComplete) {
  const Files files = whole();
  fs::create_directory(place("dut.lb"));
  EXPECT_MESSAGES(callLoad(request()), "2", root, "1", "1", smallWarning,
                  cannotOpen(place("dut.lb")));
  EXPECT_EQ(output.contents(), Files({{"dut_INFO.html", files.at("dut_INFO.html")}}));
}

// As a load finds it in a host that has all its files open.
TEST_F(OpeningFaults, WhatWasThereStaysWhenNoMoreFilesMayBeOpen) {
  writeWholeFile(place("dut.lb"), earlier);
  Load load(request("package"));
  load.read();
  {
    const Limit limit(RLIMIT_NOFILE, 0);
    EXPECT_EQ(load.write(), Texts());
  }
  EXPECT_MESSAGES(load.file().data().errors, cannotOpen(place("dut.lb")));
  EXPECT_EQ(output.contents(), Files({{"dut.lb", earlier}}));
}

TEST_F(Faults, ALinkToNothingAsOutputIsFollowed) {
  const Files files = whole("package");
  fs::create_symlink("target", place("dut.lb"));
  EXPECT_MESSAGES(callLoad(request("package")), "1", root, "1", "0", smallWarning);
  EXPECT_TRUE(fs::is_symlink(place("dut.lb")));
  EXPECT_EQ(readWholeFile(place("target")), files.at("dut.lb"));
}

TEST_F(Faults, WhatWasThereIsReplacedByACompleteFile) {
  const Files files = whole();
  for (const auto& [name, text] : files) writeWholeFile(place(name), std::string(1'000'000, '#'));
  EXPECT_MESSAGES(callLoad(request()), "1", root, "1", "0", smallWarning);
  EXPECT_EQ(output.contents(), files);
}

TEST_F(Faults, WhatWasThereStaysWhenTheFileHasErrors) {
  writeWholeFile(place("dut.lb"), earlier);
  writeWholeFile(source, "[IBIS Ver] 7.0\n");
  EXPECT_MESSAGES(callLoad(request()), "2", root, "0", "1",
                  "Version '7.0' not supported. Aborting IBIS");
  EXPECT_EQ(output.contents(), Files({{"dut.lb", earlier}}));
}

TEST_F(Faults, TheSourceIsNeverTheOutput) {
  source = place("dut.lb");
  writeWholeFile(source, smallText);
  EXPECT_MESSAGES(callLoad(request("package")), "2", root, "1", "1", smallWarning,
                  cannotOpen(source));
  EXPECT_EQ(output.contents(), Files({{"dut.lb", smallText}}));
}

using WritingFaults = Faults;

TEST_F(WritingFaults, AFullDeviceIsToldOnceForEachFile) {
  fs::create_symlink("/dev/full", place("dut.lb"));
  fs::create_symlink("/dev/full", place("dut_INFO.html"));
  fs::create_symlink("/dev/full", place("ibis_components.kvscr"));
  EXPECT_MESSAGES(callLoad(request()), "2", root, "1", "2", smallWarning,
                  cannotWrite(place("dut.lb")), cannotWrite(place("dut_INFO.html")));
  EXPECT_MESSAGES(callLoad(request("package")), "2", root, "1", "1", smallWarning,
                  cannotWrite(place("dut.lb")));
  EXPECT_MESSAGES(callLoad(request("script")), "2", root, "1", "1", smallWarning,
                  cannotWrite(place("ibis_components.kvscr")));
}

TEST_F(WritingFaults, TheFileBehindTheFailedOneIsComplete) {
  const Files files = whole();
  fs::create_symlink("/dev/full", place("dut.lb"));
  EXPECT_MESSAGES(callLoad(request()), "2", root, "1", "1", smallWarning,
                  cannotWrite(place("dut.lb")));
  EXPECT_EQ(readWholeFile(place("dut_INFO.html")), files.at("dut_INFO.html"));
}

// What was there is replaced by a whole file or not at all.
TEST_F(WritingFaults, AnOldFileStaysWhenTheDiskIsFull) {
  writeWholeFile(place("dut.lb"), earlier);
  {
    const DiskOf disk(0);
    EXPECT_MESSAGES(callLoad(request("package")), "2", root, "1", "1", smallWarning,
                    cannotWrite(place("dut.lb")));
  }
  EXPECT_EQ(output.names(), Texts({"dut.lb"}));
  EXPECT_EQ(output.contents(), Files({{"dut.lb", earlier}}));
}

TEST_F(WritingFaults, NothingIsLeftOfAFileThatWasNotThereBefore) {
  {
    const DiskOf disk(0);
    EXPECT_MESSAGES(callLoad(request("package")), "2", root, "1", "1", smallWarning,
                    cannotWrite(place("dut.lb")));
  }
  EXPECT_EQ(output.names(), Texts());
}

// At every place where the disk may fill, each file is whole, or told and as it was.
TEST_F(WritingFaults, ADiskThatFillsLeavesWholeFilesAndOldOnes) {
  writeWholeFile(source, exampleText("push_pull_buffer.ibs"));
  const Files files = whole();
  const std::size_t library = files.at("dut.lb").size();
  const std::size_t page = files.at("dut_INFO.html").size();
  const std::size_t rooms[] = {0,      1,      page - 1,    page,        page + 1, 65'535,
                               65'536, 65'537, library / 2, library - 1, library};
  for (const std::size_t room : rooms) {
    Texts told;
    Files left;
    for (const auto& [name, text] : files) {
      writeWholeFile(place(name), earlier);
      if (text.size() > room) told.push_back(cannotWrite(place(name)));
      left[name] = text.size() > room ? earlier : text;
    }
    Load load(request());
    load.read();
    {
      const DiskOf disk(room);
      load.write();
    }
    EXPECT_EQ(texts(load.file().data().errors), told) << room;
    EXPECT_EQ(output.names(), Texts({"dut.lb", "dut_INFO.html"})) << room;
    EXPECT_EQ(output.contents(), left) << room;
  }
}

// A load into a sink that fails in a way of its own.
class SinkFaults : public Faults {
 protected:
  Texts errorsOfWriting() {
    Load load(request());
    load.read();
    EXPECT_EQ(load.write(sink),
              sink.refused.empty() ? Texts({place("dut.lb"), place("dut_INFO.html")}) : Texts());
    return texts(load.file().data().errors);
  }

  MemorySink sink;
};

TEST_F(SinkFaults, ClosingThatFailsIsTold) {
  sink.closingFails = true;
  EXPECT_MESSAGES(errorsOfWriting(), cannotWrite(place("dut.lb")),
                  cannotWrite(place("dut_INFO.html")));
  EXPECT_EQ(sink.files(), Files());
}

TEST_F(SinkFaults, KeepingThatFailsIsTold) {
  sink.keepingFails = true;
  EXPECT_MESSAGES(errorsOfWriting(), cannotWrite(place("dut.lb")),
                  cannotWrite(place("dut_INFO.html")));
  EXPECT_EQ(sink.files(), Files());
}

TEST_F(SinkFaults, OpeningThatFailsIsTold) {
  sink.refused = {place("dut.lb"), place("dut_INFO.html")};
  EXPECT_MESSAGES(errorsOfWriting(), cannotOpen(place("dut.lb")),
                  cannotOpen(place("dut_INFO.html")));
  EXPECT_EQ(sink.files(), Files());
}

TEST_F(SinkFaults, WritingThatFailsIsTold) {
  const Files files = whole();
  sink.room = files.at("dut_INFO.html").size();
  EXPECT_MESSAGES(errorsOfWriting(), cannotWrite(place("dut.lb")));
  EXPECT_EQ(sink.files(), Files({{place("dut_INFO.html"), files.at("dut_INFO.html")}}));
}

using ReadingFaults = Faults;

// A file that gives less than its size counts as one that cannot be opened, which is no error.
TEST_F(ReadingFaults, AFileThatShrinksIsPassedOver) {
  Meddler shrinking;
  shrinking.beforeRead = [&] { fs::resize_file(source, 100); };
  const Meddling meddling(shrinking);
  EXPECT_MESSAGES(callLoad(request()), "0", root, "0", "0");
  EXPECT_TRUE(fs::is_empty(root));
}

TEST_F(ReadingFaults, AFileThatGrowsIsReadAsItWasOpened) {
  const Files files = whole();
  Meddler growing;
  growing.beforeRead = [&] { std::ofstream(source, std::ios::app) << "[Submodel] late\n"; };
  const Meddling meddling(growing);
  EXPECT_MESSAGES(callLoad(request()), "1", root, "1", "0", smallWarning);
  EXPECT_EQ(output.contents(), files);
}

TEST_F(ReadingFaults, AFileThatVanishesWhileOpenIsReadAsItWas) {
  const Files files = whole();
  Meddler removing;
  removing.beforeRead = [&] { fs::remove(source); };
  const Meddling meddling(removing);
  callLoad(request());
  EXPECT_EQ(output.contents(), files);
}

TEST_F(ReadingFaults, WhatIsNoRegularFileIsPassedOver) {
  ASSERT_EQ(mkfifo(input.file("pipe").c_str(), 0600), 0);
  fs::create_symlink("none", input.file("nothing"));
  fs::create_symlink("itself", input.file("itself"));
  const std::string sources[] = {input.file("pipe"),   input.file("nothing"),
                                 input.file("itself"), input.path(),
                                 "/dev/zero",          input.file(std::string(300, 'x')),
                                 source + "/small.ibs"};
  for (const std::string& name : sources) {
    source = name;
    EXPECT_MESSAGES(callLoad(request()), "0", root, "0", "0");
  }
  EXPECT_TRUE(fs::is_empty(root));
}

// The kernel's files have a size of 0, or of a page that they do not fill.
TEST_F(ReadingFaults, AFileThatLiesAboutItsSizeGivesNoComponent) {
  const std::string page = "/sys/kernel/mm/transparent_hugepage/enabled";
  if (!fs::exists(page)) GTEST_SKIP() << page << " is not here";
  for (const std::string& name : {std::string("/proc/self/status"), page}) {
    source = name;
    EXPECT_MESSAGES(callLoad(request()), "0", root, "0", "0");
  }
  EXPECT_TRUE(fs::is_empty(root));
}

// Each load sees a whole file of some length, none, or one that was cut while it was read.
TEST_F(ReadingFaults, AFileThatOthersWriteGivesAWholeResult) {
  const std::string version = "[IBIS Ver] 4.2\n[Component] Part\n[Manufacturer] Maker\n";
  writeWholeFile(source, version);
  std::atomic<bool> stop = false;
  std::thread writer([&] {
    for (int i = 0; !stop; ++i) {
      if (i % 50 == 0) fs::remove(source);
      if (i % 50 == 1) writeWholeFile(source, version);
      std::ofstream(source, std::ios::app) << "[Diff Pin] inv_pin\n";
    }
  });
  for (int i = 0; i < 300; ++i) {
    const Texts result = callLoad(request("package"));
    EXPECT_EQ(result, Texts({"0", root, "0", "0"}));
  }
  stop = true;
  writer.join();
  fs::remove(source);
}

}  // namespace
}  // namespace ibis::testing
