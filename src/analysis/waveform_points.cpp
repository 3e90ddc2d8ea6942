#include "analysis/waveform_points.h"

#include <algorithm>

#include "analysis/curve.h"

namespace ibis {
namespace {

const YVector<double>& column(const IBISWaveform& waveform, int corner) {
  return corner == corner::max ? waveform.max : corner == corner::min ? waveform.min : waveform.typ;
}

double valueOr(const IBISOptional& value, double otherwise) {
  const bool isUsable = value.present && !value.isNA && isUsableNumber(value.value);
  return isUsable ? value.value : otherwise;
}

}  // namespace

WaveformPoints ownPoints(const IBISWaveform& waveform, int corner) {
  WaveformPoints points;
  const YVector<double>& values = column(waveform, corner);
  for (std::int32_t row = 0; row < waveform.time.size(); ++row) {
    const double time = waveform.time[row];
    const double voltage = values[row];
    if (waveform.missing.at(row, corner)) {
      ++points.missingCells;
      continue;
    }
    if (!isUsableNumber(time) || !isUsableNumber(voltage)) continue;
    if (points.size() != 0 && !(time > points.time.back())) continue;
    points.time.push_back(time);
    points.voltage.push_back(voltage);
  }
  return points;
}

Fixture fixtureOf(const IBISWaveform& waveform, int corner) {
  constexpr double usualResistance = 50.0;
  Fixture fixture;
  fixture.resistance = valueOr(waveform.rFixture, usualResistance);
  if (!(fixture.resistance > 0.0)) fixture.resistance = usualResistance;
  const double typ = valueOr(waveform.vFixture, 0.0);
  fixture.voltage = corner == corner::max   ? valueOr(waveform.vFixtureMax, typ)
                    : corner == corner::min ? valueOr(waveform.vFixtureMin, typ)
                                            : typ;
  fixture.capacitance = std::max(0.0, valueOr(waveform.cFixture, 0.0));
  fixture.inductance = std::max(0.0, valueOr(waveform.lFixture, 0.0));
  fixture.rDut = std::max(0.0, valueOr(waveform.rDut, 0.0));
  fixture.lDut = std::max(0.0, valueOr(waveform.lDut, 0.0));
  fixture.cDut = std::max(0.0, valueOr(waveform.cDut, 0.0));
  return fixture;
}

double swingOf(const WaveformPoints& points) {
  if (points.voltage.empty()) return 0.0;
  const auto [low, high] = std::ranges::minmax(points.voltage);
  return high - low;
}

}  // namespace ibis
