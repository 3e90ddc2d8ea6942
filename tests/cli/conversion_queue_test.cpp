#include "conversion_queue.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "harness/temporary_folder.h"

namespace ibis::cli {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr std::size_t threadCount = 2;
constexpr std::size_t mostAhead = threadCount * ConversionQueue::aheadOfThread;

// A file whose library is larger than a pipe holds.
std::string largeFile() {
  std::string text =
      "[IBIS Ver] 4.2\n[Component] Part\n[Manufacturer] M\n[Package]\nR_pkg 0 NA NA\n"
      "L_pkg 0 NA NA\nC_pkg 0 NA NA\n[Pin] signal_name model_name\n1 A out\n[Model] out\n"
      "Model_type Output\nC_comp 1p NA NA\n[Voltage Range] 3 NA NA\n[Pulldown]\n-3 -1\n6 1\n"
      "[Pullup]\n-3 1\n6 -1\n[Ramp]\ndV/dt_r 1/1n NA NA\ndV/dt_f 1/1n NA NA\n"
      "[Rising Waveform]\nR_fixture = 50\nV_fixture = 0\n";
  for (int i = 0; i < 20'000; ++i) {
    text += std::to_string(i) + "p " + std::to_string(i % 3) + " NA NA\n";
  }
  return text + "[End]\n";
}

// The first file's library goes into a pipe that has a reader, which reads nothing before it is
// told to; the others have nothing to convert.
class QueueBehindASlowFile : public ::testing::Test {
 protected:
  QueueBehindASlowFile() {
    const Source slow{.name = folder_.write("slow.ibs", largeFile()),
                      .folder = folder_.file("slow"),
                      .fault = {}};
    fs::create_directory(slow.folder);
    const std::string pipe = slow.folder + "/dut.lb";
    EXPECT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    pipe_ = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    sources_.push_back(slow);
    const std::string empty = folder_.write("empty.ibs", "");
    for (std::size_t i = 0; i < 3 * mostAhead; ++i) {
      sources_.push_back({empty, folder_.file(std::to_string(i)), {}});
    }
  }
  ~QueueBehindASlowFile() override { close(pipe_); }

  // Reads all that is in the pipe and what is still to come.
  void readPipe() const {
    fcntl(pipe_, F_SETFL, 0);
    for (char text[4096]; read(pipe_, text, sizeof text) > 0;) continue;
  }

  testing::TemporaryFolder folder_;
  int pipe_ = -1;
  std::vector<Source> sources_;
};

TEST_F(QueueBehindASlowFile, HoldsABoundedNumberOfResults) {
  ConversionRequest pattern;
  pattern.mode = "model";
  pattern.subcircuit = "dut";
  ConversionQueue queue(sources_, pattern, threadCount);
  for (int i = 0; i < 1000 && queue.doneCount() < mostAhead - 1; ++i) {
    EXPECT_FALSE(queue.take(10ms));
  }
  EXPECT_FALSE(queue.take(100ms));  // time for more, had they not to wait
  EXPECT_EQ(queue.doneCount(), mostAhead - 1);

  const std::jthread reader([this] { readPipe(); });
  std::vector<Conversion> results;
  for (int i = 0; i < 1000 && results.size() < sources_.size(); ++i) {
    if (auto result = queue.take(100ms)) results.push_back(std::move(*result));
  }
  ASSERT_EQ(results.size(), sources_.size());
  const std::vector written{folder_.file("slow/dut.lb"), folder_.file("slow/dut_INFO.html")};
  EXPECT_EQ(results.front().files, written);
  for (std::size_t i = 1; i < results.size(); ++i) EXPECT_EQ(results[i].errors.size(), 1u) << i;
}

}  // namespace
}  // namespace ibis::cli
