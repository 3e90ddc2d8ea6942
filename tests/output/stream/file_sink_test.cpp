#include "output/stream/file_sink.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>;

const std::string earlier = "what was there\n";

// Writes a text under a name and closes it, without keeping it.
bool put(Sink& sink, const std::string& name, std::string_view text) {
  const std::unique_ptr<SinkTarget> target = sink.open(name);
  if (!target) return false;
  const bool isTaken = target->write(text);
  return target->close() && isTaken;
}

ino_t numberOf(const std::string& name) {
  struct stat status {};
  EXPECT_EQ(lstat(name.c_str(), &status), 0) << name;
  return status.st_ino;
}

bool isPart(const std::string& name) {
  constexpr std::size_t size = std::string_view(".ibis-load-0123456789abcdef.part").size();
  return name.size() == size && name.starts_with(".ibis-load-") && name.ends_with(".part") &&
         name.substr(11, 16).find_first_not_of("0123456789abcdef") == std::string::npos;
}

class FileSinks : public ::testing::Test {
 protected:
  std::string file(const std::string& name) const { return folder.file(name); }

  TemporaryFolder folder;
  FileSink sink;
};

TEST_F(FileSinks, WriteAFileThatIsInItsPlaceOnceItIsKept) {
  EXPECT_TRUE(put(sink, file("a"), std::string_view("b\0\n\xff", 4)));
  EXPECT_FALSE(fs::exists(file("a")));
  EXPECT_TRUE(sink.keep(file("a")));
  EXPECT_EQ(folder.contents(), Files({{"a", std::string("b\0\n\xff", 4)}}));
}

TEST_F(FileSinks, WriteBesideThePlaceInItsFolder) {
  folder.write("a", earlier);
  const std::unique_ptr<SinkTarget> target = sink.open(file("a"));
  EXPECT_TRUE(target->write("new"));
  const Texts names = folder.names();
  ASSERT_EQ(names.size(), 2U);
  EXPECT_TRUE(isPart(names[0])) << names[0];
  EXPECT_EQ(names[1], "a");
  EXPECT_EQ(folder.contents(), Files({{names[0], "new"}, {"a", earlier}}));
}

TEST_F(FileSinks, WriteEachPieceAtOnce) {
  const std::unique_ptr<SinkTarget> target = sink.open(file("a"));
  std::string whole;
  for (const std::string piece : {"one", "", "two\n", "3"}) {
    EXPECT_TRUE(target->write(piece));
    whole += piece;
    EXPECT_EQ(readWholeFile(folder.file(folder.names().at(0))), whole);
  }
}

TEST_F(FileSinks, WriteAnEmptyFile) {
  EXPECT_TRUE(put(sink, file("a"), ""));
  EXPECT_TRUE(sink.keep(file("a")));
  EXPECT_EQ(folder.contents(), Files({{"a", ""}}));
}

TEST_F(FileSinks, ReplaceALongerFile) {
  folder.write("a", std::string(100'000, 'x'));
  EXPECT_TRUE(put(sink, file("a"), "new"));
  EXPECT_TRUE(sink.keep(file("a")));
  EXPECT_EQ(folder.contents(), Files({{"a", "new"}}));
}

TEST_F(FileSinks, WriteIntoTheCurrentFolder) {
  const fs::path before = fs::current_path();
  fs::current_path(folder.path());
  EXPECT_TRUE(put(sink, "a", "new"));
  EXPECT_TRUE(isPart(folder.names().at(0)));
  EXPECT_TRUE(sink.keep("a"));
  fs::current_path(before);
  EXPECT_EQ(folder.contents(), Files({{"a", "new"}}));
}

TEST_F(FileSinks, LeaveAllAsItWasWithoutKeeping) {
  folder.write("a", earlier);
  {
    FileSink given;
    EXPECT_TRUE(put(given, file("a"), "new"));
    EXPECT_TRUE(put(given, file("b"), "new"));
    const std::unique_ptr<SinkTarget> open = given.open(file("c"));
    EXPECT_TRUE(open->write("new"));
    EXPECT_EQ(folder.names().size(), 4U);
  }
  EXPECT_EQ(folder.names(), Texts({"a"}));
  EXPECT_EQ(folder.contents(), Files({{"a", earlier}}));
}

TEST_F(FileSinks, LeaveNothingOpen) {
  const auto openFiles = [] {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
  };
  const auto before = openFiles();
  { const std::unique_ptr<SinkTarget> target = sink.open(file("a")); }
  EXPECT_TRUE(put(sink, file("b"), "new"));
  EXPECT_TRUE(put(sink, "/dev/null", "new"));
  EXPECT_EQ(openFiles(), before);
}

TEST_F(FileSinks, KeepEachFileByItself) {
  for (const char* name : {"a", "b", "c"}) EXPECT_TRUE(put(sink, file(name), name));
  EXPECT_TRUE(sink.keep(file("b")));
  EXPECT_EQ(std::ranges::count_if(folder.names(), isPart), 2);
  EXPECT_TRUE(sink.keep(file("a")));
  EXPECT_TRUE(sink.keep(file("c")));
  EXPECT_EQ(folder.contents(), Files({{"a", "a"}, {"b", "b"}, {"c", "c"}}));
}

TEST_F(FileSinks, TakeANameAnewInThePlaceOfWhatWasBegun) {
  EXPECT_TRUE(put(sink, file("a"), "first"));
  EXPECT_TRUE(put(sink, file("a"), "second"));
  EXPECT_EQ(folder.names().size(), 1U);
  EXPECT_TRUE(sink.keep(file("a")));
  EXPECT_EQ(folder.contents(), Files({{"a", "second"}}));
  EXPECT_TRUE(put(sink, file("a"), "third"));
  EXPECT_TRUE(sink.keep(file("a")));
  EXPECT_EQ(folder.contents(), Files({{"a", "third"}}));
}

TEST_F(FileSinks, DoNotMeetInOneFolder) {
  FileSink other;
  EXPECT_TRUE(put(sink, file("a"), "one"));
  EXPECT_TRUE(put(other, file("a"), "two"));
  EXPECT_EQ(folder.names().size(), 2U);
  EXPECT_TRUE(other.keep(file("a")));
  EXPECT_EQ(readWholeFile(file("a")), "two");
  EXPECT_TRUE(sink.keep(file("a")));
  EXPECT_EQ(folder.contents(), Files({{"a", "one"}}));
}

TEST_F(FileSinks, TakeWhatWasWrittenInPlaceForKept) { EXPECT_TRUE(sink.keep(file("a"))); }

TEST_F(FileSinks, KeepTheModeOfAFileThatTheyReplace) {
  for (const unsigned mode : {0600U, 0644U, 0664U, 0666U, 0755U, 0777U}) {
    folder.write("a", earlier);
    fs::permissions(file("a"), fs::perms(mode));
    EXPECT_TRUE(put(sink, file("a"), "new"));
    EXPECT_TRUE(sink.keep(file("a")));
    EXPECT_EQ(fs::status(file("a")).permissions(), fs::perms(mode));
  }
}

TEST_F(FileSinks, GiveANewFileTheModeOfTheProcess) {
  for (const mode_t mask : {0022U, 0077U, 0002U}) {
    const mode_t before = umask(mask);
    EXPECT_TRUE(put(sink, file("a"), "new"));
    EXPECT_TRUE(sink.keep(file("a")));
    umask(before);
    EXPECT_EQ(fs::status(file("a")).permissions(), fs::perms(0666 & ~mask));
    fs::remove(file("a"));
  }
}

TEST_F(FileSinks, KeepTheOwnerOfAFileThatTheyReplace) {
  if (geteuid() != 0) GTEST_SKIP() << "only the administrator gives files away";
  folder.write("a", earlier);
  ASSERT_EQ(chown(file("a").c_str(), 65'534, 65'533), 0);
  ASSERT_EQ(chmod(file("a").c_str(), 06755), 0);
  EXPECT_TRUE(put(sink, file("a"), "new"));
  EXPECT_TRUE(sink.keep(file("a")));
  struct stat status {};
  ASSERT_EQ(stat(file("a").c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, 65'534U);
  EXPECT_EQ(status.st_gid, 65'533U);
  EXPECT_EQ(status.st_mode & 07777, 06755U);
}

// In a folder for everybody nobody removes the files of others.
TEST_F(FileSinks, WriteTheFilesOfOthersInPlaceWhereTheyMayNotBeReplaced) {
  if (geteuid() != 0) GTEST_SKIP() << "only the administrator becomes somebody else";
  fs::permissions(folder.path(), fs::perms(01777));
  folder.write("a", earlier);
  fs::permissions(file("a"), fs::perms(0666));
  const ino_t before = numberOf(file("a"));
  ASSERT_EQ(seteuid(65'534), 0);
  const bool isWritten = put(sink, file("a"), "new") && sink.keep(file("a"));
  ASSERT_EQ(seteuid(0), 0);
  EXPECT_TRUE(isWritten);
  EXPECT_EQ(numberOf(file("a")), before);
  EXPECT_EQ(folder.contents(), Files({{"a", "new"}}));
}

TEST_F(FileSinks, RefuseAFileThatMayNotBeWritten) {
  if (geteuid() != 0) GTEST_SKIP() << "only the administrator becomes somebody else";
  fs::permissions(folder.path(), fs::perms(0777));
  folder.write("a", earlier);
  fs::permissions(file("a"), fs::perms(0644));
  ASSERT_EQ(seteuid(65'534), 0);
  const bool isOpened = sink.open(file("a")) != nullptr;
  ASSERT_EQ(seteuid(0), 0);
  EXPECT_FALSE(isOpened);
  EXPECT_EQ(folder.names(), Texts({"a"}));
  EXPECT_EQ(folder.contents(), Files({{"a", earlier}}));
}

TEST_F(FileSinks, LeaveTheOtherNameOfAFileItsText) {
  folder.write("a", earlier);
  fs::create_hard_link(file("a"), file("b"));
  EXPECT_TRUE(put(sink, file("a"), "new"));
  EXPECT_TRUE(sink.keep(file("a")));
  EXPECT_EQ(folder.contents(), Files({{"a", "new"}, {"b", earlier}}));
}

TEST_F(FileSinks, WriteThroughALink) {
  fs::create_symlink("target", file("link"));
  folder.write("target", earlier);
  const ino_t before = numberOf(file("target"));
  EXPECT_TRUE(put(sink, file("link"), "new"));
  EXPECT_TRUE(sink.keep(file("link")));
  EXPECT_TRUE(fs::is_symlink(file("link")));
  EXPECT_EQ(numberOf(file("target")), before);
  EXPECT_EQ(readWholeFile(file("target")), "new");
  EXPECT_EQ(folder.names(), Texts({"link", "target"}));
}

TEST_F(FileSinks, MakeTheFileThatALinkLeadsTo) {
  fs::create_symlink("target", file("link"));
  EXPECT_TRUE(put(sink, file("link"), "new"));
  EXPECT_TRUE(sink.keep(file("link")));
  EXPECT_TRUE(fs::is_symlink(file("link")));
  EXPECT_EQ(readWholeFile(file("target")), "new");
}

TEST_F(FileSinks, ReplaceAFileInAFolderThatALinkLeadsTo) {
  fs::create_directory(file("real"));
  fs::create_symlink("real", file("link"));
  writeWholeFile(file("real/a"), earlier);
  EXPECT_TRUE(put(sink, file("link/a"), "new"));
  EXPECT_EQ(readWholeFile(file("real/a")), earlier);
  EXPECT_TRUE(sink.keep(file("link/a")));
  EXPECT_EQ(readWholeFile(file("real/a")), "new");
}

TEST_F(FileSinks, WriteDevicesInPlace) {
  EXPECT_TRUE(put(sink, "/dev/null", "new"));
  EXPECT_TRUE(sink.keep("/dev/null"));
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_FALSE(put(sink, "/dev/full", "new"));
}

TEST_F(FileSinks, WriteAPipeThatHasAReader) {
  ASSERT_EQ(mkfifo(file("pipe").c_str(), 0600), 0);
  const int reader = open(file("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  EXPECT_TRUE(put(sink, file("pipe"), "new"));
  EXPECT_TRUE(sink.keep(file("pipe")));
  char text[8] = {};
  EXPECT_EQ(read(reader, text, sizeof text), 3);
  EXPECT_STREQ(text, "new");
  close(reader);
  EXPECT_TRUE(fs::is_fifo(file("pipe")));
}

TEST_F(FileSinks, RefuseAPipeThatNobodyReads) {
  ASSERT_EQ(mkfifo(file("pipe").c_str(), 0600), 0);
  EXPECT_EQ(sink.open(file("pipe")), nullptr);
}

TEST_F(FileSinks, RefuseWhatIsNoName) {
  fs::create_directory(file("folder"));
  for (const std::string& name :
       {std::string(), std::string("."), std::string(".."), std::string("/"), file("folder"),
        file("folder/"), file("folder/."), file("folder/.."), file("none/a"), file("none/"),
        file(std::string(300, 'x')), std::string(5000, 'x')}) {
    EXPECT_EQ(sink.open(name), nullptr) << name;
  }
  EXPECT_EQ(folder.names(), Texts({"folder"}));
  EXPECT_TRUE(fs::is_empty(file("folder")));
}

TEST_F(FileSinks, TellOfAPlaceThatIsTakenMeanwhile) {
  EXPECT_TRUE(put(sink, file("a"), "new"));
  fs::create_directory(file("a"));
  EXPECT_FALSE(sink.keep(file("a")));
  EXPECT_EQ(folder.names(), Texts({"a"}));
}

TEST_F(FileSinks, TellOfAFileThatWentMeanwhile) {
  EXPECT_TRUE(put(sink, file("a"), "new"));
  fs::remove(file(folder.names().at(0)));
  EXPECT_FALSE(sink.keep(file("a")));
  EXPECT_EQ(folder.names(), Texts());
}

// What the next opening of a file beside its place ends in; 0 opens it.
int faultBeside = 0;

int openUnlessBeside(std::FILE** file, const char* name, const char* mode) {
  *file = nullptr;
  if (std::string_view(name).ends_with(".part") && faultBeside != 0) return faultBeside;
  return openFile(file, name, mode);
}

TEST_F(FileSinks, WriteInPlaceWhereTheFolderTakesNoFile) {
  for (const int fault : {EACCES, EPERM, EROFS, ENAMETOOLONG}) {
    folder.write("a", earlier);
    const ino_t before = numberOf(file("a"));
    faultBeside = fault;
    FileSink limited(openUnlessBeside);
    EXPECT_TRUE(put(limited, file("a"), "new"));
    EXPECT_TRUE(limited.keep(file("a")));
    EXPECT_EQ(numberOf(file("a")), before);
    EXPECT_EQ(folder.contents(), Files({{"a", "new"}}));
  }
}

TEST_F(FileSinks, LeaveTheFileForAnyOtherFault) {
  for (const int fault : {ENOSPC, EMFILE, ENFILE, EIO, ENOMEM, EDQUOT, ENOENT, EINVAL}) {
    folder.write("a", earlier);
    faultBeside = fault;
    FileSink limited(openUnlessBeside);
    EXPECT_EQ(limited.open(file("a")), nullptr) << fault;
    EXPECT_EQ(folder.contents(), Files({{"a", earlier}}));
  }
}

TEST_F(FileSinks, ForgetWhatWasBegunOnceTheNameIsWrittenInPlace) {
  folder.write("a", earlier);
  faultBeside = 0;
  FileSink limited(openUnlessBeside);
  EXPECT_TRUE(put(limited, file("a"), "beside"));
  faultBeside = EACCES;
  EXPECT_TRUE(put(limited, file("a"), "in place"));
  EXPECT_TRUE(limited.keep(file("a")));
  EXPECT_EQ(folder.names(), Texts({"a"}));
  EXPECT_EQ(folder.contents(), Files({{"a", "in place"}}));
}

// A file of which the writing or the closing fails, as on a disk behind a network.
bool writingFails = false;

int openFailing(std::FILE** file, const char* name, const char* mode) {
  static const auto write = [](void* cookie, const char* text, std::size_t size) {
    return writingFails
               ? ssize_t{0}
               : static_cast<ssize_t>(std::fwrite(text, 1, size, static_cast<std::FILE*>(cookie)));
  };
  static const auto close = [](void* cookie) {
    std::fclose(static_cast<std::FILE*>(cookie));
    return writingFails ? 0 : EOF;
  };
  std::FILE* below = nullptr;
  const int fault = openFile(&below, name, mode);
  if (fault != 0) return fault;
  cookie_io_functions_t functions{};
  functions.write = write;
  functions.close = close;
  *file = fopencookie(below, mode, functions);
  return 0;
}

TEST_F(FileSinks, TellOfAWriteThatFails) {
  folder.write("a", earlier);
  writingFails = true;
  {
    FileSink failing(openFailing);
    const std::unique_ptr<SinkTarget> target = failing.open(file("a"));
    EXPECT_FALSE(target->write("new"));
    EXPECT_FALSE(target->write(""));
    EXPECT_FALSE(target->close());
  }
  EXPECT_EQ(folder.names(), Texts({"a"}));
  EXPECT_EQ(folder.contents(), Files({{"a", earlier}}));
}

TEST_F(FileSinks, TellOfAClosingThatFails) {
  folder.write("a", earlier);
  writingFails = false;
  {
    FileSink failing(openFailing);
    const std::unique_ptr<SinkTarget> target = failing.open(file("a"));
    EXPECT_TRUE(target->write("new"));
    EXPECT_FALSE(target->close());
  }
  EXPECT_EQ(folder.names(), Texts({"a"}));
  EXPECT_EQ(folder.contents(), Files({{"a", earlier}}));
}

// Notes what it is told of files beside their place.
class NotingSink final : public FileSink {
 public:
  explicit NotingSink(Texts& events, OpenFunction opener = openFile)
      : FileSink(opener), events_(events) {}
  ~NotingSink() override { discardAll(); }

 protected:
  void announce(const std::string& temporary) override { note("announced", temporary); }
  void forget(const std::string& temporary) override { note("forgotten", temporary); }

 private:
  void note(const char* event, const std::string& temporary) {
    events_.push_back(std::string(event) + (fs::exists(temporary) ? ", there" : ", absent"));
  }

  Texts& events_;
};

TEST_F(FileSinks, TellADerivedClassOfEachFileBesideItsPlace) {
  Texts events;
  {
    NotingSink noting(events);
    EXPECT_TRUE(put(noting, file("a"), "1"));
    EXPECT_EQ(events, Texts({"announced, absent"}));
    EXPECT_TRUE(noting.keep(file("a")));
    EXPECT_EQ(events, Texts({"announced, absent", "forgotten, absent"}));
    EXPECT_TRUE(put(noting, file("b"), "1"));
    events.clear();
    EXPECT_TRUE(put(noting, file("b"), "2"));
    EXPECT_EQ(events, Texts({"announced, absent", "forgotten, absent"}));
    EXPECT_TRUE(put(noting, "/dev/null", "3"));
    events.clear();
  }
  EXPECT_EQ(events, Texts({"forgotten, absent"}));
  EXPECT_EQ(folder.contents(), Files({{"a", "1"}}));
}

TEST_F(FileSinks, TellADerivedClassOfAFileThatCannotBe) {
  Texts events;
  faultBeside = ENOSPC;
  NotingSink noting(events, openUnlessBeside);
  EXPECT_EQ(noting.open(file("a")), nullptr);
  EXPECT_EQ(events, Texts({"announced, absent", "forgotten, absent"}));
}

}  // namespace
}  // namespace ibis::testing
