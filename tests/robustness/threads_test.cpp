#include <algorithm>
#include <thread>

#include "robustness/load_call.h"

namespace ibis::testing {
namespace {

using Files = std::map<std::string, std::string>;

constexpr std::size_t threadCount = 8;

// A load of an example in a mode.
struct Job {
  std::string example;
  std::string mode;
};

std::vector<Job> allJobs() {
  std::vector<Job> jobs;
  for (const std::string& example : exampleNames) {
    for (const std::string& mode : writingModes) jobs.push_back({example, mode});
  }
  return jobs;
}

LoadRequest requestFor(const Job& job, const std::string& root, const std::string& subcircuit) {
  return {.source = IBIS_SOURCE_DIR "/examples/" + job.example,
          .mode = job.mode,
          .component = {},
          .rootDirectory = root,
          .subcircuit = subcircuit,
          .pins = {},
          .selections = {}};
}

// What a load gives and leaves, its root left out.
struct Outcome {
  Texts strings;
  Files files;

  bool operator==(const Outcome&) const = default;
};

Outcome runJob(const Job& job) {
  const TemporaryFolder folder;
  Outcome outcome;
  outcome.strings = callLoad(requestFor(job, folder.path(), "dut"));
  outcome.strings[1] = "";
  outcome.files = folder.contents();
  return outcome;
}

std::vector<Outcome> runAll(const std::vector<Job>& jobs) {
  std::vector<Outcome> outcomes;
  for (const Job& job : jobs) outcomes.push_back(runJob(job));
  return outcomes;
}

// Calls work(number of the thread) on all threads at once.
template <class Work>
void onThreads(Work work) {
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < threadCount; ++i) threads.emplace_back([=] { work(i); });
  for (std::thread& thread : threads) thread.join();
}

TEST(Threads, LoadTheSameFilesWithTheSameOutcome) {
  const std::vector<Job> jobs = allJobs();
  const std::vector<Outcome> expected = runAll(jobs);
  std::vector<std::vector<Outcome>> outcomes(threadCount);
  onThreads([&](std::size_t i) { outcomes[i] = runAll(jobs); });
  for (const auto& outcome : outcomes) EXPECT_EQ(outcome, expected);
}

// Each thread begins at another file, so that different ones meet.
TEST(Threads, LoadDifferentFilesWithTheSameOutcome) {
  const std::vector<Job> jobs = allJobs();
  const std::vector<Outcome> expected = runAll(jobs);
  std::vector<std::vector<Outcome>> outcomes(threadCount);
  onThreads([&](std::size_t i) {
    std::vector<Job> turned = jobs;
    std::rotate(turned.begin(), turned.begin() + static_cast<std::ptrdiff_t>(i), turned.end());
    outcomes[i] = runAll(turned);
    std::vector<Outcome>& made = outcomes[i];
    std::rotate(made.begin(), made.end() - static_cast<std::ptrdiff_t>(i), made.end());
  });
  for (const auto& outcome : outcomes) EXPECT_EQ(outcome, expected);
}

// Names of their own are all that threads need to share a folder.
TEST(Threads, WriteIntoOneFolder) {
  const Job job{"differential_link.ibs", "package"};
  const TemporaryFolder folder;
  callLoad(requestFor(job, folder.path(), "dut0"));
  const std::string expected = folder.contents().at("dut0.lb");
  onThreads(
      [&](std::size_t i) { callLoad(requestFor(job, folder.path(), "dut" + std::to_string(i))); });
  const Files files = folder.contents();
  EXPECT_EQ(files.size(), threadCount);
  for (std::size_t i = 0; i < threadCount; ++i) {
    const std::string name = "dut" + std::to_string(i);
    std::string renamed = files.at(name + ".lb");
    const std::size_t place = renamed.find(" " + name);
    ASSERT_NE(place, renamed.npos);
    renamed[place + name.size()] = '0';
    EXPECT_EQ(renamed, expected);
  }
}

// Equal bytes from several writers are whole once the last of them is done.
TEST(Threads, WriteTheSameFile) {
  const Job job{"push_pull_buffer.ibs", "model"};
  const TemporaryFolder folder;
  const Texts result = callLoad(requestFor(job, folder.path(), "dut"));
  const Files expected = folder.contents();
  std::vector<Texts> results(threadCount);
  onThreads([&](std::size_t i) { results[i] = callLoad(requestFor(job, folder.path(), "dut")); });
  for (const Texts& each : results) EXPECT_EQ(each, result);
  EXPECT_EQ(folder.contents(), expected);
}

}  // namespace
}  // namespace ibis::testing
