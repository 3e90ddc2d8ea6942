// The rules about the whole current into the pad, and about what it settles to.

#include <algorithm>
#include <cmath>
#include <limits>

#include "checks/driver.h"

namespace ibis::checks {
namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

struct Drop {
  double size = 0.0;
  double from = 0.0;
  double to = 0.0;
  double drive = 0.0;
  std::size_t corner = typ;
};

class TotalChecker {
 public:
  TotalChecker(const Driver& driver, Findings& findings) : driver_(driver), findings_(findings) {}

  void check() {
    for (const bool isHigh : {false, true}) checkTotal(isHigh);
    checkVmeas();
  }

 private:
  Drop largestDrop(const PadCurrent& pad, double low, double high, std::size_t c) const {
    Drop drop{.corner = c};
    double top = -infinite;
    double topPlace = low;
    const auto take = [&](double place, double value) {
      if (value > top) {
        top = value;
        topPlace = place;
      } else if (top - value > drop.size) {
        drop = {.size = top - value, .from = topPlace, .to = place, .drive = 0.0, .corner = c};
      }
    };
    take(low, pad.at(low));
    for (std::size_t i = 0; i < pad.breaks().size(); ++i) {
      const double place = pad.breaks()[i];
      if (place > low && place < high) take(place, pad.currents()[i]);
    }
    take(high, pad.at(high));
    drop.drive = std::max({std::abs(pad.at(low)), std::abs(pad.at(high)), 0.1e-3});
    return drop;
  }

  // The table that a total is told of; in the state that an open driver leaves, that of a clamp.
  std::uint32_t firstTable(bool isHigh) const {
    const bool isOpen = isHigh ? driver_.model.isOpenDrain() : driver_.model.isOpenSource();
    const std::size_t pull = isOpen ? gndClamp : isHigh ? pullup : pulldown;
    for (const std::size_t table : {pull, gndClamp, powerClamp}) {
      if (driver_.model.table[table].given()) return driver_.model.table[table].block;
    }
    return Spot::nowhere;
  }

  void checkTotal(bool isHigh) {
    const std::uint32_t block = firstTable(isHigh);
    if (block == Spot::nowhere) return;
    Drop inside;
    Drop outside;
    for (std::size_t c = 0; c < corners; ++c) {
      if (!driver_.current(isHigh, c)) continue;
      const double low =
          std::min(driver_.model.pulldownReference(c), driver_.model.pullupReference(c));
      const double high =
          std::max(driver_.model.pulldownReference(c), driver_.model.pullupReference(c));
      if (!(high > low)) continue;
      const Drop in = largestDrop(*driver_.current(isHigh, c), low, high, c);
      if (in.size > std::max({0.02 * in.drive, 50e-6, inside.size})) inside = in;
      const double reach = high - low;
      const Drop out = largestDrop(*driver_.current(isHigh, c), low - reach, high + reach, c);
      if (out.size > std::max({0.05 * out.drive, 100e-6, outside.size})) outside = out;
    }
    const Spot spot = driver_.view.spotOf(driver_.view.block(block));
    const auto tell = [&](Rule rule, const Drop& drop) {
      driver_.weigh(findings_.add(rule, spot,
                                  {driver_.name, isHigh ? "high" : "low",
                                   std::string(cornerNames[drop.corner]), quantity(drop.size, "A"),
                                   quantity(drop.from, "V"), quantity(drop.to, "V"),
                                   quantity(drop.drive, "A")}),
                    rule == Rule::consistencyCombinedOutside);
    };
    if (inside.size > 0.0) {
      tell(Rule::consistencyCombined, inside);
    } else if (outside.size > 0.0) {
      tell(Rule::consistencyCombinedOutside, outside);
    }
  }

  void checkVmeas() {
    const Single& vmeas = driver_.model.single("Vmeas");
    const double reference = driver_.model.single("Vref").value;
    const double load = driver_.model.single("Rref").value;
    if (!vmeas.given || !(load > 0.0) || load >= 1e6 || std::isnan(reference)) return;
    if (!driver_.current(false, typ) || !driver_.current(true, typ)) return;
    const double low =
        driver_.current(false, typ)->settled(reference, load, driver_.model.pulldownReference(typ));
    const double high =
        driver_.current(true, typ)->settled(reference, load, driver_.model.pullupReference(typ));
    if (!(low >= vmeas.value) && !(high <= vmeas.value)) return;
    driver_.weigh(
        findings_.add(Rule::consistencyVmeas, vmeas.spot,
                      {driver_.name, quantity(load, "ohm"), quantity(reference, "V"),
                       quantity(low, "V"), quantity(high, "V"), quantity(vmeas.value, "V")}),
        false);
  }

  const Driver& driver_;
  Findings& findings_;
};

}  // namespace

void checkTotals(const Driver& driver, Findings& findings) {
  TotalChecker(driver, findings).check();
}

}  // namespace ibis::checks
