#include "support/files.h"

#include <cerrno>
#include <filesystem>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

namespace fs = std::filesystem;

// What fopen_s_utf8 gives, with the stream closed again.
struct Opened {
  Opened(const std::string& name, const char* mode)
      : result(fopen_s_utf8(&file, name.c_str(), mode)) {
    isNull = file == nullptr;
    if (result == 0 && !isNull) std::fclose(file);
  }

  // Something that is no null pointer, to see it replaced.
  std::FILE* file = stdout;
  int result;
  bool isNull;
};

std::string fullPath(const std::string& name) { return sp_GetFullPath(name.c_str()).text(); }

TEST(FopenUtf8, OpensAFileForReading) {
  const TemporaryFolder folder;
  writeWholeFile(folder.file("a.ibs"), "ab");
  std::FILE* file = nullptr;
  ASSERT_EQ(fopen_s_utf8(&file, folder.file("a.ibs").c_str(), "rb"), 0);
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(std::fgetc(file), 'a');
  EXPECT_EQ(std::fgetc(file), 'b');
  EXPECT_EQ(std::fgetc(file), EOF);
  std::fclose(file);
}

TEST(FopenUtf8, MakesAFileForWriting) {
  const TemporaryFolder folder;
  std::FILE* file = nullptr;
  ASSERT_EQ(fopen_s_utf8(&file, folder.file("a.lb").c_str(), "w"), 0);
  std::fputs("text", file);
  std::fclose(file);
  EXPECT_EQ(readWholeFile(folder.file("a.lb")), "text");
}

TEST(FopenUtf8, OpensUtf8Names) {
  const TemporaryFolder folder;
  const std::string name = folder.file(
      "gr\xc3\xb6\xc3\x9f"
      "e \xce\xa9.ibs");
  const Opened written(name, "w");
  EXPECT_EQ(written.result, 0);
  const Opened opened(name, "rb");
  EXPECT_EQ(opened.result, 0);
  EXPECT_TRUE(fs::exists(name));
}

TEST(FopenUtf8, GivesTheErrorNumberAndNoStreamForAMissingFile) {
  const TemporaryFolder folder;
  const Opened opened(folder.file("missing"), "rb");
  EXPECT_EQ(opened.result, ENOENT);
  EXPECT_TRUE(opened.isNull);
}

TEST(FopenUtf8, GivesTheErrorNumberForAFolderToWrite) {
  const TemporaryFolder folder;
  const Opened opened(folder.path(), "w");
  EXPECT_EQ(opened.result, EISDIR);
  EXPECT_TRUE(opened.isNull);
}

TEST(FopenUtf8, GivesTheErrorNumberForAnEmptyName) {
  const Opened opened("", "rb");
  EXPECT_EQ(opened.result, ENOENT);
  EXPECT_TRUE(opened.isNull);
}

TEST(FopenUtf8, GivesTheErrorNumberForAModeThatIsNone) {
  const TemporaryFolder folder;
  writeWholeFile(folder.file("a.ibs"), "ab");
  const Opened opened(folder.file("a.ibs"), "?");
  EXPECT_EQ(opened.result, EINVAL);
  EXPECT_TRUE(opened.isNull);
}

TEST(FullPath, IsTheSameForACanonicalName) {
  const TemporaryFolder folder;
  writeWholeFile(folder.file("a.ibs"), "");
  EXPECT_EQ(fullPath(folder.file("a.ibs")), folder.file("a.ibs"));
  EXPECT_EQ(fullPath(folder.file("missing.ibs")), folder.file("missing.ibs"));
  EXPECT_EQ(fullPath(folder.path()), folder.path());
}

TEST(FullPath, BeginsAtTheCurrentFolder) {
  const fs::path current = fs::canonical(fs::current_path());
  EXPECT_EQ(fullPath("missing.ibs"), (current / "missing.ibs").string());
  EXPECT_EQ(fullPath("./no/missing.ibs"), (current / "no" / "missing.ibs").string());
  EXPECT_EQ(fullPath("."), current.string());
}

TEST(FullPath, HasNoDotsAndDoubleSlashes) {
  const TemporaryFolder folder;
  fs::create_directory(folder.file("sub"));
  writeWholeFile(folder.file("a.ibs"), "");
  for (const char* name : {"./a.ibs", "sub/../a.ibs", "sub//..//a.ibs", "sub/./../a.ibs"}) {
    EXPECT_EQ(fullPath(folder.file(name)), folder.file("a.ibs")) << name;
  }
  EXPECT_EQ(fullPath(folder.file("none/../missing.ibs")), folder.file("missing.ibs"));
}

TEST(FullPath, ResolvesALinkToAFile) {
  const TemporaryFolder folder;
  writeWholeFile(folder.file("a.ibs"), "");
  fs::create_symlink("a.ibs", folder.file("link.ibs"));
  fs::create_symlink(folder.file("link.ibs"), folder.file("second.ibs"));
  EXPECT_EQ(fullPath(folder.file("link.ibs")), folder.file("a.ibs"));
  EXPECT_EQ(fullPath(folder.file("second.ibs")), folder.file("a.ibs"));
}

TEST(FullPath, ResolvesALinkToAMissingFile) {
  const TemporaryFolder folder;
  fs::create_symlink("missing.ibs", folder.file("link.ibs"));
  EXPECT_EQ(fullPath(folder.file("link.ibs")), folder.file("missing.ibs"));
}

TEST(FullPath, ResolvesALinkToAMissingFolderInTheMiddle) {
  const TemporaryFolder folder;
  fs::create_symlink("nowhere", folder.file("link"));
  EXPECT_EQ(fullPath(folder.file("link") + "/a.ibs"), folder.file("nowhere") + "/a.ibs");
}

TEST(FullPath, ResolvesALinkToAFolderAlsoAheadOfAMissingFile) {
  const TemporaryFolder folder;
  fs::create_directories(folder.file("real/sub"));
  fs::create_directory_symlink("real", folder.file("link"));
  EXPECT_EQ(fullPath(folder.file("link/missing.ibs")), folder.file("real/missing.ibs"));
  EXPECT_EQ(fullPath(folder.file("link/no/missing.ibs")), folder.file("real/no/missing.ibs"));
}

TEST(FullPath, GoesUpFromWhereALinkLeads) {
  const TemporaryFolder folder;
  fs::create_directories(folder.file("real/sub"));
  fs::create_directory_symlink("real/sub", folder.file("link"));
  EXPECT_EQ(fullPath(folder.file("link/../a.ibs")), folder.file("real/a.ibs"));
}

TEST(FullPath, IsTheNameWhereTheFileSystemGivesNoAnswer) {
  const TemporaryFolder folder;
  fs::create_symlink("loop.ibs", folder.file("loop.ibs"));
  EXPECT_EQ(fullPath(folder.file("loop.ibs")), folder.file("loop.ibs"));
  EXPECT_EQ(fullPath(""), "");
}

TEST(FullPath, KeepsUtf8Names) {
  const TemporaryFolder folder;
  const std::string name = folder.file("\xce\xa9 a.ibs");
  writeWholeFile(name, "");
  EXPECT_EQ(fullPath(name), name);
}

}  // namespace
}  // namespace ibis::testing
