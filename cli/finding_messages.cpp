#include "finding_messages.h"

#include "export_source.h"
#include "messages.h"

namespace ibis::cli {
namespace {

constexpr double perCent = 100.0;

}  // namespace

Diagnostic tellFinding(const IBISModel& model, int corner, const Finding& finding) {
  const std::string name = model.name.str();
  const std::string word = cornerWord(corner);
  const char* edge = finding.edge == Edge::rising ? "rising" : "falling";
  const int count = static_cast<int>(finding.count);
  const double value = finding.value;
  const std::int32_t line = model.lineNumber;
  const char* n = name.c_str();
  const char* c = word.c_str();
  constexpr Severity warning = Severity::warning;
  // The compiler checks each format against its arguments, so each has a call of its own.
  switch (finding.kind) {
    case FindingKind::seriesValueUnusable:
      return tell(warning, message::seriesValueUnusable, line, n, c);
    case FindingKind::seriesMosfetLeftOut:
      return tell(warning, message::seriesMosfetLeftOut, line, n, c);
    case FindingKind::seriesEmpty:
      return tell(warning, message::seriesEmpty, line, n, c);
    case FindingKind::switchIsOn:
      return tell(warning, message::switchIsOn, line, n, c);
    case FindingKind::switchIsOff:
      return tell(warning, message::switchIsOff, line, n, c);
    case FindingKind::tableCellsFilled:
      return tell(warning, message::tableCellsFilled, line, n, c, count);
    case FindingKind::tableNotMonotonic:
      return tell(warning, message::tableNotMonotonic, line, n, c);
    case FindingKind::tableEndHeld:
      return tell(warning, message::tableEndHeld, line, n, c);
    case FindingKind::clampCurrentHuge:
      return tell(warning, message::clampCurrentHuge, line, n, c, value);
    case FindingKind::tableMissing:
      return tell(warning, message::tableMissing, line, n, c);
    case FindingKind::waveformCellsDropped:
      return tell(warning, message::waveformCellsDropped, line, n, c, edge, count);
    case FindingKind::waveformsUnusable:
      return tell(warning, message::waveformsUnusable, line, n, c, edge, count);
    case FindingKind::oneWaveform:
      return tell(warning, message::oneWaveform, line, n, c, edge);
    case FindingKind::waveformsContradict:
      return tell(warning, message::waveformsContradict, line, n, c, edge, count + 1);
    case FindingKind::waveformJumps:
      return tell(warning, message::waveformJumps, line, n, c, edge, value * perCent);
    case FindingKind::cornerFromTyp:
      return tell(warning, message::cornerFromTyp, line, n, c, edge);
    case FindingKind::estimateUnusable:
      return tell(warning, message::estimateUnusable, line, n, c, edge, value * perCent);
    case FindingKind::rampUsed:
      return tell(warning, message::rampUsed, line, n, c, edge, value);
    case FindingKind::edgeAssumed:
      return tell(warning, message::edgeAssumed, line, n, c, edge, value);
    case FindingKind::endOffNominal:
      return tell(warning, message::endOffNominal, line, n, c, edge, value);
    case FindingKind::staticMismatch:
      return tell(warning, message::staticMismatch, line, n, c, edge, value * perCent);
    case FindingKind::negativeCapacitance:
      return tell(warning, message::negativeCapacitance, line, n, c, value);
    case FindingKind::thresholdsDefaulted:
      return tell(warning, message::thresholdsDefaulted, line, n, c);
    case FindingKind::thresholdsSwapped:
      return tell(warning, message::thresholdsSwapped, line, n, c, value);
    case FindingKind::referenceMissing:
      break;
  }
  return tell(warning, message::referenceMissing, line, n, c);
}

}  // namespace ibis::cli
