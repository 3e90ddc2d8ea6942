#include "simulator/test_bench.h"

namespace ibis {
namespace {

constexpr double lineDelay = 1e-9;  // seconds
constexpr double lineImpedance = 50.0;
constexpr double openLoad = 1e-12;  // farads, where no receiver is
constexpr double edgeStart = 0.2;   // of the swing
constexpr double edgeEnd = 0.8;

std::string number(double value) { return spiceNumber(value); }

// The package between a die's node and a pin's, whose names end in the end's digit.
void writePackage(NetlistWriter& writer, const PinPackage& package, const std::string& end) {
  const bool hasR = package.resistance > 0.0;
  const bool hasL = package.inductance > 0.0;
  const std::string die = "die" + end;
  const std::string pin = "pin" + end;
  const std::string middle = hasR && hasL ? "k" + end : hasR ? pin : die;
  if (hasR) writer.line("Rpkg" + end + ' ' + die + ' ' + middle + ' ' + number(package.resistance));
  if (hasL) writer.line("Lpkg" + end + ' ' + middle + ' ' + pin + ' ' + number(package.inductance));
  if (!hasR && !hasL) writer.line("Vpkg" + end + ' ' + die + ' ' + pin + " 0");
  if (package.capacitance > 0.0) {
    writer.line("Cpkg" + end + ' ' + pin + " 0 " + number(package.capacitance));
  }
}

void writeEnd(NetlistWriter& writer, const BenchEnd& end, const std::string& digit) {
  if (end.subcircuit.empty()) {
    writer.line("Cload pin" + digit + " 0 " + number(openLoad));
    return;
  }
  std::string text = "X" + digit;
  for (const std::string& port : signalPortsOf(end.device)) {
    text += ' ' + (port == "pad" ? "die" : port) + digit;
  }
  writer.line(text + " 0 " + end.subcircuit);
  writePackage(writer, end.package, digit);
}

// Holds a receiver's driver off, or drives the near end.
void writeEnable(NetlistWriter& writer, const Device& device, const char* node, bool isOn) {
  if (!device.hasEnable) return;
  const bool isHigh = isOn != device.isEnableLow;
  writer.line(std::string("Ven") + node + " en" + node + " 0 " + (isHigh ? "1" : "0"));
}

void writeStimulus(NetlistWriter& writer, const TestBench& bench) {
  const bool isInverted = bench.driver.device.isInverting;
  const double half = 2.0 * bench.span + 4.0 * lineDelay;
  const double edge = 1e-4 * bench.span;
  writer.line(std::string("Vdrv1 drv1 0 pulse(") + (isInverted ? "1 0 " : "0 1 ") + number(half) +
              ' ' + number(edge) + ' ' + number(edge) + ' ' + number(half) + ' ' +
              number(10.0 * half) + ')');
  writeEnable(writer, bench.driver.device, "1", true);
  if (bench.receiver.subcircuit.empty()) return;
  if (bench.receiver.device.driver != DriverKind::none) writer.line("Vdrv2 drv2 0 0");
  writeEnable(writer, bench.receiver.device, "2", false);
}

std::string edgeMeasure(const TestBench& bench, const char* name, bool rises) {
  const double swing = bench.high - bench.low;
  const std::string first = number(bench.low + (rises ? edgeStart : edgeEnd) * swing);
  const std::string second = number(bench.low + (rises ? edgeEnd : edgeStart) * swing);
  const std::string which = rises ? " rise=1" : " fall=1";
  return std::string(".meas tran ") + name + " trig v(pin2) val=" + first + which +
         " targ v(pin2) val=" + second + which;
}

void writeMeasures(NetlistWriter& writer, const TestBench& bench) {
  const double half = 2.0 * bench.span + 4.0 * lineDelay;
  writer.line(".meas tran level_low find v(pin2) at=" + number(0.99 * half));
  writer.line(".meas tran level_high find v(pin2) at=" + number(1.99 * half));
  writer.line(edgeMeasure(bench, "time_rise", true));
  writer.line(edgeMeasure(bench, "time_fall", false));
}

}  // namespace

void writeTestBench(NetlistWriter& writer, const TestBench& bench) {
  const Dialect& dialect = writer.dialect();
  writer.comment(bench.title);
  writer.line(".include \"" + bench.include + '"');
  writer.comment("drive and enable");
  writeStimulus(writer, bench);
  writer.comment("driver, line, receiver");
  writeEnd(writer, bench.driver, "1");
  writer.line("T1 pin1 0 pin2 0 z0=" + number(lineImpedance) + " td=" + number(lineDelay) +
              (dialect.hasLineOptions ? " rel=10 abs=10" : ""));
  writeEnd(writer, bench.receiver, "2");
  if (bench.load) {
    writer.line("Rterm pin2 term " + number(bench.load->resistance));
    writer.line("Vterm term 0 " + number(bench.load->voltage));
  }
  const double half = 2.0 * bench.span + 4.0 * lineDelay;
  writer.line(dialect.options);
  writer.line(".tran " + number(bench.step) + ' ' + number(3.0 * half) + " 0 " +
              number(bench.step));
  writer.comment("levels before each edge, and times from 20 to 80 % of the settled swing");
  writeMeasures(writer, bench);
  writer.line(".end");
}

}  // namespace ibis
