#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "ibis/ibis_string.h"
#include "ibis/model_type.h"
#include "ibis/values.h"
#include "ibis/yvector.h"

namespace ibis {

/// A current-voltage table: rows of a voltage and three corner currents, in volts and amperes.
struct IBISTable {
  static constexpr std::int32_t ascending = 1;
  static constexpr std::int32_t descending = 2;

  bool present = false;
  std::int32_t direction = 0;  ///< Of the voltage column; 0 until read.
  YVector<double> voltage;     ///< Strictly monotonic once read.
  YVector<double> typ;
  YVector<double> max;
  YVector<double> min;
  MissingCells missing = {};  ///< By row and corner; their numbers are a load's stand-ins.
  /// Leading points known to be in order were the table ascending, and were it descending.
  std::int32_t ordered[2] = {1, 1};

  /// The currents of a corner's index; any other index means typ.
  const YVector<double>& corner(int index) const {
    return index == corner::max ? max : index == corner::min ? min : typ;
  }
};

/// One estimated transition at one corner; seconds, volts and ohms.
struct EstimatedEdge {
  double duration = 0.0;
  double delay = 0.0;
  double vStart = 0.0;
  double vEnd = 0.0;
  double load = 0.0;
  double fixtureVoltage = 0.0;
  int corner = 0;
};

/// What the points of an estimated waveform are made from when they are wanted.
struct IBISEstimate {
  bool noDelay = false;
  IBISTriple rampTime;
  EstimatedEdge edges[corner::count];  ///< By corner.
};

/// A transition into a fixture: rows of a time and three corner voltages, in seconds and volts.
struct IBISWaveform {
  static constexpr std::int32_t fromFile = 2;  ///< The kind of a waveform that was not estimated.

  bool present = false;
  IBISOptional rFixture, vFixture, vFixtureMin, vFixtureMax;
  IBISOptional cFixture, lFixture, rDut, lDut, cDut;
  YVector<double> time;
  YVector<double> typ;
  YVector<double> max;
  YVector<double> min;
  MissingCells missing = {};     ///< By row and corner; their numbers are a load's stand-ins.
  std::int32_t kind = fromFile;  ///< 0 or 1 for the two estimated waveforms of an edge.
  std::shared_ptr<IBISEstimate> estimate =
      nullptr;  ///< Of an estimated waveform, whose lists are empty.
};

/// The values of series elements in one state of a switch.
struct IBISSeriesElements {
  IBISTriple rSeries, lSeries, r1Series, cSeries, lcSeries;
};

/// A series transistor's table at one drain-source voltage.
struct IBISSeriesMosfet {
  double vds = 0.0;
  IBISTable table;
};

/// One [Model] section; triples and tables are empty until the file gives them.
struct IBISModel {
  std::int32_t lineNumber = 0;
  IBISString name;
  IBISString spiceName;
  ModelType type = ModelType::unknown;
  bool isSound = true;  ///< False for a model that a load refuses; it is read as far as it goes.
  IBISTriple cComp, cCompPullup, cCompPulldown, cCompPowerClamp, cCompGndClamp;
  std::int32_t polarity = 0;  ///< 0 Non-Inverting, 1 Inverting, 2 any other word.
  std::int32_t enable = 0;    ///< 0 Active-High, 1 Active-Low, 2 any other word.
  IBISTriple vinl, vinh, vinhPlus, vinhMinus, vinlPlus, vinlMinus;
  IBISTriple sOvershootHigh, sOvershootLow, dOvershootHigh, dOvershootLow, dOvershootTime;
  IBISTriple pulseHigh, pulseLow, pulseTime;
  IBISTriple vmeas, cref, rref, vref;
  IBISTriple reservedSpec[8];  ///< No word of the vocabulary leads here.
  IBISTriple rrefDiff, crefDiff;
  IBISTriple temperatureRange, voltageRange;
  IBISTriple pullupReference, pulldownReference, powerClampReference, gndClampReference;
  IBISTriple ttgnd, ttpower;
  IBISTable pulldown, pullup, gndClamp, powerClamp;
  IBISTriple rgnd, rpower, rac, cac;
  IBISSeriesElements seriesOn, seriesOff;
  IBISTable seriesCurrentOn, seriesCurrentOff;
  std::vector<IBISSeriesMosfet> seriesMosfetOn, seriesMosfetOff;
  IBISTriple rampDvRise, rampDtRise, rampDvFall,
      rampDtFall;  ///< Volts and seconds; never `present`.
  IBISOptional rLoad{true, 50.0};
  std::vector<IBISWaveform> risingWaveforms, fallingWaveforms;
};

}  // namespace ibis
