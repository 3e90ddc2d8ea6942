#include "output/embedded_templates.h"

#include <algorithm>

#include "harness/harness.h"
#include "output/stream/file_sink.h"

namespace ibis::testing {
namespace {

struct Row {
  std::string name;
  std::int32_t lineCount;
  std::string timeStamp;
  std::string firstLine;
  std::string secondLine;
  std::string lineBeforeLast;
  std::string lastLine;

  bool operator==(const Row&) const = default;
};

void PrintTo(const Row& row, std::ostream* out) {
  *out << row.name << ' ' << row.lineCount << ' ' << row.timeStamp << '\n'
       << row.firstLine << row.secondLine << "...\n"
       << row.lineBeforeLast << row.lastLine;
}

std::vector<Row> rows() {
  std::vector<Row> result;
  for (const EmbeddedTemplate& row : embeddedTemplates()) {
    const char* const* end = row.lines + row.lineCount;
    result.push_back(
        {row.name, row.lineCount, row.timeStamp, row.lines[0], row.lines[1], end[-2], end[-1]});
  }
  return result;
}

std::string joinedLines(const EmbeddedTemplate& row) {
  std::string text;
  for (std::int32_t line = 0; line < row.lineCount; ++line) text += row.lines[line];
  return text;
}

TEST(EmbeddedTemplates, AreFourWithTheirLinesAndTimeStamps) {
  const std::string library = "%file% %rootdir%/%subcktname%.lb\n";
  const std::string page = "%file% %rootdir%/%subcktname%_INFO.html\n";
  EXPECT_EQ(rows(),
            (std::vector<Row>{
                {"component.tmpl", 148, "Wed Jul 09 15:26:42 2025", "\n", library, "\n", ""},
                {"package.tmpl", 49, "Wed Jul 09 15:26:29 2025", "\n", library, "%endif%\n", ""},
                {"info.tmpl", 76, "Fri Jun 20 06:27:33 2025", page, "\n", "\n", "</html>"},
                {"script.tmpl", 66, "Tue Nov 04 11:00:35 2025", "\n", "\n", "\n", ""},
            }));
}

TEST(EmbeddedTemplates, EndEveryLineButTheLastWithOneLineEnd) {
  for (const EmbeddedTemplate& row : embeddedTemplates()) {
    for (std::int32_t line = 0; line < row.lineCount - 1; ++line) {
      const std::string_view text = row.lines[line];
      EXPECT_EQ(text.find('\n'), text.size() - 1) << row.name << " line " << line + 1;
    }
  }
}

TEST(EmbeddedTemplates, ArePureASCIIWithoutControlCharactersButTabs) {
  const auto isPlain = [](char c) { return (c >= ' ' && c < 0x7f) || c == '\n' || c == '\t'; };
  for (const EmbeddedTemplate& row : embeddedTemplates()) {
    const std::string text = joinedLines(row);
    EXPECT_EQ(std::ranges::find_if_not(text, isPlain) - text.begin(), std::ssize(text)) << row.name;
  }
}

TEST(EmbeddedTemplates, LoadWithAllTheirLinesJoined) {
  for (const EmbeddedTemplate& row : embeddedTemplates()) {
    TextBuffer buffer("what it held before");
    buffer.seek(4);
    EXPECT_TRUE(loadEmbedded(buffer, row.name));
    EXPECT_EQ(buffer.text(), joinedLines(row));
    EXPECT_EQ(buffer.position(), 0);
  }
}

TEST(EmbeddedTemplates, EmptyTheBufferForAnyOtherName) {
  for (const std::string_view name :
       {"symbol.tmpl", "component", "Component.tmpl", "component.tmpl ", "", "info.tmp"}) {
    TextBuffer buffer("what it held before");
    EXPECT_FALSE(loadEmbedded(buffer, name)) << name;
    EXPECT_TRUE(buffer.empty()) << name;
    EXPECT_EQ(buffer.read(), '\0') << name;
  }
}

TEST(EmbeddedTemplates, KeepBlanksAtLineEndsAndTabs) {
  const EmbeddedTemplate& component = embeddedTemplates()[0];
  EXPECT_STREQ(component.lines[9], "** Source: \n");
  EXPECT_STREQ(component.lines[87], "+ \tPOLARITY=%polarity% \n");
  EXPECT_STREQ(component.lines[106], "+\t\t%waveforms%\n");
  EXPECT_STREQ(component.lines[129], ".SUBCKT ibis_%spicecomponentname%_waveform \n");
}

TEST(EmbeddedTemplates, WriteWithoutAMessageOfTheirOwn) {
  const TemporaryFolder folder;
  IBISFile file;
  IBISComponent component;
  Recorder sink;
  FileSink files;
  TemplateEngine engine(file.data(), &component, folder.path(), sink, files);
  for (const EmbeddedTemplate& row : embeddedTemplates()) {
    TextBuffer buffer(joinedLines(row));
    EXPECT_TRUE(engine.expand(buffer));
  }
  EXPECT_EQ(engine.generatedFiles(), (Texts{folder.file(".lb"), folder.file("_INFO.html"),
                                            folder.file("ibis_components.kvscr")}));
  EXPECT_MESSAGES(sink.errors);
}

}  // namespace
}  // namespace ibis::testing
