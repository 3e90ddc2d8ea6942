// Each command of the program while memory or a step with a file fails under it.

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <iostream>
#include <streambuf>

#include "harness/counted_memory.h"
#include "harness/sanitizer.h"
#include "interruption.h"
#include "program.h"
#include "robustness/failing_steps.h"
#include "robustness/load_call.h"

namespace ibis::testing {
namespace {

using Files = std::map<std::string, std::string>;

// What a run of the program leaves with its caller, who has another process.
struct Shared {
  bool hasFailed;
  std::uint64_t allocations;
  std::array<char, 1 << 20> out;
  std::array<char, 1 << 20> err;
};

// Takes what a stream is given without asking for memory, which may be the very thing that lacks.
class Taken final : public std::streambuf {
 public:
  Taken(std::ostream& stream, std::span<char> room) {
    setp(room.data(), room.data() + room.size() - 1);
    stream.rdbuf(this);
  }
};

// What one run of the program did.
struct Ended {
  bool hasFailed = false;
  std::uint64_t allocations = 0;
  int status = 0;
  std::string out;
  std::string err;
  Files files;

  bool isLike(const Ended& other) const {
    return status == other.status && out == other.out && err == other.err && files == other.files;
  }
};

// A command line; "IN" and "BAD" stand for files, "FOLDER" for a folder of three, "OUT" for the
// folder of output.
struct CommandCase {
  const char* name;
  std::vector<std::string> words;
  bool readsFiles = true;
};

// Of the allocations of a command so many fail in their turn, so that all commands take a few
// seconds; with the variable each does, which takes minutes. A fork takes long under a sanitizer.
constexpr std::uint64_t faultCount = IBIS_HAS_SANITIZER ? 20 : 100;
const bool triesEach = std::getenv("IBIS_EVERY_FAULT") != nullptr;

void PrintTo(const CommandCase& each, std::ostream* out) { *out << each.name; }

const CommandCase commandCases[] = {
    {"Version", {"--version"}, false},
    {"Convert", {"convert", "IN", "-o", "OUT", "-s", "dut"}},
    {"ConvertAll", {"convert", "IN", "-o", "OUT", "-m", "package", "-m", "script", "--json"}},
    {"ConvertErrors", {"convert", "BAD", "-o", "OUT"}},
    {"ConvertFolder", {"convert", "FOLDER", "-o", "OUT"}},
    {"ConvertFolderJson", {"convert", "FOLDER", "-o", "OUT", "--json"}},
    {"Export", {"export", "IN", "-o", "OUT", "--bench"}},
    {"ExportJson", {"export", "IN", "-o", "OUT", "--json", "--package", "coupled"}},
    {"List", {"list", "IN", "BAD"}},
    {"ListJson", {"list", "FOLDER", "--json"}},
    {"Show", {"show", "IN"}},
    {"ShowJson", {"show", "IN", "driver", "--json"}},
    {"ShowNothing", {"show", "IN", "drivver"}},
    {"ShowTable", {"show", "IN", "driver", "--csv", "pullup"}},
    {"Check", {"check", "IN", "BAD", "-Wall"}},
    {"CheckJson", {"check", "IN", "BAD", "--json"}},
    {"CheckSarif", {"check", "IN", "BAD", "--sarif"}},
    {"Explain", {"check", "--explain", "all"}, false},
    {"VerifyWithoutSimulator", {"verify", "IN"}, false},
};

class Commands : public ::testing::TestWithParam<CommandCase> {
 protected:
  ~Commands() override { munmap(shared_, sizeof(Shared)); }

  Commands() {
    writeWholeFile(input_.file("stderr"), "");
    writeWholeFile(input_.file("small.ibs"), smallText);
    writeWholeFile(input_.file("bad.ibs"), smallText.substr(0, smallText.find("[Diff Pin]")));
    std::filesystem::create_directory(input_.file("folder"));
    for (const char* name : {"a", "b", "c"}) {
      writeWholeFile(input_.file("folder/") + name + ".ibs", *name == 'b' ? "[" : smallText);
    }
    for (std::string word : GetParam().words) {
      if (word == "IN") word = input_.file("small.ibs");
      if (word == "BAD") word = input_.file("bad.ibs");
      if (word == "FOLDER") word = input_.file("folder");
      if (word == "OUT") word = output_.path();
      words_.push_back(std::move(word));
    }
  }

  // Runs in a process of its own, as the program does: lack of memory may end it anywhere.
  //
  // The files stand there before the run; what it leaves of them is gone behind it.
  template <class Fault>
  Ended runWith(const Files& earlier, auto... faultArguments) {
    for (const auto& [name, text] : earlier) writeWholeFile(output_.file(name), text);
    shared_->hasFailed = true;
    shared_->out.fill('\0');
    shared_->err.fill('\0');
    const pid_t child = fork();
    if (child == 0) runChild<Fault>(faultArguments...);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status);
    return {.hasFailed = shared_->hasFailed,
            .allocations = shared_->allocations,
            .status = WEXITSTATUS(status),
            .out = shared_->out.data(),
            .err = shared_->err.data() + readWholeFile(input_.file("stderr")),
            .files = takeFiles()};
  }

  Ended runWithoutMemory(std::uint64_t successes, const Files& earlier = {}) {
    return runWith<FailingMemory>(earlier, FailingMemory::Source::operatorNew,
                                  FailingMemory::Duration::once, successes);
  }

  Ended runWithoutStep(int successes, const Files& earlier = {}) {
    return runWith<FailingStep>(earlier, successes);
  }

  // Every run is as one without fault, or tells why it is not; each file is the old one or the new.
  void expectSound(const Ended& run, const Ended& whole, const Files& earlier) {
    if (run.isLike(whole)) return;
    EXPECT_EQ(run.status, 1);
    const auto tells = [&](const char* text) { return run.out.find(text) != run.out.npos; };
    EXPECT_TRUE(!run.err.empty() || tells("\"Cannot ") || tells("\"std::bad_alloc\""));
    for (const auto& [name, text] : run.files) {
      ASSERT_TRUE(whole.files.contains(name)) << name;
      // The file that is open goes on where the next one cannot be opened, which is told.
      EXPECT_TRUE(text.starts_with(whole.files.at(name)) || text == earlier.at(name)) << name;
    }
    for (const auto& [name, text] : earlier) EXPECT_TRUE(run.files.contains(name)) << name;
  }

  static Files earlierOf(const Ended& whole) {
    Files earlier;
    for (const auto& [name, text] : whole.files) earlier[name] = "earlier " + name;
    return earlier;
  }

 private:
  template <class Fault>
  [[noreturn]] void runChild(auto... faultArguments) {
    setenv("PATH", "/proc/self/fdinfo", 1);  // where no simulator is
    dup2(open(input_.file("stderr").c_str(), O_WRONLY | O_TRUNC), STDERR_FILENO);
    cli::watchForLackOfMemory();
    std::vector<char*> pointers;
    for (std::string& word : words_) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    const Taken out(std::cout, shared_->out);
    const Taken err(std::cerr, shared_->err);
    const Fault fault(faultArguments...);
    const std::uint64_t before = memoryUse().allocations;
    const int status = cli::runProgram(static_cast<int>(words_.size()), pointers.data());
    shared_->allocations = memoryUse().allocations - before;
    shared_->hasFailed = fault.hasFailed();
    _exit(status);
  }

  Files takeFiles() const {
    Files files;
    namespace fs = std::filesystem;
    for (const auto& entry : fs::recursive_directory_iterator(output_.path())) {
      if (!entry.is_regular_file()) continue;
      const std::string name = fs::relative(entry.path(), output_.path()).string();
      files[name] = readWholeFile(entry.path().string());
      fs::remove(entry.path());
    }
    return files;
  }

  TemporaryFolder input_;
  TemporaryFolder output_;
  std::vector<std::string> words_ = {"ibis-load"};
  Shared* const shared_ = static_cast<Shared*>(
      mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
};

TEST_P(Commands, DoAsAlwaysOrTellThatMemoryLacks) {
  constexpr std::uint64_t endless = 1'000'000'000;
  const Ended whole = runWithoutMemory(endless);
  const Files earlier = earlierOf(whole);
  int failures = 0;
  const std::uint64_t stride = triesEach ? 1 : whole.allocations / faultCount + 1;
  for (std::uint64_t successes = stride / 2;; successes += stride) {
    const Ended run = runWithoutMemory(successes, earlier);
    if (!run.hasFailed) break;
    SCOPED_TRACE("allocation " + std::to_string(successes));
    expectSound(run, whole, earlier);
    if (!run.isLike(whole)) ++failures;
    if (HasFailure()) return;
  }
  EXPECT_GT(failures, 5);
}

TEST_P(Commands, DoAsAlwaysOrTellOfAFileThatFails) {
  const Ended whole = runWithoutStep(1'000'000);
  const Files earlier = earlierOf(whole);
  int steps = 0;
  for (;; ++steps) {
    const Ended run = runWithoutStep(steps, earlier);
    if (!run.hasFailed) break;
    SCOPED_TRACE("step " + std::to_string(steps));
    expectSound(run, whole, earlier);
    if (HasFailure()) return;
  }
  EXPECT_EQ(steps > 0, GetParam().readsFiles);
}

// Commands over many files, of which each has its own part of the output.
class CommandsOverFiles : public Commands {};

// Memory that lacks once ends a run before the first file or behind the last, or costs one file.
TEST_P(CommandsOverFiles, LoseOneFileWhereMemoryLacksOnce) {
  const Ended whole = runWithoutMemory(1'000'000'000);
  const std::uint64_t stride = triesEach ? 1 : whole.allocations / (4 * faultCount) + 1;
  std::string order;  // of what came of the runs: e for one that ended, f for one that lost a file
  for (std::uint64_t successes = 0;; successes += stride) {
    const Ended run = runWithoutMemory(successes);
    if (!run.hasFailed) break;
    const std::string text = run.out + run.err;
    const bool isEnded = text.find("ibis-load: error: std::bad_alloc") != text.npos;
    const bool isLost = text.find(".ibs: error: std::bad_alloc") != text.npos ||
                        text.find("\"std::bad_alloc\"") != text.npos;
    if (!isEnded && !isLost) continue;
    const char outcome = isEnded ? 'e' : 'f';
    if (order.empty() || order.back() != outcome) order += outcome;
    if (!isLost) continue;
    SCOPED_TRACE("allocation " + std::to_string(successes));
    EXPECT_TRUE(text.find("/a.ibs") != text.npos && text.find("/c.ibs") != text.npos) << text;
  }
  EXPECT_THAT(order, ::testing::AnyOf("ef", "efe"));
}

const CommandCase casesOverFiles[] = {
    {"List", {"list", "FOLDER"}},
    {"ListJson", {"list", "FOLDER", "--json"}},
    {"Check", {"check", "FOLDER", "-Wall"}},
    {"CheckJson", {"check", "FOLDER", "--json"}},
    {"CheckSarif", {"check", "FOLDER", "--sarif"}},
    {"Convert", {"convert", "FOLDER", "-o", "OUT"}},
    {"ConvertJson", {"convert", "FOLDER", "-o", "OUT", "--json"}},
};

INSTANTIATE_TEST_SUITE_P(All, CommandsOverFiles, ::testing::ValuesIn(casesOverFiles),
                         [](const auto& each) { return std::string(each.param.name); });

INSTANTIATE_TEST_SUITE_P(All, Commands, ::testing::ValuesIn(commandCases),
                         [](const auto& each) { return std::string(each.param.name); });

}  // namespace
}  // namespace ibis::testing
