#pragma once

#include <cstddef>

#include "analysis/curve.h"
#include "ibis/model.h"

namespace ibis {

/// Which way the current of a table goes as its voltage grows, on the way to a passive device.
enum class Trend { rises, falls };

/// A table's column as a function of the table's voltage, in volts and amperes.
struct IvCurve {
  Curve curve;                  ///< With one point 100 V beyond each end.
  std::size_t filledCells = 0;  ///< Cells that the file leaves out.
  bool holdsAnEnd = false;      ///< An end segment has the wrong slope.
  bool isMonotonic = true;      ///< Nowhere against the trend, within a millionth of the range.
};

/// The column of a corner, ready to be solved and written.
///
/// Cells that the file leaves out are interpolated from the column's own; a column without any
/// takes typ. The end segments go on where their slope follows the trend, else the end is held:
/// a current that turns back far outside would make operating points that the device has not.
IvCurve makeIvCurve(const IBISTable& table, int corner, Trend trend);

}  // namespace ibis
