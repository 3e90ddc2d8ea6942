#include "harness/counted_memory.h"
#include "robustness/load_call.h"

namespace ibis::testing {
namespace {

using Source = FailingMemory::Source;
using Duration = FailingMemory::Duration;
using Files = std::map<std::string, std::string>;

constexpr char failed[] = "Load failed: std::bad_alloc";

std::ptrdiff_t openFiles() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

// What one call left behind.
struct Call {
  bool memoryFailed = false;
  int finishCalls = 0;
  std::ptrdiff_t filesLeftOpen = 0;
  std::int64_t leaked = 0;
  Texts strings;
  Files files;
};

class AllocationFaults : public ::testing::TestWithParam<const char*> {
 protected:
  AllocationFaults() {
    writeWholeFile(input_.file("small.ibs"), smallText);
    callFailing(Source::operatorNew, Duration::once, 1'000'000);  // fills what is made only once
  }

  LoadRequest request() const {
    return {.source = input_.file("small.ibs"),
            .mode = GetParam(),
            .component = "Part",
            .rootDirectory = output_.path(),
            .subcircuit = "dut",
            .pins = {"1", "3"},
            .selections = {"by\\schoice"}};
  }

  // The files that stand there before the call; what it leaves of them is gone behind it.
  Call callFailing(Source source, Duration duration, std::uint64_t successes,
                   const Files& earlier = {},
                   FailingMemory::Thrown thrown = FailingMemory::Thrown::badAlloc) const {
    for (const auto& [name, text] : earlier) output_.write(name, text);
    Call call;
    const std::ptrdiff_t filesBefore = openFiles();
    const std::int64_t before = memoryUse().live;
    std::int64_t copied = 0;
    {
      const FakeArguments arguments = argumentsOf(request());
      FakeResult result;
      {
        FailingMemory memory(source, duration, successes, thrown);
        EXPECT_EQ(callAsHost(loadFunction(), arguments, result), FUNC_ERROR::success);
        call.memoryFailed = memory.hasFailed();
      }
      call.finishCalls = result.finishCalls;
      const std::int64_t beforeCopy = memoryUse().live;
      call.strings = result.strings();
      copied = memoryUse().live - beforeCopy;
    }
    call.leaked = memoryUse().live - before - copied;
    call.filesLeftOpen = openFiles() - filesBefore;
    call.files = output_.contents();
    for (const std::string& name : output_.names()) {
      EXPECT_FALSE(name.ends_with(".part")) << name;
      std::filesystem::remove(output_.file(name));
    }
    return call;
  }

  // Makes the call with each allocation failing in turn and gives how many there are.
  template <class Check>
  std::uint64_t failInTurn(Source source, Duration duration, Check check, const Files& earlier = {},
                           FailingMemory::Thrown thrown = FailingMemory::Thrown::badAlloc) const {
    std::uint64_t successes = 0;
    for (;; ++successes) {
      const Call call = callFailing(source, duration, successes, earlier, thrown);
      if (!call.memoryFailed) return successes;
      SCOPED_TRACE("allocation " + std::to_string(successes));
      EXPECT_EQ(call.finishCalls, 1);
      EXPECT_EQ(call.leaked, 0);
      EXPECT_EQ(call.filesLeftOpen, 0);
      check(call);
      if (HasFailure()) return successes;
    }
  }

 private:
  TemporaryFolder input_;
  TemporaryFolder output_;
};

bool isResult(const Texts& strings) {
  return strings.size() >= 4 &&
         strings.size() == 4 + std::stoul(strings[2]) + std::stoul(strings[3]);
}

bool isUnwritten(const std::string& text) { return text.starts_with("Cannot write output file '"); }

// Whether the array tells of the failure behind what was found until then, in the order of `whole`,
// and behind at most one file that was given up.
void expectFailure(const Texts& strings, const Texts& whole, const std::string& failure = failed) {
  ASSERT_TRUE(isResult(strings));
  ASSERT_GE(strings.size(), 5u);
  EXPECT_EQ(strings[0], "2");
  EXPECT_EQ(strings.back(), failure);
  const std::size_t errors = isUnwritten(strings.end()[-2]) ? 2 : 1;
  EXPECT_EQ(strings[3], std::to_string(errors));
  const std::size_t warnings = strings.size() - 4 - errors;
  ASSERT_LE(4 + warnings, whole.size());
  for (std::size_t i = 4; i < 4 + warnings; ++i) EXPECT_EQ(strings[i], whole[i]);
}

// No file is there but those of a load without faults, each whole.
void expectWholeFiles(const Files& files, const Files& whole) {
  for (const auto& [name, text] : files) {
    ASSERT_TRUE(whole.contains(name)) << name;
    EXPECT_EQ(text, whole.at(name)) << name;
  }
}

TEST_P(AllocationFaults, GiveAWholeResultWithStatus2) {
  const Call whole = callFailing(Source::operatorNew, Duration::once, 1'000'000);
  ASSERT_TRUE(isResult(whole.strings));
  const std::uint64_t count =
      failInTurn(Source::operatorNew, Duration::once, [&](const Call& call) {
        // What can do without the memory does, and nobody sees a difference.
        if (call.strings == whole.strings && call.files == whole.files) return;
        expectFailure(call.strings, whole.strings);
        expectWholeFiles(call.files, whole.files);
      });
  EXPECT_GT(count, 100u);
}

// The root directory is told as soon as the arguments were taken, also where nothing else is.
TEST_P(AllocationFaults, KeepTheRootDirectory) {
  const std::string root = request().rootDirectory;
  bool wasTaken = false;
  const std::uint64_t count =
      failInTurn(Source::operatorNew, Duration::once, [&](const Call& call) {
        ASSERT_GE(call.strings.size(), 4u);
        wasTaken = wasTaken || call.strings[1] == root;
        const Texts untaken = {"2", "", "0", "1", failed};
        EXPECT_TRUE(wasTaken ? call.strings[1] == root : call.strings == untaken);
      });
  EXPECT_GT(count, 100u);
  EXPECT_TRUE(wasTaken);
}

TEST_P(AllocationFaults, OfAnyOtherTypeGiveAWholeResultToo) {
  const Call whole = callFailing(Source::operatorNew, Duration::once, 1'000'000);
  const auto check = [&](const Call& call) {
    if (call.strings == whole.strings && call.files == whole.files) return;
    expectFailure(call.strings, whole.strings, "Load failed: unknown exception");
    expectWholeFiles(call.files, whole.files);
  };
  EXPECT_GT(
      failInTurn(Source::operatorNew, Duration::once, check, {}, FailingMemory::Thrown::number),
      100u);
}

TEST_P(AllocationFaults, GiveNoStringsIfMemoryNeverComesBack) {
  const Call whole = callFailing(Source::operatorNew, Duration::once, 1'000'000);
  const std::uint64_t count =
      failInTurn(Source::operatorNew, Duration::forEver, [&](const Call& call) {
        EXPECT_EQ(call.strings, Texts());
        expectWholeFiles(call.files, whole.files);
      });
  EXPECT_GT(count, 100u);
}

// Each earlier file stays as it was or is replaced by a whole one, and a good status says by which.
TEST_P(AllocationFaults, LeaveEachFileOldOrNew) {
  const Call whole = callFailing(Source::operatorNew, Duration::once, 1'000'000);
  Files earlier;
  for (const auto& [name, text] : whole.files) earlier[name] = "earlier " + name;
  for (const Duration duration : {Duration::once, Duration::forEver}) {
    std::size_t oldOnes = 0;
    failInTurn(
        Source::operatorNew, duration,
        [&](const Call& call) {
          ASSERT_EQ(call.files.size(), whole.files.size());
          for (const auto& [name, text] : call.files) {
            if (text == whole.files.at(name)) continue;
            ++oldOnes;
            EXPECT_EQ(text, earlier.at(name));
            EXPECT_TRUE(call.strings.empty() || call.strings[0] == "2");
          }
        },
        earlier);
    EXPECT_EQ(oldOnes > 0, !whole.files.empty());
  }
}

// The C library's own allocations fail too: those of its streams, and of the host's strings.
TEST_P(AllocationFaults, OfTheCLibraryGiveAWholeResultOrNone) {
  if (!canFailMalloc()) GTEST_SKIP() << "malloc is the sanitizer's";
  for (const Duration duration : {Duration::once, Duration::forEver}) {
    const std::uint64_t count = failInTurn(Source::malloc, duration, [&](const Call& call) {
      EXPECT_TRUE(call.strings.empty() ? duration == Duration::forEver : isResult(call.strings));
    });
    EXPECT_GT(count, 100u);
  }
}

TEST_P(AllocationFaults, OfTheCLibraryLeaveWholeFilesAlone) {
  if (!canFailMalloc()) GTEST_SKIP() << "malloc is the sanitizer's";
  const Call whole = callFailing(Source::malloc, Duration::once, 1'000'000);
  failInTurn(Source::malloc, Duration::once, [&](const Call& call) {
    for (const auto& [name, text] : call.files) {
      ASSERT_TRUE(whole.files.contains(name)) << name;
      if (text == whole.files.at(name)) continue;
      // The file that is open goes on where the next one cannot be opened, which is told.
      EXPECT_TRUE(text.starts_with(whole.files.at(name))) << name;
      const std::string page = request().rootDirectory + "/dut_INFO.html";
      EXPECT_EQ(std::ranges::count(call.strings, "Cannot open output file '" + page + "'\n"), 1);
    }
    // A source that cannot be opened is passed over, and nobody is told.
    EXPECT_TRUE(call.strings[0] == "2" || call.files.empty() || call.files == whole.files);
  });
}

INSTANTIATE_TEST_SUITE_P(Modes, AllocationFaults,
                         ::testing::Values("model", "package", "script", "symbol"),
                         [](const auto& each) { return std::string(each.param); });

}  // namespace
}  // namespace ibis::testing
