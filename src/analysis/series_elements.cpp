#include "analysis/series_elements.h"

#include "analysis/device.h"
#include "analysis/iv_curve.h"

namespace ibis {
namespace {

// A value that an element can have, or none; what cannot be is told.
std::optional<double> valueOf(const IBISTriple& triple, int corner, Findings& findings) {
  if (!triple.present) return std::nullopt;
  const double value = ownOrTyp(triple, corner);
  if (isUsableNumber(value) && value >= 0.0) return value;
  findings.push_back({.kind = FindingKind::seriesValueUnusable});
  return std::nullopt;
}

Curve currentOf(const IBISTable& table, int corner, Findings& findings) {
  IvCurve read = makeIvCurve(table, corner, Trend::rises);
  if (read.filledCells != 0) {
    findings.push_back({.kind = FindingKind::tableCellsFilled, .count = read.filledCells});
  }
  if (read.holdsAnEnd) findings.push_back({.kind = FindingKind::tableEndHeld});
  return std::move(read.curve);
}

void tellState(const IBISModel& model, bool isOn, Findings& findings) {
  if (model.type != ModelType::seriesSwitch) return;
  findings.push_back({.kind = isOn ? FindingKind::switchIsOn : FindingKind::switchIsOff});
}

}  // namespace

bool isSeriesType(ModelType type) {
  return type == ModelType::series || type == ModelType::seriesSwitch;
}

SeriesElements makeSeriesElements(const IBISModel& model, bool isOn, int corner,
                                  Findings& findings) {
  const IBISSeriesElements& values = isOn ? model.seriesOn : model.seriesOff;
  const auto value = [&](const IBISTriple& triple) { return valueOf(triple, corner, findings); };
  tellState(model, isOn, findings);
  SeriesElements elements;
  elements.r = value(values.rSeries);
  elements.l = value(values.lSeries);
  elements.rl = value(values.r1Series).value_or(0.0);
  elements.c = value(values.cSeries).value_or(0.0);
  elements.lc = value(values.lcSeries).value_or(0.0);
  elements.rc = value(values.rcSeries).value_or(0.0);
  elements.current =
      currentOf(isOn ? model.seriesCurrentOn : model.seriesCurrentOff, corner, findings);
  if (!(isOn ? model.seriesMosfetOn : model.seriesMosfetOff).empty()) {
    findings.push_back({.kind = FindingKind::seriesMosfetLeftOut});
  }
  if (elements.isEmpty()) findings.push_back({.kind = FindingKind::seriesEmpty});
  return elements;
}

}  // namespace ibis
