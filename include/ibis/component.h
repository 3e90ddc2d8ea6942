#pragma once

#include <cstdint>
#include <forward_list>
#include <memory>
#include <vector>

#include "ibis/ibis_string.h"
#include "ibis/model.h"

namespace ibis {

class IBISNameTable;

/// The [Package] of a component: the values of each pin that has none of its own.
struct IBISPackage {
  IBISTriple R_pkg{.present = true};  ///< In ohms.
  IBISTriple L_pkg{.present = true};  ///< In henries.
  IBISTriple C_pkg{.present = true};  ///< In farads.
};

/// One row of [Pin].
///
/// A component may have very many, so pins without values of their own share those of a package.
struct IBISPin {
  IBISString name;             ///< The first column.
  IBISString signal_name;      ///< Made unique within the component.
  IBISString model_name;       ///< A model, a selector or a reserved word.
  IBISString spiceName;        ///< SPICE-legal form of signal_name.
  IBISModel* model = nullptr;  ///< Null until resolved, and still null if there is no such model.
  const IBISPackage* package = nullptr;       ///< Has the values of a row without its own.
  double ownR = 0.0, ownL = 0.0, ownC = 0.0;  ///< For all corners, in ohms, henries and farads.
  std::int32_t line = 0;                      ///< Line of the row, from 1.
  bool parsed = false;                        ///< A row was read into the pin.
  bool hasOwnRLC = false;                     ///< The row has the columns R_pin, L_pin and C_pin.
  bool missingR = false;  ///< R_pin is NA or empty in a row that has the column.
  bool missingL = false;  ///< L_pin likewise.
  bool missingC = false;  ///< C_pin likewise.

  /// The pin's resistance in ohms: its own, or the package's.
  IBISTriple R_pin() const { return valuesOf(ownR, &IBISPackage::R_pkg); }

  /// The pin's inductance in henries, likewise.
  IBISTriple L_pin() const { return valuesOf(ownL, &IBISPackage::L_pkg); }

  /// The pin's capacitance in farads, likewise.
  IBISTriple C_pin() const { return valuesOf(ownC, &IBISPackage::C_pkg); }

 private:
  IBISTriple valuesOf(double own, IBISTriple IBISPackage::*shared) const {
    if (!hasOwnRLC && package != nullptr) return package->*shared;
    return {.present = true, .typ = own, .max = own, .min = own};
  }
};

/// One row of [Diff Pin].
struct IBISDiffPin {
  IBISString pin;           ///< Name of the non-inverting pin.
  IBISString inv_pin;       ///< Name of the inverting pin.
  double vdiff = 0.0;       ///< Differential threshold in volts.
  double tdelay_typ = 0.0;  ///< Launch delay in seconds.
  double tdelay_min = 0.0;  ///< In seconds; typ where the file has NA.
  double tdelay_max = 0.0;  ///< In seconds; typ where the file has NA.
  std::int32_t line = 0;    ///< Line of the row, from 1.
};

/// One row of [Pin Mapping], kept although no output uses it.
struct IBISPinMapping {
  IBISString pin, pullup_ref, pulldown_ref, gnd_clamp_ref, power_clamp_ref;
};

/// One row of [Series Pin Mapping], kept although no output uses it.
struct IBISSeriesPinMapping {
  IBISString pin, pin_2, model_name, function_table_group;
};

/// One group of [Series Switch Groups], kept although no output uses it.
struct IBISSeriesSwitchGroup {
  static constexpr std::int32_t on = 0;
  static constexpr std::int32_t off = 1;

  std::int32_t state = on;       ///< `on` or `off`.
  std::vector<IBISString> pins;  ///< The pins of the group's first line alone.
};

/// One entry of a component's output: a single pin, or a differential pair.
///
/// It refers to records of its component and of the file, which live as long as the file.
struct IBISPinEntry {
  const IBISPin* pin = nullptr;              ///< The pin, or a pair's non-inverting one.
  const IBISPin* invertedPin = nullptr;      ///< Of a pair.
  const IBISModel* model = nullptr;          ///< The model of `pin`.
  const IBISModel* invertedModel = nullptr;  ///< The model of `invertedPin`.
  const IBISDiffPin* diffPin = nullptr;      ///< The row that makes the pair.

  /// Whether the entry is a differential pair.
  bool isPair() const { return invertedPin != nullptr && invertedModel != nullptr; }
};

/// Where a component's measurements hold: values of Si_location and Timing_location.
namespace location {
inline constexpr std::int32_t die = 0;
inline constexpr std::int32_t pin = 1;
inline constexpr std::int32_t notGiven = 2;
}  // namespace location

/// One [Component] section; lists are in file order.
struct IBISComponent {
  IBISString name;                                   ///< [Component]
  IBISString spiceName;                              ///< SPICE-legal form of the name.
  std::int32_t siLocation = location::notGiven;      ///< Si_location
  std::int32_t timingLocation = location::notGiven;  ///< Timing_location
  IBISString manufacturer;                           ///< [Manufacturer]
  IBISPackage package;                               ///< [Package]
  /// The package as each [Pin] found it; empty once the component is prepared.
  std::forward_list<IBISPackage> packagesOfPins;
  std::vector<IBISPin> pins;                              ///< [Pin]
  std::vector<IBISPinMapping> pinMappings;                ///< [Pin Mapping]
  std::vector<IBISDiffPin> diffPins;                      ///< [Diff Pin]
  std::vector<IBISSeriesPinMapping> seriesPinMappings;    ///< [Series Pin Mapping]
  std::vector<IBISSeriesSwitchGroup> seriesSwitchGroups;  ///< [Series Switch Groups]
  IBISString packageModelName;                            ///< [Package Model]
  std::shared_ptr<IBISNameTable> nameTable;  ///< Signal names of the pins, once there are some.
  /// Pairs and then single pins, both by name; filled after the whole file is read.
  std::vector<IBISPinEntry> pinEntries;
  std::vector<IBISModel*> models;  ///< Each model in use once; filled with the entries.
};

}  // namespace ibis
