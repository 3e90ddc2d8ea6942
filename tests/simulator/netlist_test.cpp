#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "output/stream/memory_sink.h"
#include "simulator/component_netlist.h"
#include "simulator/device_netlist.h"
#include "simulator/names.h"
#include "simulator/raw_file.h"
#include "simulator/series_netlist.h"
#include "simulator/test_bench.h"

namespace ibis {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

template <class Write>
std::string written(Write write, std::string_view dialect = "ngspice") {
  MemorySink sink;
  const auto out = OutputStream::open(sink, "text");
  NetlistWriter writer(*out, *findDialect(dialect));
  write(writer);
  out->close();
  sink.keep("text");
  return sink.files().at("text");
}

std::size_t longestLine(const std::string& text) {
  std::size_t longest = 0;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    longest = std::max(longest, end - begin);
    begin = end + 1;
  }
  return longest;
}

DeviceNetlist receiver() {
  DeviceNetlist netlist;
  netlist.name = "in_typ";
  netlist.device.type = ModelType::input;
  netlist.device.hasInput = true;
  netlist.device.rails = {3.0, 0.0, 3.0, 0.0};
  netlist.device.gndClamp = {{-101.0, -1.0, 0.0, 100.0}, {-2.0, -0.02, 0.0, 0.0}};
  netlist.device.capacitances.gc = 2e-12;
  netlist.device.thresholds = {0.9, 2.1};
  return netlist;
}

DeviceNetlist driver(DriverKind kind) {
  DeviceNetlist netlist;
  netlist.name = "out_typ";
  netlist.device.type = ModelType::output;
  netlist.device.driver = kind;
  netlist.device.rails = {3.0, 0.0, 3.0, 0.0};
  netlist.device.pullup = {{-100.0, 100.0}, {2.0, -2.0}};
  netlist.device.pulldown = {{-100.0, 100.0}, {-2.0, 2.0}};
  netlist.rising = {.method = EdgeMethod::ramp,
                    .table = rampTable(kind, Edge::rising, 1e-9),
                    .span = 2.3e-9,
                    .activeTime = 2.3e-9,
                    .deadTime = 0.0,
                    .used = {},
                    .isFromTyp = false};
  netlist.falling = netlist.rising;
  netlist.falling.table = rampTable(kind, Edge::falling, 1e-9);
  return netlist;
}

TEST(Dialect, IsFoundInAnyCase) {
  EXPECT_EQ(findDialect("LTspice")->word, "ltspice");
  EXPECT_EQ(findDialect("spice9"), nullptr);
}

TEST(Dialect, WritesAChoiceInItsOwnWay) {
  EXPECT_EQ(choice(*findDialect("ngspice"), "V(a)>1", "2", "3"), "((V(a)>1) ? (2) : (3))");
  EXPECT_EQ(choice(*findDialect("xyce"), "V(a)>1", "2", "3"), "if(V(a)>1,2,3)");
}

TEST(Names, AreWordsThatBeginWithALetter) {
  const struct {
    const char* text;
    const char* word;
  } rows[] = {{"abc", "abc"}, {"2lvc+x", "m_2lvc_x"},        {"a.b c#d", "a_b_c_d"}, {"", "m_"},
              {"_x", "m__x"}, {"a\nR1 0 1 1", "a_R1_0_1_1"}, {"\xc3\xa4", "m___"}};
  for (const auto& row : rows) EXPECT_EQ(spiceWord(row.text), row.word);
}

TEST(Names, DifferInMoreThanTheCase) {
  UniqueNames names;
  EXPECT_EQ(names.take("abc"), "abc");
  EXPECT_EQ(names.take("ABC"), "ABC_2");
  EXPECT_EQ(names.take("Abc"), "Abc_3");
}

TEST(NetlistWriter, NothingLeavesAComment) {
  const std::string text = written([](NetlistWriter& writer) {
    writer.comment("a\n.include /etc/passwd\r\n* b\x01\xff");
    writer.comment(std::string(300, 'x'));
    writer.comment("");
  });
  for (std::size_t begin = 0; begin < text.size(); begin = text.find('\n', begin) + 1) {
    EXPECT_EQ(text[begin], '*');
  }
  EXPECT_THAT(text, HasSubstr("* a?.include /etc/passwd??* b??\n"));
}

TEST(NetlistWriter, FoldsAtBlanks) {
  const std::string text = written([](NetlistWriter& writer) {
    std::string line = "X1 ";
    line.append(50, 'a').append(1, ' ').append(50, 'b').append(" c");
    writer.line(line);
  });
  std::string folded = "X1 ";
  folded.append(50, 'a').append("\n+ ").append(50, 'b').append(" c\n");
  EXPECT_EQ(text, folded);
}

TEST(NetlistWriter, WritesATableInEachDialect) {
  const auto write = [](NetlistWriter& writer) {
    writer.tableSource("Ba", "a 0", 'I', "2*", "V(b)", {{0.0, 1.5}, {0.0, -1e-12}});
  };
  EXPECT_EQ(written(write), "Ba a 0 I=2*pwl(V(b)\n+ ,0,0 ,1.5,-1e-12\n+ )\n");
  EXPECT_EQ(written(write, "xyce"), "Ba a 0 I={2*table(V(b)\n+ ,0,0 ,1.5,-1e-12\n+ )}\n");
}

TEST(ClockCurve, FollowsTheBendOfTheClock) {
  CoefficientTable table;
  table.add(0.0, 0.25, 0.0);
  table.add(1e-9, 0.75, 0.0);
  table.add(2e-9, 1.25, 0.0);
  const Curve curve = clockCurve(table, table.up, 1e-9, 0.0);
  ASSERT_EQ(curve.size(), 4u);
  EXPECT_NEAR(curve.x[1], 10.0 * (1.0 - std::exp(-0.1)), 1e-12);
  EXPECT_NEAR(curve.x[2], 10.0 * (1.0 - std::exp(-0.2)), 1e-12);
  EXPECT_THAT(curve.y, ElementsAre(0.0, 0.5, 1.0, 1.0));
}

TEST(ClockCurve, ADelayHoldsTheStart) {
  CoefficientTable table;
  table.add(0.0, 0.0, 0.0);
  table.add(1e-9, 1.0, 0.0);
  const Curve curve = clockCurve(table, table.up, 1e-9, 5e-10);
  EXPECT_NEAR(curve.x[1], 10.0 * (1.0 - std::exp(-0.05)), 1e-12);
  EXPECT_THAT(curve.y, ElementsAre(0.0, 0.0, 1.0, 1.0));
}

TEST(Device, AReceiverIsWrittenWhole) {
  const DeviceNetlist netlist = receiver();
  EXPECT_EQ(written([&](NetlistWriter& writer) { writeDevice(writer, netlist); }),
            ".subckt in_typ pad mon pu pd pc gc\n"
            "* currents into the pad\n"
            "Bgc pad gc I=pwl(V(pad,gc)\n"
            "+ ,-101,-2 ,-1,-0.02 ,0,0 ,100,0\n"
            "+ )\n"
            "Ccgc pad gc 2e-12\n"
            "Rpad pad gc 1e9\n"
            "* receiver: 1 above 2.1, 0 below 0.9, holds between\n"
            "Bmon mi 0 V=((V(pad)>2.1) ? (1) : (((V(pad)<0.9) ? (0) : (((V(mon)>0.5) ? (1) :\n"
            "+ (0))))))\n"
            "Rmon mi mon 1k\n"
            "Cmon mon 0 1e-14\n"
            ".ends in_typ\n"
            "* the same with ideal rails inside, against ref\n"
            ".subckt in_typ_v pad mon ref\n"
            "X1 pad mon pu pd pc gc in_typ\n"
            "Vpu pu ref 3\n"
            "Vpd pd ref 0\n"
            "Vpc pc ref 3\n"
            "Vgc gc ref 0\n"
            ".ends in_typ_v\n"
            "\n");
}

TEST(Device, PortsFollowWhatItHas) {
  DeviceNetlist netlist = driver(DriverKind::pushPull);
  EXPECT_THAT(portsOf(netlist.device), ElementsAre("pad", "drv", "pu", "pd", "pc", "gc"));
  netlist.device.hasEnable = netlist.device.hasInput = true;
  EXPECT_THAT(portsOf(netlist.device),
              ElementsAre("pad", "drv", "en", "mon", "pu", "pd", "pc", "gc"));
}

struct KindRow {
  DriverKind kind;
  bool hasUp;
  bool hasDown;
};

TEST(Device, AnOpenDriverHasOneCoefficient) {
  for (const KindRow row :
       {KindRow{DriverKind::pushPull, true, true}, KindRow{DriverKind::openDrain, false, true},
        KindRow{DriverKind::openSource, true, false}}) {
    const DeviceNetlist netlist = driver(row.kind);
    const std::string text = written([&](NetlistWriter& writer) { writeDevice(writer, netlist); });
    EXPECT_EQ(text.find("Bku ") != text.npos, row.hasUp);
    EXPECT_EQ(text.find("Bkd ") != text.npos, row.hasDown);
    EXPECT_LE(longestLine(text), 110u);
  }
}

TEST(Device, AnEclPulldownRefersToThePullupRail) {
  DeviceNetlist netlist = driver(DriverKind::pushPull);
  netlist.device.isEcl = true;
  EXPECT_THAT(written([&](NetlistWriter& writer) { writeDevice(writer, netlist); }),
              HasSubstr("Bpd pad pu I=V(kd)*pwl(V(pu,pad)\n"));
}

TEST(Device, InvertedInputsTurnAtTheThresholdTheOtherWay) {
  DeviceNetlist netlist = driver(DriverKind::pushPull);
  netlist.device.hasEnable = netlist.device.isInverting = netlist.device.isEnableLow = true;
  const std::string text = written([&](NetlistWriter& writer) { writeDevice(writer, netlist); });
  EXPECT_THAT(text, HasSubstr("Bd d 0 V=((V(drv)<{vth}) ? (1) : (0))\n"));
  EXPECT_THAT(text, HasSubstr("Be e 0 V=((V(en)<{vth}) ? (1) : (0))\n"));
  EXPECT_THAT(text, HasSubstr("Bp p 0 V=(1-V(d))*V(e)\n"));
}

TEST(Device, ACoefficientBelowZeroBoundsTheTablesArgument) {
  DeviceNetlist netlist = driver(DriverKind::pushPull);
  netlist.rising.table.up[1] = -0.5;
  EXPECT_THAT(written([&](NetlistWriter& writer) { writeDevice(writer, netlist); }),
              HasSubstr("V(ku)*pwl(((V(ku)<0) ? (min(max(V(pu,pad), -0.3), 3.3)) : (V(pu,pad)))"));
}

TEST(Device, ATerminatorHasItsElements) {
  DeviceNetlist netlist = receiver();
  netlist.device.hasInput = false;
  netlist.device.terminator = {50.0, 60.0, 70.0, 1e-11};
  const std::string text = written([&](NetlistWriter& writer) { writeDevice(writer, netlist); });
  EXPECT_THAT(text,
              HasSubstr("Rgnd pad gc 50\nRpower pad pc 60\nRac pad ac 70\nCac ac gc 1e-11\n"));
}

ComponentNetlist twoPins() {
  ComponentNetlist netlist;
  netlist.name = "chip_typ";
  netlist.rails = {{3.0, 0.0, 3.0, 0.0}, {1.8, 0.0, 1.8, 0.0}};
  netlist.pins = {{{{"A1", {0.1, 3e-9, 5e-13}, {}}}, "out_typ", {"drv"}, 0},
                  {{{"B2", {0.0, 0.0, 0.0}, {}}}, "in_typ", {"mon"}, 1}};
  return netlist;
}

TEST(Component, ConnectsDiesPackagesAndRails) {
  const ComponentNetlist netlist = twoPins();
  EXPECT_EQ(written([&](NetlistWriter& writer) { writeComponent(writer, netlist); }),
            ".subckt chip_typ p_A1 p_B2 drv_A1 mon_B2 pu pd pc gc pu2 pd2 pc2 gc2\n"
            "X_A1 die_A1 drv_A1 pu pd pc gc out_typ\n"
            "X_B2 p_B2 mon_B2 pu2 pd2 pc2 gc2 in_typ\n"
            "* package: die - R - L - pin, C at the pin\n"
            "R_A1 die_A1 k_A1 0.1\n"
            "L_A1 k_A1 p_A1 3e-09\n"
            "C_A1 p_A1 gc 5e-13\n"
            ".ends chip_typ\n"
            "* the same with ideal rails inside, against ref\n"
            ".subckt chip_typ_v p_A1 p_B2 drv_A1 mon_B2 ref\n"
            "X1 p_A1 p_B2 drv_A1 mon_B2 pu pd pc gc pu2 pd2 pc2 gc2 chip_typ\n"
            "Vpu pu ref 3\n"
            "Vpd pd ref 0\n"
            "Vpc pc ref 3\n"
            "Vgc gc ref 0\n"
            "Vpu2 pu2 ref 1.8\n"
            "Vpd2 pd2 ref 0\n"
            "Vpc2 pc2 ref 1.8\n"
            "Vgc2 gc2 ref 0\n"
            ".ends chip_typ_v\n");
}

TEST(Component, ACoupledPackageHasItsCouplings) {
  ComponentNetlist netlist = twoPins();
  netlist.pins[0].pads[0].coupled = 0;
  netlist.pins[1].pads[0].coupled = 1;
  netlist.coupled.resistance = {0.1, 0.2};
  netlist.coupled.inductance = {1e-9, 2e-9};
  netlist.coupled.capacitance = {1e-13, -2e-14};
  netlist.coupled.couplings = {{0, 1, 0.3}};
  netlist.coupled.mutual = {{0, 1, 5e-14}};
  const std::string text = written([&](NetlistWriter& writer) { writeComponent(writer, netlist); });
  EXPECT_THAT(text, HasSubstr("K1 L_A1 L_B2 0.3\nCM1 p_A1 p_B2 5e-14\n"));
  EXPECT_THAT(text, HasSubstr("C_B2 p_B2 gc2 -2e-14\n"));
}

TEST(Component, AResistanceBetweenPinsPassesAShareOfTheOthersCurrent) {
  ComponentNetlist netlist = twoPins();
  netlist.pins[0].pads[0].coupled = 0;
  netlist.pins[1].pads[0].coupled = 1;
  netlist.coupled.resistance = {0.1, 0.2};
  netlist.coupled.inductance = {1e-9, 0.0};
  netlist.coupled.capacitance = {0.0, 0.0};
  netlist.coupled.shared = {{0, 1, 0.05}};
  const std::string text = written([&](NetlistWriter& writer) { writeComponent(writer, netlist); });
  EXPECT_THAT(text, HasSubstr("V_A1 die_A1 r_A1 0\nR_A1 r_A1 k_A1 0.1\nL_A1 k_A1 p_A1 1e-09\n"
                              "V_B2 die_B2 r_B2 0\nR_B2 r_B2 p_B2 0.2\n"
                              "F1 k_A1 r_A1 V_B2 0.5\nF2 p_B2 r_B2 V_A1 0.25\n.ends"));
}

TEST(Component, SeriesElementsStandBetweenDies) {
  ComponentNetlist netlist = twoPins();
  netlist.pins.push_back({{{"C3", {0.0, 1e-9, 2e-12}, {}}}, "", {}, 0});
  netlist.series = {{"r_typ", {0, 0}, {2, 0}}};
  const std::string text = written([&](NetlistWriter& writer) { writeComponent(writer, netlist); });
  EXPECT_THAT(text, HasSubstr("X_B2 p_B2 mon_B2 pu2 pd2 pc2 gc2 in_typ\n"
                              "XS1 die_A1 die_C3 r_typ\n* package"));
  EXPECT_THAT(text, HasSubstr("L_C3 die_C3 p_C3 1e-09\nC_C3 p_C3 gc 2e-12\n.ends"));
}

TEST(Component, WithoutAnyRailsThePackagesReferToGround) {
  ComponentNetlist netlist;
  netlist.name = "net_typ";
  netlist.pins = {{{{"1", {0.1, 0.0, 2e-12}, {}}}, "", {}, 0}};
  EXPECT_THAT(written([&](NetlistWriter& writer) { writeComponent(writer, netlist); }),
              HasSubstr(".subckt net_typ p_1\n* package: die - R - L - pin, C at the pin\n"
                        "R_1 die_1 p_1 0.1\nC_1 p_1 0 2e-12\n.ends net_typ\n"));
}

TEST(Series, HasABranchForEachKindOfElement) {
  SeriesNetlist netlist{.name = "s_typ", .notes = {"series"}, .elements = {}};
  netlist.elements = {.r = 25.0, .l = 1e-9, .rl = 0.1, .c = 5e-13, .lc = 5e-10, .rc = 1.0};
  netlist.elements.current = {{-1.0, 1.0}, {-0.04, 0.04}};
  EXPECT_EQ(written([&](NetlistWriter& writer) { writeSeries(writer, netlist); }),
            "* series\n.subckt s_typ a b\nRr a b 25\nLl a l1 1e-09\nRl l1 b 0.1\n"
            "Cc a c1 5e-13\nLc c1 c2 5e-10\nRc c2 b 1\n"
            "Bi a b I=pwl(V(a,b)\n+ ,-1,-0.04 ,1,0.04\n+ )\n.ends s_typ\n\n");
}

TEST(Series, AWireIsASmallResistor) {
  SeriesNetlist netlist{.name = "s_typ", .notes = {}, .elements = {.r = 0.0, .l = 0.0}};
  EXPECT_EQ(written([&](NetlistWriter& writer) { writeSeries(writer, netlist); }),
            ".subckt s_typ a b\nRr a b 1e-06\nRl a b 1e-06\n.ends s_typ\n\n");
}

TEST(Pair, DrivesTheSecondPinByTheComplement) {
  DeviceNetlist device = driver(DriverKind::pushPull);
  device.device.hasInput = true;
  const PairNetlist pair{"out_pair", "out_typ", "out_late", &device.device, 0.2};
  const std::string text = written([&](NetlistWriter& writer) { writePair(writer, pair); });
  EXPECT_THAT(text, HasSubstr("Bn dn 0 V=1-V(d)\nXp p d monp pu pd pc gc out_typ\n"
                              "Xn n dn monn pu pd pc gc out_late\n"));
  EXPECT_THAT(text, HasSubstr("Bmon mi 0 V=((V(p,n)>0.2) ? (1) : (((V(p,n)<-0.2) ? (0) :"));
}

TEST(Bench, HasADriverALineAndMeasures) {
  TestBench bench;
  bench.title = "bench";
  bench.include = "chip_typ.inc";
  bench.driver = {"out_typ_v", driver(DriverKind::pushPull).device, {0.1, 0.0, 0.0}};
  bench.high = 3.0;
  const std::string text = written([&](NetlistWriter& writer) { writeTestBench(writer, bench); });
  EXPECT_THAT(text, HasSubstr(".include \"chip_typ.inc\"\n"));
  EXPECT_THAT(text, HasSubstr("X1 die1 drv1 0 out_typ_v\nRpkg1 die1 pin1 0.1\n"
                              "T1 pin1 0 pin2 0 z0=50 td=1e-09 rel=10 abs=10\n"));
  EXPECT_THAT(text, HasSubstr("val=0.6 rise=1 targ v(pin2) val=2.4"));
  EXPECT_THAT(text, HasSubstr("\n.options trtol=1 method=gear\n.tran "));
}

TEST(RawFile, RealVectorsAreReadByName) {
  std::string text =
      "Title: x\nFlags: real\nNo. Variables: 2\nNo. Points: 2\nVariables:\n"
      "\t0\ttime\ttime\n\t1\tV(Pad)\tvoltage\nBinary:\n";
  const double values[] = {0.0, 1.5, 1e-9, 2.5};
  text.append(reinterpret_cast<const char*>(values), sizeof values);
  const std::optional<RawPlot> plot = readRawPlot(text);
  ASSERT_TRUE(plot);
  EXPECT_THAT(*plot->find("time"), ElementsAre(0.0, 1e-9));
  EXPECT_THAT(*plot->find("v(pad)"), ElementsAre(1.5, 2.5));
  EXPECT_EQ(plot->find("v(other)"), nullptr);
}

TEST(RawFile, AnyOtherTextIsNone) {
  EXPECT_FALSE(readRawPlot(""));
  EXPECT_FALSE(readRawPlot("Binary:\n"));
  EXPECT_FALSE(readRawPlot("Flags: complex\nNo. Variables: 1\nVariables:\n 0 a b\nBinary:\n"));
  EXPECT_FALSE(readRawPlot("No. Variables: 99999999999999\nVariables:\nBinary:\n"));
}

}  // namespace
}  // namespace ibis
