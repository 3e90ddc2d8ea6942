#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>

#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

using Names = std::vector<std::string>;

// A library of many pins, larger than the program's buffer and a pipe's together.
std::string largeText() {
  std::string text = partText.substr(0, partText.find("2 VSS GND\n"));
  for (int i = 2; i < 10'000; ++i) text += std::to_string(i) + " net" + std::to_string(i) + " in\n";
  return text + receiverText + "[End]\n";
}

// A program at work, with its library going into a pipe so that it waits in the middle of it.
class Writing {
 public:
  Writing() : source_(folder_.write("large.ibs", largeText())) {
    mkdir(out().c_str(), 0700);
    mkfifo(library().c_str(), 0600);
    std::vector<std::string> words{IBIS_PROGRAM_PATH, "convert", source_, "-o", out(), "-s", "dut"};
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
    reader_ = open(library().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_EQ(posix_spawn(&child_, pointers[0], &actions, nullptr, pointers.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    pollfd begun{reader_, POLLIN, 0};
    EXPECT_EQ(poll(&begun, 1, longestWait), 1) << "the program writes nothing";
  }
  ~Writing() { leave(); }
  Writing(const Writing&) = delete;
  Writing& operator=(const Writing&) = delete;

  void send(int signal) const { kill(child_, signal); }

  // The reader of the library goes away.
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
  std::string printed(const std::string& stream) const { return readFile(folder_.file(stream)); }

  Names namesLeft() const {
    Names names;
    for (const auto& entry : std::filesystem::directory_iterator(out())) {
      names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    return names;
  }

 private:
  static constexpr int longestWait = 20'000;  // milliseconds

  Folder folder_;
  std::string source_;
  pid_t child_ = 0;
  int reader_ = -1;
};

std::string mayBeCut(const std::string& name) {
  return "ibis-load: error: interrupted, '" + name + "' may be cut\n";
}

TEST(Signals, ThatEndTheProgramNameTheFilesThatMayBeCut) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    Writing program;
    program.send(signal);
    EXPECT_EQ(program.end(), 128 + signal);
    EXPECT_EQ(program.namesLeft(), Names({"dut.lb"}));
    EXPECT_EQ(program.printed("stdout"), "");
    EXPECT_EQ(program.printed("stderr"),
              mayBeCut(program.library()) + mayBeCut(program.out() + "/dut_INFO.html"));
  }
}

// Nothing can be said then but by the exit status.
TEST(Signals, ThatKillTheProgramLeaveTheNamedFilesAlone) {
  Writing program;
  program.send(SIGKILL);
  EXPECT_EQ(program.end(), 128 + SIGKILL);
  EXPECT_EQ(program.namesLeft(), Names({"dut.lb"}));
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
  EXPECT_EQ(program.namesLeft(), Names({"dut.lb", "dut_INFO.html"}));
}

// Opening the pipe would wait for ever.
TEST(Limits, APipeThatNobodyReadsIsTold) {
  const Folder folder;
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
  EXPECT_EQ(program.namesLeft(), Names({"dut.lb", "dut_INFO.html"}));
  EXPECT_EQ(program.printed("stdout"),
            program.library() + "\n" + program.out() + "/dut_INFO.html\n0 warnings, 1 error\n");
  EXPECT_EQ(program.printed("stderr"),
            program.source() + ": error: Cannot write output file '" + program.library() + "'\n");
}

// Runs the program where a file may have this many blocks of 512 bytes.
Outcome runWithRoom(int blocks, const std::vector<std::string>& words) {
  std::vector<std::string> all{
      "-c", "ulimit -f " + std::to_string(blocks) + " && exec \"$0\" \"$@\"", IBIS_PROGRAM_PATH};
  all.insert(all.end(), words.begin(), words.end());
  return run(all, {.program = "/bin/sh"});
}

// A limit of the user's shell shows as a full disk, not as the end of the program.
TEST(Limits, AFileThatGrowsTooLargeIsTold) {
  constexpr std::size_t room = 64 * 512;
  const Folder folder;
  const std::string source = folder.write("large.ibs", largeText());
  const std::string out = folder.file("out");
  run({"convert", source, "-q", "-o", out, "-s", "dut"});
  const std::string whole = readFile(out + "/dut.lb");
  const std::string page = readFile(out + "/dut_INFO.html");
  const Outcome outcome = runWithRoom(64, {"convert", source, "-o", out, "-s", "dut"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, source + ": error: Cannot write output file '" + out + "/dut.lb'\n");
  EXPECT_EQ(outcome.out, out + "/dut.lb\n" + out + "/dut_INFO.html\n0 warnings, 1 error\n");
  ASSERT_GT(whole.size(), room);
  EXPECT_EQ(readFile(out + "/dut.lb"), whole.substr(0, room));
  EXPECT_EQ(readFile(out + "/dut_INFO.html"), page);
  EXPECT_EQ(folder.names(), Names({"large.ibs", "out"}));
}

TEST(Limits, ALibraryThatStillFitsIsWritten) {
  const Folder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  EXPECT_EQ(runWithRoom(64, {"convert", source, "-q", "-o", folder.file("out")}).status, 0);
}

// The plug-in says it in its result; the call itself was made.
TEST(Limits, AFolderThatIsNoneIsToldByTheCallToo) {
  const Folder folder;
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
  const Folder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  for (const auto& [name, reason] : cases) {
    const Outcome outcome = run({"convert", source, "-o", name});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "0 warnings, 1 error\n");
    EXPECT_EQ(outcome.err, source + ": error: Cannot make folder '" + name + "': " + reason + '\n');
  }
}

TEST(Limits, AFolderThatMayNotBeWrittenIsTold) {
  const Folder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  const Outcome outcome = run({"convert", source, "-o", "/proc/self", "-s", "dut"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "0 warnings, 2 errors\n");
  EXPECT_EQ(outcome.err, source + ": error: Cannot open output file '/proc/self/dut.lb'\n" +
                             source +
                             ": error: Cannot open output file '/proc/self/dut_INFO.html'\n");
}

TEST(Limits, AnOutputNameThatIsTooLongIsTold) {
  const Folder folder;
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
  const Folder folder;
  const std::string source = folder.write("buffer.ibs", bufferText);
  std::filesystem::create_symlink("nothing", folder.file("link"));
  const Outcome outcome = run({"convert", source, "-o", folder.file("link")});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(folder.names(), Names({"buffer.ibs", "link"}));
}

// The kernel's files have no size, or one that they do not fill.
TEST(Limits, AFileThatLiesAboutItsSizeIsTold) {
  const Folder folder;
  const std::string page = "/sys/kernel/mm/transparent_hugepage/enabled";
  EXPECT_EQ(run({"convert", page, "-o", folder.path()}).err,
            page + ": error: Cannot read the whole file\n");
  const std::string status = "/proc/self/status";
  EXPECT_EQ(run({"convert", status, "-o", folder.path()}).err,
            status + ": error: The file has no component\n");
  EXPECT_EQ(folder.names(), Names());
}

}  // namespace
}  // namespace ibis::testing
