#include "reader/text/open_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <set>

#include "harness/harness.h"
#include "output/stream/file_sink.h"
#include "support/files.h"

namespace ibis::testing {
namespace {

// What an opener of a test finds under a name, and the names that openers were given.
std::string contested;
Texts asked;

bool isClosedOnExec(std::FILE* file) { return (fcntl(fileno(file), F_GETFD) & FD_CLOEXEC) != 0; }

// The descriptors that a started program would have.
std::set<int> inherited() {
  std::set<int> numbers;
  for (int number = 0; number < 256; ++number) {
    const int flags = fcntl(number, F_GETFD);
    if (flags >= 0 && (flags & FD_CLOEXEC) == 0) numbers.insert(number);
  }
  return numbers;
}

// As a host does that hands on all that it opens.
int openToHandOn(std::FILE** file, const char* name, const char* mode) {
  *file = std::fopen(name, mode);
  return *file == nullptr ? errno : 0;
}

int openToTell(std::FILE** file, const char* name, const char* mode) {
  asked.emplace_back(name);
  return openFile(file, name, mode);
}

// A pipe takes the file's place just before it is opened.
int openBehindAPipe(std::FILE** file, const char* name, const char* mode) {
  std::filesystem::remove(contested);
  EXPECT_EQ(mkfifo(contested.c_str(), 0600), 0);
  return openFile(file, name, mode);
}

class OpenRegularFile : public ::testing::Test {
 protected:
  OpenRegularFile() : name_(folder_.write("a.ibs", "abc")) {
    contested = name_;
    asked.clear();
  }

  OpenFile open(OpenFunction opener, const char* descriptors = descriptorFolder) {
    return openRegularFile(name_, opener, status_, descriptors);
  }

  TemporaryFolder folder_;
  std::string name_;
  struct stat status_ {};
};

TEST_F(OpenRegularFile, GivesTheStatusOfWhatItOpened) {
  const OpenFile file = open(openFile);
  ASSERT_TRUE(file);
  EXPECT_EQ(status_.st_size, 3);
  EXPECT_EQ(std::fgetc(file.get()), 'a');
}

TEST_F(OpenRegularFile, OpensWhatItLookedAtAlsoWhereAPipeTakesItsPlace) {
  const OpenFile file = open(openBehindAPipe);
  ASSERT_TRUE(file);
  EXPECT_EQ(std::fgetc(file.get()), 'a');
  EXPECT_TRUE(std::filesystem::is_fifo(name_));
}

TEST_F(OpenRegularFile, OpensByNameWhereTheFolderOfDescriptorsIsMissing) {
  ASSERT_TRUE(open(openToTell, "/none/"));
  EXPECT_EQ(asked, Texts({name_}));
}

TEST_F(OpenRegularFile, LeavesNoDescriptorBehind) {
  const auto openFiles = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  };
  const auto before = openFiles();
  EXPECT_TRUE(open(openFile));
  name_ = folder_.path();
  EXPECT_FALSE(open(openFile));
  EXPECT_EQ(openFiles(), before);
}

TEST_F(OpenRegularFile, KeepsTheFileFromStartedProgramsWhoeverOpensIt) {
  for (const OpenFunction opener : {openFile, fopen_s_utf8, openToHandOn}) {
    EXPECT_TRUE(isClosedOnExec(open(opener).get()));
  }
}

TEST_F(OpenRegularFile, IsFollowedByOutputsThatStartedProgramsDoNotInheritEither) {
  for (const OpenFunction opener : {openFile, fopen_s_utf8}) {
    std::FILE* file = nullptr;
    ASSERT_EQ(opener(&file, folder_.file("out").c_str(), "w"), 0);
    EXPECT_TRUE(isClosedOnExec(OpenFile(file).get()));
  }
  FileSink sink(openToHandOn);
  const std::set<int> before = inherited();
  const std::unique_ptr<SinkTarget> beside = sink.open(folder_.file("b"));
  const std::unique_ptr<SinkTarget> inPlace = sink.open("/dev/null");
  ASSERT_TRUE(beside && inPlace);
  EXPECT_EQ(inherited(), before);
}

}  // namespace
}  // namespace ibis::testing
