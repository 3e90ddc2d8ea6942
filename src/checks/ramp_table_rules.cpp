// The rule consistency-ramp-iv: the ramp held against the tables.

#include <algorithm>
#include <array>
#include <cmath>

#include "checks/driver.h"

namespace ibis::checks {
namespace {

const double closeRamp = std::log(1.25);

// Makers take the ramp into various loads, so the best of them counts.
class RampChecker {
 public:
  RampChecker(const Driver& driver, Findings& findings) : driver_(driver), findings_(findings) {}

  void check() {
    if (!isRampSound(driver_, findings_) || driver_.model.isInPair) return;
    double worst = 0.0;
    std::size_t worstEdge = 0;
    std::size_t worstCorner = typ;
    for (std::size_t c = 0; c < corners; ++c) {
      const std::array<double, 2> factors = rampFactors(c);
      for (std::size_t edge = 0; edge < 2; ++edge) {
        const double factor = factors[edge];
        if (!(factor > worst)) continue;
        worst = factor;
        worstEdge = edge;
        worstCorner = c;
      }
    }
    if (!(worst > closeRamp)) return;
    const RampEdge& edge = driver_.model.edges[worstEdge];
    const double expected =
        swingInto(driver_.loadEnd(worstEdge, worstCorner), driver_.load(), worstCorner);
    Finding& told =
        findings_.add(Rule::consistencyRampIv, edge.spots[worstCorner],
                      {std::string(edgeWords[worstEdge]), driver_.name,
                       std::string(cornerNames[worstCorner]), quantity(edge.dv[worstCorner], "V"),
                       quantity(driver_.load(), "ohm"), quantity(expected, "V")});
    driver_.weigh(told, worst <= std::log(1.4));
  }

 private:
  double swingInto(double voltage, double load, std::size_t c) const {
    const double low =
        driver_.current(false, c)->settled(voltage, load, driver_.model.pulldownReference(c));
    const double high =
        driver_.current(true, c)->settled(voltage, load, driver_.model.pullupReference(c));
    return 0.6 * (high - low);
  }

  // How far dV of both edges is from the best of the swings into the loads that makers use, as a
  // logarithm; the ends of the load are among these, and 0 stands for no verdict.
  std::array<double, 2> rampFactors(std::size_t c) const {
    std::array<double, 2> best = {0.0, 0.0};
    if (!driver_.current(false, c) || !driver_.current(true, c)) return best;
    const double low = driver_.model.pulldownReference(c);
    const double high = driver_.model.pullupReference(c);
    bool isFirst = true;
    for (const double voltage : {high, low, driver_.model.single("Vref").value, (high + low) / 2}) {
      if (std::isnan(voltage)) continue;
      const double swing = std::abs(swingInto(voltage, driver_.load(), c));
      if (!(swing > 1e-3)) continue;
      for (std::size_t edge = 0; edge < 2; ++edge) {
        const double dv = driver_.model.edges[edge].dv[c];
        const double factor = dv > 0.0 ? std::abs(std::log(dv / swing)) : 0.0;
        best[edge] = isFirst ? factor : std::min(best[edge], factor);
      }
      isFirst = false;
      if (std::max(best[0], best[1]) <= closeRamp) break;
    }
    return best;
  }

  const Driver& driver_;
  Findings& findings_;
};

}  // namespace

void checkRampAgainstTables(const Driver& driver, Findings& findings) {
  RampChecker(driver, findings).check();
}

}  // namespace ibis::checks
