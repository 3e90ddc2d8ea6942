#include "finding_messages.h"

#include <optional>

#include "export_source.h"
#include "messages.h"

namespace ibis::cli {
namespace {

constexpr double perCent = 100.0;
constexpr Severity warning = Severity::warning;

// What the texts say, as their formats take it.
struct Told {
  FindingKind kind;
  std::int32_t line;
  const char* model;
  const char* corner;
  const char* edge;
  int count;
  double value;
};

// The compiler checks each format against its arguments, so each has a call of its own.

// What concerns series elements.
std::optional<Diagnostic> tellSeries(const Told& t) {
  switch (t.kind) {
    case FindingKind::seriesValueUnusable:
      return tell(warning, message::seriesValueUnusable, t.line, t.model, t.corner);
    case FindingKind::seriesMosfetLeftOut:
      return tell(warning, message::seriesMosfetLeftOut, t.line, t.model, t.corner);
    case FindingKind::seriesEmpty:
      return tell(warning, message::seriesEmpty, t.line, t.model, t.corner);
    case FindingKind::switchIsOn:
      return tell(warning, message::switchIsOn, t.line, t.model, t.corner);
    case FindingKind::switchIsOff:
      return tell(warning, message::switchIsOff, t.line, t.model, t.corner);
    default:
      return std::nullopt;
  }
}

// What concerns a device as long as nothing switches.
std::optional<Diagnostic> tellDevice(const Told& t) {
  switch (t.kind) {
    case FindingKind::tableCellsFilled:
      return tell(warning, message::tableCellsFilled, t.line, t.model, t.corner, t.count);
    case FindingKind::tableNotMonotonic:
      return tell(warning, message::tableNotMonotonic, t.line, t.model, t.corner);
    case FindingKind::tableEndHeld:
      return tell(warning, message::tableEndHeld, t.line, t.model, t.corner);
    case FindingKind::clampCurrentHuge:
      return tell(warning, message::clampCurrentHuge, t.line, t.model, t.corner, t.value);
    case FindingKind::tableMissing:
      return tell(warning, message::tableMissing, t.line, t.model, t.corner);
    case FindingKind::negativeCapacitance:
      return tell(warning, message::negativeCapacitance, t.line, t.model, t.corner, t.value);
    case FindingKind::thresholdsDefaulted:
      return tell(warning, message::thresholdsDefaulted, t.line, t.model, t.corner);
    case FindingKind::thresholdsSwapped:
      return tell(warning, message::thresholdsSwapped, t.line, t.model, t.corner, t.value);
    case FindingKind::referenceMissing:
      return tell(warning, message::referenceMissing, t.line, t.model, t.corner);
    case FindingKind::valueNotFinite:
      return tell(warning, message::valueIsNoNumber, t.line, t.model, t.corner);
    default:
      return std::nullopt;
  }
}

// What concerns an edge.
std::optional<Diagnostic> tellEdge(const Told& t) {
  switch (t.kind) {
    case FindingKind::waveformCellsDropped:
      return tell(warning, message::waveformCellsDropped, t.line, t.model, t.corner, t.edge,
                  t.count);
    case FindingKind::waveformsUnusable:
      return tell(warning, message::waveformsUnusable, t.line, t.model, t.corner, t.edge, t.count);
    case FindingKind::oneWaveform:
      return tell(warning, message::oneWaveform, t.line, t.model, t.corner, t.edge);
    case FindingKind::waveformsContradict:
      return tell(warning, message::waveformsContradict, t.line, t.model, t.corner, t.edge,
                  t.count + 1);
    case FindingKind::waveformJumps:
      return tell(warning, message::waveformJumps, t.line, t.model, t.corner, t.edge,
                  t.value * perCent);
    case FindingKind::cornerFromTyp:
      return tell(warning, message::cornerFromTyp, t.line, t.model, t.corner, t.edge);
    case FindingKind::estimateUnusable:
      return tell(warning, message::estimateUnusable, t.line, t.model, t.corner, t.edge,
                  t.value * perCent);
    case FindingKind::rampUsed:
      return tell(warning, message::rampUsed, t.line, t.model, t.corner, t.edge, t.value);
    case FindingKind::edgeAssumed:
      return tell(warning, message::edgeAssumed, t.line, t.model, t.corner, t.edge, t.value);
    case FindingKind::endOffNominal:
      return tell(warning, message::endOffNominal, t.line, t.model, t.corner, t.edge, t.value);
    case FindingKind::staticMismatch:
      return tell(warning, message::staticMismatch, t.line, t.model, t.corner, t.edge,
                  t.value * perCent);
    default:
      return std::nullopt;
  }
}

}  // namespace

Diagnostic tellFinding(const IBISModel& model, int corner, const Finding& finding) {
  const std::string name = model.name.str();
  const std::string word = cornerWord(corner);
  const Told told{.kind = finding.kind,
                  .line = model.lineNumber,
                  .model = name.c_str(),
                  .corner = word.c_str(),
                  .edge = finding.edge == Edge::rising ? "rising" : "falling",
                  .count = static_cast<int>(finding.count),
                  .value = finding.value};
  if (auto diagnostic = tellSeries(told)) return std::move(*diagnostic);
  if (auto diagnostic = tellEdge(told)) return std::move(*diagnostic);
  return tellDevice(told).value();
}

}  // namespace ibis::cli
