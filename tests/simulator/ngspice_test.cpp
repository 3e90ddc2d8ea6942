#include "ngspice.h"

#include <gtest/gtest.h>

#include <cmath>

#include "analysis/load_line.h"
#include "output/stream/memory_sink.h"
#include "simulator/component_netlist.h"
#include "simulator/measuring_bench.h"
#include "simulator/series_netlist.h"
#include "spice_bench.h"
#include "verify_model.h"

namespace ibis::cli {
namespace {

constexpr double supply = 3.0;

template <class Write>
std::string written(Write write) {
  MemorySink sink;
  const auto out = OutputStream::open(sink, "text");
  NetlistWriter writer(*out, dialectTable().front());
  write(writer);
  out->close();
  sink.keep("text");
  return sink.files().at("text");
}

IBISTriple same(double value) {
  return {.present = true, .typ = value, .max = value, .min = value};
}

// A table that bends over like a transistor's.
IBISTable transistor(double sign) {
  IBISTable table;
  table.present = true;
  table.direction = IBISTable::ascending;
  for (int i = -30; i <= 60; ++i) {
    const double v = 0.1 * i;
    table.voltage.append(v);
    table.typ.append(sign * 0.05 * std::tanh(v));
  }
  table.min = table.max = table.typ;
  return table;
}

IBISModel driverModel() {
  IBISModel model;
  model.name = "driver";
  model.type = ModelType::output;
  model.voltageRange = same(supply);
  model.pullup = transistor(-1.0);
  model.pulldown = transistor(1.0);
  model.cComp = same(2e-12);
  model.rampDtRise = model.rampDtFall = same(0.5e-9);
  return model;
}

// What a simulator makes of a known driver, as if it had been measured.
std::vector<IBISWaveform> simulated(const DeviceNetlist& netlist, Edge edge,
                                    const std::vector<Fixture>& fixtures) {
  std::vector<FixtureRun> runs;
  for (const Fixture& fixture : fixtures) runs.push_back({edge, fixture});
  const double last = 2.5 * netlist.rising.span;
  const BenchTimes times = benchTimes(netlist, last);
  const TemporaryFolder folder;
  const RawPlot plot =
      runNgspice(folder, written([&](NetlistWriter& writer) {
                   writeFixtureBench(writer, netlist, runs, times, ".options reltol=1e-6 trtol=1");
                 }));
  const std::vector<double>& time = *plot.find("time");
  std::vector<IBISWaveform> waveforms;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const Curve curve{time, *plot.find("v(" + measuredNode(i) + ')')};
    CurveReader reader(curve);
    IBISWaveform& wave = waveforms.emplace_back();
    const Fixture& fixture = fixtures[i];
    const auto given = [](double value) {
      return IBISOptional{.present = true, .value = value, .isNA = false};
    };
    wave.present = true;
    wave.rFixture = given(fixture.resistance);
    wave.vFixture = given(fixture.voltage);
    wave.cFixture = given(fixture.capacitance);
    wave.lFixture = given(fixture.inductance);
    wave.rDut = given(fixture.rDut);
    wave.lDut = given(fixture.lDut);
    wave.cDut = given(fixture.cDut);
    for (int k = 0; k <= 500; ++k) {
      const double t = last * k / 500.0;
      wave.time.append(t);
      wave.typ.append(reader(times.start + t));
    }
    wave.min = wave.max = wave.typ;
  }
  return waveforms;
}

double largestError(const IBISModel& model) {
  const ModelResult result = verifyModel(model, corner::typ, {});
  EXPECT_EQ(result.fault, "");
  EXPECT_LT(result.dcError, 1e-5);
  double largest = 0.0;
  for (const WaveformResult& each : result.waveforms) {
    EXPECT_TRUE(each.isUsed);
    largest = std::max(largest, each.error);
  }
  return largest;
}

IBISModel measuredWith(const std::vector<Fixture>& fixtures) {
  IBISModel model = driverModel();
  Findings findings;
  const DeviceNetlist known = makeDeviceNetlist(model, corner::typ, "known", findings);
  model.risingWaveforms = simulated(known, Edge::rising, fixtures);
  model.fallingWaveforms = simulated(known, Edge::falling, fixtures);
  return model;
}

TEST(Ngspice, AKnownDriverComesBackThroughPlainFixtures) {
  SKIP_WITHOUT_NGSPICE();
  EXPECT_LT(largestError(measuredWith({{.voltage = 0.0}, {.voltage = supply}})), 2e-4);
}

TEST(Ngspice, AKnownDriverComesBackThroughCapacitiveFixtures) {
  SKIP_WITHOUT_NGSPICE();
  const Fixture low{.voltage = 0.0, .capacitance = 5e-12};
  const Fixture high{.voltage = supply, .capacitance = 5e-12};
  EXPECT_LT(largestError(measuredWith({low, high})), 5e-4);
}

TEST(Ngspice, AKnownDriverComesBackThroughInductiveFixtures) {
  SKIP_WITHOUT_NGSPICE();
  const Fixture low{.voltage = 0.0, .capacitance = 2e-12, .inductance = 5e-9};
  const Fixture high{.voltage = supply, .capacitance = 2e-12, .inductance = 5e-9};
  EXPECT_LT(largestError(measuredWith({low, high})), 1e-3);
}

TEST(Ngspice, AKnownDriverComesBackThroughTheLeadsOfItsDevice) {
  SKIP_WITHOUT_NGSPICE();
  const Fixture low{.voltage = 0.0, .rDut = 1.0, .lDut = 2e-9, .cDut = 1e-12};
  const Fixture high{.voltage = supply, .rDut = 1.0, .lDut = 2e-9, .cDut = 1e-12};
  EXPECT_LT(largestError(measuredWith({low, high})), 5e-3);
}

TEST(Ngspice, CapacitanceAtThePadIsThatOfTheModel) {
  SKIP_WITHOUT_NGSPICE();
  Findings findings;
  IBISModel model = driverModel();
  model.type = ModelType::input;
  const DeviceNetlist netlist = makeDeviceNetlist(model, corner::typ, "dut", findings);
  // A slow ramp of 1 V a second through the pad draws C_comp in amperes; 1 Gohm draws the rest.
  const std::string deck = written([&](NetlistWriter& writer) {
    writer.comment("capacitance");
    writeDevice(writer, netlist);
    writer.line("Vr pad 0 pwl(0 0 1e-6 1)");
    writer.line("X1 pad mon 0 dut_v");
    writer.line(".options reltol=1e-6 abstol=1e-15");
    writer.line(".save i(vr)");
    writer.line(".tran 1e-8 1e-6 0 1e-8");
    writer.line(".end");
  });
  const TemporaryFolder folder;
  const RawPlot plot = runNgspice(folder, deck);
  const std::vector<double>& current = *plot.find("i(vr)");
  EXPECT_NEAR(-current[current.size() / 2] - 0.5e-9, 2e-12 * 1e6, 1e-3 * 2e-6);
}

TEST(Ngspice, TheTermsOfThePadAreTheTablesFarBeyondTheRails) {
  SKIP_WITHOUT_NGSPICE();
  Findings findings;
  const DeviceNetlist netlist = makeDeviceNetlist(driverModel(), corner::typ, "dut", findings);
  const std::string deck = written([&](NetlistWriter& writer) {
    writer.comment("sweep");
    writeDevice(writer, netlist);
    writer.line("Vp pad 0 0");
    writer.line("Vd drv 0 1");
    writer.line("X1 pad drv 0 dut_v");
    writer.line(".options reltol=1e-6 abstol=1e-15");
    writer.line(".save i(vp) v(pad)");
    writer.line(".dc Vp -3 6 0.05");
    writer.line(".end");
  });
  const TemporaryFolder folder;
  const RawPlot plot = runNgspice(folder, deck);
  const std::vector<double>& pad = *plot.find("v(pad)");
  const std::vector<double>& current = *plot.find("i(vp)");
  ASSERT_EQ(pad.size(), 181u);
  constexpr double digits = 1e-7;  // amperes that seven digits of a table leave open
  PadCurrentReader reader(netlist.device);
  for (std::size_t i = 0; i < pad.size(); ++i) {
    EXPECT_NEAR(-current[i], reader.at(pad[i]).pullup + pad[i] * 1e-9, digits) << pad[i];
  }
}

TEST(Ngspice, AFloatingBandHoldsTheReceiver) {
  SKIP_WITHOUT_NGSPICE();
  Findings findings;
  IBISModel model = driverModel();
  model.type = ModelType::input;
  model.vinl = same(1.0);
  model.vinh = same(2.0);
  const DeviceNetlist netlist = makeDeviceNetlist(model, corner::typ, "rx", findings);
  const std::string deck = written([&](NetlistWriter& writer) {
    writer.comment("receiver");
    writeDevice(writer, netlist);
    writer.line("Vr pad 0 pwl(0 0 10n 3 20n 1.5 30n 1.5 40n 0)");
    writer.line("X1 pad mon 0 rx_v");
    writer.line(".save v(mon)");
    writer.line(".tran 0.05n 45n 0 0.05n");
    writer.line(".end");
  });
  const TemporaryFolder folder;
  const RawPlot plot = runNgspice(folder, deck);
  const Curve curve{*plot.find("time"), *plot.find("v(mon)")};
  EXPECT_NEAR(valueAt(curve, 5e-9), 0.0, 1e-3);
  EXPECT_NEAR(valueAt(curve, 25e-9), 1.0, 1e-3);
  EXPECT_NEAR(valueAt(curve, 44e-9), 0.0, 1e-3);
}

TEST(Ngspice, ASkewedPairSwitchesLaterOnOnePin) {
  SKIP_WITHOUT_NGSPICE();
  Findings findings;
  const DeviceNetlist first = makeDeviceNetlist(driverModel(), corner::typ, "first", findings);
  DeviceNetlist second = first;
  second.name = "second";
  second.delay = 0.7e-9;
  const PairNetlist pair{"pair", "first", "second", &first.device, 0.0};
  const std::string deck = written([&](NetlistWriter& writer) {
    writer.comment("pair");
    writeDevice(writer, first);
    writeDevice(writer, second);
    writePair(writer, pair);
    writer.line("Vd d 0 pwl(0 0 1n 0 1.0001n 1)");
    writer.line("Vpu pu 0 3");
    writer.line("X1 p n d pu 0 pu 0 pair");
    writer.line("Rp p 0 1k");
    writer.line("Rn n 0 1k");
    writer.line(".options reltol=1e-4 trtol=1");
    writer.line(".save v(p) v(n)");
    writer.line(".tran 5p 6n 0 5p");
    writer.line(".end");
  });
  const TemporaryFolder folder;
  const RawPlot plot = runNgspice(folder, deck);
  const std::vector<double>& time = *plot.find("time");
  const auto crossing = [&](const char* node, bool rises) {
    const std::vector<double>& v = *plot.find(node);
    for (std::size_t i = 0; i < v.size(); ++i) {
      if (time[i] > 1e-9 && (v[i] > 1.45) == rises) return time[i];
    }
    return 0.0;
  };
  EXPECT_NEAR(crossing("v(n)", false) - crossing("v(p)", true), 0.7e-9, 0.1e-9);
}

TEST(Ngspice, ResistancesBetweenPinsActBothWays) {
  SKIP_WITHOUT_NGSPICE();
  ComponentNetlist netlist;
  netlist.name = "chip";
  netlist.rails = {Rails{}};
  for (const char* label : {"1", "2"}) {
    netlist.pins.push_back({{{label, {}, netlist.pins.size()}}, "load", {}, 0});
  }
  netlist.coupled.resistance = {0.4, 0.2};
  netlist.coupled.inductance = {1e-9, 0.0};
  netlist.coupled.capacitance = {1e-12, 1e-12};
  netlist.coupled.shared = {{0, 1, 0.1}};
  const std::string deck = written([&](NetlistWriter& writer) {
    writer.comment("1 ohm behind each pin");
    writer.line(".subckt load pad pu pd pc gc");
    writer.line("R1 pad gc 1");
    writer.line(".ends load");
    writeComponent(writer, netlist);
    writer.line("V1 a 0 1");
    writer.line("V2 b 0 2");
    writer.line("X1 a b 0 chip_v");
    writer.line(".save i(v1) i(v2)");
    writer.line(".op");
    writer.line(".end");
  });
  const TemporaryFolder folder;
  const RawPlot plot = runNgspice(folder, deck);
  // (1.4 0.1; 0.1 1.2) I = (1; 2), whose determinant is 1.67.
  EXPECT_NEAR(plot.find("i(v1)")->front(), -1.0 / 1.67, 1e-6);
  EXPECT_NEAR(plot.find("i(v2)")->front(), -2.7 / 1.67, 1e-6);
}

TEST(Ngspice, ASeriesModelIsAllOfItsBranches) {
  SKIP_WITHOUT_NGSPICE();
  SeriesNetlist netlist{.name = "s", .notes = {}, .elements = {}};
  netlist.elements = {.r = 4.0, .l = 1e-9, .rl = 2.0, .c = 1e-12, .lc = 1e-9, .rc = 1.0};
  netlist.elements.current = {{-1.0, 0.0, 1.0}, {-0.125, 0.0, 0.5}};
  const std::string deck = written([&](NetlistWriter& writer) {
    writer.comment("1 V either way");
    writeSeries(writer, netlist);
    writer.line("V1 a 0 1");
    writer.line("X1 a 0 s");
    writer.line("X2 0 a s");
    writer.line("X3 a b s");
    writer.line("V3 b 0 1");
    writer.line(".save i(v1) i(v3)");
    writer.line(".op");
    writer.line(".end");
  });
  const TemporaryFolder folder;
  const RawPlot plot = runNgspice(folder, deck);
  EXPECT_NEAR(plot.find("i(v1)")->front(), -(2.0 * 0.75 + 0.5 + 0.125), 1e-6);
  EXPECT_NEAR(plot.find("i(v3)")->front(), 0.0, 1e-9);
}

TEST(Ngspice, AFaultyDeckIsTold) {
  SKIP_WITHOUT_NGSPICE();
  const TemporaryFolder folder;
  EXPECT_THROW(runNgspice(folder, "* x\nX1 a b none\n.op\n.end\n"), SimulatorFault);
}

}  // namespace
}  // namespace ibis::cli
