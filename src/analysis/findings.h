#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ibis {

/// The two transitions of a pad.
enum class Edge : std::uint8_t { rising, falling };

/// What the analysis of a model found worth telling; the comment says what value and count hold.
enum class FindingKind : std::uint8_t {
  seriesValueUnusable,   ///< A value of a series element that no element has.
  seriesMosfetLeftOut,   ///< [Series MOSFET], which nothing is written for.
  seriesEmpty,           ///< A series model without any element.
  switchIsOn,            ///< The state of a series switch that is written.
  switchIsOff,           ///< Likewise.
  tableCellsFilled,      ///< Cells of an I-V column that were interpolated: count.
  tableNotMonotonic,     ///< A table whose current turns back.
  tableEndHeld,          ///< An end whose slope has the wrong sign is held.
  clampCurrentHuge,      ///< The largest current of a clamp's table: value, in amperes.
  tableMissing,          ///< A driver without the pullup or pulldown table that it needs.
  waveformCellsDropped,  ///< Rows of an edge's waveforms without an own voltage: count.
  waveformsUnusable,     ///< Waveforms of an edge that cannot be used: count.
  oneWaveform,           ///< A push-pull edge with a single usable waveform.
  waveformsContradict,   ///< One of the two was left out; the kept one's index: count.
  waveformJumps,         ///< Part of the swing that is passed in the first step: value.
  cornerFromTyp,         ///< The corner has no waveforms of its own.
  estimateUnusable,      ///< The estimate does not fit the tables; value: mismatch.
  rampUsed,              ///< An edge made from the ramp: value, in seconds.
  edgeAssumed,           ///< An edge with neither waveform nor ramp: value, in seconds.
  endOffNominal,         ///< The coefficients' distance from nominal at the end: value.
  staticMismatch,        ///< Waveform's levels against the tables, part of the swing: value.
  negativeCapacitance,   ///< Taken as 0; value, in farads.
  thresholdsDefaulted,   ///< The file gives no input thresholds.
  thresholdsSwapped,     ///< Vinl is not below Vinh; the mean is used: value, in volts.
  referenceMissing,      ///< A table without a reference voltage or voltage range.
  valueNotFinite,        ///< A value that is no finite number, which counts as not given.
};

/// One finding about a model at a corner.
struct Finding {
  FindingKind kind;
  Edge edge = Edge::rising;  ///< Where the kind speaks of an edge.
  double value = 0.0;
  std::size_t count = 0;
};

using Findings = std::vector<Finding>;

}  // namespace ibis
