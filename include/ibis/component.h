#pragma once

#include <cstdint>
#include <forward_list>
#include <memory>
#include <vector>

#include "ibis/ibis_string.h"
#include "ibis/model.h"

namespace ibis {

class IBISNameTable;

/// The package's own resistance, inductance and capacitance, in ohms, henries and farads.
struct IBISPackage {
  IBISTriple R_pkg{.present = true};
  IBISTriple L_pkg{.present = true};
  IBISTriple C_pkg{.present = true};
};

/// One row of [Pin].
///
/// There may be very many, so pins without values of their own share those of a package.
struct IBISPin {
  IBISString name;
  IBISString signal_name;      ///< Made unique within the component.
  IBISString model_name;       ///< A model, a selector or a reserved word.
  IBISString spiceName;        ///< SPICE-legal form of signal_name.
  IBISModel* model = nullptr;  ///< Null until resolved, and for good if nothing was found.
  const IBISPackage* package = nullptr;       ///< Whose values a row without own ones has.
  double ownR = 0.0, ownL = 0.0, ownC = 0.0;  ///< Of all corners.
  std::int32_t line = 0;
  bool parsed = false;
  bool hasOwnRLC = false;  ///< The row carried the three R, L and C columns.
  bool missingR = false;   ///< R_pin is NA or empty in a row that has the column.
  bool missingL = false;   ///< L_pin likewise.
  bool missingC = false;   ///< C_pin likewise.

  /// The pin's resistance, inductance and capacitance.
  IBISTriple R_pin() const { return valuesOf(ownR, &IBISPackage::R_pkg); }
  IBISTriple L_pin() const { return valuesOf(ownL, &IBISPackage::L_pkg); }
  IBISTriple C_pin() const { return valuesOf(ownC, &IBISPackage::C_pkg); }

 private:
  IBISTriple valuesOf(double own, IBISTriple IBISPackage::*shared) const {
    if (!hasOwnRLC && package != nullptr) return package->*shared;
    return {.present = true, .typ = own, .max = own, .min = own};
  }
};

/// One row of [Diff Pin]; volts and seconds.
struct IBISDiffPin {
  IBISString pin;
  IBISString inv_pin;
  double vdiff = 0.0;
  double tdelay_typ = 0.0;
  double tdelay_min = 0.0;
  double tdelay_max = 0.0;
  std::int32_t line = 0;
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

  std::int32_t state = on;
  std::vector<IBISString> pins;
};

/// One item of the output: a single pin, or a differential pair.
///
/// It refers to records of its component and of the file, which live as long as the file.
struct IBISPinEntry {
  const IBISPin* pin = nullptr;
  const IBISPin* invertedPin = nullptr;
  const IBISModel* model = nullptr;
  const IBISModel* invertedModel = nullptr;
  const IBISDiffPin* diffPin = nullptr;

  bool isPair() const { return invertedPin != nullptr && invertedModel != nullptr; }
};

/// Where a component's measurements hold.
namespace location {
inline constexpr std::int32_t die = 0;
inline constexpr std::int32_t pin = 1;
inline constexpr std::int32_t notGiven = 2;
}  // namespace location

/// One [Component] section; entries and models are filled once the whole file is read.
struct IBISComponent {
  IBISString name;
  IBISString spiceName;
  std::int32_t siLocation = location::notGiven;
  std::int32_t timingLocation = location::notGiven;
  IBISString manufacturer;
  IBISPackage package;
  std::forward_list<IBISPackage> packagesOfPins;  ///< As each [Pin] found it, until prepared.
  std::vector<IBISPin> pins;
  std::vector<IBISPinMapping> pinMappings;
  std::vector<IBISDiffPin> diffPins;
  std::vector<IBISSeriesPinMapping> seriesPinMappings;
  std::vector<IBISSeriesSwitchGroup> seriesSwitchGroups;
  IBISString packageModelName;
  std::shared_ptr<IBISNameTable> nameTable;  ///< Signal names of the pins, once there are some.
  std::vector<IBISPinEntry> pinEntries;
  std::vector<IBISModel*> models;  ///< Each model in use once.
};

}  // namespace ibis
