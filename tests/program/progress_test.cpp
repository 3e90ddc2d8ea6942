#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <future>

#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

using ::testing::MatchesRegex;

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
    text_ = std::async(std::launch::async, [this] { return readAll(); });
  }
  ~Terminal() { close(screen_); }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  const std::string& name() const { return name_; }

  // The end of the line lets the reading end.
  std::string text() {
    close(line_);
    return text_.get();
  }

 private:
  std::string readAll() const {
    std::string text;
    std::array<char, 4096> part{};
    for (ssize_t size = 1; size > 0;) {
      size = read(screen_, part.data(), part.size());
      if (size > 0) text.append(part.data(), static_cast<std::size_t>(size));
    }
    return text;
  }

  int screen_;
  int line_ = -1;
  std::string name_;
  std::future<std::string> text_;
};

std::string shownOn(unsigned short columns, const Folder& folder, std::vector<std::string> words) {
  Terminal terminal(columns);
  words.insert(words.begin(), {"convert", "-m", "package", "-o", "out"});
  run(words, {.error = terminal.name(), .folder = folder.path()});
  return terminal.text();
}

// What wipes a line of so many columns.
std::string wiped(std::size_t columns) { return '\r' + std::string(columns, ' ') + '\r'; }

// Lines that a slow machine may have time to show.
const std::string moreLines = "([0-9]+ of [0-9]+ files?, [0-9.]+ per second: [^\r]*\r\r *\r)*";

TEST(Progress, StandsOnTheTerminalAndIsWipedAtTheEnd) {
  const Folder folder;
  folder.write("a.ibs", bufferText);
  folder.write("b.ibs", bufferText);
  EXPECT_THAT(shownOn(80, folder, {"a.ibs", "b.ibs"}),
              MatchesRegex("0 of 2 files: a\\.ibs\r" + wiped(19) + moreLines));
}

TEST(Progress, MakesRoomForMessages) {
  const Folder folder;
  folder.write("a.ibs", "");
  EXPECT_THAT(
      shownOn(80, folder, {"a.ibs", "gone.ibs"}),
      MatchesRegex("0 of 2 files: a\\.ibs\r" + wiped(19) + moreLines +
                   "a\\.ibs: error: The file has no component\r\n" + moreLines +
                   "gone\\.ibs: error: Cannot open the file: No such file or directory\r\n" +
                   moreLines));
}

TEST(Progress, ShowsCountRateAndCurrentFile) {
  const Folder folder;
  folder.write("a.ibs", bufferText);
  std::filesystem::create_directory(folder.file("lib"));
  for (int i = 1000; i < 1800; ++i) {
    std::filesystem::create_hard_link(folder.file("a.ibs"),
                                      folder.file("lib/" + std::to_string(i) + ".ibs"));
  }
  EXPECT_THAT(shownOn(80, folder, {"lib"}),
              MatchesRegex("0 of 800 files: lib/1000\\.ibs\r" + wiped(28) +
                           "([0-9]+ of 800 files, [0-9]+\\.[0-9] per second: "
                           "lib/1[0-9][0-9][0-9]\\.ibs\r\r +\r)+"));
}

TEST(Progress, NeverWraps) {
  const Folder folder;
  folder.write("Größe.ibs", bufferText);
  folder.write("b.ibs", bufferText);
  EXPECT_THAT(shownOn(18, folder, {"Größe.ibs", "b.ibs"}),
              MatchesRegex("0 of 2 files: Grö\r" + wiped(17) + "([^\r]{1,17}\r\r {1,17}\r)*"));
}

TEST(Progress, ShowsNoControlCharacters) {
  const Folder folder;
  folder.write("a\x1b[2J\n.ibs", bufferText);
  folder.write("b.ibs", bufferText);
  EXPECT_THAT(shownOn(80, folder, {"a\x1b[2J\n.ibs", "b.ibs"}),
              MatchesRegex("0 of 2 files: a\\?\\[2J\\?\\.ibs\r" + wiped(24) + moreLines));
}

TEST(Progress, IsNotShownWithQuiet) {
  const Folder folder;
  folder.write("a.ibs", bufferText);
  EXPECT_EQ(shownOn(80, folder, {"a.ibs", "a.ibs", "-q"}), "");
}

TEST(Progress, IsNotShownForOneFile) {
  const Folder folder;
  folder.write("a.ibs", bufferText);
  EXPECT_EQ(shownOn(80, folder, {"a.ibs", "-j", "2"}), "");
}

}  // namespace
}  // namespace ibis::testing
