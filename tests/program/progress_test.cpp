#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <future>
#include <mutex>

#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

using ::testing::MatchesRegex;

// Some machines have no terminals to give.
class Progress : public ::testing::Test {
 protected:
  void SetUp() override {
    const int screen = posix_openpt(O_RDWR | O_NOCTTY);
    if (screen < 0) GTEST_SKIP() << "no terminal can be made here: " << std::strerror(errno);
    close(screen);
  }
};

// A terminal whose screen nobody but the test sees; all that is printed on it is kept.
class Terminal {
 public:
  explicit Terminal(unsigned short columns) : screen_(posix_openpt(O_RDWR | O_NOCTTY)) {
    if (grantpt(screen_) != 0 || unlockpt(screen_) != 0) {
      throw std::runtime_error("cannot make a terminal");
    }
    name_ = ptsname(screen_);
    line_ = open(name_.c_str(), O_RDWR | O_NOCTTY);
    const winsize size{24, columns, 0, 0};
    ioctl(line_, TIOCSWINSZ, &size);
    reading_ = std::async(std::launch::async, [this] { readAll(); });
  }
  ~Terminal() { close(screen_); }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  const std::string& name() const { return name_; }

  // The end of the line lets the reading end.
  std::string text() {
    close(line_);
    reading_.get();
    return text_;
  }

  // Ends as soon as it was shown.
  void waitFor(std::string_view words) {
    std::unique_lock lock(mutex_);
    more_.wait(lock, [&] { return text_.find(words) != text_.npos; });
  }

 private:
  void readAll() {
    std::array<char, 4096> part{};
    for (ssize_t size = 1; size > 0;) {
      size = read(screen_, part.data(), part.size());
      if (size <= 0) return;
      const std::lock_guard lock(mutex_);
      text_.append(part.data(), static_cast<std::size_t>(size));
      more_.notify_one();
    }
  }

  int screen_;
  int line_ = -1;
  std::string name_;
  std::mutex mutex_;
  std::condition_variable more_;
  std::string text_;
  std::future<void> reading_;
};

std::string shownOn(unsigned short columns, const TemporaryFolder& folder,
                    std::vector<std::string> words) {
  Terminal terminal(columns);
  words.insert(words.begin(), {"convert", "-m", "package", "-o", "out"});
  run(words, {.error = terminal.name(), .folder = folder.path()});
  return terminal.text();
}

// What wipes a line of so many columns.
std::string wiped(std::size_t columns) { return '\r' + std::string(columns, ' ') + '\r'; }

// Lines that a slow machine may have time to show.
const std::string moreLines = "([0-9]+ of [0-9]+ files?(, [0-9.]+ per second)?: [^\r]*\r\r *\r)*";

TEST_F(Progress, StandsOnTheTerminalAndIsWipedAtTheEnd) {
  const TemporaryFolder folder;
  folder.write("a.ibs", bufferText);
  folder.write("b.ibs", bufferText);
  EXPECT_THAT(shownOn(80, folder, {"a.ibs", "b.ibs"}),
              MatchesRegex("0 of 2 files: a\\.ibs\r" + wiped(19) + moreLines));
}

TEST_F(Progress, MakesRoomForMessages) {
  const TemporaryFolder folder;
  folder.write("a.ibs", "");
  EXPECT_THAT(
      shownOn(80, folder, {"a.ibs", "gone.ibs"}),
      MatchesRegex("0 of 2 files: a\\.ibs\r" + wiped(19) + moreLines +
                   "a\\.ibs: error: The file has no component\r\na\\.ibs: note: it is empty\r\n" +
                   moreLines +
                   "gone\\.ibs: error: Cannot open the file: No such file or directory\r\n" +
                   moreLines));
}

// A pipe in the place of an output, which holds the program up until it is read.
class SlowReader {
 public:
  explicit SlowReader(const std::string& name) {
    mkfifo(name.c_str(), 0600);
    end_ = open(name.c_str(), O_RDONLY | O_NONBLOCK);
    fcntl(end_, F_SETPIPE_SZ, 4096);
  }
  ~SlowReader() { close(end_); }
  SlowReader(const SlowReader&) = delete;
  SlowReader& operator=(const SlowReader&) = delete;

  void readAll() const {
    fcntl(end_, F_SETFL, 0);
    std::array<char, 4096> part{};
    while (read(end_, part.data(), part.size()) > 0) continue;
  }

 private:
  int end_ = -1;
};

TEST_F(Progress, ShowsCountRateAndCurrentFile) {
  const TemporaryFolder folder;
  folder.write("a.ibs", bufferText);
  std::string pins = partText.substr(0, partText.find("2 VSS GND\n"));
  for (int i = 2; i < 1000; ++i) pins += std::to_string(i) + " net in\n";
  folder.write("b.ibs", pins + receiverText + "[End]\n");
  std::filesystem::create_directories(folder.file("out/b"));
  const SlowReader reader(folder.file("out/b/BUF_1.lb"));
  Terminal terminal(80);
  auto running = std::async(std::launch::async, [&] {
    run({"convert", "-j1", "-o", "out", "a.ibs", "b.ibs"},
        {.error = terminal.name(), .folder = folder.path()});
  });
  terminal.waitFor("1 of 2 files, ");
  reader.readAll();
  running.get();
  EXPECT_THAT(terminal.text(),
              MatchesRegex("0 of 2 files: a\\.ibs\r\r +\r(0 of 2 files: [ab]\\.ibs\r\r +\r)*"
                           "(1 of 2 files, [0-9]+\\.[0-9] per second: b\\.ibs\r\r +\r)+" +
                           moreLines));
}

TEST_F(Progress, NeverWraps) {
  const TemporaryFolder folder;
  folder.write("Größe.ibs", bufferText);
  folder.write("b.ibs", bufferText);
  EXPECT_THAT(shownOn(18, folder, {"Größe.ibs", "b.ibs"}),
              MatchesRegex("0 of 2 files: Grö\r" + wiped(17) + "([^\r]{1,17}\r\r {1,17}\r)*"));
}

TEST_F(Progress, ShowsNoControlCharacters) {
  const TemporaryFolder folder;
  folder.write("a\x1b[2J\n.ibs", bufferText);
  folder.write("b.ibs", bufferText);
  EXPECT_THAT(shownOn(80, folder, {"a\x1b[2J\n.ibs", "b.ibs"}),
              MatchesRegex("0 of 2 files: a\\\\x1B\\[2J\\\\x0A\\.ibs\r" + wiped(30) + moreLines));
}

TEST_F(Progress, IsNotShownWithQuiet) {
  const TemporaryFolder folder;
  folder.write("a.ibs", bufferText);
  EXPECT_EQ(shownOn(80, folder, {"a.ibs", "a.ibs", "-q"}), "");
}

TEST_F(Progress, IsNotShownForOneFile) {
  const TemporaryFolder folder;
  folder.write("a.ibs", bufferText);
  EXPECT_EQ(shownOn(80, folder, {"a.ibs", "-j", "2"}), "");
}

}  // namespace
}  // namespace ibis::testing
