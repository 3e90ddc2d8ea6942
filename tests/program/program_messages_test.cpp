// Each message of the program's own table, as its parts tell it.

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "conversion.h"
#include "conversion_queue.h"
#include "harness/counted_memory.h"
#include "harness/harness.h"
#include "messages.h"
#include "plugin.h"
#include "program/packing.h"
#include "program/texts.h"
#include "report.h"
#include "source_list.h"
#include "tolerant_reading.h"

namespace ibis::testing {
namespace {

namespace fs = std::filesystem;

using cli::Conversion;
using cli::ConversionRequest;
using Diagnostics = std::vector<Diagnostic>;

// The faults that the search of a folder tells.
Diagnostics faultsOfSearchIn(const std::string& path) {
  Diagnostics faults;
  for (const cli::Source& source : cli::listSources({path}, "out")) {
    if (source.fault) faults.push_back(*source.fault);
  }
  return faults;
}

class ProgramMessages : public ::testing::Test {
 protected:
  // What keeps a text from being converted.
  Diagnostics errorsOf(const std::string& text, ConversionRequest request = {}) const {
    request.source = folder_.write("part.ibs", text);
    return errorsOf(request);
  }

  Diagnostics errorsOf(ConversionRequest request) const {
    if (request.mode.empty()) request.mode = "package";
    if (request.folder.empty()) request.folder = folder_.path();
    const Conversion conversion = cli::convert(request);
    EXPECT_MESSAGES(conversion.warnings);
    EXPECT_EQ(conversion.files, Texts());
    return conversion.errors;
  }

  Diagnostics errorsOfSource(const std::string& name) const {
    ConversionRequest request;
    request.source = name;
    return errorsOf(request);
  }

  Diagnostics warningsOf(const std::string& text) const {
    ConversionRequest request;
    request.source = folder_.write("part.ibs", text);
    request.mode = "model";
    request.folder = folder_.path();
    request.subcircuit = "dut";
    const Conversion conversion = cli::convert(request);
    EXPECT_MESSAGES(conversion.errors);
    EXPECT_EQ(conversion.files, Texts({folder_.file("dut.lb"), folder_.file("dut_INFO.html")}));
    return conversion.warnings;
  }

  Diagnostics faultsOfSearch() const { return faultsOfSearchIn(folder_.path()); }

  TemporaryFolder folder_;
};

TEST_F(ProgramMessages, HaveIdsOfTheirOwn) {
  std::set<std::string> ids;
  for (const MessageRow& row : cli::messageTable()) {
    EXPECT_TRUE(ids.emplace(row.id.view()).second) << row.id.view();
  }
  for (const MessageRow& row : messageTable()) {
    EXPECT_FALSE(ids.contains(std::string(row.id.view()))) << row.id.view();
  }
}

TEST_F(ProgramMessages, CarryTheirIdAndSeverity) {
  for (const Severity severity : {Severity::warning, Severity::error}) {
    const Diagnostic told = cli::tell(severity, cli::message::noComponent);
    EXPECT_EQ(told.id, "no-component");
    EXPECT_EQ(told.severity, severity);
    EXPECT_EQ(told.line, 0);
    EXPECT_EQ(told.text, "The file has no component");
  }
}

TEST_F(ProgramMessages, TellOfASourceThatIsNoFile) {
  EXPECT_MESSAGES(errorsOfSource("/dev/null"), "Not a regular file");
}

TEST_F(ProgramMessages, TellOfASourceThatIsMissing) {
  EXPECT_MESSAGES(errorsOfSource(folder_.file("none")),
                  "Cannot open the file: No such file or directory");
}

TEST_F(ProgramMessages, TellOfASourceThatIsTooLarge) {
  const std::string source = folder_.write("large.ibs", "");
  fs::resize_file(source, 0x7fffffff);
  EXPECT_MESSAGES(errorsOfSource(source), "The file is too large");
}

// The kernel gives such files a size of one page and far fewer bytes.
TEST_F(ProgramMessages, TellOfASourceThatCannotBeReadWhole) {
  const std::string name = "/sys/kernel/mm/transparent_hugepage/enabled";
  if (!fs::exists(name)) GTEST_SKIP() << name << " is not here";
  EXPECT_MESSAGES(errorsOfSource(name), "Cannot read the whole file");
}

TEST_F(ProgramMessages, TellOfASourceThatCannotBeUnpacked) {
  EXPECT_MESSAGES(errorsOf("\x1f\x8b rest"), "Cannot unpack the file: it is damaged");
}

TEST_F(ProgramMessages, TellOfAMemberThatAnArchiveLacks) {
  const std::string archive = folder_.write("a.zip", packedByZip({{"a.ibs", bufferText}}));
  EXPECT_MESSAGES(errorsOfSource(archive + "/b.ibs"), "The archive has no such file");
}

TEST_F(ProgramMessages, TellOfAnOutputThatIsAnotherInput) {
  const std::string other = folder_.write("BUF_1.lb", bufferText);
  const auto inputs = std::make_shared<cli::InputFiles>();
  inputs->add(other);
  ConversionRequest request;
  request.inputs = inputs;
  EXPECT_MESSAGES(errorsOf(bufferText, request),
                  "Output file '" + other + "' is an input file of this run");
}

TEST_F(ProgramMessages, TellOfAFolderWithoutFiles) {
  EXPECT_MESSAGES(faultsOfSearch(), "Nothing to convert: no file ends in .ibs");
}

// A path beyond the system's limit.
TEST_F(ProgramMessages, TellOfAFolderThatCannotBeReached) {
  const std::string part(250, 'd');
  int folder = open(folder_.path().c_str(), O_DIRECTORY | O_CLOEXEC);
  for (std::size_t size = folder_.path().size(); size < 4096; size += part.size() + 1) {
    ASSERT_EQ(mkdirat(folder, part.c_str(), 0700), 0);
    const int inside = openat(folder, part.c_str(), O_DIRECTORY | O_CLOEXEC);
    close(folder);
    folder = inside;
  }
  close(folder);
  EXPECT_MESSAGES(faultsOfSearch(), "Cannot read the folder: File name too long");
}

TEST_F(ProgramMessages, TellOfAFolderThatCannotBeReadWhole) {
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  rlimit none = before;
  none.rlim_cur = 0;
  const std::string path = folder_.path();  // since a sanitizer looks at a virtual call with a pipe
  setrlimit(RLIMIT_NOFILE, &none);
  const Diagnostics faults = faultsOfSearchIn(path);
  setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_MESSAGES(faults, "Cannot read the whole folder: Too many open files");
}

TEST_F(ProgramMessages, TellOfALinkToItself) {
  fs::create_symlink("self", folder_.file("self"));
  EXPECT_MESSAGES(faultsOfSearch(),
                  "Cannot tell whether it is a folder: Too many levels of symbolic links");
}

TEST_F(ProgramMessages, TellHowManyAreNotPrinted) {
  EXPECT_MESSAGES(Diagnostics{cli::tellMoreMessages(7)},
                  "7 more messages; --max-messages 0 prints all");
  EXPECT_MESSAGES(Diagnostics{cli::tellMoreOfRule(2, "numeric-decimal-comma")},
                  "2 more of numeric-decimal-comma");
}

// Each row of a pair is an instance with long names; a partner that is missing is the pin NA.
TEST_F(ProgramMessages, TellOfAnOutputThatWouldBeTooLarge) {
  constexpr int rows = 60'000;
  const std::string model(220, 'M');
  std::string text = "[IBIS Ver] 2.1\n[Component] BUF-1\n[Pin] signal_name model_name\n1 ";
  text += std::string(220, 'a') + " s\nNA " + std::string(220, 'b') +
          " s\n[Diff Pin] inv_pin vdiff tdelay_typ\n";
  for (int i = 0; i < rows; ++i) text += "1\n";
  text += "[Model Selector] s\n" + model + "\n[Model] " + model +
          "\nModel_type I/O\n[Pulldown]\n0 0\n[Pullup]\n0 0\n[Voltage Range] 3 3 3\n"
          "[Rising Waveform]\n0 0\n[End]\n";
  ConversionRequest request;
  request.source = folder_.write("part.ibs", text);
  request.mode = "model";
  request.folder = folder_.path();
  request.isChecked = false;
  const Conversion conversion = cli::convert(request);
  const std::string limit =
      std::to_string(100'000'000 + 200 * fs::file_size(folder_.file("part.ibs")));
  EXPECT_MESSAGES(conversion.errors,
                  "Cannot write output file '" + folder_.file("BUF_1.lb") + "'\n",
                  "The output would take more than " + limit +
                      " bytes, 200 for each of the file and 100 MB; --no-limit writes it");
  EXPECT_EQ(conversion.files, Texts());
  EXPECT_EQ(folder_.names(), Texts{"part.ibs"});
}

TEST_F(ProgramMessages, TellOfAFileWithoutAComponent) {
  EXPECT_MESSAGES(errorsOf("[IBIS Ver] 4.2\n"), "The file has no component");
}

TEST_F(ProgramMessages, TellOfAModeThatWritesNothing) {
  ConversionRequest request;
  request.mode = "Symbol";
  EXPECT_MESSAGES(errorsOf(bufferText, request), "Mode 'symbol' writes nothing");
}

TEST_F(ProgramMessages, TellOfANameThatNoFileCanHave) {
  EXPECT_MESSAGES(
      errorsOf("[IBIS Ver] 4.2\n[Component] 50%\n[Pin] signal_name model_name\n1 A NC\n"),
      "No file can be called by '50%'; name the subcircuit with -s");
}

TEST_F(ProgramMessages, TellOfAnOutputThatIsTheInput) {
  ConversionRequest request;
  request.source = folder_.write("dut.lb", bufferText);
  request.subcircuit = "dut";
  EXPECT_MESSAGES(errorsOf(request),
                  "Output file '" + request.source + "' is the input file itself");
}

TEST_F(ProgramMessages, TellOfAnOutputThatIsThereAlready) {
  ConversionRequest request;
  request.subcircuit = "dut";
  request.keepsFiles = true;
  folder_.write("dut.lb", "kept");
  EXPECT_MESSAGES(errorsOf(bufferText, request), "Output file '" + folder_.file("dut.lb") +
                                                     "' is there already; --no-clobber keeps it");
}

TEST_F(ProgramMessages, TellOfAPinThatNoComponentHas) {
  ConversionRequest request;
  request.pins = {"X"};
  EXPECT_MESSAGES(errorsOf(bufferText, request), "Component 'BUF-1' has no pin 'X'");
  request.mode = "script";
  const std::string two = "[IBIS Ver] 4.2\n[Component] A\n[Component] B\n";
  EXPECT_MESSAGES(errorsOf(two, request), "No component has a pin 'X'");
}

TEST_F(ProgramMessages, TellOfPinsThatAreLeftOut) {
  ConversionRequest request;
  request.source = folder_.write("part.ibs", partText);
  request.mode = "package";
  request.folder = folder_.path();
  request.reading.keepGoing = true;
  EXPECT_MESSAGES(cli::convert(request).warnings,
                  "Line 12: Model referenced by pin '1' has not been defined",
                  "Component 'BUF-1': pins of model 'in' are left out: 1");
}

TEST_F(ProgramMessages, TellOfAFileThatHoldsNothing) {
  const std::string source = folder_.write("part.ibs", "no IBIS at all");
  EXPECT_MESSAGES(cli::readTolerantly(source).errors,
                  "The file holds no component, model, selector or package model");
  const std::string part = folder_.write("part.ibs", "[Component] X\n");
  EXPECT_MESSAGES(cli::readTolerantly(part).leftOut, "The file gives no version");
}

// Each has a run of the program in the tests of its command.
TEST_F(ProgramMessages, TellOfNamesThatNothingHas) {
  EXPECT_MESSAGES(Diagnostics({cli::tell(Severity::error, cli::message::nothingCalled, "x")}),
                  "Nothing in the file is called 'x'");
  EXPECT_MESSAGES(Diagnostics({cli::tell(Severity::error, cli::message::noModelCalled, "x")}),
                  "No model is called 'x'");
  EXPECT_MESSAGES(Diagnostics({cli::tell(Severity::error, cli::message::noTableCalled, "x", "y")}),
                  "Model 'x' has no table or waveform 'y'");
}

TEST_F(ProgramMessages, TellOfAFolderThatCannotBeMade) {
  ConversionRequest request;
  request.folder = "/dev/null/out";
  EXPECT_MESSAGES(errorsOf(bufferText, request),
                  "Cannot make folder '/dev/null/out': Not a directory");
}

TEST_F(ProgramMessages, TellOfAValueThatIsNotFinite) {
  const Diagnostics warnings =
      warningsOf(partText + receiverText + "[GND Clamp]\n-1 inf\n0 0\n[Voltage Range] 0\n");
  EXPECT_MESSAGES(warnings, "Model 'in': a table or waveform value is not finite; '" +
                                folder_.file("dut.lb") + R"(' holds "nan" or "inf")");
  EXPECT_EQ(warnings.at(0).line, 14);
}

TEST_F(ProgramMessages, TellOfAWaveformThatWouldBeTooLong) {
  const Diagnostics warnings =
      warningsOf(partText +
                 "[Model] in\nModel_type Output\n[Voltage Range] 4 4 4\n[Pulldown]\n-4 -32m\n"
                 "8 64m\n[Pullup]\n-4 32m\n8 -64m\n[Ramp]\ndV/dt_r 1/1n 1/1n 1/1\n"
                 "dV/dt_f 1/1n 1/1n 1/1n\n");
  EXPECT_MESSAGES(
      warnings,
      "Model in: Estimated waveform as no waveform data in model file. Waveform may deviate "
      "substantially from actual device",
      "Model 'in': an estimated waveform would have more than 1000000 points and is empty");
  EXPECT_EQ(warnings.at(1).line, 14);
}

// The program's own place is told by a link, which may be closed to it.
TEST(OwnPlugin, LiesBesideTheProgramThatTheLinkLeadsTo) {
  const TemporaryFolder folder;
  fs::create_symlink("/some/where/bin/ibis-load", folder.file("exe"));
  EXPECT_EQ(cli::ownPluginPath(folder.file("exe")), "/some/where/lib/ibis-load/ibis_load.so");
}

TEST(OwnPlugin, IsRefusedWhereTheLinkCannotBeRead) {
  const TemporaryFolder folder;
  folder.write("exe", "no link");
  const std::pair<std::string, std::string> cases[] = {
      {folder.file("none"), "No such file or directory"}, {folder.file("exe"), "Invalid argument"}};
  for (const auto& [link, reason] : cases) {
    std::string told;
    try {
      cli::ownPluginPath(link);
    } catch (const cli::PluginFault& fault) {
      told = fault.what();
    }
    EXPECT_EQ(told, "cannot tell where the plug-in lies: " + reason + "; name it with --plugin");
  }
}

// What ends the work on one file ends no other's.
TEST_F(ProgramMessages, TellOfWhatEndedTheWorkOnAFile) {
  ConversionRequest pattern;
  pattern.mode = "package";
  // Its escapes take twice the room, which is more than there is.
  pattern.selections = {std::string(600'000, '\\')};
  const std::vector<cli::Source> sources = {
      {.name = folder_.write("a.ibs", bufferText), .folder = folder_.file("out"), .fault = {}},
      {.name = "b", .folder = {}, .fault = cli::tell(Severity::error, cli::message::notRegular)}};
  const NoLargeMemory memory(1'000'000);
  cli::ConversionQueue queue(sources, pattern, 1);
  constexpr std::chrono::seconds longest{60};
  EXPECT_MESSAGES(queue.take(longest).value().errors, "std::bad_alloc");
  EXPECT_MESSAGES(queue.take(longest).value().errors, "Not a regular file");
}

}  // namespace
}  // namespace ibis::testing
