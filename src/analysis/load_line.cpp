#include "analysis/load_line.h"

#include <algorithm>
#include <cmath>

namespace ibis {
namespace {

// Pad voltages at which a table has its points; it is a function of rail - pad or pad - rail.
void addCorners(std::vector<double>& places, const Curve& curve, double rail, bool isFromRail) {
  for (const double x : curve.x) places.push_back(isFromRail ? rail - x : rail + x);
}

void addCorners(std::vector<double>& places, const Device& device) {
  const Rails& rails = device.rails;
  addCorners(places, device.pullup, rails.pu, true);
  addCorners(places, device.pulldown, device.isEcl ? rails.pu : rails.pd, device.isEcl);
  addCorners(places, device.powerClamp, rails.pc, true);
  addCorners(places, device.gndClamp, rails.gc, false);
}

std::vector<double> cornersOf(std::span<const BiasedDevice> devices, double loadVoltage) {
  std::vector<double> places{loadVoltage - 1.0, loadVoltage + 1.0};
  for (const BiasedDevice& each : devices) addCorners(places, *each.device);
  std::ranges::sort(places);
  places.erase(std::unique(places.begin(), places.end()), places.end());
  return places;
}

// Where the line through two points crosses 0.
double crossing(double x0, double y0, double x1, double y1) {
  return x0 - y0 * (x1 - x0) / (y1 - y0);
}

}  // namespace

Coefficients settled(DriverKind driver, bool isHigh) {
  switch (driver) {
    case DriverKind::pushPull:
      return {isHigh ? 1.0 : 0.0, isHigh ? 0.0 : 1.0};
    case DriverKind::openDrain:
      return {0.0, isHigh ? 0.0 : 1.0};
    case DriverKind::openSource:
      return {isHigh ? 1.0 : 0.0, 0.0};
    case DriverKind::none:
      break;
  }
  return {};
}

std::vector<double> operatingPoints(std::span<const BiasedDevice> devices, ResistiveLoad load) {
  std::vector<PadCurrentReader> readers;
  for (const BiasedDevice& each : devices) readers.emplace_back(*each.device);
  const auto sum = [&](double pad) {
    double total = (pad - load.voltage) / load.resistance;
    for (std::size_t i = 0; i < devices.size(); ++i) {
      const PadCurrents currents = readers[i].at(pad);
      const Coefficients k = devices[i].k;
      total += k.up * currents.pullup + k.down * currents.pulldown + currents.clamps;
    }
    return total;
  };
  const std::vector<double> places = cornersOf(devices, load.voltage);
  std::vector<double> points;
  double x0 = places.front();
  double y0 = sum(x0);
  if (y0 == 0.0) points.push_back(x0);
  for (std::size_t i = 1; i < places.size(); ++i) {
    const double x1 = places[i];
    const double y1 = sum(x1);
    if (y1 == 0.0) points.push_back(x1);
    if (y0 * y1 < 0.0) points.push_back(crossing(x0, y0, x1, y1));
    x0 = x1;
    y0 = y1;
  }
  return points;
}

std::vector<double> operatingPoints(const Device& device, Coefficients k, ResistiveLoad load) {
  const BiasedDevice alone{&device, k};
  return operatingPoints(std::span(&alone, 1), load);
}

double nearestOf(const std::vector<double>& points, double near) {
  const auto closer = [near](double a, double b) {
    return std::fabs(a - near) < std::fabs(b - near);
  };
  const auto nearest = std::ranges::min_element(points, closer);
  return nearest == points.end() ? near : *nearest;
}

double operatingPointNear(const Device& device, Coefficients k, ResistiveLoad load, double near) {
  return nearestOf(operatingPoints(device, k, load), near);
}

}  // namespace ibis
