#pragma once

#include <cstdint>

#include "checks/view.h"

namespace ibis::checks {

// Each adds what a section holds to the view, and tells the rules of numbers on the way.

void readComponent(View& view, Findings& findings, std::uint32_t section);
void readSelector(View& view, Findings& findings, std::uint32_t section);
void readModel(View& view, Findings& findings, std::uint32_t section);

/// Reads [Ramp] of the last model.
void readRamp(View& view, Findings& findings, std::uint32_t section, const Block& block);

}  // namespace ibis::checks
