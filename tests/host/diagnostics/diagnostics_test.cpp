#include <type_traits>

#include "harness/harness.h"
#include "host/diagnostics/error_handler.h"
#include "host/diagnostics/messages.h"
#include "ibis/yvector.h"

namespace ibis::testing {
namespace {

using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

// A terminator with one clamp table; the second table row is all that can be wrong with it.
std::string terminatorWithSecondRow(std::string_view row) {
  return lines({"[IBIS Ver] 4.2", "[Component] Board", "[Pin] signal_name model_name",
                "1 data Load", "[Model] Load", "Model_type Terminator",
                "[Voltage Range] 3.3 3.0 3.6", "[GND Clamp]", "0 0", row, "[End]"});
}

TEST(Diagnostics, PrintNothingWithoutMessages) {
  const IBISFile file;
  CaptureStdout();
  file.printErrors();
  file.printWarnings();
  EXPECT_EQ(GetCapturedStdout(), "");
}

TEST(Diagnostics, PrintErrorsUnderATitle) {
  IBISFile file;
  file.error("first %d", 1);
  file.error("second");
  file.warning("a warning");
  CaptureStdout();
  file.printErrors();
  EXPECT_EQ(GetCapturedStdout(), "Errors found:\n\nfirst 1\nsecond\n");
}

TEST(Diagnostics, PrintWarningsUnderATitleAndOneMoreLineEnd) {
  IBISFile file;
  file.error("an error");
  file.warning("first %d", 1);
  file.warning("second");
  CaptureStdout();
  file.printWarnings();
  EXPECT_EQ(GetCapturedStdout(), "Warnings found:\n\nfirst 1\nsecond\n\n");
}

TEST(Diagnostics, PrintNothingForTheOtherList) {
  IBISFile onlyError;
  onlyError.error("an error");
  IBISFile onlyWarning;
  onlyWarning.warning("a warning");
  CaptureStdout();
  onlyError.printWarnings();
  onlyWarning.printErrors();
  EXPECT_EQ(GetCapturedStdout(), "");
}

TEST(Diagnostics, PrintPercentSignsOfAMessageAsTheyAre) {
  IBISFile file;
  file.error("%s", "100%s and %d%n");
  file.warning("%s", "%%");
  CaptureStdout();
  file.printErrors();
  file.printWarnings();
  EXPECT_EQ(GetCapturedStdout(), "Errors found:\n\n100%s and %d%n\nWarnings found:\n\n%%\n\n");
}

TEST(Diagnostics, ReportingPrintsNothing) {
  CaptureStdout();
  IBISFile file;
  file.error("an error");
  file.warning("a warning");
  EXPECT_EQ(GetCapturedStdout(), "");
  EXPECT_EQ(file.errorCount(), 1);
}

TEST(Diagnostics, AreCountedAndKeptInTheOrderOfTheCalls) {
  IBISFile file;
  IBISErrorHandler& handler = file;
  handler.warning("early %s", "warning");
  handler.error("error %d", 7);
  handler.warning("late %c%c", 'o', 'k');
  EXPECT_EQ(file.errorCount(), 1);
  EXPECT_EQ(file.warningCount(), 2);
  EXPECT_EQ(texts(file.data().errors), Texts({"error 7"}));
  EXPECT_EQ(texts(file.data().warnings), Texts({"early warning", "late ok"}));
}

TEST(Diagnostics, StandTwiceWhenReportedTwice) {
  IBISFile file;
  for (int i = 0; i < 2; ++i) {
    file.error("same");
    file.warning("same too");
  }
  EXPECT_EQ(texts(file.data().errors), Texts({"same", "same"}));
  EXPECT_EQ(texts(file.data().warnings), Texts({"same too", "same too"}));
}

TEST(Diagnostics, HaveNoLimitOfNumber) {
  IBISFile file;
  for (int i = 0; i < 20000; ++i) file.error("message %d", i);
  EXPECT_EQ(file.errorCount(), 20000);
  EXPECT_EQ(texts(file.data().errors).back(), "message 19999");
}

TEST(Diagnostics, AreNoErrorsInAFreshFile) {
  const IBISFile file;
  EXPECT_FALSE(file.hasErrors());
  EXPECT_EQ(file.errorCount(), 0);
  EXPECT_EQ(file.warningCount(), 0);
}

TEST(Diagnostics, OnlyAnErrorMakesErrors) {
  IBISFile file;
  file.warning("a warning");
  EXPECT_FALSE(file.hasErrors());
  file.error("an error");
  EXPECT_TRUE(file.hasErrors());
}

TEST(Diagnostics, AWarningAloneLetsOutputBeWritten) {
  const Loaded loaded = loadText(terminatorWithSecondRow("0 1"));
  EXPECT_MESSAGES(loaded.errors);
  EXPECT_MESSAGES(loaded.warnings,
                  "Non-monotonic or constant points removed from GND_Clamp table starting line 8");
  EXPECT_EQ(loaded.written, Texts({"dut.lb", "dut_INFO.html"}));
}

TEST(Diagnostics, AnErrorKeepsOutputFromBeingWritten) {
  const Loaded loaded = loadText(terminatorWithSecondRow("1 1\n[Submodel] Extra"));
  EXPECT_MESSAGES(loaded.errors, "Line 11: Keyword 'Submodel' not supported");
  EXPECT_EQ(loaded.written, Texts());
  EXPECT_TRUE(loaded.files.empty());
}

TEST(Diagnostics, GetNothingAddedToTheirText) {
  IBISFile file;
  file.error(" padded \n");
  file.error("%s", "");
  EXPECT_EQ(texts(file.data().errors), Texts({" padded \n", ""}));
}

TEST(Diagnostics, AreCutTo1023Bytes) {
  IBISFile file;
  for (const std::size_t length : {1022u, 1023u, 1024u, 5000u}) {
    file.error("%s", std::string(length, 'x').c_str());
    file.warning("ab%s", std::string(length, 'x').c_str());
  }
  const std::string full(1023, 'x');
  EXPECT_EQ(texts(file.data().errors), Texts({full.substr(1), full, full, full}));
  const std::string prefixed = "ab" + std::string(1021, 'x');
  EXPECT_EQ(texts(file.data().warnings),
            Texts({"ab" + full.substr(1).substr(0, 1021), prefixed, prefixed, prefixed}));
}

TEST(Diagnostics, FoldAMessageThatIsAReservedWord) {
  IBISFile file;
  for (const char* text : {"gnd", "Power", "nc", "nA", "gnd ", "ground"}) {
    file.error("%s", text);
    file.warning("%s", text);
  }
  const Texts folded = {"GND", "POWER", "NC", "NA", "gnd ", "ground"};
  EXPECT_EQ(texts(file.data().errors), folded);
  EXPECT_EQ(texts(file.data().warnings), folded);
}

TEST(Diagnostics, BelongToOneFile) {
  IBISFile one;
  const IBISFile other;
  one.error("an error");
  EXPECT_FALSE(other.hasErrors());
  EXPECT_EQ(texts(other.data().errors), Texts());
}

TEST(KelvrantException, CarriesCode8AndItsText) {
  const KelvrantException exception("YVector index negative");
  EXPECT_EQ(exception.code, 8);
  EXPECT_STREQ(exception.message, "YVector index negative");
}

TEST(KelvrantException, KeepsAtMost999Characters) {
  const std::string text(2000, 'x');
  EXPECT_EQ(KelvrantException(text.c_str()).message, std::string(999, 'x'));
  EXPECT_EQ(KelvrantException(text.substr(0, 999).c_str()).message, std::string(999, 'x'));
  EXPECT_EQ(KelvrantException(text.substr(0, 998).c_str()).message, std::string(998, 'x'));
  EXPECT_STREQ(KelvrantException("").message, "");
}

TEST(KelvrantException, IsAPlainRecord) {
  EXPECT_FALSE(std::is_polymorphic_v<KelvrantException>);
  EXPECT_TRUE(std::is_trivially_copyable_v<KelvrantException>);
  EXPECT_EQ(sizeof(KelvrantException::message), 1000u);
}

TEST(Diagnostics, KnowTheirMessageAndItsLine) {
  IBISFile file;
  file.error(message::loadFailed, "std::bad_alloc");
  file.error(message::duplicatePackagePin, 7, "A1");
  file.warning(message::pointsRemoved, "Pullup", 12);
  file.warning(message::vinlDefault, 3, "X");
  file.error(message::cannotOpenOutput, "a.lb");
  EXPECT_MESSAGES(file.data().errors, "Load failed: std::bad_alloc", "Line 7: duplicate pin 'A1'",
                  "Cannot open output file 'a.lb'\n");
  EXPECT_MESSAGES(file.data().warnings,
                  "Non-monotonic or constant points removed from Pullup table starting line 12",
                  "Model 'X': Vinl not defined using default 0.8V");
  const auto fields = [](const Diagnostic& each) {
    return std::string(each.id) + '/' + std::to_string(each.line) + '/' + each.text;
  };
  EXPECT_EQ(fields(file.data().errors[0]), "load-failed/0/Load failed: std::bad_alloc");
  EXPECT_EQ(fields(file.data().errors[1]), "duplicate-package-pin/7/duplicate pin 'A1'");
  EXPECT_EQ(fields(file.data().errors[2]), "cannot-open-output/0/Cannot open output file 'a.lb'");
  EXPECT_EQ(fields(file.data().warnings[0]),
            "points-removed/12/Non-monotonic or constant points removed from Pullup table starting "
            "line 12");
  EXPECT_EQ(fields(file.data().warnings[1]),
            "vinl-default/3/Model 'X': Vinl not defined using default 0.8V");
  EXPECT_EQ(file.data().errors[1].severity, Severity::error);
  EXPECT_EQ(file.data().warnings[1].severity, Severity::warning);
}

}  // namespace
}  // namespace ibis::testing
