#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "output/stream/memory_sink.h"
#include "simulator/device_netlist.h"
#include "simulator/test_bench.h"
#include "spice_bench.h"

namespace ibis::cli {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

Device transceiver(bool isEnableLow) {
  Device device;
  device.type = ModelType::inputOutput;
  device.driver = DriverKind::pushPull;
  device.hasEnable = device.hasInput = true;
  device.isEnableLow = isEnableLow;
  device.rails = {3.0, 0.0, 3.0, 0.0};
  return device;
}

std::string written(const TestBench& bench) {
  MemorySink sink;
  const auto out = OutputStream::open(sink, "text");
  NetlistWriter writer(*out, dialectTable().front());
  writeTestBench(writer, bench);
  out->close();
  sink.keep("text");
  return sink.files().at("text");
}

TEST(Bench, EnablesTheNearEndAndHoldsTheFarOneOff) {
  TestBench bench;
  bench.driver = {"near_v", transceiver(false), {}};
  bench.receiver = {"far_v", transceiver(true), {}};
  const std::string text = written(bench);
  EXPECT_THAT(text, HasSubstr("\nVen1 en1 0 1\nVdrv2 drv2 0 0\nVen2 en2 0 1\n"));
  EXPECT_THAT(text, HasSubstr("\nX1 die1 drv1 en1 mon1 0 near_v\n"));
  EXPECT_THAT(text, HasSubstr("\nX2 die2 drv2 en2 mon2 0 far_v\n"));
}

TEST(Bench, HangsALoadOnTheFarEnd) {
  TestBench bench;
  bench.driver = {"near_v", transceiver(false), {}};
  bench.load = {75.0, 1.5};
  EXPECT_THAT(written(bench), HasSubstr("\nRterm pin2 term 75\nVterm term 0 1.5\n"));
}

// Seven digits could not tell the second point from the third.
TEST(ClockCurve, OfPointsThatAreTooNearTheLastOneStays) {
  CoefficientTable table;
  table.add(0.0, 0.0, 0.0);
  table.add(1e-9, 0.5, 0.0);
  table.add(1e-9 + 1e-16, 0.75, 0.0);
  table.add(2e-9, 1.0, 0.0);
  const Curve curve = clockCurve(table, table.up, 1e-9, 0.0);
  EXPECT_THAT(curve.y, ElementsAre(0.0, 0.75, 1.0, 1.0));
}

// The estimate takes a pulldown to ground, and this one pulls to a level below the supply.
constexpr const char* eclDriver = R"([IBIS Ver] 4.2
[Component] ecl
[Package]
R_pkg 0 NA NA
L_pkg 0 NA NA
C_pkg 0 NA NA
[Pin] signal_name model_name
1 a ecl
[Model] ecl
Model_type Output_ECL
C_comp 1p NA NA
[Voltage Range] 5 NA NA
[Pulldown]
-2 20m NA NA
2 0 NA NA
4 -20m NA NA
[Pullup]
-2 40m NA NA
1 0 NA NA
4 -40m NA NA
[Ramp]
dV/dt_r 0.5/0.3n NA NA
dV/dt_f 0.5/0.3n NA NA
[End]
)";

std::vector<std::string> textsOf(const std::vector<Diagnostic>& list) {
  std::vector<std::string> texts;
  for (const Diagnostic& each : list) texts.push_back(each.text);
  return texts;
}

TEST(ExportedEcl, TakesItsRampInsteadOfAnEstimate) {
  ExportRequest wanted;
  wanted.allModels = true;
  const ExportedText exported = exportText(eclDriver, wanted);
  ASSERT_EQ(exported.result.subcircuits.size(), 1u);
  EXPECT_EQ(exported.result.subcircuits[0].rising, EdgeMethod::ramp);
  EXPECT_EQ(exported.result.subcircuits[0].falling, EdgeMethod::ramp);
  const std::vector<std::string> texts = textsOf(exported.result.warnings);
  for (const char* edge : {"rising", "falling"}) {
    const std::string lead = std::string("Model 'ecl', typ, ") + edge + " edge: ";
    EXPECT_THAT(texts, Contains(StartsWith(lead + "the estimated waveforms miss the tables by ")));
    EXPECT_THAT(texts, Contains(lead + "no usable waveform; a smooth step of 3e-10 s is used"));
  }
}

}  // namespace
}  // namespace ibis::cli
