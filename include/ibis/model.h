#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "ibis/ibis_string.h"
#include "ibis/model_type.h"
#include "ibis/values.h"
#include "ibis/yvector.h"

namespace ibis {

/// A current-voltage table: in each row a voltage and the current of each corner.
///
/// The four lists have one element for each row.
struct IBISTable {
  static constexpr std::int32_t ascending = 1;
  static constexpr std::int32_t descending = 2;

  bool present = false;        ///< Whether the file has the table.
  std::int32_t direction = 0;  ///< `ascending` or `descending` voltage; 0 until read.
  YVector<double> voltage;     ///< In volts, strictly monotonic once read.
  YVector<double> typ;         ///< In amperes, into the device.
  YVector<double> max;         ///< Likewise.
  YVector<double> min;         ///< Likewise.
  MissingCells missing = {};   ///< The cells whose current is not from the file.
  /// How many leading rows are known to be in order, for an ascending and a descending table.
  std::int32_t ordered[2] = {1, 1};

  /// The currents at the index of a corner; any other index means typ.
  const YVector<double>& corner(int index) const {
    return index == corner::max ? max : index == corner::min ? min : typ;
  }
};

/// One estimated transition at one corner.
struct EstimatedEdge {
  double duration = 0.0;        ///< The ramp's time in seconds.
  double delay = 0.0;           ///< From time 0 to the start of the transition, in seconds.
  double vStart = 0.0;          ///< Level before the transition, in volts.
  double vEnd = 0.0;            ///< Level after the transition, in volts.
  double load = 0.0;            ///< Resistance of the fixture, in ohms.
  double fixtureVoltage = 0.0;  ///< In volts.
  int corner = 0;               ///< Index of the corner.
};

/// What the points of an estimated waveform are made from when they are wanted.
struct IBISEstimate {
  bool noDelay = false;                ///< The points begin at time 0.
  IBISTriple rampTime;                 ///< dt of [Ramp], in seconds.
  EstimatedEdge edges[corner::count];  ///< By the index of the corner.
};

/// A [Rising Waveform] or [Falling Waveform]: in each row a time and the voltage of each corner.
///
/// The four lists have one element for each row.
struct IBISWaveform {
  static constexpr std::int32_t fromFile = 2;  ///< The kind of a waveform that was not estimated.

  bool present = false;  ///< False for the empty waveform that replaces a missing one.
  /// R_fixture in ohms, V_fixture and its min and max in volts.
  IBISOptional rFixture, vFixture, vFixtureMin, vFixtureMax;
  /// C_fixture, L_fixture, R_dut, L_dut and C_dut, in farads, henries and ohms.
  IBISOptional cFixture, lFixture, rDut, lDut, cDut;
  YVector<double> time;       ///< In seconds.
  YVector<double> typ;        ///< In volts.
  YVector<double> max;        ///< Likewise.
  YVector<double> min;        ///< Likewise.
  MissingCells missing = {};  ///< The cells whose voltage is not from the file.
  /// Estimated waveforms: 0 for a fixture at the pulldown reference, 1 at the pullup reference.
  std::int32_t kind = fromFile;
  /// Of an estimated waveform, whose lists are empty.
  std::shared_ptr<IBISEstimate> estimate = nullptr;
};

/// The series elements in one state of a switch.
struct IBISSeriesElements {
  /// [R Series], [L Series], [R1 Series] or [Rl Series], [C Series], [Lc Series], [Rc Series];
  /// ohms, henries and farads. A load knows neither [Rl Series] nor [C Series] nor [Rc Series].
  IBISTriple rSeries, lSeries, r1Series, cSeries, lcSeries, rcSeries;
};

/// One table of [Series MOSFET].
struct IBISSeriesMosfet {
  double vds = 0.0;  ///< Drain-source voltage, in volts.
  IBISTable table;   ///< Current in amperes against voltage.
};

/// One [Model] section; triples and tables are empty unless the file has them.
struct IBISModel {
  std::int32_t lineNumber = 0;          ///< Line of [Model], from 1; 0 for a built-in model.
  IBISString name;                      ///< [Model]
  IBISString spiceName;                 ///< SPICE-legal form of the name.
  ModelType type = ModelType::unknown;  ///< Model_type
  bool isSound = true;  ///< False for a model that a load refuses; it is read as far as it goes.
  /// C_comp and its parts C_comp_pullup and so on, in farads.
  IBISTriple cComp, cCompPullup, cCompPulldown, cCompPowerClamp, cCompGndClamp;
  std::int32_t polarity = 0;  ///< Polarity: 0 Non-Inverting, 1 Inverting, 2 any other word.
  std::int32_t enable = 0;    ///< Enable: 0 Active-High, 1 Active-Low, 2 any other word.
  /// Input thresholds Vinl and Vinh, and [Model Spec] Vinh+, Vinh-, Vinl+ and Vinl-, in volts.
  IBISTriple vinl, vinh, vinhPlus, vinhMinus, vinlPlus, vinlMinus;
  /// [Model Spec] S_overshoot_high and so on, in volts; D_overshoot_time in seconds.
  IBISTriple sOvershootHigh, sOvershootLow, dOvershootHigh, dOvershootLow, dOvershootTime;
  /// [Model Spec] Pulse_high and Pulse_low in volts, Pulse_time in seconds.
  IBISTriple pulseHigh, pulseLow, pulseTime;
  /// The timing test load: Vmeas in volts, Cref in farads, Rref in ohms, Vref in volts.
  IBISTriple vmeas, cref, rref, vref;
  IBISTriple reservedSpec[8];  ///< Always empty: no word of the vocabulary leads here.
  /// [Model Spec] Rref_diff in ohms, Cref_diff in farads.
  IBISTriple rrefDiff, crefDiff;
  /// [Temperature Range] in degrees Celsius, [Voltage Range] in volts.
  IBISTriple temperatureRange, voltageRange;
  /// [Pullup Reference], [Pulldown Reference], [POWER Clamp Reference], [GND Clamp Reference], in
  /// volts; completed by the checks of a model.
  IBISTriple pullupReference, pulldownReference, powerClampReference, gndClampReference;
  /// [TTgnd] and [TTpower], transit times in seconds.
  IBISTriple ttgnd, ttpower;
  IBISTable pulldown,  ///< [Pulldown], current against voltage above the reference.
      pullup,          ///< [Pullup], current against voltage below the reference.
      gndClamp,        ///< [GND Clamp], current against voltage above the reference.
      powerClamp;      ///< [POWER Clamp], current against voltage below the reference.
  /// [Rgnd], [Rpower] and [Rac] in ohms, [Cac] in farads.
  IBISTriple rgnd, rpower, rac, cac;
  /// Series elements after [On]; and after [Off] or neither.
  IBISSeriesElements seriesOn, seriesOff;
  /// [Series Current], current against the voltage across the element; by state likewise.
  IBISTable seriesCurrentOn, seriesCurrentOff;
  /// [Series MOSFET], one table for each Vds in file order; dropped unless after [On] or [Off].
  std::vector<IBISSeriesMosfet> seriesMosfetOn, seriesMosfetOff;
  /// dV/dt_r and dV/dt_f of [Ramp]: swing in volts and time in seconds; never `present`.
  IBISTriple rampDvRise, rampDtRise, rampDvFall, rampDtFall;
  IBISOptional rLoad{true, 50.0};  ///< R_load of [Ramp], in ohms.
  /// Each [Rising Waveform] and each [Falling Waveform], or two of each that were estimated.
  std::vector<IBISWaveform> risingWaveforms, fallingWaveforms;
};

}  // namespace ibis
