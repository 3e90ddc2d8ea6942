#include "simulator/bench_setup.h"

#include <algorithm>

namespace ibis {
namespace {

constexpr double usualResistance = 50.0;  // ohms
constexpr double eclTermination = 2.0;    // volts below the supply
constexpr double openResistance = 1e6;    // ohms, where nothing loads the line

// What a driver needs to reach both levels: the fixture that it was measured with, else for an open
// one the rail that it lacks and for an ECL one the usual 2 V below its supply.
std::optional<ResistiveLoad> neededLoad(const DeviceNetlist& netlist, const IBISModel& model,
                                        int corner) {
  const Device& device = netlist.device;
  if (device.driver == DriverKind::pushPull && !device.isEcl) return std::nullopt;
  if (!netlist.rising.used.empty()) {
    const Fixture fixture = fixtureOf(model.risingWaveforms[netlist.rising.used[0]], corner);
    return ResistiveLoad{fixture.resistance, fixture.voltage};
  }
  if (device.isEcl) return ResistiveLoad{usualResistance, device.rails.pu - eclTermination};
  const bool isDrain = device.driver == DriverKind::openDrain;
  return ResistiveLoad{usualResistance, isDrain ? device.rails.pu : device.rails.pd};
}

// The level at the far end, where the receiver's tables and terminators draw current too.
double settledLevel(const TestBench& bench, bool isHigh) {
  const Device& device = bench.driver.device;
  const double supply = isHigh ? device.rails.pu : device.rails.pd;
  const BiasedDevice ends[] = {{&device, settled(device.driver, isHigh)},
                               {&bench.receiver.device, {}}};
  const ResistiveLoad load = bench.load.value_or(ResistiveLoad{openResistance, supply});
  return nearestOf(operatingPoints(ends, load), supply);
}

}  // namespace

TestBench setUpBench(const DeviceNetlist& driver, const IBISModel& model, int corner,
                     BenchEnd driverEnd, BenchEnd receiverEnd) {
  TestBench bench;
  bench.title = "bench: " + driver.name + " drives a line of 50 ohm";
  bench.driver = std::move(driverEnd);
  bench.receiver = std::move(receiverEnd);
  bench.load = neededLoad(driver, model, corner);
  bench.low = settledLevel(bench, false);
  bench.high = settledLevel(bench, true);
  bench.span = std::max(driver.rising.span, driver.falling.span);
  bench.step = recommendedStep(driver);
  return bench;
}

}  // namespace ibis
