#pragma once

#include <cstdint>

#include "analysis/curve.h"
#include "analysis/findings.h"
#include "ibis/model.h"

namespace ibis {

/// What a driver switches.
enum class DriverKind : std::uint8_t { none, pushPull, openDrain, openSource };

/// The voltages to which a device's tables refer, in volts.
struct Rails {
  double pu = 0.0;  ///< Pullup reference.
  double pd = 0.0;  ///< Pulldown reference.
  double pc = 0.0;  ///< Power clamp reference.
  double gc = 0.0;  ///< Ground clamp reference.

  friend bool operator==(const Rails&, const Rails&) = default;
};

/// The die's capacitances from the pad to each rail, in farads.
struct PadCapacitances {
  double pu = 0.0;
  double pd = 0.0;
  double pc = 0.0;
  double gc = 0.0;

  double total() const { return pu + pd + pc + gc; }
};

/// Where a receiver switches, in volts; without hysteresis the band is Vinl to Vinh.
struct InputThresholds {
  double low = 0.8;
  double high = 2.0;
};

/// Passive elements of a terminator in ohms and farads; 0 for none.
struct TerminatorElements {
  double rgnd = 0.0;
  double rpower = 0.0;
  double rac = 0.0;
  double cac = 0.0;
};

/// What a model's numbers mean at one corner, before anything switches.
///
/// The current into the pad is
///
///   Ku Ipu(pu - pad) + Kd Ipd(pad - pd) + Ipc(pc - pad) + Igc(pad - gc),
///
/// with the coefficients Ku and Kd of the driver. An ECL pulldown refers to the pullup's rail:
/// there the second term is Kd Ipd(pu - pad).
struct Device {
  ModelType type = ModelType::unknown;
  DriverKind driver = DriverKind::none;
  bool isEcl = false;
  bool hasInput = false;
  bool hasEnable = false;
  bool isInverting = false;
  bool isEnableLow = false;
  Rails rails;
  Curve pullup, pulldown, powerClamp, gndClamp;
  PadCapacitances capacitances;
  InputThresholds thresholds;
  TerminatorElements terminator;
};

/// A model at a corner; what is odd about it goes to the findings.
Device makeDevice(const IBISModel& model, int corner, Findings& findings);

/// The four rails: each reference that the file gives, else the voltage range or ground.
Rails railsOf(const IBISModel& model, int corner);

/// A triple's value at a corner; a cell that the file leaves out takes typ.
double ownOrTyp(const IBISTriple& triple, int corner);

/// Whether a type is of the emitter-coupled kind.
bool isEclType(ModelType type);

/// What a type's driver switches.
DriverKind driverKind(ModelType type);

/// Currents into the pad at one pad voltage, in amperes; those of the driver with coefficients 1.
struct PadCurrents {
  double pullup = 0.0;
  double pulldown = 0.0;
  double clamps = 0.0;  ///< With the terminator's resistors.
};

/// Reads a device's currents at pad voltages that move little from one to the next.
class PadCurrentReader {
 public:
  /// The device must outlive the reader.
  explicit PadCurrentReader(const Device& device);

  PadCurrents at(double pad);

 private:
  const Device& device_;
  CurveReader pullup_, pulldown_, powerClamp_, gndClamp_;
};

}  // namespace ibis
