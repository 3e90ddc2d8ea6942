#pragma once

#include <span>
#include <string>
#include <vector>

#include "ibis/model.h"

namespace ibis::cli {

/// A value of a model that has corners.
struct ModelValue {
  const char* name;  ///< As the file calls it.
  const char* unit;
  IBISTriple IBISModel::*triple;
};

/// All of them, in the order in which they are shown.
std::span<const ModelValue> modelValues();

/// A value of the elements of a series model in one state.
struct SeriesValue {
  const char* name;
  const char* unit;
  IBISTriple IBISSeriesElements::*triple;
};

std::span<const SeriesValue> seriesValues();

/// Whether the file gives none, and the number is what a load takes in its place.
bool isDefault(const IBISTriple& triple);

/// "Inverting" or "Non-Inverting"; null for a type without a polarity.
const char* polarityOf(const IBISModel& model);

/// "Active-High" or "Active-Low"; null for a type that is always on.
const char* enableOf(const IBISModel& model);

/// Whether the file gives the times of an edge of the ramp.
bool hasRamp(const IBISTriple& time);

/// The slopes of an edge in volts a second; no slope of no time.
IBISTriple slopeOf(const IBISTriple& swing, const IBISTriple& time);

/// A table of a model by the name that `show` gives it.
struct NamedTable {
  std::string name;
  const IBISTable* table;
};

/// A waveform of a model likewise: rising_1, rising_2, falling_1 and so on.
struct NamedWaveform {
  std::string name;
  const IBISWaveform* waveform;
};

/// The tables that the file gives.
std::vector<NamedTable> namedTables(const IBISModel& model);

/// The waveforms that the file gives, or those that were estimated.
std::vector<NamedWaveform> namedWaveforms(const IBISModel& model);

}  // namespace ibis::cli
