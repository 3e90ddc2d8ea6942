#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <thread>

#include "harness/sanitizer.h"
#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

using Names = std::vector<std::string>;

const std::string earlier = "what an earlier run left\n";

// A file of many models, whose library and page are each larger than a pipe's smallest room.
std::string largeText() {
  constexpr int count = 300;
  std::string text = partText.substr(0, partText.find("1 A in\n"));
  for (int i = 0; i < count; ++i) {
    const std::string number = std::to_string(i);
    text.append(number).append(" net").append(number).append(" in").append(number).append("\n");
  }
  for (int i = 0; i < count; ++i) {
    text.append("[Model] in").append(std::to_string(i));
    text.append(receiverText.substr(receiverText.find('\n')));
  }
  return text + "[End]\n";
}

// What the program writes of it where nothing is in its way.
std::string largeLibrary() {
  const TemporaryFolder folder;
  run({"convert", folder.write("large.ibs", largeText()), "-q", "-o", folder.path(), "-s", "dut"});
  return readWholeFile(folder.file("dut.lb"));
}

// A program at work, with its page going into a pipe so that it waits in the middle of it. The
// library is whole by then and stands beside its place, where an earlier one is.
class Writing {
 public:
  Writing() : source_(folder_.write("large.ibs", largeText())) {
    mkdir(out().c_str(), 0700);
    writeWholeFile(library(), earlier);
    mkfifo(page().c_str(), 0600);
    std::vector<std::string> words{
        IBIS_PROGRAM_PATH, "convert", "--no-check", source_, "-o", out(), "-s", "dut"};
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
      const std::string name = folder_.file(stream == STDOUT_FILENO ? "stdout" : "stderr");
      posix_spawn_file_actions_addopen(&actions, stream, name.c_str(), O_WRONLY | O_CREAT, 0600);
    }
    // Opened ahead of the program and not passed on to it, so that neither waits for the other.
    reader_ = open(page().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    fcntl(reader_, F_SETPIPE_SZ, 4096);
    EXPECT_EQ(posix_spawn(&child_, pointers[0], &actions, nullptr, pointers.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    pollfd begun{reader_, POLLIN, 0};
    EXPECT_EQ(poll(&begun, 1, longestWait), 1) << "the program writes nothing";
    EXPECT_EQ(unfinished().size(), 1U);
  }
  ~Writing() { leave(); }
  Writing(const Writing&) = delete;
  Writing& operator=(const Writing&) = delete;

  void send(int signal) const { kill(child_, signal); }

  // The reader of the page goes away.
  void leave() {
    if (reader_ >= 0) close(reader_);
    reader_ = -1;
  }

  // Exit status; 128 and the signal for a program that one ended.
  int end() {
    int status = 0;
    waitpid(child_, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }

  const std::string& source() const { return source_; }
  std::string out() const { return folder_.file("out"); }
  std::string library() const { return out() + "/dut.lb"; }
  std::string page() const { return out() + "/dut_INFO.html"; }
  std::string printed(const std::string& stream) const {
    return readWholeFile(folder_.file(stream));
  }

  Names namesLeft() const {
    Names names;
    for (const auto& entry : std::filesystem::directory_iterator(out())) {
      names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    return names;
  }

  // The names of files that stand beside their place.
  Names unfinished() const {
    Names names = namesLeft();
    std::erase_if(names, [](const std::string& name) {
      return !name.starts_with(".ibis-load-") || !name.ends_with(".part");
    });
    return names;
  }

 private:
  static constexpr int longestWait = 20'000;  // milliseconds

  TemporaryFolder folder_;
  std::string source_;
  pid_t child_ = 0;
  int reader_ = -1;
};

const Names libraryAndPage = {"dut.lb", "dut_INFO.html"};

TEST(Signals, ThatEndTheProgramLeaveWhatWasThereAndPrintNothing) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    Writing program;
    program.send(signal);
    EXPECT_EQ(program.end(), 128 + signal);
    EXPECT_EQ(program.namesLeft(), libraryAndPage);
    EXPECT_EQ(readWholeFile(program.library()), earlier);
    EXPECT_EQ(program.printed("stdout"), "");
    EXPECT_EQ(program.printed("stderr"), "");
  }
}

// What stands beside its place stays there, since nothing of the program runs any more.
TEST(Signals, ThatKillTheProgramLeaveWhatWasThere) {
  Writing program;
  program.send(SIGKILL);
  EXPECT_EQ(program.end(), 128 + SIGKILL);
  EXPECT_EQ(program.unfinished().size(), 1U);
  EXPECT_EQ(program.namesLeft().size(), 3U);
  EXPECT_EQ(readWholeFile(program.library()), earlier);
  EXPECT_EQ(program.printed("stdout"), "");
  EXPECT_EQ(program.printed("stderr"), "");
}

// As nohup asks.
TEST(Signals, ThatTheProgramWasStartedToPassOverDoNotEndIt) {
  const auto before = std::signal(SIGHUP, SIG_IGN);
  Writing program;
  std::signal(SIGHUP, before);
  program.send(SIGHUP);
  program.leave();
  EXPECT_EQ(program.end(), 1);
  EXPECT_EQ(program.namesLeft(), libraryAndPage);
  EXPECT_EQ(readWholeFile(program.library()), largeLibrary());
}

// Opening the pipe would wait for ever.
TEST(Limits, APipeThatNobodyReadsIsTold) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  mkfifo(folder.file("dut.lb").c_str(), 0600);
  const Outcome outcome = run({"convert", source, "-o", folder.path(), "-s", "dut"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, folder.file("dut_INFO.html") + "\n0 warnings, 1 error\n");
  EXPECT_EQ(outcome.err,
            source + ": error: Cannot open output file '" + folder.file("dut.lb") + "'\n");
}

TEST(Signals, OfAPipeDoNotEndTheProgram) {
  Writing program;
  program.send(SIGPIPE);
  program.leave();
  EXPECT_EQ(program.end(), 1);
  EXPECT_EQ(program.namesLeft(), libraryAndPage);
  EXPECT_EQ(readWholeFile(program.library()), largeLibrary());
  EXPECT_EQ(program.printed("stdout"),
            program.library() + "\n" + program.page() + "\n0 warnings, 1 error\n");
  EXPECT_EQ(program.printed("stderr"),
            program.source() + ": error: Cannot write output file '" + program.page() + "'\n");
}

// Runs the program where a file may have this many blocks of 512 bytes.
Outcome runWithRoom(int blocks, const std::vector<std::string>& words) {
  std::vector<std::string> all{
      "-c", "ulimit -f " + std::to_string(blocks) + " && exec \"$0\" \"$@\"", IBIS_PROGRAM_PATH};
  all.insert(all.end(), words.begin(), words.end());
  return run(all, {.program = "/bin/sh"});
}

// A sanitizer takes more addresses than any limit leaves.
#if !IBIS_HAS_SANITIZER
TEST(Limits, AFilePaddedWithNulsTakesNoMemoryForThem) {
  const TemporaryFolder folder;
  const std::string source = folder.write("padded.ibs",
                                          "[IBIS Ver] 4.2\n[Component] C\n[Manufacturer] M\n[Pin] "
                                          "signal_name model_name\n1 a GND\n[End]\n");
  std::filesystem::resize_file(source, 2'147'483'646);
  const std::string out = folder.file("out");
  const Outcome outcome = run({"-c", "ulimit -v 600000 && exec \"$0\" \"$@\"", IBIS_PROGRAM_PATH,
                               "convert", "--no-check", source, "-o", out, "-s", "dut"},
                              {.program = "/bin/sh"});
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.status, 0);
}
#endif

// A limit of the user's shell shows as a full disk, not as the end of the program.
TEST(Limits, AFileThatGrowsTooLargeIsToldAndStaysAsItWas) {
  constexpr std::size_t room = 120 * 512;
  const TemporaryFolder folder;
  const std::string source = folder.write("large.ibs", largeText());
  const std::string out = folder.file("out");
  run({"convert", source, "-q", "-o", out, "-s", "dut"});
  const std::string page = readWholeFile(out + "/dut_INFO.html");
  ASSERT_GT(readWholeFile(out + "/dut.lb").size(), room);
  ASSERT_LE(page.size(), room);
  writeWholeFile(out + "/dut.lb", earlier);
  writeWholeFile(out + "/dut_INFO.html", earlier);
  const Outcome outcome =
      runWithRoom(120, {"convert", "--no-check", source, "-o", out, "-s", "dut"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, source + ": error: Cannot write output file '" + out + "/dut.lb'\n");
  EXPECT_EQ(outcome.out, out + "/dut.lb\n" + out + "/dut_INFO.html\n0 warnings, 1 error\n");
  EXPECT_EQ(readWholeFile(out + "/dut.lb"), earlier);
  EXPECT_EQ(readWholeFile(out + "/dut_INFO.html"), page);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(out), {}), 2);
}

TEST(Limits, ALibraryThatStillFitsIsWritten) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  EXPECT_EQ(runWithRoom(64, {"convert", source, "-q", "-o", folder.file("out")}).status, 0);
}

// The plug-in says it in its result; the call itself was made.
TEST(Limits, AFolderThatIsNoneIsToldByTheCallToo) {
  const TemporaryFolder folder;
  const std::string source = folder.write("large.ibs", largeText());
  const std::string request =
      "[[\"" + source + "\"],[\"package\",\"\",\"/dev/full/none\",\"dut\"]]";
  const Outcome outcome = run({"call"}, {.input = request});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out,
            "[\"2\",\"/dev/full/none\",\"0\",\"1\",\"Cannot open output file "
            "'/dev/full/none/dut.lb'\\n\"]\n");
}

// What keeps the files of a folder from being made, in the words of the system.
struct FolderCase {
  const char* folder;
  const char* reason;
};

TEST(Limits, AFolderThatCannotBeMadeIsTold) {
  const FolderCase cases[] = {
      {"/proc/none", "No such file or directory"},
      {"/dev/null", "Not a directory"},
      {"/dev/null/none", "Not a directory"},
  };
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  for (const auto& [name, reason] : cases) {
    const Outcome outcome = run({"convert", source, "-o", name});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "0 warnings, 1 error\n");
    EXPECT_EQ(outcome.err, source + ": error: Cannot make folder '" + name + "': " + reason + '\n');
  }
}

TEST(Limits, AFolderThatMayNotBeWrittenIsTold) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  const Outcome outcome = run({"convert", source, "-o", "/proc/self", "-s", "dut"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "0 warnings, 2 errors\n");
  EXPECT_EQ(outcome.err, source + ": error: Cannot open output file '/proc/self/dut.lb'\n" +
                             source +
                             ": error: Cannot open output file '/proc/self/dut_INFO.html'\n");
}

TEST(Limits, AnOutputNameThatIsTooLongIsTold) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  const std::string name(300, 'x');
  const Outcome outcome =
      run({"convert", source, "-m", "package", "-o", folder.path(), "-s", name});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            source + ": error: Cannot open output file '" + folder.file(name) + ".lb'\n");
  EXPECT_EQ(folder.names(), Names({"buffer.ibs"}));
}

TEST(Limits, ALinkToNothingIsNoFolder) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  std::filesystem::create_symlink("nothing", folder.file("link"));
  const Outcome outcome = run({"convert", source, "-o", folder.file("link")});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(folder.names(), Names({"buffer.ibs", "link"}));
}

// The superuser writes everywhere, unless these rights are taken away.
Outcome runWithoutPrivileges(std::vector<std::string> words) {
  if (geteuid() != 0) return run(words);
  words.insert(words.begin(),
               {"--bounding-set=-dac_override,-dac_read_search,-fowner", "--", IBIS_PROGRAM_PATH});
  return run(words, {.program = "/usr/bin/setpriv"});
}

bool canRunWithoutPrivileges() {
  return geteuid() != 0 || std::filesystem::exists("/usr/bin/setpriv");
}

// A folder of which the files may be written and none be added.
TEST(InPlace, AFileOfAFolderThatTakesNoOtherIsWritten) {
  if (!canRunWithoutPrivileges()) GTEST_SKIP() << "setpriv is not here";
  const TemporaryFolder folder;
  const std::string source = folder.write("large.ibs", largeText());
  const std::string out = folder.file("out");
  run({"convert", source, "-q", "-o", out, "-s", "dut"});
  const std::string page = readWholeFile(out + "/dut_INFO.html");
  writeWholeFile(out + "/dut.lb", earlier);
  writeWholeFile(out + "/dut_INFO.html", earlier);
  std::filesystem::permissions(out, std::filesystem::perms(0555));
  const Outcome outcome =
      runWithoutPrivileges({"convert", "--no-check", source, "-o", out, "-s", "dut"});
  std::filesystem::permissions(out, std::filesystem::perms(0755));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, out + "/dut.lb\n" + out + "/dut_INFO.html\n0 warnings, 0 errors\n");
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(readWholeFile(out + "/dut.lb"), largeLibrary());
  EXPECT_EQ(readWholeFile(out + "/dut_INFO.html"), page);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(out), {}), 2);
}

TEST(InPlace, AFolderThatTakesNoFileIsTold) {
  if (!canRunWithoutPrivileges()) GTEST_SKIP() << "setpriv is not here";
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  const std::string out = folder.file("out");
  std::filesystem::create_directory(out);
  std::filesystem::permissions(out, std::filesystem::perms(0555));
  const Outcome outcome = runWithoutPrivileges(
      {"convert", "--no-check", source, "-m", "package", "-o", out, "-s", "dut"});
  std::filesystem::permissions(out, std::filesystem::perms(0755));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, source + ": error: Cannot open output file '" + out + "/dut.lb'\n");
  EXPECT_TRUE(std::filesystem::is_empty(out));
}

TEST(InPlace, AFileThatMayNotBeWrittenIsNotReplacedEither) {
  if (!canRunWithoutPrivileges()) GTEST_SKIP() << "setpriv is not here";
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  const std::string library = folder.write("dut.lb", earlier);
  std::filesystem::permissions(library, std::filesystem::perms(0444));
  const Outcome outcome = runWithoutPrivileges(
      {"convert", "--no-check", source, "-m", "package", "-o", folder.path(), "-s", "dut"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, source + ": error: Cannot open output file '" + library + "'\n");
  EXPECT_EQ(readWholeFile(library), earlier);
  EXPECT_EQ(folder.names(), Names({"buffer.ibs", "dut.lb"}));
}

TEST(InPlace, ALinkStaysAndItsTargetIsWritten) {
  const TemporaryFolder folder;
  const std::string source = folder.write("large.ibs", largeText());
  folder.write("target", earlier);
  std::filesystem::create_symlink("target", folder.file("dut.lb"));
  EXPECT_EQ(run({"convert", source, "-q", "-o", folder.path(), "-s", "dut"}).status, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(folder.file("dut.lb")));
  EXPECT_EQ(readWholeFile(folder.file("target")), largeLibrary());
  EXPECT_EQ(folder.names(), Names({"dut.lb", "dut_INFO.html", "large.ibs", "target"}));
}

// All that comes through a pipe once its first writer is there.
std::string readToEnd(int pipe) {
  pollfd begun{pipe, POLLIN, 0};
  poll(&begun, 1, -1);
  fcntl(pipe, F_SETFL, 0);
  std::string text;
  std::array<char, 4096> part{};
  for (ssize_t size = 1; size > 0;) {
    size = read(pipe, part.data(), part.size());
    if (size > 0) text.append(part.data(), static_cast<std::size_t>(size));
  }
  return text;
}

TEST(InPlace, APipeTakesTheWholeText) {
  const TemporaryFolder folder;
  const std::string source = folder.write("large.ibs", largeText());
  mkfifo(folder.file("dut.lb").c_str(), 0600);
  // Open ahead of the program, so that it finds a reader whenever it comes.
  const int end = open(folder.file("dut.lb").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  std::string read;
  std::thread reader([&] { read = readToEnd(end); });
  const Outcome outcome = run({"convert", source, "-q", "-o", folder.path(), "-s", "dut"});
  reader.join();
  close(end);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(read, largeLibrary());
  EXPECT_EQ(folder.names(), Names({"dut.lb", "dut_INFO.html", "large.ibs"}));
}

TEST(Replacing, KeepsTheModeOfTheFile) {
  const TemporaryFolder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  const std::string library = folder.write("dut.lb", earlier);
  for (const unsigned mode : {0600U, 0640U, 0664U, 0755U}) {
    std::filesystem::permissions(library, std::filesystem::perms(mode));
    EXPECT_EQ(run({"convert", source, "-q", "-o", folder.path(), "-s", "dut"}).status, 0);
    EXPECT_EQ(std::filesystem::status(library).permissions(), std::filesystem::perms(mode));
  }
}

// The kernel's files have no size, or one that they do not fill.
TEST(Limits, AFileThatLiesAboutItsSizeIsTold) {
  const TemporaryFolder folder;
  const std::string page = "/sys/kernel/mm/transparent_hugepage/enabled";
  if (!std::filesystem::exists(page)) GTEST_SKIP() << page << " is not here";
  EXPECT_EQ(run({"convert", page, "-o", folder.path()}).err,
            page + ": error: Cannot read the whole file\n");
  const std::string status = "/proc/self/status";
  EXPECT_EQ(run({"convert", status, "-o", folder.path()}).err,
            status + ": error: The file has no component\n" + status + ": note: it is empty\n");
  EXPECT_EQ(folder.names(), Names());
}

}  // namespace
}  // namespace ibis::testing
