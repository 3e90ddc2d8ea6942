#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "program/run.h"
#include "program/texts.h"

namespace ibis::testing {
namespace {

// Converts a text in a folder of its own; the file is called "part.ibs" there.
struct Told {
  int status;
  std::string messages;
};

Told convertText(const std::string& text, const std::vector<std::string>& options = {}) {
  const TemporaryFolder folder;
  folder.write("part.ibs", text);
  std::vector<std::string> words = {"convert", "part.ibs", "-q"};
  words.insert(words.end(), options.begin(), options.end());
  const Outcome result = run(words, {.folder = folder.path()});
  return {result.status, result.err};
}

TEST(Messages, ALineInFrontMovesBehindTheFile) {
  EXPECT_EQ(convertText(partText).messages,
            "part.ibs:12: error: Model referenced by pin '1' has not been defined\n"
            "part.ibs: note: the pin names model 'in'\n");
}

TEST(Messages, ALineAtTheEndOfTheTextIsRepeatedInFront) {
  const std::string package = "[Define Package Model] P\n[Model Data]\n";
  const std::string matrix = "[Resistance Matrix] Round_matrix\n[End Model Data]\n";
  EXPECT_EQ(convertText(partText + receiverText + package + matrix).messages,
            "part.ibs:21: error: Unknown matrix type 'Round_matrix' at line 21\n"
            "part.ibs: note: did you mean 'Full_matrix'?\n");
}

TEST(Messages, TheStartOfATableIsALineToo) {
  const std::string clamp = "[GND Clamp]\n-1 -1m\n-1 -2m\n0 0\n";
  const Told told = convertText(partText + receiverText + clamp + "[Voltage Range] 0 0 0\n");
  EXPECT_EQ(told.messages,
            "part.ibs:19: warning: Non-monotonic or constant points removed from GND_Clamp table "
            "starting line 19\n");
  EXPECT_EQ(told.status, 0);
}

TEST(Messages, AMessageAboutAModelHasTheModelsLine) {
  EXPECT_EQ(convertText(warningText).messages,
            "part.ibs:14: warning: Model 'in': Vinl not defined using default 0.8V\n"
            "part.ibs:14: warning: Model 'in': Vinh not defined using default 2.0V\n");
}

TEST(Messages, AModelDefinedTwiceHasItsOwnLine) {
  EXPECT_EQ(
      convertText(partText + receiverText + "[Model] in\nModel_type Input\nVinl = 0.8\n").messages,
      "part.ibs:19: warning: Model 'in': Vinh not defined using default 2.0V\n");
}

TEST(Messages, ABuiltInModelDoesNotHideTheFilesModelOfItsName) {
  const std::string ground = "[Model] GND\nModel_type Input\nVinl = 0.8\n";
  EXPECT_EQ(convertText(partText + receiverText + ground).messages,
            "part.ibs:19: warning: Model 'GND': Vinh not defined using default 2.0V\n");
}

TEST(Messages, ALineThatTheTextDoesNotTellStandsInFront) {
  EXPECT_EQ(convertText("\n[IBIS Ver] 5.1\n").messages,
            "part.ibs:2: error: Version '5.1' not supported. Aborting IBIS\n"
            "part.ibs: note: versions 1.0 to 4.2 are read; --as-version 4.2 reads as far as that "
            "goes\n");
}

TEST(Messages, WarningsStandAheadOfErrors) {
  const std::string output = "[Model] out\nModel_type Output\n";
  EXPECT_EQ(convertText(partText + bareReceiverText + output).messages,
            "part.ibs:14: warning: Model 'in': Vinl not defined using default 0.8V\n"
            "part.ibs:14: warning: Model 'in': Vinh not defined using default 2.0V\n"
            "part.ibs:17: error: Model 'out' no pulldown definition has been provided\n"
            "part.ibs:17: error: Model 'out' no pullup definition has been provided\n");
}

TEST(Messages, TheFileIsNamedAsTheCallerNamesIt) {
  const TemporaryFolder folder;
  folder.write("part.ibs", partText);
  const Outcome result = run({"convert", ".//part.ibs"}, {.folder = folder.path()});
  EXPECT_EQ(result.err,
            ".//part.ibs:12: error: Model referenced by pin '1' has not been defined\n"
            ".//part.ibs: note: the pin names model 'in'\n");
}

TEST(Messages, AComponentThatIsNotThereIsAnError) {
  const Told told = convertText(bufferText, {"-c", "NONE"});
  EXPECT_EQ(told.status, 1);
  EXPECT_EQ(told.messages,
            "part.ibs: error: Component name 'NONE' not found in IBIS file\n"
            "part.ibs: note: the file has BUF-1\n");
}

// The second corner of the ramp is so fast that the steps of it would never end on the third.
const std::string unequalRampText = R"([Model] in
Model_type Output
C_comp 1p 1p 1p
[Voltage Range] 4 4 4
[Pulldown]
-4 -32m
8 64m
[Pullup]
-4 32m
8 -64m
[Ramp]
dV/dt_r 1/1n 1/1n 1/1n
dV/dt_f 1/1n 1/1p 1/1
)";

TEST(Messages, AnEstimatedWaveformThatWouldBeTooLongIsWarnedOf) {
  const Told told = convertText(partText + unequalRampText, {"-s", "dut"});
  EXPECT_EQ(told.status, 0);
  EXPECT_EQ(told.messages,
            "part.ibs:14: warning: Model in: Estimated waveform as no waveform data in model file. "
            "Waveform may deviate substantially from actual device\n"
            "part.ibs:14: warning: Model 'in': an estimated waveform would have more than 1000000 "
            "points and is empty\n");
}

TEST(Messages, ThePluginDoesNotTellOfAWaveformThatWouldBeTooLong) {
  const TemporaryFolder folder;
  const std::string source = folder.write("part.ibs", partText + unequalRampText);
  const std::string request =
      "[[\"" + source + "\"],[\"model\",\"\",\"" + folder.path() + "\",\"dut\"]]";
  EXPECT_EQ(run({"call"}, {.input = request}).out,
            "[\"1\",\"" + folder.path() +
                "\",\"1\",\"0\",\"Model in: Estimated waveform as no waveform data in model file. "
                "Waveform may deviate substantially from actual device\"]\n");
}

TEST(Messages, OtherModesHoldNoWaveformsToWarnOf) {
  EXPECT_EQ(convertText(partText + unequalRampText, {"-m", "package"}).messages,
            "part.ibs:14: warning: Model in: Estimated waveform as no waveform data in model file. "
            "Waveform may deviate substantially from actual device\n");
}

TEST(Messages, ASelectionThatIsNotThereIsAnError) {
  const Told told = convertText(bufferText, {"--select", R"(a\sb)"});
  EXPECT_EQ(told.status, 1);
  EXPECT_EQ(told.messages,
            "part.ibs: error: Model selector 'a\\sb' not found in IBIS file\n"
            "part.ibs: note: the file has no model selectors\n");
}

// A driver without a pullup and without waveforms, whose levels while it is off are all equal.
const std::string openDrainText = R"([Model] in
Model_type Open_drain
C_comp 1p 1p 1p
[Voltage Range] 4 4 4
[Pulldown]
-4 -32m
4 32m
[Ramp]
dV/dt_r 1/1n 1/1n 1/1n
dV/dt_f 1/1n 1/1n 1/1n
R_load = 64
)";

TEST(Messages, ALibraryThatHoldsValuesThatAreNotFiniteIsWarnedOf) {
  const Told told = convertText(partText + openDrainText, {"-o", "out"});
  EXPECT_EQ(told.status, 0);
  EXPECT_EQ(told.messages,
            "part.ibs:14: warning: Model in: Estimated waveform as no waveform data in model file. "
            "Waveform may deviate substantially from actual device\n"
            "part.ibs:14: warning: Model 'in': a table or waveform value is not finite; "
            "'out/BUF_1.lb' holds \"nan\" or \"inf\"\n");
}

TEST(Messages, TheWarningOfValuesThatAreNotFiniteCounts) {
  EXPECT_EQ(
      convertText(partText + receiverText + "[GND Clamp]\n-1 -1e999\n0 0\n[Voltage Range] 0\n",
                  {"--werror"})
          .status,
      1);
}

TEST(Messages, AnInfiniteTableValueIsWarnedOf) {
  for (const std::string value : {"inf", "-inf", "nan", "1e999"}) {
    const std::string clamp = "[GND Clamp]\n-1 " + value + "\n0 0\n[Voltage Range] 0\n";
    const TemporaryFolder folder;
    folder.write("part.ibs", partText + receiverText + clamp);
    const Outcome result = run({"convert", "part.ibs", "-s", "dut"}, {.folder = folder.path()});
    EXPECT_EQ(result.err,
              "part.ibs:14: warning: Model 'in': a table or waveform value is not finite; "
              "'./dut.lb' holds \"nan\" or \"inf\"\n")
        << value;
    EXPECT_EQ(result.out, "./dut.lb\n./dut_INFO.html\n1 warning, 0 errors\n");
  }
}

// A driver whose tables and waveforms hold the values given for their typ corner.
std::string driverText(const std::string& current, const std::string& voltage) {
  return "[Model] in\nModel_type Output\n[Voltage Range] 4 4 4\n[Pulldown]\n0 0\n4 " + current +
         "\n[Pullup]\n0 0\n4 -1\n[Rising Waveform]\nR_fixture = 50\n0 0\n1n " + voltage +
         "\n[Falling Waveform]\nR_fixture = 50\n0 4\n1n 0\n";
}

TEST(Messages, ADriversTablesAndWaveformsAreLookedAt) {
  const std::string warning =
      "part.ibs:14: warning: Model 'in': a table or waveform value is not finite; "
      "'./BUF_1.lb' holds \"nan\" or \"inf\"\n";
  EXPECT_EQ(convertText(partText + driverText("1", "4")).messages, "");
  EXPECT_EQ(convertText(partText + driverText("inf", "4")).messages, warning);
  EXPECT_EQ(convertText(partText + driverText("1", "nan")).messages, warning);
}

TEST(Messages, AWaveformThatNoDeviceTakesIsInTheLibraryToo) {
  const std::string second = "[Falling Waveform]\nR_fixture = 60\n0 4\n1n 0\n";
  const std::string third = "[Falling Waveform]\nR_fixture = 70\n0 4\n1n nan\n";
  EXPECT_EQ(convertText(partText + driverText("1", "4") + second + third).messages,
            "part.ibs:14: warning: Model 'in': a table or waveform value is not finite; "
            "'./BUF_1.lb' holds \"nan\" or \"inf\"\n");
}

TEST(Messages, OtherModesHoldNoModelsToWarnOf) {
  const std::string clamp = "[GND Clamp]\n-1 inf\n0 0\n[Voltage Range] 0\n";
  EXPECT_EQ(convertText(partText + receiverText + clamp, {"-m", "package"}).messages, "");
}

TEST(Messages, AModelThatIsNotInUseIsNotWarnedOf) {
  const std::string clamp = "[GND Clamp]\n-1 inf\n0 0\n[Voltage Range] 0\n";
  EXPECT_EQ(convertText(bufferText.substr(0, bufferText.find("[End]")) +
                        "[Model] spare\nModel_type Terminator\n" + clamp)
                .messages,
            "");
}

TEST(BadInput, EachKindOfFileThatCannotBeReadHasItsReason) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
  std::filesystem::create_symlink("nowhere", folder.file("dangling"));
  std::filesystem::resize_file(folder.write("large", ""), 0x7fffffff);
  const struct {
    const char* name;
    const char* reason;
  } cases[] = {{"", "Cannot open the file: No such file or directory"},
               {"missing", "Cannot open the file: No such file or directory"},
               {"dangling", "Cannot open the file: No such file or directory"},
               {"pipe", "Not a regular file"},
               {"/dev/null", "Not a regular file"},
               {"large", "The file is too large"}};
  for (const auto& [name, reason] : cases) {
    const Outcome result = run({"convert", name, "-c", "NONE"}, {.folder = folder.path()});
    EXPECT_EQ(result.status, 1) << name;
    EXPECT_EQ(result.out, "0 warnings, 1 error\n");
    EXPECT_EQ(result.err, std::string(name) + ": error: " + reason + '\n');
  }
}

TEST(BadInput, AFileWithoutAComponentSaysSo) {
  for (const std::string text : {"", "[IBIS Ver] 4.2\n[End]\n", "[Model] in\n", "no IBIS at all"}) {
    const Told told = convertText(text);
    EXPECT_EQ(told.status, 1) << text;
    const std::string note = text.empty() ? "part.ibs: note: it is empty\n" : "";
    EXPECT_EQ(told.messages, "part.ibs: error: The file has no component\n" + note) << text;
  }
}

TEST(BadInput, AFileOfNulsHasNoComponent) {
  EXPECT_EQ(convertText(std::string(5000, '\0')).messages,
            "part.ibs: error: The file has no component\n"
            "part.ibs: note: it looks like UTF-16 text or other binary data\n");
}

TEST(BadInput, AComponentWithoutAFileNameNeedsASubcircuitsName) {
  for (const std::string name : {"", "50%"}) {
    const std::string text =
        "[IBIS Ver] 4.2\n[Component] " + name + "\n[Pin] signal_name model_name\n1 A NC\n";
    EXPECT_EQ(convertText(text).messages, "part.ibs: error: No file can be called by '" + name +
                                              "'; name the subcircuit with -s\n");
    EXPECT_EQ(convertText(text).status, 1);
    EXPECT_EQ(convertText(text, {"-s", "dut"}).messages, "");
    EXPECT_EQ(convertText(text, {"-m", "script"}).status, 0);
  }
}

TEST(BadInput, AFolderThatCannotBeMadeSaysWhy) {
  const Told told = convertText(bufferText, {"-o", "part.ibs/out"});
  EXPECT_EQ(told.status, 1);
  EXPECT_EQ(told.messages, "part.ibs: error: Cannot make folder 'part.ibs/out': Not a directory\n");
}

TEST(BadInput, AnOutputFileThatCannotBeOpenedIsAnError) {
  const TemporaryFolder folder;
  folder.write("part.ibs", bufferText);
  std::filesystem::create_directory(folder.file("BUF_1.lb"));
  const Outcome result = run({"convert", "part.ibs", "-m", "package"}, {.folder = folder.path()});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "0 warnings, 1 error\n");
  EXPECT_EQ(result.err, "part.ibs: error: Cannot open output file './BUF_1.lb'\n");
}

TEST(BadInput, ALibraryThatWasNotWrittenHoldsNothingToWarnOf) {
  const TemporaryFolder folder;
  folder.write("part.ibs",
               partText + receiverText + "[GND Clamp]\n-1 inf\n0 0\n[Voltage Range] 0\n");
  std::filesystem::create_directory(folder.file("BUF_1.lb"));
  const Outcome result = run({"convert", "part.ibs"}, {.folder = folder.path()});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "./BUF_1_INFO.html\n0 warnings, 1 error\n");
  EXPECT_EQ(result.err, "part.ibs: error: Cannot open output file './BUF_1.lb'\n");
}

TEST(BadInput, AFullDiskIsAnError) {
  const TemporaryFolder folder;
  folder.write("part.ibs", bufferText);
  std::filesystem::create_symlink("/dev/full", folder.file("BUF_1.lb"));
  const Outcome result = run({"convert", "part.ibs", "-m", "package"}, {.folder = folder.path()});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "part.ibs: error: Cannot write output file './BUF_1.lb'\n");
}

}  // namespace
}  // namespace ibis::testing
