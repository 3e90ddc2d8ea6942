#include "export_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "export_source.h"
#include "finding_messages.h"
#include "ngspice.h"
#include "verify_model.h"

namespace ibis::cli {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace fs = std::filesystem;

const std::string sources = IBIS_SOURCE_DIR;

std::string read(const std::string& name) {
  std::ifstream in(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::vector<std::string> textsOf(const std::vector<Diagnostic>& list) {
  std::vector<std::string> texts;
  for (const Diagnostic& each : list) texts.push_back(each.text);
  return texts;
}

class ExportFiles : public testing::Test {
 protected:
  ExportRequest request(const std::string& source) const {
    ExportRequest request;
    request.source = source;
    request.folder = folder_.path() + "/out";
    return request;
  }

  // A file of its own from its text.
  std::string write(const std::string& text) const {
    const std::string name = folder_.path() + "/source.ibs";
    std::ofstream(name) << text;
    return name;
  }

  TemporaryFolder folder_;
};

constexpr const char* head =
    "[IBIS Ver] 4.2\n[Component] %c\n[Package]\nR_pkg 1 NA NA\nL_pkg 1n NA NA\nC_pkg 1p NA NA\n"
    "[Pin] signal_name model_name\n";

// Names that a simulator would take for statements, or for each other.
std::string hostileFile() {
  std::string text(head);
  text.append(".include x .in\na+b y A.in\nA.B z a-IN\n");
  for (const char* name : {".in", "A.in", "a-IN"}) {
    text.append("[Model] ").append(name);
    text.append("\nModel_type Input\nVinl = 1\nVinh = 2\nC_comp 1p NA NA\n");
    text.append("[Voltage Range] 3 NA NA\n");
  }
  return text.append("[End]\n");
}

TEST_F(ExportFiles, WritesOneFileACornerAndABench) {
  ExportRequest wanted = request(sources + "/examples/push_pull_buffer.ibs");
  wanted.corners = {"typ", "max"};
  wanted.hasBench = true;
  const Export result = exportFile(wanted);
  EXPECT_THAT(result.errors, IsEmpty());
  EXPECT_THAT(
      result.files,
      ElementsAre(wanted.folder + "/EX3214_typ.inc", wanted.folder + "/EX3214_typ_bench.cir",
                  wanted.folder + "/EX3214_max.inc", wanted.folder + "/EX3214_max_bench.cir"));
  EXPECT_THAT(read(result.files[0]), HasSubstr("\n.subckt EX3214_typ "));
}

TEST_F(ExportFiles, TellsEachSubcircuit) {
  const Export result = exportFile(request(sources + "/examples/push_pull_buffer.ibs"));
  ASSERT_THAT(result.subcircuits, SizeIs(testing::Ge(3u)));
  const ExportedSubcircuit& last = result.subcircuits.back();
  EXPECT_EQ(last.model, "");
  EXPECT_EQ(last.name, "EX3214_typ");
  EXPECT_EQ(last.rails.pu, 3.3);
  for (const ExportedSubcircuit& each : result.subcircuits) {
    EXPECT_EQ(each.component, "EX3214");
    EXPECT_EQ(each.corner, "typ");
    if (each.model != "ex_out") continue;
    EXPECT_THAT(each.ports, ElementsAre("pad", "drv", "pu", "pd", "pc", "gc"));
    EXPECT_EQ(each.rising, EdgeMethod::twoWaveforms);
    EXPECT_GT(each.span, 0.0);
  }
}

TEST_F(ExportFiles, NamesCannotBecomeStatements) {
  const Export result = exportFile(request(write(hostileFile())));
  ASSERT_THAT(result.files, SizeIs(1));
  const std::string text = read(result.files[0]);
  EXPECT_EQ(text.find(".include x"), text.npos);
  EXPECT_THAT(text, HasSubstr("\n.subckt m__in_typ pad mon pu pd pc gc\n"));
  EXPECT_THAT(text, HasSubstr("\n.subckt A_in_typ pad"));
  EXPECT_THAT(text, HasSubstr("\n.subckt a_IN_2_typ pad"));
  EXPECT_THAT(text, HasSubstr(" p__include p_A_B p_a_b_2 "));
}

TEST_F(ExportFiles, ModelsAloneGoIntoAFileOfTheSourcesName) {
  ExportRequest wanted = request(write(hostileFile()));
  wanted.models = {"A.in"};
  const Export result = exportFile(wanted);
  ASSERT_THAT(result.files, ElementsAre(wanted.folder + "/source_typ.inc"));
  ASSERT_THAT(result.subcircuits, SizeIs(1));
  EXPECT_EQ(result.subcircuits[0].component, "");
}

TEST_F(ExportFiles, WhatIsNotThereIsAnError) {
  EXPECT_THAT(textsOf(exportFile(request("none.ibs")).errors),
              ElementsAre("Cannot open the file: No such file or directory"));
  ExportRequest wanted = request(write(hostileFile()));
  wanted.models.assign(1, "b");
  EXPECT_THAT(textsOf(exportFile(wanted).errors),
              Contains("The file has no model 'b' that can be exported"));
  wanted.models.clear();
  wanted.pins.assign(1, "9");
  EXPECT_THAT(textsOf(exportFile(wanted).errors), Contains("Component '%c' has no pin '9'"));
  wanted.component.assign(1, 'd');
  EXPECT_THAT(textsOf(exportFile(wanted).errors), Contains("The file has no component 'd'"));
  EXPECT_THAT(textsOf(exportFile(request(write("[IBIS Ver] 4.2\n[End]\n"))).errors),
              ElementsAre("The file has no component"));
}

TEST_F(ExportFiles, NothingToExportIsAnError) {
  std::string text(head);
  text.append("1 a NC\n[End]\n");
  EXPECT_THAT(textsOf(exportFile(request(write(text))).errors),
              ElementsAre("Nothing to export: no driver, receiver or terminator is left"));
}

TEST_F(ExportFiles, ABenchNeedsADriver) {
  ExportRequest wanted = request(write(hostileFile()));
  wanted.hasBench = true;
  EXPECT_THAT(textsOf(exportFile(wanted).warnings),
              Contains("No bench: none of the models is a driver"));
}

TEST_F(ExportFiles, ACoupledPackageThatIsMissingIsTold) {
  ExportRequest wanted = request(write(hostileFile()));
  wanted.package = PackageKind::coupled;
  EXPECT_THAT(textsOf(exportFile(wanted).warnings),
              Contains("Component '%c' has no package model; the pins' own values are used"));
}

TEST_F(ExportFiles, AFolderThatCannotBeMadeIsAnError) {
  ExportRequest wanted = request(write(hostileFile()));
  wanted.folder = wanted.source + "/under";
  EXPECT_THAT(exportFile(wanted).files, IsEmpty());
  EXPECT_THAT(exportFile(wanted).errors, SizeIs(1));
}

TEST_F(ExportFiles, SeriesElementsStandBetweenPinsThatHaveNothingElse) {
  const std::string text =
      "[IBIS Ver] 3.2\n[Component] net\n[Package]\nR_pkg 0.1 NA NA\nL_pkg 0 NA NA\nC_pkg 1p NA "
      "NA\n[Pin] signal_name model_name\n1 A NC\n2 B link\n3 C NC\n"
      "[Series Pin Mapping] pin_2 model_name function_table_group\n1 2 link NA\n2 1 sw g\n"
      "[Model] link\nModel_type Series\n[Voltage Range] 3 NA NA\n[L Series] 1n 2n 3n\n"
      "[Rl Series] 0.5 NA NA\n[C Series] 2p NA NA\n[Rc Series] 4 NA NA\n"
      "[Model] sw\nModel_type Series_switch\n[Voltage Range] 3 NA NA\n[On]\n[R Series] 5 NA NA\n"
      "[End]\n";
  ExportRequest wanted = request(write(text));
  wanted.corners = {"max"};
  const Export result = exportFile(wanted);
  EXPECT_THAT(textsOf(result.warnings),
              ElementsAre("Model 'sw', max: the switch is written in its On state"));
  ASSERT_THAT(result.files, SizeIs(1));
  const std::string netlist = read(result.files[0]);
  EXPECT_THAT(netlist, HasSubstr(".subckt link_max a b\nLl a l1 3e-09\nRl l1 b 0.5\n"
                                 "Cc a c1 2e-12\nRc c1 b 4\n.ends link_max\n"));
  EXPECT_THAT(netlist, HasSubstr(".subckt net_max p_1 p_2\nXS1 die_1 die_2 link_max\n"
                                 "XS2 die_2 die_1 sw_on_max\n"));
  EXPECT_THAT(netlist, HasSubstr("R_2 die_2 p_2 0.1\nC_2 p_2 0 1e-12\n.ends net_max\n"));
}

struct FindingRow {
  FindingKind kind;
  const char* text;
};

constexpr FindingRow findingRows[] = {
    {FindingKind::seriesValueUnusable,
     "Model 'm', min: a value of a series element is negative and left out"},
    {FindingKind::seriesMosfetLeftOut, "Model 'm', min: [Series MOSFET] is left out"},
    {FindingKind::seriesEmpty, "Model 'm', min: no series element is left to be written"},
    {FindingKind::switchIsOn, "Model 'm', min: the switch is written in its On state"},
    {FindingKind::switchIsOff, "Model 'm', min: the switch is written in its Off state"},
    {FindingKind::tableCellsFilled,
     "Model 'm', min: cells that a table leaves out are interpolated: 3"},
    {FindingKind::tableNotMonotonic,
     "Model 'm', min: a table is not monotonic; there may be several operating points"},
    {FindingKind::tableEndHeld,
     "Model 'm', min: a table ends with a slope of the wrong sign; its end is held"},
    {FindingKind::clampCurrentHuge, "Model 'm', min: a clamp carries up to 0.25 A"},
    {FindingKind::tableMissing, "Model 'm', min: a driver lacks its pullup or pulldown table"},
    {FindingKind::waveformCellsDropped,
     "Model 'm', min, falling edge: waveform rows without a voltage are left out: 3"},
    {FindingKind::waveformsUnusable,
     "Model 'm', min, falling edge: waveforms that are too short or too small to be used: 3"},
    {FindingKind::oneWaveform,
     "Model 'm', min, falling edge: only one usable waveform; other loads may be far off"},
    {FindingKind::waveformsContradict,
     "Model 'm', min, falling edge: the waveforms contradict each other; only number 4 is used"},
    {FindingKind::waveformJumps,
     "Model 'm', min, falling edge: a waveform passes 25 % of its swing at once at its start"},
    {FindingKind::cornerFromTyp,
     "Model 'm', min, falling edge: no waveforms of this corner; the coefficients are those of "
     "typ"},
    {FindingKind::estimateUnusable,
     "Model 'm', min, falling edge: the estimated waveforms miss the tables by 25 % of their swing "
     "and are not used"},
    {FindingKind::rampUsed,
     "Model 'm', min, falling edge: no usable waveform; a smooth step of 0.25 s is used"},
    {FindingKind::edgeAssumed,
     "Model 'm', min, falling edge: neither waveform nor ramp; a smooth step of 0.25 s is assumed"},
    {FindingKind::endOffNominal,
     "Model 'm', min, falling edge: the coefficients end 0.25 away from the settled ones; the "
     "waveforms have not settled, or the tables do not belong to them"},
    {FindingKind::staticMismatch,
     "Model 'm', min, falling edge: the levels of the waveforms miss the tables by 25 % of the "
     "swing"},
    {FindingKind::negativeCapacitance,
     "Model 'm', min: the capacitance 0.25 F is negative and left out"},
    {FindingKind::thresholdsDefaulted,
     "Model 'm', min: input thresholds are not given; the usual ones are taken"},
    {FindingKind::thresholdsSwapped,
     "Model 'm', min: Vinl is not below Vinh; the receiver switches at 0.25 V"},
    {FindingKind::referenceMissing,
     "Model 'm', min: a table has neither a reference nor a voltage range; 0 V is taken"},
    {FindingKind::valueNotFinite, "Model 'm', min: a value that is not finite counts as not given"},
};

TEST(FindingMessages, EachKindHasItsText) {
  IBISModel model;
  model.name = "m";
  model.lineNumber = 12;
  for (const FindingRow& row : findingRows) {
    const Diagnostic told = tellFinding(model, corner::min, {row.kind, Edge::falling, 0.25, 3});
    EXPECT_EQ(told.text, row.text);
    EXPECT_EQ(told.line, 12);
    EXPECT_EQ(told.severity, Severity::warning);
    EXPECT_NE(told.id, "");
  }
}

TEST(Verify, EveryExampleRunsAtEveryCorner) {
  try {
    requireNgspice();
  } catch (const SimulatorFault& fault) {
    GTEST_SKIP() << fault.what();
  }
  for (const char* name : {"push_pull_buffer", "differential_link", "oddities"}) {
    const ExportSource source = readForExport(sources + "/examples/" + name + ".ibs", {});
    ASSERT_FALSE(source.refusal);
    for (const IBISModel* model : devicesOf(source.document->file())) {
      for (const std::string& word : cornerWords()) {
        const ModelResult result = verifyModel(*model, cornerIndex(word), {});
        EXPECT_EQ(result.fault, "") << name << ' ' << result.model << ' ' << word;
        EXPECT_LT(result.dcError, 1e-5) << name << ' ' << result.model << ' ' << word;
      }
    }
  }
}

}  // namespace
}  // namespace ibis::cli
