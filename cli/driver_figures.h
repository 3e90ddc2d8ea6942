#pragma once

#include "ibis/model.h"

namespace ibis::cli {

/// What a driver does at its pin, by corner; absent where the model has no such side.
///
/// A corner that the file's tables leave out, or that has no answer, is missing.
struct DriverFigures {
  IBISTriple highImpedance;  ///< Half the swing over the pullup's current there, in ohms.
  IBISTriple lowImpedance;   ///< Half the swing over the pulldown's current there, in ohms.
  IBISTriple highLevel;      ///< The pullup and the clamps on 50 ohms to ground, in volts.
  IBISTriple lowLevel;       ///< The pulldown and the clamps on 50 ohms to the supply, in volts.
};

/// The load of the levels, in ohms.
inline constexpr double levelLoad = 50.0;

/// The figures of a driver whose tables refer to ground and to a supply; none of an ECL driver.
DriverFigures driverFigures(const IBISModel& model);

/// Whether a table or a waveform of so many rows gives any value of a corner.
bool givesCorner(const MissingCells& missing, std::int32_t rows, int corner);

}  // namespace ibis::cli
