// Ends of the program that it cannot see coming.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <random>
#include <thread>

#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

using Clock = std::chrono::steady_clock;
using Duration = std::chrono::duration<double>;

// A driver whose waveforms are estimated, as many points as the second ramp is slower.
std::string slowDriverText() {
  return partText + R"([Model] in
Model_type Output
C_comp 1p 1p 1p
[Voltage Range] 4 4 4
[Pulldown]
-4 -32m
8 64m
[Pullup]
-4 32m
8 -64m
[Ramp]
dV/dt_r 1/1n 1/1n 1/10n
dV/dt_f 1/1n 1/1n 1/10n
)";
}

// The program at its work, for as long as it is let.
class Conversion {
 public:
  // What it prints is the same at each turn.
  explicit Conversion(std::vector<std::string> words) {
    std::string program = IBIS_PROGRAM_PATH;
    std::vector<char*> pointers{program.data()};
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    const int fault =
        posix_spawn(&child_, pointers[0], &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (fault != 0) throw std::runtime_error("cannot start the program");
  }

  // Whether it was at its end by then.
  bool killAfter(Duration time) const {
    std::this_thread::sleep_for(time);
    kill(child_, SIGKILL);
    int status = 0;
    waitpid(child_, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) ? WEXITSTATUS(status) == 0 : WTERMSIG(status) == SIGKILL);
    return WIFEXITED(status);
  }

  void wait() const {
    int status = 0;
    waitpid(child_, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }

 private:
  pid_t child_ = 0;
};

// Files that stand beside their place; they go.
int clearUnfinished(const TemporaryFolder& folder) {
  int count = 0;
  for (const std::string& name : folder.names()) {
    if (!name.ends_with(".part")) continue;
    std::filesystem::remove(folder.file(name));
    ++count;
  }
  return count;
}

TEST(Kill, AtAnyMomentLeavesTheOldLibraryOrTheNewOne) {
  constexpr int turns = 200;
  const TemporaryFolder input;
  const TemporaryFolder output;
  const std::string source = input.write("driver.ibs", slowDriverText());
  const std::vector<std::string> words = {"convert",     source, "-q", "-o",
                                          output.path(), "-s",   "dut"};
  const Clock::time_point start = Clock::now();
  Conversion(words).wait();
  const Duration whole = Clock::now() - start;
  const std::string newLibrary = readWholeFile(output.file("dut.lb"));
  const std::string oldLibrary = "* old" + newLibrary.substr(0, newLibrary.size() / 2);
  std::mt19937 dice(200);
  std::uniform_real_distribution<double> share(0.0, 1.5);
  int oldOnes = 0;
  int newOnes = 0;
  int unfinished = 0;
  for (int turn = 0; turn < turns; ++turn) {
    output.write("dut.lb", oldLibrary);
    const bool isDone = Conversion(words).killAfter(whole * share(dice));
    unfinished += clearUnfinished(output);
    const std::string left = readWholeFile(output.file("dut.lb"));
    ++(left == oldLibrary ? oldOnes : newOnes);
    ASSERT_TRUE(left == newLibrary || (left == oldLibrary && !isDone)) << left.size() << " bytes";
    EXPECT_EQ(output.names(), std::vector<std::string>({"dut.lb", "dut_INFO.html"}));
  }
  std::printf("%d kills: %d old, %d new; %d files left beside their place\n", turns, oldOnes,
              newOnes, unfinished);
  EXPECT_GT(oldOnes, 0);
  EXPECT_GT(newOnes, 0);
  EXPECT_GT(unfinished, 0);
}

}  // namespace
}  // namespace ibis::testing
