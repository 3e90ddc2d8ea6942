// Runs that may take no more than so much memory.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <new>

#include "harness/sanitizer.h"
#include "interruption.h"
#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using Words = std::vector<std::string>;

const std::string lacksMemory = "ibis-load: error: std::bad_alloc\n";

// Calls what nothing can be thrown out of.
void callWatched(const std::function<void()>& work) noexcept {
  cli::watchForLackOfMemory();
  work();
}

TEST(Memory, ThatLacksWhereNothingCanBeThrownEndsInAnError) {
  EXPECT_EXIT(callWatched([] { throw std::bad_alloc(); }), ::testing::ExitedWithCode(1),
              "^ibis-load: error: std::bad_alloc\n$");
}

TEST(Memory, WatchedOverLeavesOtherFaultsAsTheyAre) {
  EXPECT_EXIT(callWatched([] { throw 7; }), ::testing::KilledBySignal(SIGABRT), "");
}

// A sanitizer takes more addresses than any limit leaves.
#if !IBIS_HAS_SANITIZER

// Pins of one character, two errors each.
std::string errorsText(int pins) {
  std::string text = partText;
  for (int i = 0; i < pins; ++i) text += "x\n";
  return text;
}

Outcome runWithMemory(int kilobytes, const Words& words) {
  Words all = {"-c", "ulimit -v " + std::to_string(kilobytes) + " && exec \"$0\" \"$@\"",
               IBIS_PROGRAM_PATH};
  all.insert(all.end(), words.begin(), words.end());
  return run(all, {.program = "/bin/sh"});
}

TEST(Memory, ThatEndsAmong200000ErrorsIsTold) {
  const TemporaryFolder folder;
  const std::string source = folder.write("errors.ibs", errorsText(100'000));
  const struct {
    Words words;
    std::string err;
  } commands[] = {
      {{"convert", source, "--json", "-o", folder.file("out")}, lacksMemory},
      {{"check", source, "--json"}, ""},  // which tells of it in its output
      {{"check", source, "--sarif"}, ""},
      {{"list", source, "--json"}, source + ": error: std::bad_alloc\n"},
      {{"show", source, "--json"}, lacksMemory},
      {{"export", source, "--json", "-o", folder.file("out")}, lacksMemory},
  };
  for (const auto& [words, err] : commands) {
    SCOPED_TRACE(words.front() + ' ' + words.back());
    const Outcome outcome = runWithMemory(100'000, words);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, err);
    EXPECT_EQ(outcome.out.find("std::bad_alloc") == outcome.out.npos, err == lacksMemory);
  }
  EXPECT_FALSE(fs::exists(folder.file("out")));
}

// Each of the two waveforms has nearly a million points in three corners.
TEST(Memory, IsNotTakenForEachNumberThatShowPrints) {
  const TemporaryFolder folder;
  const std::string source = folder.write(
      "slow.ibs",
      "[IBIS Ver] 4.2\n[Component] C\n[Manufacturer] M\n[Pin] signal_name model_name\n1 A m\n"
      "[Model] m\nModel_type Output\n[Voltage Range] 3 3 3\n[Pulldown]\n-3 -1\n6 1\n[Pullup]\n"
      "-3 1\n6 -1\n[Ramp]\ndV/dt_r 1/1n 1/1n 1/4u\ndV/dt_f 1/1n 1/1n 1/4u\n[End]\n");
  const Outcome outcome = runWithMemory(150'000, {"show", source, "--json"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_GT(outcome.out.size(), 100'000'000u);
}

TEST(Memory, ThatOneFileUsesUpIsThereForTheOthersOfAListOrCheck) {
  const TemporaryFolder folder;
  folder.write("a.ibs", errorsText(400'000));
  folder.write("b.ibs", bufferText);
  folder.write("c.ibs", bufferText);
  const std::string error =
      R"("errors":[{"id":"work-failed","line":null,"text":"std::bad_alloc"}])";
  const Outcome listed = runWithMemory(150'000, {"list", folder.path()});
  EXPECT_EQ(listed.status, 1);
  EXPECT_EQ(listed.err, folder.file("a.ibs") + ": error: std::bad_alloc\n");
  EXPECT_THAT(listed.out, HasSubstr(folder.file("c.ibs") + ": IBIS 4.2"));
  const Outcome json = runWithMemory(150'000, {"list", folder.path(), "--json"});
  EXPECT_THAT(json.out, HasSubstr(error + "},\n{"));
  EXPECT_THAT(json.out, HasSubstr(folder.file("c.ibs")));
  for (const char* form : {"--json", "--sarif"}) {
    const Outcome checked = runWithMemory(150'000, {"check", folder.path(), form});
    EXPECT_EQ(checked.status, 1);
    EXPECT_THAT(checked.out, HasSubstr("std::bad_alloc"));
    EXPECT_THAT(checked.out, HasSubstr(folder.file("c.ibs"))) << form;
  }
  EXPECT_THAT(runWithMemory(150'000, {"check", folder.path()}).out, HasSubstr("3 files: "));
}

TEST(Memory, ThatOneFileUsesUpIsThereForTheOthers) {
  constexpr int others = 40;
  for (const char* jobs : {"1", "2"}) {
    const TemporaryFolder folder;
    fs::create_directory(folder.file("in"));
    folder.write("in/a.ibs", errorsText(400'000));
    for (int i = 0; i < others; ++i) {
      folder.write("in/b" + std::to_string(i) + ".ibs", bufferText);
    }
    const std::string out = folder.file("out");
    const Outcome outcome = runWithMemory(
        150'000, {"convert", "--no-check", folder.file("in"), "-q", "-j", jobs, "-o", out});
    EXPECT_EQ(outcome.status, 1);
    // The load tells of it, or the conversion around it, by what is asked for last.
    const std::string lead = folder.file("in/a.ibs") + ": error: ";
    EXPECT_TRUE(outcome.err == lead + "std::bad_alloc\n" ||
                outcome.err == lead + "Load failed: std::bad_alloc\n")
        << outcome.err;
    for (int i = 0; i < others; ++i) {
      EXPECT_TRUE(fs::exists(out + "/b" + std::to_string(i) + "/BUF_1.lb")) << i;
    }
  }
}

#endif

}  // namespace
}  // namespace ibis::testing
