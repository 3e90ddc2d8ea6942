#include "output/file_keywords.h"

#include "harness/harness.h"
#include "output/stream/file_sink.h"

namespace ibis::testing {
namespace {

bool writePosition(OutputRun&, OutputStream* out, const KeywordPosition& position, TextBuffer&,
                   const KeywordArguments&) {
  for (const std::int32_t number : {position.line, position.column, position.pendingSpaces}) {
    out->write('/');
    out->writeInteger(number);
  }
  return false;
}

[[maybe_unused]] const bool registered = addValueKeyword("fileposition", writePosition);

// A file with two components; the second one uses an input and an open drain model.
constexpr std::string_view bufferFile =
    "[IBIS Ver] 3.2\n"
    "[File Name] buffer.ibs\n"
    "[File Rev] 1.4\n"
    "[Date] 2 March 2021\n"
    "[Source] Measured on the bench,\n"
    "  three boards\n"
    "\n"
    "  of one lot\n"
    "[Notes] Untested\n"
    "[Disclaimer]\n"
    "As it is.\n"
    "[Copyright] Free to use\n"
    "[Component] first\n"
    "[Manufacturer] Maker A\n"
    "[Package Model] small_case\n"
    "[Pin] signal_name model_name R_pin L_pin C_pin\n"
    "1 in other NA NA NA\n"
    "[Component] A.B-2\n"
    "[Manufacturer] Maker B\n"
    "[Package Model] large_case\n"
    "[Pin] signal_name model_name R_pin L_pin C_pin\n"
    "1 in receiver NA NA NA\n"
    "2 out driver NA NA NA\n"
    "3 ground GND NA NA NA\n"
    "[Model] receiver\n"
    "Model_type Input\n"
    "[Model] driver\n"
    "Model_type Open_sink\n"
    "[Model] other\n"
    "Model_type Terminator\n"
    "[End]\n";

// Expands a template for the second component; it has to pass without a message.
std::string expanded(std::string_view text, Parsed& parsed) {
  Recorder sink;
  std::string result = expandTemplate(text, parsed.file, &parsed.component(1), sink);
  EXPECT_MESSAGES(sink.errors);
  return result;
}

std::string expanded(std::string_view text) {
  Parsed parsed(bufferFile);
  parsed.resolve();
  parsed.file.setFilePath("/parts/buffer.ibs");
  return expanded(text, parsed);
}

// The same for a file whose texts are set by hand.
std::string expandedWithSource(std::string_view text, std::string_view source) {
  Parsed parsed(bufferFile);
  parsed.data().source = IBISString(source);
  return expanded(text, parsed);
}

std::string expandedWithSubcircuit(std::string_view text, std::string_view name) {
  Parsed parsed(bufferFile);
  parsed.file.setUserSubcircuitName(name);
  return expanded(text, parsed);
}

// The names of the files that a template opens for the second component, without the folder.
Texts openedBy(std::string_view text, std::string_view subcircuit = "dut") {
  Parsed parsed(bufferFile);
  parsed.file.setUserSubcircuitName(subcircuit);
  const TemporaryFolder folder;
  FileSink files;
  TemplateEngine engine(parsed.data(), &parsed.component(1), folder.path(), parsed.file, files);
  TextBuffer buffer(text);
  EXPECT_TRUE(engine.expand(buffer));
  EXPECT_MESSAGES(parsed.errors());
  Texts names;
  for (const std::string& name : engine.generatedFiles()) {
    EXPECT_EQ(name.substr(0, folder.path().size()), folder.path());
    names.push_back(name.substr(folder.path().size()));
  }
  return names;
}

struct Example {
  std::string text;
  std::string expected;
};

const Example singleTexts[] = {
    {"componentname", "A.B-2"},      {"filepath", "/parts/buffer.ibs"},
    {"ibisdate", "2 March 2021"},    {"ibisfilename", "buffer.ibs"},
    {"ibisfilerev", "1.4"},          {"ibisversion", "3.2"},
    {"manufacturer", "Maker B"},     {"packagemodel", "large_case"},
    {"spicecomponentname", "A_B_2"}, {"subcktname", "A_B_2"},
};

TEST(FileKeywords, WriteTheTextsOfTheFileAndTheComponent) {
  for (const Example& row : singleTexts) {
    EXPECT_EQ(expanded("%" + row.text + "%"), row.expected) << row.text;
  }
}

TEST(FileKeywords, WriteBlanksInFrontAndKeepTheLineEnd) {
  for (const Example& row : singleTexts) {
    EXPECT_EQ(expanded("+  %" + row.text + "%\n;"), "+  " + row.expected + "\n;") << row.text;
  }
}

TEST(FileKeywords, PassOverArguments) {
  for (const Example& row : singleTexts) {
    EXPECT_EQ(expanded("%" + row.text + ",gnd,x%"), row.expected) << row.text;
  }
}

TEST(FileKeywords, WriteMissingTextsAsEmpty) {
  const IBISFile file;
  const IBISComponent component;
  for (const IBISComponent* chosen : {&component, static_cast<const IBISComponent*>(nullptr)}) {
    for (const Example& row : singleTexts) {
      if (row.text == "ibisversion") continue;
      Recorder sink;
      EXPECT_EQ(expandTemplate("+ %" + row.text + "%\n;", file, chosen, sink), "+ \n;") << row.text;
      EXPECT_MESSAGES(sink.errors);
    }
  }
}

TEST(FileKeywords, WriteTheVersionsText) {
  const std::string texts[] = {"Unknown", "1.0", "1.1", "2.0", "2.1", "3.0", "3.1", "3.2", "4.0",
                               "4.1",     "4.2", "5.0", "5.1", "6.0", "6.1", "7.0", "7.1", "7.2"};
  for (std::int32_t version = 0; version < 18; ++version) {
    Parsed parsed(bufferFile);
    parsed.data().version = version;
    EXPECT_EQ(expanded("%ibisversion%", parsed), texts[version]);
  }
}

TEST(FileKeywords, CallAnUnlistedVersionInvalid) {
  for (const std::int32_t version : {-1, 18, 100}) {
    Parsed parsed(bufferFile);
    parsed.data().version = version;
    EXPECT_EQ(expanded("%ibisversion%", parsed), "invalid");
  }
}

TEST(FileKeywords, WriteTheVersionOfAFileWithoutOne) {
  Parsed parsed("[Component] a\n[Component] b\n[End]\n");
  EXPECT_EQ(expanded("%ibisversion%", parsed), "Unknown");
}

TEST(FileKeywords, PreferTheSubcircuitNameOfTheUser) {
  EXPECT_EQ(expandedWithSubcircuit("%subcktname% %spicecomponentname%", "dut-1"), "dut-1 A_B_2");
  EXPECT_EQ(expandedWithSubcircuit("%subcktname%", ""), "A_B_2");
}

TEST(FileKeywords, WriteNothingForTheRootDirectory) {
  EXPECT_EQ(expanded("a %rootdir%b\n%rootdir%\nc\n"), "ab\nc\n");
}

TEST(FileKeywords, PadTheFirstLineByTheWidthOfTheHeading) {
  EXPECT_EQ(expanded("%ibissource,** %"),
            "**          Measured on the bench,\n"
            "**   three boards\n"
            "**   of one lot");
  EXPECT_EQ(expanded("%ibisnotes,** %"), "**         Untested");
  EXPECT_EQ(expanded("%ibisdisclaimer,** %"), "**             As it is.");
  EXPECT_EQ(expanded("%ibiscopyright,** %"), "**             Free to use");
}

TEST(FileKeywords, PadTheFirstLineWithoutAPrefix) {
  EXPECT_EQ(expanded("%ibissource%"),
            "         Measured on the bench,\n"
            "  three boards\n"
            "  of one lot");
  EXPECT_EQ(expanded("%ibissource,%"), expanded("%ibissource%"));
}

TEST(FileKeywords, KeepThePrefixOfTheTemplates) {
  EXPECT_EQ(expandedWithSource("%ibissource,**      %\n", "one line"),
            "**              one line\n");
}

TEST(FileKeywords, TakeThePrefixFromTheFirstArgument) {
  EXPECT_EQ(expandedWithSource("%ibissource,a,b%", "1\n2"), "a        1\na2");
  EXPECT_EQ(expandedWithSource("%ibissource,,b%", "1\n2"), "        1\n2");
  EXPECT_EQ(expandedWithSource("%ibissource,gnd%", "1\n2"), "GND        1\nGND2");
}

TEST(FileKeywords, DropEmptyLinesOfATextOfSeveralLines) {
  EXPECT_EQ(expandedWithSource("%ibissource,|%\n", "\n\n1\n\n\n2\n\n"), "|        1\n|2\n");
  EXPECT_EQ(expandedWithSource("%ibissource,|%\n", " \n2"), "|         \n|2\n");
}

TEST(FileKeywords, WriteNoPrefixForATextOfEmptyLines) {
  EXPECT_EQ(expandedWithSource("a\n%ibissource,** %\nb\n", "\n\n\n"), "a\n\nb\n");
  EXPECT_EQ(expandedWithSource("a\n%ibissource,** %\nb\n", ""), "a\n\nb\n");
}

TEST(FileKeywords, WriteBlanksInFrontOfATextOfSeveralLinesOnce) {
  EXPECT_EQ(expandedWithSource(":  %ibissource,|%\n", "1\n2"), ":  |        1\n|2\n");
  EXPECT_EQ(expandedWithSource(":  %ibissource,|%;\n", ""), ":  ;\n");
}

TEST(FileKeywords, WriteNothingWithoutAFile) {
  Parsed parsed(bufferFile);
  const TemporaryFolder folder;
  FileSink files;
  TemplateEngine engine(parsed.data(), &parsed.component(1), folder.path(), parsed.file, files);
  for (const Example& row : singleTexts) {
    TextBuffer buffer("%" + row.text + "%%ibissource,|%%rootdir%\n");
    EXPECT_TRUE(engine.expand(buffer));
  }
  EXPECT_EQ(folder.contents(), (std::map<std::string, std::string>{}));
  EXPECT_MESSAGES(parsed.errors());
}

TEST(FileKeywords, HideTheComponentLoopsPackageModel) {
  EXPECT_EQ(expanded("%foreachcomponent%\n%name%: %packagemodel%\n%endforeach%\n"),
            "first: large_case\nA.B-2: large_case\n");
}

TEST(FileKeywords, FindTheModelTypesOfTheComponent) {
  const auto has = [](const std::string& type) {
    return expanded("%ifhasmodeltype," + type + "%yes%else%no%endif%");
  };
  EXPECT_EQ(has("Input"), "yes");
  EXPECT_EQ(has("Open_drain"), "yes");
  EXPECT_EQ(has("GND"), "yes");
  EXPECT_EQ(has("Terminator"), "no");
  EXPECT_EQ(has("POWER"), "no");
}

TEST(FileKeywords, CompareModelTypesExactly) {
  const auto has = [](const std::string& type) {
    return expanded("%ifhasmodeltype," + type + "%yes%else%no%endif%");
  };
  EXPECT_EQ(has("input"), "no");
  EXPECT_EQ(has(" Input"), "no");
  EXPECT_EQ(has("Inp"), "no");
  EXPECT_EQ(has("Open_sink"), "no");
  EXPECT_EQ(has("gnd"), "yes");
}

TEST(FileKeywords, FindNoModelTypeWithoutAnArgument) {
  EXPECT_EQ(expanded("%ifhasmodeltype%yes%else%no%endif%"), "no");
  EXPECT_EQ(expanded("%ifhasmodeltype,%yes%else%no%endif%"), "no");
  EXPECT_EQ(expanded("%ifhasmodeltype,,Input%yes%else%no%endif%"), "no");
}

TEST(FileKeywords, FindNoModelTypeInAComponentWithoutModels) {
  Parsed parsed(bufferFile);
  EXPECT_EQ(expanded("%ifhasmodeltype,Input%yes%else%no%endif%", parsed), "no");
}

TEST(FileKeywords, TellWhetherTheComponentNamesAPackageModel) {
  const std::string_view text = "%ifhaspackagemodel%yes%else%no%endif%";
  Parsed parsed(bufferFile);
  EXPECT_EQ(expanded(text, parsed), "yes");
  parsed.component(1).packageModelName = IBISString();
  EXPECT_EQ(expanded(text, parsed), "no");
}

TEST(FileKeywords, EndTheFilesNameAtABlankATabOrALineEnd) {
  const std::string_view examples[] = {"%file% %rootdir%/a\n", "%file% %rootdir%/a more\n",
                                       "%file% %rootdir%/a\tmore\n", "%file%%rootdir%/a\n",
                                       "%file% \t  %rootdir%/a\r\n"};
  for (const std::string_view text : examples) EXPECT_EQ(openedBy(text), Texts{"/a"}) << text;
}

TEST(FileKeywords, ReplaceThePlaceholdersOfAFilesName) {
  EXPECT_EQ(openedBy("%file% %rootdir%/%subcktname%.lb\n"), Texts{"/dut.lb"});
  EXPECT_EQ(openedBy("%file% %rootdir%/%spicecomponentname%.lb\n"), Texts{"/A_B_2.lb"});
  EXPECT_EQ(openedBy("%file% %rootdir%/%spicecomponentname%%subcktname%\n"), Texts{"/A_B_2dut"});
}

TEST(FileKeywords, ReplaceEachPlaceholderOnce) {
  EXPECT_EQ(openedBy("%file% %rootdir%/%subcktname%%subcktname%\n"), Texts{"/dut%subcktname%"});
  EXPECT_EQ(openedBy("%file% %rootdir%/%spicecomponentname%%spicecomponentname%\n"),
            Texts{"/A_B_2%spicecomponentname%"});
  EXPECT_EQ(openedBy("%file% %rootdir%/%rootdir%\n"), Texts{"/%rootdir%"});
}

TEST(FileKeywords, ReplacePlaceholdersInTheirOwnOrder) {
  EXPECT_EQ(openedBy("%file% %rootdir%/%subcktname%\n", "x%spicecomponentname%"), Texts{"/xA_B_2"});
  EXPECT_EQ(openedBy("%file% %subcktname%/%subcktname%\n", "%rootdir%"), Texts{"/%subcktname%"});
}

TEST(FileKeywords, ReplaceNoOtherWordOfAFilesName) {
  EXPECT_EQ(openedBy("%file% %rootdir%/%componentname%%SUBCKTNAME%\n"),
            Texts{"/%componentname%%SUBCKTNAME%"});
}

TEST(FileKeywords, TakeAnEmptySubcircuitNameIntoAFilesName) {
  EXPECT_EQ(openedBy("%file% %rootdir%/%subcktname%.lb\n", ""), Texts{"/.lb"});
}

TEST(FileKeywords, OpenAFileWhoseNameIsFollowedByText) {
  EXPECT_EQ(expanded("%file% %rootdir%/expanded  behind\nb\n"), " behind\nb\n");
  EXPECT_EQ(expanded("%file% %rootdir%/expanded\tbehind\nb\n"), "behind\nb\n");
}

TEST(FileKeywords, EatTheLineEndBehindAFilesName) {
  EXPECT_EQ(expanded("  %file% %rootdir%/expanded\nb\n"), "b\n");
  EXPECT_EQ(expanded("%file% %rootdir%/expanded \nb\n"), "b\n");
  EXPECT_EQ(expanded("%file% %rootdir%/expanded\r\n\nb\n"), "\nb\n");
}

TEST(FileKeywords, PassOverArgumentsOfTheFileKeyword) {
  EXPECT_EQ(expanded("%file,x% %rootdir%/expanded\nb\n"), "b\n");
}

TEST(FileKeywords, LeaveAFilesNameOutOfTheColumn) {
  EXPECT_EQ(expanded("%file% %rootdir%/expanded  %fileposition%"), "/2/8/1");
  EXPECT_EQ(expanded("%file% %rootdir%/expanded\n %fileposition%"), "/3/2/1");
}

TEST(FileKeywords, TakeNoNameFromTheNextLine) {
  Parsed parsed(bufferFile);
  Recorder sink;
  const std::string_view text = "%file%\na\n%file% \t \nb\n";
  EXPECT_EQ(expandTemplate(text, parsed.file, &parsed.component(1), sink), "a\nb\n");
  EXPECT_MESSAGES(sink.errors, "Cannot open output file ''\n", "Cannot open output file ''\n");
}

TEST(FileKeywords, EndAFilesNameThatTheTextEndsIn) {
  EXPECT_EQ(openedBy("%file% %rootdir%/a"), Texts{"/a"});
}

}  // namespace
}  // namespace ibis::testing
