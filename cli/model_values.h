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
