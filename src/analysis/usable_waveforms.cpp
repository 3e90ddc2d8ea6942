#include "analysis/usable_waveforms.h"

#include <algorithm>
#include <cmath>

#include "analysis/coefficient_solver.h"
#include "model/estimate_waveforms.h"

namespace ibis {
namespace {

constexpr std::size_t choicePoints = 60;
constexpr std::size_t mostWaveforms = 16;  // of an edge that are looked at
constexpr double smallestSwing = 1e-3;     // volts
constexpr double smallestShare = 0.03;     // of the largest swing of the edge

bool isSpan(const WaveformPoints& points) { return points.size() >= 2 && points.time.back() > 0.0; }

void dropSmall(WaveformOffer& offer, Edge edge, std::size_t unusable, Findings& findings) {
  double largest = 0.0;
  for (const UsableWaveform& each : offer.usable) largest = std::max(largest, each.swing);
  const double limit = std::max(smallestSwing, smallestShare * largest);
  unusable +=
      std::erase_if(offer.usable, [&](const UsableWaveform& u) { return u.swing <= limit; });
  if (offer.hasOwnPoints && unusable != 0) {
    findings.push_back({.kind = FindingKind::waveformsUnusable, .edge = edge, .count = unusable});
  }
}

double pairQuality(const CurrentRow& a, const CurrentRow& b) {
  const double norm = a.up * a.up + a.down * a.down + b.up * b.up + b.down * b.down;
  return norm > 0.0 ? std::fabs(a.up * b.down - a.down * b.up) / norm : 0.0;
}

double median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// The tables' currents along one waveform, at equal steps of the span.
std::vector<CurrentRow> rowsAlong(const Device& device, const UsableWaveform& wave, double span) {
  std::vector<CurrentRow> rows;
  PadCurrentReader reader(device);
  const Curve curve{wave.points.time, wave.points.voltage};
  CurveReader voltage(curve);
  for (std::size_t i = 0; i < choicePoints; ++i) {
    const double t = span * static_cast<double>(i) / static_cast<double>(choicePoints - 1);
    const double v = voltage(std::clamp(t, curve.x.front(), curve.x.back()));
    const PadCurrents currents = reader.at(v);
    rows.push_back({currents.pullup, currents.pulldown, 0.0});
  }
  return rows;
}

// The two waveforms whose equations differ most, in the median over the span.
std::vector<const UsableWaveform*> bestPair(const Device& device,
                                            const std::vector<UsableWaveform>& usable) {
  double span = 0.0;
  for (const UsableWaveform& each : usable) span = std::max(span, each.points.time.back());
  std::vector<std::vector<CurrentRow>> rows;
  for (const UsableWaveform& each : usable) rows.push_back(rowsAlong(device, each, span));
  std::vector<const UsableWaveform*> best{&usable[0], &usable[1]};
  double bestQuality = -1.0;
  for (std::size_t i = 0; i < usable.size(); ++i) {
    for (std::size_t j = i + 1; j < usable.size(); ++j) {
      std::vector<double> qualities;
      for (std::size_t k = 0; k < choicePoints; ++k) {
        qualities.push_back(pairQuality(rows[i][k], rows[j][k]));
      }
      const double quality = median(qualities);
      if (quality <= bestQuality) continue;
      bestQuality = quality;
      best = {&usable[i], &usable[j]};
    }
  }
  return best;
}

}  // namespace

const std::vector<IBISWaveform>& waveformsOf(const IBISModel& model, Edge edge) {
  return edge == Edge::rising ? model.risingWaveforms : model.fallingWaveforms;
}

WaveformOffer offerOf(const IBISModel& model, Edge edge, int corner, Findings& findings) {
  WaveformOffer offer;
  std::size_t unusable = 0;
  std::size_t dropped = 0;
  const std::vector<IBISWaveform>& list = waveformsOf(model, edge);
  for (std::size_t i = 0; i < std::min(list.size(), mostWaveforms); ++i) {
    const bool isEstimate = list[i].estimate != nullptr;
    WaveformPoints points =
        isEstimate ? ownPoints(withPoints(list[i]), corner) : ownPoints(list[i], corner);
    offer.isEstimate = offer.isEstimate || isEstimate;
    offer.hasOwnPoints = offer.hasOwnPoints || points.size() >= 2;
    if (!isSpan(points)) {
      ++unusable;
      continue;
    }
    dropped += points.missingCells;
    const double swing = swingOf(points);
    offer.usable.push_back({i, std::move(points), fixtureOf(list[i], corner), swing});
  }
  if (dropped != 0) {
    findings.push_back({.kind = FindingKind::waveformCellsDropped, .edge = edge, .count = dropped});
  }
  dropSmall(offer, edge, unusable, findings);
  return offer;
}

std::vector<const UsableWaveform*> choose(const Device& device,
                                          const std::vector<UsableWaveform>& usable) {
  if (device.driver == DriverKind::pushPull && usable.size() >= 2) return bestPair(device, usable);
  std::vector<const UsableWaveform*> all;
  for (const UsableWaveform& each : usable) all.push_back(&each);
  return all;
}

}  // namespace ibis
