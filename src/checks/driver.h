#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "checks/load_line.h"
#include "checks/view.h"

namespace ibis::checks {

/// The words of [Ramp] by edge: rising, falling.
inline constexpr std::string_view edgeWords[] = {"dV/dt_r", "dV/dt_f"};

/// A model that drives, with the currents into its pad in both states.
struct Driver {
  Driver(const View& text, const ModelView& each, const ModelCurves& curves);

  const View& view;
  const ModelView& model;
  std::string name;
  double supply;                                   ///< Between the typ references.
  std::optional<PadCurrent> currents[2][corners];  ///< Low, high.

  const std::optional<PadCurrent>& current(bool isHigh, std::size_t c) const {
    return currents[isHigh ? 1 : 0][c];
  }

  /// The resistor of the ramp's load in ohms.
  double load() const { return model.rLoad.given ? model.rLoad.value : 50.0; }

  /// The voltage at the other end of the ramp's load.
  double loadEnd(std::size_t edge, std::size_t c) const;

  /// Makes a note of a finding that is slight, or of a driver to which a submodel adds.
  void weigh(Finding& finding, bool isNote) const;
};

/// Whether the numbers of [Ramp] can be held against other data.
bool isRampSound(const Driver& driver, const Findings& findings);

/// The fixture's voltage at a corner.
double fixtureVoltage(const Waveform& waveform, std::size_t c);

// Each tells a part of the rules of one driver; waveforms come with their curves.

void checkEnds(const Driver& driver, const Waveform& waveform, const CornerCurves& columns,
               Findings& findings);
void checkRampAgainstTables(const Driver& driver, Findings& findings);
void checkTotals(const Driver& driver, Findings& findings);

}  // namespace ibis::checks
