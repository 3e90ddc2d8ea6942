#pragma once

#include "ibis/model.h"
#include "reader/scanner.h"

namespace ibis {

/// The waveforms that a model offers to the templates: rising ones first, at most two an edge.
struct WaveformSelection {
  const IBISWaveform* items[4] = {};
  int count = 0;

  const IBISWaveform* const* begin() const { return items; }
  const IBISWaveform* const* end() const { return items + count; }
};

/// Appends the waveform after the keyword at the cursor; the cursor is left on its last line.
void readWaveform(IBISRecords records, std::int32_t& cursor, std::vector<IBISWaveform>& list);

/// Reads the slew rates and the test load after [Ramp]; the cursor is left on its last line.
void readRamp(IBISModel& model, IBISRecords records, std::int32_t& cursor);

/// The voltage of the fixture in volts; a corner that the file leaves out takes typ.
IBISTriple fixtureVoltages(const IBISWaveform& waveform);

/// The resistance of the fixture, in ohms.
IBISOptional fixtureResistance(const IBISWaveform& waveform);

/// Two rising and two falling waveforms for a push-pull type, one of each for an open or ECL type.
///
/// An empty waveform replaces a missing one. The pointers are valid as long as the model lives.
WaveformSelection selectWaveforms(const IBISModel& model);

}  // namespace ibis
