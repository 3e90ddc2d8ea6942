// Standard streams that are full, closed, or read by nobody.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <map>
#include <thread>

#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using Words = std::vector<std::string>;
using Files = std::map<std::string, std::string>;

const std::string cannotPrint = "ibis-load: error: cannot write to standard output\n";

// A driver with all that an export needs.
const std::string driverText = partText + R"([Model] in
Model_type Output
C_comp 1p 1p 1p
[Voltage Range] 3 3 3
[Pulldown]
-3 -1m
6 2m
[Pullup]
-3 1m
6 -2m
[Ramp]
dV/dt_r 1/1n NA NA
dV/dt_f 1/1n NA NA
[End]
)";

// Every file below a folder, by its name in there.
Files filesBelow(const std::string& folder) {
  Files files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    files[fs::relative(entry.path(), folder).string()] = readWholeFile(entry.path().string());
  }
  return files;
}

// A command line of each kind of output, of a file without fault.
std::vector<Words> commandsOf(const std::string& source, const std::string& out) {
  return {{"convert", source, "-o", out},
          {"convert", source, "-o", out, "--json"},
          {"convert", source, source, "-o", out},
          {"convert", source, source, "-o", out, "--json"},
          {"export", source, "-o", out},
          {"export", source, "-o", out, "--json"},
          {"list", source},
          {"list", source, "--json"},
          {"show", source},
          {"show", source, "in", "--json"},
          {"show", source, "in", "--csv", "pullup"},
          {"check", source},
          {"check", source, "--json"},
          {"check", source, "--sarif"},
          {"check", "--explain", "all"},
          {"convert", "--help"},
          {"--version"}};
}

Words onShell(const std::string& redirections, const Words& words) {
  Words all = {"-c", "exec \"$0\" \"$@\" " + redirections, IBIS_PROGRAM_PATH};
  all.insert(all.end(), words.begin(), words.end());
  return all;
}

TEST(Streams, ThatAreFullOrClosedForOutputAreToldByEachCommand) {
  const TemporaryFolder folder;
  const std::string source = folder.write("driver.ibs", driverText);
  for (const Words& words : commandsOf(source, folder.file("out"))) {
    SCOPED_TRACE(words.front() + ' ' + words.back());
    const Outcome usual = run(words);
    EXPECT_EQ(usual.status, 0);
    EXPECT_NE(usual.out, "");
    const Files files = filesBelow(folder.path());
    for (const char* redirection : {">/dev/full", ">&-"}) {
      const Outcome outcome = run(onShell(redirection, words), {.program = "/bin/sh"});
      EXPECT_EQ(outcome.status, 1);
      EXPECT_TRUE(outcome.err.ends_with(cannotPrint)) << outcome.err;
      EXPECT_EQ(filesBelow(folder.path()), files);
    }
  }
}

TEST(Streams, ThatAreFullOrClosedForMessagesChangeNothingElse) {
  const TemporaryFolder folder;
  const std::string source = folder.write("driver.ibs", driverText);
  for (const Words& words : commandsOf(source, folder.file("out"))) {
    SCOPED_TRACE(words.front() + ' ' + words.back());
    const Outcome usual = run(words);
    const Files files = filesBelow(folder.path());
    for (const char* redirection : {"2>/dev/full", "2>&-"}) {
      const Outcome outcome = run(onShell(redirection, words), {.program = "/bin/sh"});
      EXPECT_EQ(outcome.status, usual.status);
      EXPECT_EQ(outcome.out, usual.out);
      EXPECT_EQ(filesBelow(folder.path()), files);
    }
  }
}

// A file takes the number of a stream that is closed, and what is printed must not go there.
TEST(Streams, ThatAreClosedBringNoTextIntoFiles) {
  const TemporaryFolder input;
  input.write("a.ibs", warningText);
  input.write("b.ibs", driverText);
  const TemporaryFolder expected;
  const Words words = {"convert", input.path(), "-j", "2", "--json", "-o"};
  const auto withFolder = [&](const std::string& folder) {
    Words all = words;
    all.push_back(folder);
    return all;
  };
  EXPECT_EQ(run(withFolder(expected.path())).status, 0);
  const Files files = filesBelow(expected.path());
  EXPECT_EQ(files.size(), 4U);
  const std::pair<const char*, int> cases[] = {
      {"<&-", 0}, {">&-", 1}, {"2>&-", 0}, {"<&- >&-", 1}, {"<&- 2>&-", 0}, {"<&- >&- 2>&-", 1}};
  for (const auto& [redirections, status] : cases) {
    SCOPED_TRACE(redirections);
    const TemporaryFolder output;
    const Words all = onShell(redirections, withFolder(output.path()));
    EXPECT_EQ(run(all, {.program = "/bin/sh"}).status, status);
    EXPECT_EQ(filesBelow(output.path()), files);
  }
}

// A pipe whose reader takes nothing, and which takes nothing more itself.
class FullPipe {
 public:
  FullPipe() {
    if (pipe2(ends_.data(), O_CLOEXEC) != 0) throw std::runtime_error("cannot make a pipe");
    fcntl(ends_[1], F_SETPIPE_SZ, 4096);
    fcntl(ends_[1], F_SETFL, O_NONBLOCK);
    const std::array<char, 4096> text{};
    while (write(ends_[1], text.data(), text.size()) > 0) continue;
    fcntl(ends_[1], F_SETFL, 0);
  }
  ~FullPipe() {
    for (const int end : ends_) close(end);
  }
  FullPipe(const FullPipe&) = delete;
  FullPipe& operator=(const FullPipe&) = delete;

  int end() const { return ends_[1]; }

 private:
  std::array<int, 2> ends_{};
};

// A program that waits for ever to be rid of what it prints.
struct Stuck {
  Words words;
  int stream;
  int signal;
  pid_t child = 0;
};

void start(Stuck& stuck, const FullPipe& full) {
  std::string program = IBIS_PROGRAM_PATH;
  std::vector<char*> pointers{program.data()};
  for (std::string& word : stuck.words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
    posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
  }
  posix_spawn_file_actions_adddup2(&actions, full.end(), stuck.stream);
  EXPECT_EQ(posix_spawn(&stuck.child, pointers[0], &actions, nullptr, pointers.data(), environ), 0);
  posix_spawn_file_actions_destroy(&actions);
}

// Exit status by then; 128 and the signal for a program that one ended, -1 for one that goes on.
int statusUntil(pid_t child, Clock::time_point end) {
  int status = 0;
  while (waitpid(child, &status, WNOHANG) == 0) {
    if (Clock::now() > end) {
      kill(child, SIGKILL);
      waitpid(child, &status, 0);
      return -1;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// All commands that are stuck in one stream, each to be ended by each signal.
std::vector<Stuck> stuckCommands(const std::string& source, const std::string& many,
                                 const TemporaryFolder& output) {
  std::vector<Stuck> all;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
      const std::string out = output.file(std::to_string(all.size()));
      all.push_back({{"convert", source, "-o", out}, stream, signal});
      all.push_back({{"convert", many, "-o", out + "many"}, stream, signal});
      all.push_back({{"convert", many, "-j", "2", "-o", out + "threads"}, stream, signal});
      all.push_back({{"convert", many, "--json", "-o", out + "json"}, stream, signal});
      all.push_back({{"export", source, "-o", out + "export"}, stream, signal});
      all.push_back({{"check", source}, stream, signal});
    }
    all.push_back({{"list", source}, STDOUT_FILENO, signal});
    all.push_back({{"list", source, "--json"}, STDOUT_FILENO, signal});
    all.push_back({{"list", "/dev/null/none"}, STDERR_FILENO, signal});
  }
  return all;
}

// The program holds the lock of a stream while it waits to be rid of a text.
TEST(Streams, ThatNobodyReadsDoNotHoldASignalUp) {
  const TemporaryFolder input;
  const std::string source = input.write("driver.ibs", driverText);
  fs::create_directory(input.file("many"));
  for (int i = 0; i < 40; ++i) input.write("many/" + std::to_string(i) + ".ibs", driverText);
  const TemporaryFolder output;
  const FullPipe full;
  std::vector<Stuck> all = stuckCommands(source, input.file("many"), output);
  for (Stuck& each : all) start(each, full);
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  for (const Stuck& each : all) {
    EXPECT_EQ(kill(each.child, each.signal), 0);
    EXPECT_EQ(statusUntil(each.child, Clock::now() + std::chrono::seconds(1)), 128 + each.signal)
        << each.words[0] << ' ' << each.words.back() << " stream " << each.stream;
  }
  for (const auto& [name, text] : filesBelow(output.path())) {
    EXPECT_FALSE(name.ends_with(".part")) << name;
  }
}

}  // namespace
}  // namespace ibis::testing
