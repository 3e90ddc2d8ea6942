#pragma once

#include <initializer_list>

#include "ibis/model.h"

namespace ibis {

/// A value that is the same at every corner.
inline IBISTriple same(double value) {
  return {.present = true, .typ = value, .max = value, .min = value};
}

/// A table of one curve for every corner; the voltages rise.
inline IBISTable table(std::initializer_list<double> voltage,
                       std::initializer_list<double> current) {
  IBISTable table;
  table.present = true;
  table.direction = IBISTable::ascending;
  table.voltage = voltage;
  table.typ = table.min = table.max = current;
  return table;
}

/// A straight table from -5 V to 5 V; the slope is in siemens.
inline IBISTable straight(double slope) { return table({-5.0, 5.0}, {-5.0 * slope, 5.0 * slope}); }

}  // namespace ibis
