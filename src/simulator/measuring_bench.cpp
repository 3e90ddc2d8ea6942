#include "simulator/measuring_bench.h"

#include <algorithm>

namespace ibis {
namespace {

constexpr double startShare = 0.02;    // of the span, before the input turns
constexpr double stepsPerRun = 200.0;  // of the span
constexpr double inputEdge = 1e-6;     // of the span

std::string number(double value) { return spiceNumber(value); }

void writeRails(NetlistWriter& writer, const Rails& rails) {
  const double voltages[] = {rails.pu, rails.pd, rails.pc, rails.gc};
  for (std::size_t i = 0; i < std::size(railPorts); ++i) {
    const std::string rail(railPorts[i]);
    writer.line('V' + rail + ' ' + rail + " 0 " + number(voltages[i]));
  }
}

// A copy of the device whose pad and monitor carry the run's index.
void writeInstance(NetlistWriter& writer, const DeviceNetlist& netlist, std::size_t index,
                   const std::string& drive) {
  const std::string suffix = std::to_string(index);
  std::string text = 'X' + suffix;
  for (const std::string& port : signalPortsOf(netlist.device)) {
    text += port == "pad"   ? " die" + suffix
            : port == "drv" ? ' ' + drive
            : port == "mon" ? " mon" + suffix
                            : ' ' + port;
  }
  writer.line(text + " pu pd pc gc " + netlist.name);
}

void writeEnable(NetlistWriter& writer, const Device& device) {
  if (device.hasEnable) writer.line(std::string("Ven en 0 ") + (device.isEnableLow ? "0" : "1"));
}

void writeStep(NetlistWriter& writer, const std::string& name, bool rises, const BenchTimes& t) {
  const char* before = rises ? "0" : "1";
  const char* after = rises ? "1" : "0";
  const double end = t.start + inputEdge * (t.stop - t.start);
  writer.line('V' + name + ' ' + name + " 0 pwl(0 " + before + ' ' + number(t.start) + ' ' +
              before + ' ' + spiceNumber(end) + ' ' + after + ')');
}

void writeFixture(NetlistWriter& writer, const Fixture& fixture, std::size_t index) {
  const std::string i = std::to_string(index);
  const std::string pin = measuredNode(index);
  const std::string far = fixture.inductance > 0.0 ? "far" + i : pin;
  const auto add = [&](const char* kind, const std::string& nodes, double value) {
    if (value > 0.0) writer.line(kind + i + ' ' + nodes + ' ' + number(value));
  };
  const bool hasBoth = fixture.rDut > 0.0 && fixture.lDut > 0.0;
  const std::string middle = hasBoth ? "mid" + i : fixture.rDut > 0.0 ? pin : "die" + i;
  add("Rdut", "die" + i + ' ' + middle, fixture.rDut);
  add("Ldut", middle + ' ' + pin, fixture.lDut);
  if (fixture.rDut <= 0.0 && fixture.lDut <= 0.0)
    writer.line("Vdut" + i + " die" + i + ' ' + pin + " 0");
  add("Cdut", pin + " 0", fixture.cDut);
  add("Lfix", pin + ' ' + far, fixture.inductance);
  add("Cfix", far + " 0", fixture.capacitance);
  add("Rfix", far + " fix" + i, fixture.resistance);
  writer.line("Vfix" + i + " fix" + i + " 0 " + number(fixture.voltage));
}

void writeSaved(NetlistWriter& writer, std::size_t count) {
  std::string text = ".save";
  for (std::size_t i = 0; i < count; ++i) text += " v(" + measuredNode(i) + ')';
  writer.line(text);
}

}  // namespace

std::string measuredNode(std::size_t index) { return "pin" + std::to_string(index); }

BenchTimes benchTimes(const DeviceNetlist& netlist, double lastTime) {
  const double span = std::max({netlist.rising.span, netlist.falling.span, lastTime});
  return {.start = startShare * span,
          .stop = startShare * span + std::max(lastTime, span),
          .step = span / stepsPerRun};
}

void writeFixtureBench(NetlistWriter& writer, const DeviceNetlist& netlist,
                       const std::vector<FixtureRun>& runs, const BenchTimes& times,
                       std::string_view options) {
  writer.comment("edges into the waveforms' own fixtures");
  writeDevice(writer, netlist);
  writeRails(writer, netlist.device.rails);
  writeEnable(writer, netlist.device);
  writeStep(writer, "up", !netlist.device.isInverting, times);
  writeStep(writer, "down", netlist.device.isInverting, times);
  for (std::size_t i = 0; i < runs.size(); ++i) {
    writeInstance(writer, netlist, i, runs[i].edge == Edge::rising ? "up" : "down");
    writeFixture(writer, runs[i].fixture, i);
  }
  writeSaved(writer, runs.size());
  writer.line(options);
  writer.line(".tran " + number(times.step) + ' ' + number(times.stop) + " 0 " +
              number(times.step));
  writer.line(".end");
}

void writeStaticBench(NetlistWriter& writer, const DeviceNetlist& netlist,
                      const std::vector<StaticRun>& runs) {
  writer.comment("settled device into resistors");
  writeDevice(writer, netlist);
  writeRails(writer, netlist.device.rails);
  writeEnable(writer, netlist.device);
  writer.line(std::string("Vup up 0 ") + (netlist.device.isInverting ? "0" : "1"));
  writer.line(std::string("Vdown down 0 ") + (netlist.device.isInverting ? "1" : "0"));
  for (std::size_t i = 0; i < runs.size(); ++i) {
    writeInstance(writer, netlist, i, runs[i].isHigh ? "up" : "down");
    const Fixture fixture{.resistance = runs[i].load.resistance, .voltage = runs[i].load.voltage};
    writeFixture(writer, fixture, i);
  }
  writeSaved(writer, runs.size());
  writer.line(".options reltol=1e-6");
  writer.line(".op");
  writer.line(".end");
}

}  // namespace ibis
