#include "reader/text/text_buffer.h"

#include <sys/stat.h>

#include <cerrno>
#include <utility>

#include "harness/harness.h"
#include "output/embedded_templates.h"

namespace ibis::testing {
namespace {

// What a file of these bytes becomes in the buffer.
std::string loadedFrom(std::string_view bytes) {
  const TemporaryFolder folder;
  writeWholeFile(folder.file("a.ibs"), bytes);
  TextBuffer buffer;
  EXPECT_TRUE(buffer.loadFile(folder.file("a.ibs")));
  EXPECT_EQ(buffer.size(), static_cast<std::int32_t>(bytes.size()));
  return std::string(buffer.text());
}

// A failed load leaves nothing of an earlier text.
void expectRefused(const std::string& name) {
  TextBuffer buffer("earlier");
  EXPECT_FALSE(buffer.loadFile(name)) << name;
  EXPECT_TRUE(buffer.empty());
  EXPECT_EQ(buffer.text(), "");
}

TEST(LoadFile, TurnsLoneCarriageReturnsIntoLineFeeds) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"a\rb", "a\nb"},         {"a\r", "a\n"},       {"\r", "\n"},         {"\r\r", "\n\n"},
      {"a\r\nb", "a\r\nb"},     {"a\r\n", "a\r\n"},   {"\r\r\n", "\n\r\n"}, {"\n\r", "\n\n"},
      {"a\r\n\rb", "a\r\n\nb"}, {"a\nb\n", "a\nb\n"},
  };
  for (const auto& [bytes, text] : cases) EXPECT_EQ(loadedFrom(bytes), text);
}

TEST(LoadFile, TurnsACarriageReturnAheadOfAZeroByteToo) {
  EXPECT_EQ(loadedFrom(std::string_view("\r\0\r\n", 4)), std::string("\n\0\r\n", 4));
}

TEST(LoadFile, LetsAFileOfCarriageReturnsBeReadLineByLine) {
  const std::string text = loadedFrom("[IBIS Ver] 4.2\r[Notes] n\rtwo\r[Component] c\r[End]");
  Parsed parsed(text);
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_EQ(parsed.data().notes, " n\ntwo");
  EXPECT_EQ(parsed.component().name, "c");
}

TEST(LoadFile, KeepsAllOtherBytes) {
  std::string bytes;
  for (int code = 0; code < 256; ++code) {
    if (code != '\r') bytes += static_cast<char>(code);
  }
  EXPECT_EQ(loadedFrom(bytes), bytes);
}

TEST(LoadFile, KeepsAZeroByteThatEndsTheTextForTheScanner) {
  const std::string text = loadedFrom(std::string_view("[Date] d\n\0[End]\n", 16));
  EXPECT_EQ(text.size(), 16u);
  const Scanned scanned(text);
  ASSERT_EQ(scanned.records().size(), 1u);
  EXPECT_EQ(keywordText(scanned.records()[0]), "d");
}

TEST(LoadFile, PutsANulBehindTheText) {
  const TemporaryFolder folder;
  writeWholeFile(folder.file("a.ibs"), "abc");
  TextBuffer buffer;
  ASSERT_TRUE(buffer.loadFile(folder.file("a.ibs")));
  EXPECT_STREQ(buffer.text().data(), "abc");
}

TEST(LoadFile, TakesAnEmptyFile) { EXPECT_EQ(loadedFrom(""), ""); }

TEST(LoadFile, TakesAFileOfManyBlocks) {
  std::string bytes;
  for (int i = 0; i < 300000; ++i) bytes += std::to_string(i) + "\n";
  EXPECT_EQ(loadedFrom(bytes), bytes);
}

TEST(LoadFile, ReplacesAnEarlierTextAndGoesBackToItsStart) {
  const TemporaryFolder folder;
  writeWholeFile(folder.file("a.ibs"), "new");
  TextBuffer buffer("earlier");
  buffer.seek(5);
  ASSERT_TRUE(buffer.loadFile(folder.file("a.ibs")));
  EXPECT_EQ(buffer.text(), "new");
  EXPECT_EQ(buffer.position(), 0);
}

TEST(LoadFile, TakesAUtf8Name) {
  const TemporaryFolder folder;
  const std::string name = folder.file(
      "k\xC3\xA4"
      "fer \xE6\xBC\xA2.ibs");
  writeWholeFile(name, "abc");
  TextBuffer buffer;
  EXPECT_TRUE(buffer.loadFile(name));
  EXPECT_EQ(buffer.text(), "abc");
}

TEST(LoadFile, FollowsALink) {
  const TemporaryFolder folder;
  writeWholeFile(folder.file("a.ibs"), "abc");
  std::filesystem::create_symlink(folder.file("a.ibs"), folder.file("link"));
  TextBuffer buffer;
  EXPECT_TRUE(buffer.loadFile(folder.file("link")));
  EXPECT_EQ(buffer.text(), "abc");
}

TEST(LoadFile, RefusesAMissingFile) {
  const TemporaryFolder folder;
  expectRefused(folder.file("missing"));
  expectRefused(folder.file("missing/below"));
  expectRefused("");
}

TEST(LoadFile, RefusesADirectory) {
  const TemporaryFolder folder;
  expectRefused(folder.path());
}

TEST(LoadFile, RefusesAPipeWithoutWaitingForAWriter) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
  expectRefused(folder.file("pipe"));
}

TEST(LoadFile, RefusesADeviceWithoutEnd) { expectRefused("/dev/zero"); }

TEST(LoadFile, RefusesAFileWhoseSizeItCannotCount) {
  const TemporaryFolder folder;
  writeWholeFile(folder.file("big"), "");
  for (const std::uintmax_t size : {0x7fffffffu, 0x80000000u, 0xffffffffu}) {
    std::filesystem::resize_file(folder.file("big"), size);
    expectRefused(folder.file("big"));
  }
  std::filesystem::resize_file(folder.file("big"), 0x100000003u);  // 3 in its low 32 bits
  expectRefused(folder.file("big"));
}

// The file that openers of a test change; they are asked for it under another name.
std::string contested;

// Opens a file that loses its name, to a folder, once it was looked at.
int openBehindAFolder(std::FILE** file, const char* name, const char* mode) {
  std::filesystem::remove(contested);
  std::filesystem::create_directory(contested);
  return openFile(file, name, mode);
}

int openAFolder(std::FILE** file, const char*, const char* mode) {
  return openFile(file, std::filesystem::path(contested).parent_path().c_str(), mode);
}

int openNothing(std::FILE** file, const char*, const char*) {
  *file = nullptr;
  return EACCES;
}

int openAndRemove(std::FILE** file, const char* name, const char* mode) {
  const int fault = openFile(file, name, mode);
  std::filesystem::remove(contested);
  return fault;
}

// Gives fewer bytes than the file's size.
int openBehindItsStart(std::FILE** file, const char* name, const char* mode) {
  const int fault = openFile(file, name, mode);
  if (fault == 0) std::fseek(*file, 1, SEEK_SET);
  return fault;
}

TEST(LoadFile, RefusesWhatIsOpenedAsAnythingButTheWholeFile) {
  for (const OpenFunction opener : {openNothing, openAFolder, openBehindItsStart}) {
    const TemporaryFolder folder;
    contested = folder.write("a.ibs", "abc");
    TextBuffer buffer("earlier");
    EXPECT_FALSE(buffer.loadFile(contested, opener));
    EXPECT_TRUE(buffer.empty());
  }
}

TEST(LoadFile, TakesAFileThatLosesItsNameWhileItIsOpened) {
  for (const OpenFunction opener : {openBehindAFolder, openAndRemove}) {
    const TemporaryFolder folder;
    contested = folder.write("a.ibs", "abc");
    TextBuffer buffer;
    EXPECT_TRUE(buffer.loadFile(contested, opener));
    EXPECT_EQ(buffer.text(), "abc");
  }
}

// What is read beyond the first NUL is the rest of the piece that it stands in.
TEST(LoadFile, ReadsAFileThatIsPaddedUpToThePieceOfItsFirstNul) {
  constexpr std::size_t piece = 4096;
  const TemporaryFolder folder;
  const std::vector<std::pair<std::size_t, std::size_t>> cases = {
      {3, piece}, {piece - 1, piece}, {piece, 2 * piece}, {5 * piece, 6 * piece}};
  for (const auto& [written, taken] : cases) {
    const std::string text(written, 'x');
    const std::string name = folder.write("a.ibs", text);
    std::filesystem::resize_file(name, 0x7ffffffeu);
    TextBuffer buffer;
    ASSERT_TRUE(buffer.loadFile(name));
    EXPECT_EQ(buffer.text(), text + std::string(taken - written, '\0'));
  }
}

// The kernel gives such files a size of one page and far fewer bytes.
TEST(LoadFile, RefusesAFileThatYieldsFewerBytesThanItsSize) {
  const std::string name = "/sys/devices/system/cpu/online";
  if (!std::filesystem::exists(name)) GTEST_SKIP() << name << " is not here";
  expectRefused(name);
}

TEST(TextBuffer, IsEmptyAtFirst) {
  TextBuffer buffer;
  EXPECT_TRUE(buffer.empty());
  EXPECT_EQ(buffer.text().data(), nullptr);
  EXPECT_EQ(buffer.read(), '\0');
  EXPECT_EQ(buffer.peek(), '\0');
  buffer.seek(3);
  EXPECT_EQ(buffer.position(), 0);
}

TEST(TextBuffer, ReadsCharactersAndThenZeroForEver) {
  TextBuffer buffer("ab");
  EXPECT_EQ(buffer.read(), 'a');
  EXPECT_EQ(buffer.position(), 1);
  EXPECT_EQ(buffer.read(), 'b');
  for (int i = 0; i < 3; ++i) EXPECT_EQ(buffer.read(), '\0');
  EXPECT_EQ(buffer.position(), 2);
}

TEST(TextBuffer, ReadsOverCarriageReturns) {
  TextBuffer buffer("\ra\r\r\nb\r");
  EXPECT_EQ(buffer.read(), 'a');
  EXPECT_EQ(buffer.position(), 2);
  EXPECT_EQ(buffer.read(), '\n');
  EXPECT_EQ(buffer.read(), 'b');
  EXPECT_EQ(buffer.read(), '\0');
  EXPECT_EQ(buffer.position(), 7);
}

TEST(TextBuffer, PeeksOverCarriageReturnsWithoutMoving) {
  TextBuffer buffer("a\r\rb\r");
  EXPECT_EQ(buffer.peek(), 'a');
  buffer.seek(1);
  EXPECT_EQ(buffer.peek(), 'b');
  EXPECT_EQ(buffer.position(), 1);
  buffer.seek(4);
  EXPECT_EQ(buffer.peek(), '\0');
  EXPECT_EQ(buffer.position(), 4);
}

TEST(TextBuffer, DoesNotConsumeAByteAbove127) {
  TextBuffer buffer("\r\x80z");
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(buffer.read(), '\x80');
    EXPECT_EQ(buffer.position(), 1);
  }
  buffer.assign("\xff");
  EXPECT_EQ(buffer.peek(), '\xff');
  EXPECT_EQ(buffer.read(), '\xff');
  EXPECT_EQ(buffer.position(), 0);
}

TEST(TextBuffer, DoesNotConsumeAZeroByteInside) {
  TextBuffer buffer(std::string_view("a\0b", 3));
  EXPECT_EQ(buffer.read(), 'a');
  EXPECT_EQ(buffer.read(), '\0');
  EXPECT_EQ(buffer.read(), '\0');
  EXPECT_EQ(buffer.position(), 1);
}

TEST(TextBuffer, SeeksBetweenItsStartAndItsSize) {
  TextBuffer buffer("abc");
  const std::vector<std::pair<std::int32_t, std::int32_t>> cases = {
      {-1, 0}, {-2147483647 - 1, 0}, {0, 0}, {2, 2}, {3, 3}, {4, 3}, {2147483647, 3}};
  for (const auto& [index, position] : cases) {
    buffer.seek(index);
    EXPECT_EQ(buffer.position(), position);
  }
  buffer.seek(1);
  EXPECT_EQ(buffer.read(), 'b');
}

TEST(TextBuffer, ForgetsItsTextWhenCleared) {
  TextBuffer buffer("abc");
  buffer.seek(2);
  buffer.clear();
  EXPECT_TRUE(buffer.empty());
  EXPECT_EQ(buffer.text().data(), nullptr);
  EXPECT_EQ(buffer.position(), 0);
}

struct TemplateCase {
  std::string name;
  int lineCount;
  std::string timeStamp;
};

const std::vector<TemplateCase> templates = {
    {"component.tmpl", 148, "Wed Jul 09 15:26:42 2025"},
    {"package.tmpl", 49, "Wed Jul 09 15:26:29 2025"},
    {"info.tmpl", 76, "Fri Jun 20 06:27:33 2025"},
    {"script.tmpl", 66, "Tue Nov 04 11:00:35 2025"},
};

TEST(EmbeddedTemplates, StandInTheirTable) {
  ASSERT_EQ(embeddedTemplates().size(), templates.size());
  for (std::size_t i = 0; i < templates.size(); ++i) {
    EXPECT_EQ(embeddedTemplates()[i].name, templates[i].name);
    EXPECT_EQ(embeddedTemplates()[i].lineCount, templates[i].lineCount) << templates[i].name;
    EXPECT_EQ(embeddedTemplates()[i].timeStamp, templates[i].timeStamp);
  }
}

TEST(EmbeddedTemplates, KeepALineEndInEveryRowButTheLast) {
  for (const EmbeddedTemplate& candidate : embeddedTemplates()) {
    for (std::int32_t i = 0; i < candidate.lineCount; ++i) {
      const std::string_view row = candidate.lines[i];
      const bool isLast = i + 1 == candidate.lineCount;
      if (!isLast || row.find('\n') != row.npos) {
        EXPECT_EQ(row.find('\n'), row.size() - 1) << candidate.name << " row " << i + 1;
      }
    }
  }
}

TEST(LoadEmbedded, JoinsTheRowsOfTheTemplate) {
  for (const EmbeddedTemplate& candidate : embeddedTemplates()) {
    std::string text;
    for (std::int32_t i = 0; i < candidate.lineCount; ++i) text += candidate.lines[i];
    TextBuffer buffer("earlier");
    buffer.seek(3);
    EXPECT_TRUE(loadEmbedded(buffer, candidate.name));
    EXPECT_EQ(buffer.text(), text) << candidate.name;
    EXPECT_EQ(buffer.size(), static_cast<std::int32_t>(text.size()));
    EXPECT_EQ(buffer.position(), 0);
  }
}

TEST(LoadEmbedded, GivesTextThatReadingConsumesWhole) {
  for (const TemplateCase& candidate : templates) {
    TextBuffer buffer;
    ASSERT_TRUE(loadEmbedded(buffer, candidate.name));
    std::string text;
    for (char c = buffer.read(); c > '\0'; c = buffer.read()) text += c;
    EXPECT_EQ(text, buffer.text()) << candidate.name;
  }
}

TEST(LoadEmbedded, LeavesTheBufferEmptyForAnyOtherName) {
  for (const char* name : {"symbol.tmpl", "", "component", "Component.tmpl", "component.tmpl "}) {
    TextBuffer buffer("earlier");
    EXPECT_FALSE(loadEmbedded(buffer, name)) << name;
    EXPECT_TRUE(buffer.empty());
    EXPECT_EQ(buffer.text().data(), nullptr);
  }
}

}  // namespace
}  // namespace ibis::testing
