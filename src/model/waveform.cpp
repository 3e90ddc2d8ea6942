#include "model/waveform.h"

#include "model/model_types.h"
#include "model/numbers/numbers.h"

namespace ibis {
namespace {

const IBISWaveform emptyWaveform;

// sub-parameter, value of the waveform that it sets
struct FixtureField {
  std::int32_t id;
  IBISOptional IBISWaveform::*value;
};

constexpr FixtureField fixtureFields[] = {
    {subparameter::rFixture, &IBISWaveform::rFixture},
    {subparameter::vFixture, &IBISWaveform::vFixture},
    {subparameter::vFixtureMin, &IBISWaveform::vFixtureMin},
    {subparameter::vFixtureMax, &IBISWaveform::vFixtureMax},
    {subparameter::cFixture, &IBISWaveform::cFixture},
    {subparameter::lFixture, &IBISWaveform::lFixture},
    {subparameter::rDut, &IBISWaveform::rDut},
    {subparameter::lDut, &IBISWaveform::lDut},
    {subparameter::cDut, &IBISWaveform::cDut},
};

void setFixtureValue(IBISWaveform& waveform, std::int32_t id, std::string_view text) {
  for (const FixtureField& field : fixtureFields) {
    if (field.id != id) continue;
    waveform.*field.value = {
        .present = true, .value = parseNumber(text, 0.0), .isNA = text == notAvailable};
  }
}

// Stops before the first line whose first word is not a sub-parameter: the rows begin there.
void readFixtureLines(IBISWaveform& waveform, IBISRecords records, std::int32_t& cursor) {
  std::string_view text;
  while (nextDataLine(records, cursor, text)) {
    const IBISString word = takeField(text, delimiters::blanksAndEqual);
    const std::int32_t id = subParameterId(word);
    if (id == subparameter::none) {
      --cursor;
      return;
    }
    setFixtureValue(waveform, id, takeField(text, delimiters::blanksAndEqual));
  }
}

void readRows(IBISWaveform& waveform, IBISRecords records, std::int32_t& cursor) {
  const auto rows = static_cast<std::size_t>(countDataLines(records, cursor));
  for (YVector<double>* list : {&waveform.time, &waveform.typ, &waveform.max, &waveform.min}) {
    list->reserve(rows);
  }
  std::string_view text;
  while (nextDataLine(records, cursor, text)) {
    const CornerRow row = readCornerRow(text, {});
    waveform.missing.set(waveform.time.size(), row.missing);
    waveform.time.append(row.x);
    waveform.typ.append(row.typ);
    waveform.min.append(row.min);
    waveform.max.append(row.max);
  }
}

void readRampLine(IBISTriple& swing, IBISTriple& time, std::string_view text) {
  const auto next = [&] { return takeField(text, delimiters::blanksAndEqual); };
  MissingCorners missing;
  if (!readRatio(next(), swing.typ, time.typ, 0.0, 0.0)) missing.set(corner::typ);
  if (!readRatio(next(), swing.min, time.min, swing.typ, time.typ)) missing.set(corner::min);
  if (!readRatio(next(), swing.max, time.max, swing.typ, time.typ)) missing.set(corner::max);
  swing.missing = time.missing = missing;
}

void addFirst(WaveformSelection& selection, const std::vector<IBISWaveform>& list,
              std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    selection.items[selection.count++] = i < list.size() ? &list[i] : &emptyWaveform;
  }
}

}  // namespace

void readWaveform(IBISRecords records, std::int32_t& cursor, std::vector<IBISWaveform>& list) {
  IBISWaveform& waveform = list.emplace_back();
  waveform.present = true;
  readFixtureLines(waveform, records, cursor);
  readRows(waveform, records, cursor);
}

void readRamp(IBISModel& model, IBISRecords records, std::int32_t& cursor) {
  constexpr double usualLoad = 50.0;
  std::string_view text;
  while (nextDataLine(records, cursor, text)) {
    const std::string_view word = takeField(text, delimiters::blanksAndEqual);
    if (word == "dV/dt_r") {
      readRampLine(model.rampDvRise, model.rampDtRise, text);
    } else if (word == "dV/dt_f") {
      readRampLine(model.rampDvFall, model.rampDtFall, text);
    } else if (word == "R_load") {
      const std::string_view value = takeField(text, delimiters::blanksAndEqual);
      model.rLoad = {
          .present = true, .value = parseNumber(value, usualLoad), .isNA = value == notAvailable};
    }
  }
}

IBISTriple fixtureVoltages(const IBISWaveform& waveform) {
  const auto orTyp = [&](const IBISOptional& corner) {
    return corner.present ? corner.value : waveform.vFixture.value;
  };
  return {waveform.vFixture.present, waveform.vFixture.value, orTyp(waveform.vFixtureMax),
          orTyp(waveform.vFixtureMin)};
}

IBISOptional fixtureResistance(const IBISWaveform& waveform) { return waveform.rFixture; }

WaveformSelection selectWaveforms(const IBISModel& model) {
  WaveformSelection selection;
  const std::size_t perEdge = hasPushPullOutput(model.type)   ? 2
                              : hasOneSidedOutput(model.type) ? 1
                                                              : 0;
  addFirst(selection, model.risingWaveforms, perEdge);
  addFirst(selection, model.fallingWaveforms, perEdge);
  return selection;
}

}  // namespace ibis
