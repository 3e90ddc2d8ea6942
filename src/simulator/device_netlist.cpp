#include "simulator/device_netlist.h"

#include <algorithm>
#include <cmath>

namespace ibis {
namespace {

constexpr double clockCapacitance = 1e-12;  // farads
constexpr double clockRange = 10.0;         // units after which the clock stands
constexpr double resetShare = 0.0005;       // of a unit: time constant of a reset
constexpr double longestRun = 20.0;         // units that a table goes on at most
constexpr double stepsPerSpan = 200.0;
constexpr double stepsPerEdge = 5.0;
constexpr double settledReading = 20.0;   // volts, which no clock reaches
constexpr double smallestReading = 1e-6;  // volts between two points
constexpr double limitedBelow = -0.02;    // coefficients below this need a bounded argument
constexpr double boundBelow = 0.1;        // of the supply
constexpr double boundAbove = 1.1;

std::string number(double value) { return spiceNumber(value); }

std::string joinedPorts(const std::vector<std::string>& ports) {
  std::string text;
  for (const std::string& port : ports) text += ' ' + port;
  return text;
}

void writeLogicInput(NetlistWriter& writer, std::string_view source, const char* port,
                     bool isInverted) {
  const std::string condition = std::string("V(") + port + ')' + (isInverted ? '<' : '>') +
                                std::string(writer.dialect().threshold);
  writer.source("B" + std::string(source), std::string(source) + " 0", 'V',
                choice(writer.dialect(), condition, "1", "0"));
}

void writeLogic(NetlistWriter& writer, const Device& device) {
  writer.comment("logic: d = drive, e = enable, u = pull-up on, p = pull-down on");
  writeLogicInput(writer, "d", "drv", device.isInverting);
  if (device.hasEnable) writeLogicInput(writer, "e", "en", device.isEnableLow);
  writer.source("Bu", "u 0", 'V', device.hasEnable ? "V(d)*V(e)" : "V(d)");
  writer.source("Bp", "p 0", 'V', device.hasEnable ? "(1-V(d))*V(e)" : "1-V(d)");
}

// A clock's capacitor with the leak that bends its ramp.
void writeClockNode(NetlistWriter& writer, const std::string& node, double unit,
                    const std::string& current) {
  writer.source("B" + node, "0 " + node, 'I', current);
  writer.line("C" + node + ' ' + node + " 0 " + number(clockCapacitance));
  writer.line("R" + node + ' ' + node + " 0 " + number(clockRange * unit / clockCapacitance));
}

// The time since a logic node went up ("1") or down ("0").
void writeClock(NetlistWriter& writer, const std::string& node, bool isUp, double unit) {
  const Dialect& dialect = writer.dialect();
  const std::string suffix = node + (isUp ? '1' : '0');
  const std::string runs = "V(" + node + (isUp ? ")>0.5" : ")<0.5");
  const std::string charge = number(clockCapacitance / unit);
  const std::string reset = number(clockCapacitance / (resetShare * unit));
  const std::string m = "V(m" + suffix + ')';
  const std::string h = "V(h" + suffix + ')';
  writeClockNode(writer, 'm' + suffix, unit, choice(dialect, runs, charge, '-' + reset + '*' + m));
  writeClockNode(writer, 'h' + suffix, unit,
                 charge + '+' + choice(dialect, runs, reset + "*(" + m + '-' + h + ')', "0"));
  writer.source("Bt" + suffix, 't' + suffix + " 0", 'V', choice(dialect, runs, m, h));
}

void writeClocks(NetlistWriter& writer, const std::string& node, double unit) {
  writer.comment("time since " + node + " rose (t" + node + "1) and fell (t" + node +
                 "0), in units of " + number(unit) + " s");
  writeClock(writer, node, true, unit);
  writeClock(writer, node, false, unit);
}

// One coefficient: its tables for turning on and off, and what it may not leave.
struct Coefficient {
  std::string name;  // ku or kd
  std::string logic;
  std::string onClock, offClock;
  const CoefficientTable* on;
  const CoefficientTable* off;
  const std::vector<double>* onValues;
  const std::vector<double>* offValues;

  double smallest() const {
    return std::min(
        {0.0, *std::ranges::min_element(*onValues), *std::ranges::min_element(*offValues)});
  }
  double largest() const {
    return std::max(
        {1.0, *std::ranges::max_element(*onValues), *std::ranges::max_element(*offValues)});
  }
};

Coefficient upCoefficient(const DeviceNetlist& netlist) {
  const CoefficientTable& on = netlist.rising.table;
  const CoefficientTable& off = netlist.falling.table;
  return {"ku", "u", "V(tu1)", "V(tu0)", &on, &off, &on.up, &off.up};
}

// Without an enable the pulldown turns on when the pullup turns off, so one pair of clocks is
// enough.
Coefficient downCoefficient(const DeviceNetlist& netlist) {
  const CoefficientTable& on = netlist.falling.table;
  const CoefficientTable& off = netlist.rising.table;
  const bool hasOwnClocks = netlist.device.hasEnable;
  return {"kd",
          "p",
          hasOwnClocks ? "V(tp1)" : "V(tu0)",
          hasOwnClocks ? "V(tp0)" : "V(tu1)",
          &on,
          &off,
          &on.down,
          &off.down};
}

void writeCoefficient(NetlistWriter& writer, const Coefficient& k, double unit, double delay) {
  writer.tableSource('B' + k.name + '1', k.name + "1 0", 'V', "", k.onClock,
                     clockCurve(*k.on, *k.onValues, unit, delay));
  writer.tableSource('B' + k.name + '0', k.name + "0 0", 'V', "", k.offClock,
                     clockCurve(*k.off, *k.offValues, unit, delay));
  writer.source('B' + k.name, k.name + " 0", 'V',
                "max(" + number(k.smallest()) + ", min(" + number(k.largest()) + ", V(" + k.logic +
                    ")+V(" + k.name + "1)+V(" + k.name + "0)))");
  writer.line('C' + k.name + ' ' + k.name + " 0 " + number(clockCapacitance));
}

bool hasPullup(const Device& device) {
  return device.driver == DriverKind::pushPull || device.driver == DriverKind::openSource;
}

bool hasPulldown(const Device& device) {
  return device.driver == DriverKind::pushPull || device.driver == DriverKind::openDrain;
}

void writeSwitching(NetlistWriter& writer, const DeviceNetlist& netlist) {
  const Device& device = netlist.device;
  const double unit = clockUnit(netlist.rising, netlist.falling);
  writeLogic(writer, device);
  writeClocks(writer, "u", unit);
  if (device.hasEnable) writeClocks(writer, "p", unit);
  writer.comment("switching coefficients");
  if (hasPullup(device)) writeCoefficient(writer, upCoefficient(netlist), unit, netlist.delay);
  if (hasPulldown(device)) {
    writeCoefficient(writer, downCoefficient(netlist), unit, netlist.delay);
  }
}

// A coefficient below 0 makes a diode of the table a negative resistance, which can run away.
std::string driverArgument(const Dialect& dialect, const Coefficient& k, const std::string& plain,
                           double supply) {
  if (k.smallest() >= limitedBelow || !(supply > 0.0)) return plain;
  const std::string bounded = "min(max(" + plain + ", " + number(-boundBelow * supply) + "), " +
                              number(boundAbove * supply) + ')';
  return choice(dialect, "V(" + k.name + ")<0", bounded, plain);
}

void writeTable(NetlistWriter& writer, const std::string& name, const std::string& rail,
                const std::string& factor, const std::string& argument, const Curve& curve) {
  if (curve.empty()) return;
  writer.tableSource(name, "pad " + rail, 'I', factor, argument, curve);
}

void writeDriverTables(NetlistWriter& writer, const DeviceNetlist& netlist) {
  const Device& device = netlist.device;
  const Dialect& dialect = writer.dialect();
  const double supply = std::fabs(device.rails.pu - device.rails.pd);
  if (hasPullup(device)) {
    writeTable(writer, "Bpu", "pu", "V(ku)*",
               driverArgument(dialect, upCoefficient(netlist), "V(pu,pad)", supply), device.pullup);
  }
  if (hasPulldown(device)) {
    const std::string plain = device.isEcl ? "V(pu,pad)" : "V(pad,pd)";
    writeTable(writer, "Bpd", device.isEcl ? "pu" : "pd", "V(kd)*",
               driverArgument(dialect, downCoefficient(netlist), plain, supply), device.pulldown);
  }
}

void writeElement(NetlistWriter& writer, const char* name, const char* nodes, double value) {
  if (value > 0.0) writer.line(std::string(name) + ' ' + nodes + ' ' + number(value));
}

void writeTerminator(NetlistWriter& writer, const TerminatorElements& elements) {
  writeElement(writer, "Rgnd", "pad gc", elements.rgnd);
  writeElement(writer, "Rpower", "pad pc", elements.rpower);
  if (!(elements.cac > 0.0)) return;
  const bool hasResistor = elements.rac > 0.0;
  writeElement(writer, "Rac", "pad ac", elements.rac);
  writeElement(writer, "Cac", hasResistor ? "ac gc" : "pad gc", elements.cac);
}

void writePad(NetlistWriter& writer, const DeviceNetlist& netlist) {
  const Device& device = netlist.device;
  writer.comment("currents into the pad");
  writeDriverTables(writer, netlist);
  writeTable(writer, "Bpc", "pc", "", "V(pc,pad)", device.powerClamp);
  writeTable(writer, "Bgc", "gc", "", "V(pad,gc)", device.gndClamp);
  writeTerminator(writer, device.terminator);
  writeElement(writer, "Ccpu", "pad pu", device.capacitances.pu);
  writeElement(writer, "Ccpd", "pad pd", device.capacitances.pd);
  writeElement(writer, "Ccpc", "pad pc", device.capacitances.pc);
  writeElement(writer, "Ccgc", "pad gc", device.capacitances.gc);
  writer.line(device.driver == DriverKind::none ? "Rpad pad gc 1e9" : "Rpad pad pd 1e9");
}

void writeReceiver(NetlistWriter& writer, const InputThresholds& thresholds) {
  const Dialect& dialect = writer.dialect();
  const std::string high = number(thresholds.high);
  const std::string low = number(thresholds.low);
  writer.comment("receiver: 1 above " + high + ", 0 below " + low + ", holds between");
  const std::string holds = choice(dialect, "V(mon)>0.5", "1", "0");
  const std::string otherwise = choice(dialect, "V(pad)<" + low, "0", holds);
  writer.source("Bmon", "mi 0", 'V', choice(dialect, "V(pad)>" + high, "1", otherwise));
  writer.line("Rmon mi mon 1k");
  writer.line("Cmon mon 0 1e-14");
}

double fastestEdge(const EdgeCoefficients& edge) {
  return edge.activeTime > edge.deadTime ? edge.activeTime - edge.deadTime : edge.span;
}

}  // namespace

DeviceNetlist makeDeviceNetlist(const IBISModel& model, int corner, std::string name,
                                Findings& findings) {
  DeviceNetlist netlist;
  netlist.name = std::move(name);
  netlist.device = makeDevice(model, corner, findings);
  netlist.rising = extractEdge(model, netlist.device, Edge::rising, corner, findings);
  netlist.falling = extractEdge(model, netlist.device, Edge::falling, corner, findings);
  return netlist;
}

std::vector<std::string> signalPortsOf(const Device& device) {
  std::vector<std::string> ports{"pad"};
  if (device.driver != DriverKind::none) ports.emplace_back("drv");
  if (device.hasEnable) ports.emplace_back("en");
  if (device.hasInput) ports.emplace_back("mon");
  return ports;
}

std::vector<std::string> portsOf(const Device& device) {
  std::vector<std::string> ports = signalPortsOf(device);
  ports.insert(ports.end(), std::begin(railPorts), std::end(railPorts));
  return ports;
}

std::string_view thresholdParameter(const Device& device) {
  return device.driver == DriverKind::none ? "" : " params: vth=0.5";
}

double clockUnit(const EdgeCoefficients& rising, const EdgeCoefficients& falling) {
  const double active = std::max(rising.activeTime, falling.activeTime);
  const double span = std::max(rising.span, falling.span);
  return std::max(active, span / longestRun);
}

Curve clockCurve(const CoefficientTable& table, const std::vector<double>& values, double unit,
                 double delay) {
  Curve curve;
  const auto add = [&](double time, double value) {
    const double reading = -clockRange * std::expm1(-time / (clockRange * unit));
    if (!curve.empty() && reading - curve.x.back() <= smallestReading * std::max(reading, 1.0)) {
      curve.y.back() = value;
      return;
    }
    curve.x.push_back(reading);
    curve.y.push_back(value);
  };
  if (delay > 0.0) add(0.0, 0.0);
  for (std::size_t i = 0; i < table.size(); ++i) add(table.time[i] + delay, values[i] - values[0]);
  curve.x.push_back(settledReading);
  curve.y.push_back(curve.y.back());
  return curve;
}

double recommendedStep(const DeviceNetlist& netlist) {
  if (netlist.device.driver == DriverKind::none) return 0.0;
  const double span = std::max(netlist.rising.span, netlist.falling.span);
  const double edge = std::min(fastestEdge(netlist.rising), fastestEdge(netlist.falling));
  return std::min(span / stepsPerSpan, edge / stepsPerEdge);
}

void writeRailsInside(NetlistWriter& writer, const std::string& name,
                      const std::vector<std::string>& ports, const Rails& rails,
                      std::string_view parameter) {
  const std::vector<std::string> signals(ports.begin(), ports.end() - std::ssize(railPorts));
  const bool hasParameter = !parameter.empty();
  const double voltages[] = {rails.pu, rails.pd, rails.pc, rails.gc};
  writer.line(".subckt " + name + "_v" + joinedPorts(signals) + " ref" + std::string(parameter));
  writer.line("X1" + joinedPorts(ports) + ' ' + name + (hasParameter ? " params: vth={vth}" : ""));
  for (std::size_t i = 0; i < std::size(railPorts); ++i) {
    const std::string rail(railPorts[i]);
    writer.line('V' + rail + ' ' + rail + " ref " + number(voltages[i]));
  }
  writer.line(".ends " + name + "_v");
}

void writeDevice(NetlistWriter& writer, const DeviceNetlist& netlist) {
  const std::string_view parameter = thresholdParameter(netlist.device);
  for (const std::string& note : netlist.notes) writer.comment(note);
  writer.line(".subckt " + netlist.name + joinedPorts(portsOf(netlist.device)) +
              std::string(parameter));
  if (netlist.device.driver != DriverKind::none) writeSwitching(writer, netlist);
  writePad(writer, netlist);
  if (netlist.device.hasInput) writeReceiver(writer, netlist.device.thresholds);
  writer.line(".ends " + netlist.name);
  writer.comment("the same with ideal rails inside, against ref");
  writeRailsInside(writer, netlist.name, portsOf(netlist.device), netlist.device.rails, parameter);
  writer.blank();
}

}  // namespace ibis
