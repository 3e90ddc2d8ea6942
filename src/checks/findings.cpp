#include "checks/findings.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace ibis::checks {
namespace {

enum class Scope : std::uint8_t { file, section, block };

// cause, what follows from it, within which part of the file
struct FollowUp {
  Rule cause;
  Rule effect;
  Scope scope;
};

constexpr FollowUp followUps[] = {
    {Rule::tableCurrentSign, Rule::consistencyWaveformIv, Scope::section},
    {Rule::tableCurrentSign, Rule::consistencyRampIv, Scope::section},
    {Rule::tableCurrentSign, Rule::consistencyRampWaveform, Scope::section},
    {Rule::tableCurrentSign, Rule::consistencyCombined, Scope::section},
    {Rule::tableCurrentSign, Rule::consistencyCombinedOutside, Scope::section},
    {Rule::tableCurrentSign, Rule::consistencyVmeas, Scope::section},
    {Rule::tableWrongReference, Rule::tableCurrentSign, Scope::block},
    {Rule::tableWrongReference, Rule::consistencyWaveformIv, Scope::section},
    {Rule::tableWrongReference, Rule::consistencyRampIv, Scope::section},
    {Rule::tableWrongReference, Rule::consistencyCombined, Scope::section},
    {Rule::tableWrongReference, Rule::consistencyCombinedOutside, Scope::section},
    {Rule::tableWrongReference, Rule::consistencyVmeas, Scope::section},
    {Rule::tableWrongReference, Rule::tableCurrentAtZero, Scope::block},
    {Rule::pinModelAfterEnd, Rule::syntaxTextAfterEnd, Scope::file},
    {Rule::tableVoltageOrder, Rule::tableVoltageRepeated, Scope::block},
    {Rule::tableVoltageOrder, Rule::tableOutlier, Scope::block},
    {Rule::tableVoltageOrder, Rule::tableCurrentSign, Scope::block},
    {Rule::tableVoltageOrder, Rule::tableWrongReference, Scope::block},
    {Rule::tableVoltageOrder, Rule::tableClampInPull, Scope::section},
    {Rule::tableVoltageOrder, Rule::tableClampOverlap, Scope::section},
    {Rule::tableVoltageOrder, Rule::consistencyWaveformIv, Scope::section},
    {Rule::tableVoltageOrder, Rule::consistencyRampIv, Scope::section},
    {Rule::tableVoltageOrder, Rule::consistencyCombined, Scope::section},
    {Rule::tableVoltageOrder, Rule::consistencyCombinedOutside, Scope::section},
    {Rule::tableVoltageOrder, Rule::consistencyVmeas, Scope::section},
    {Rule::tableOutlier, Rule::consistencyCombined, Scope::section},
    {Rule::tableOutlier, Rule::consistencyCombinedOutside, Scope::section},
    {Rule::tableClampInPull, Rule::consistencyWaveformIv, Scope::section},
    {Rule::modelTypeCase, Rule::modelTableMissing, Scope::section},
    {Rule::modelTypeUnknown, Rule::modelTableMissing, Scope::section},
    {Rule::modelTableMissing, Rule::consistencyWaveformIv, Scope::section},
    {Rule::modelTableNotForType, Rule::consistencyWaveformIv, Scope::section},
    {Rule::modelTableNotForType, Rule::consistencyRampIv, Scope::section},
    {Rule::modelTableNotForType, Rule::consistencyVmeas, Scope::section},
    {Rule::modelRloadImplausible, Rule::consistencyRampIv, Scope::section},
    {Rule::modelRloadImplausible, Rule::consistencyRampWaveform, Scope::section},
    {Rule::numericMissingColumn, Rule::consistencyWaveformIv, Scope::section},
    {Rule::numericMissingColumn, Rule::tableNoTyp, Scope::block},
    {Rule::numericMissingColumn, Rule::tableEndNa, Scope::block},
    {Rule::pinColumnHeader, Rule::pinModelUndefined, Scope::section},
    {Rule::packagePinDuplicate, Rule::packageRowOrder, Scope::section},
    {Rule::packagePinDuplicate, Rule::packageRowMissing, Scope::section},
    {Rule::packagePinUnknown, Rule::packageRowMissing, Scope::section},
    {Rule::packagePinUnknown, Rule::packagePinCount, Scope::section},
    {Rule::waveformDirection, Rule::waveformDuplicateFixture, Scope::section},
    {Rule::waveformDirection, Rule::consistencyWaveformIv, Scope::section},
    {Rule::waveformDirection, Rule::waveformLevelsDiffer, Scope::section},
    {Rule::waveformDirection, Rule::waveformOneEdgeOnly, Scope::section},
    {Rule::waveformNotSettled, Rule::consistencyWaveformIv, Scope::block},
    {Rule::waveformNotSettled, Rule::waveformLevelsDiffer, Scope::section},
    {Rule::waveformNoSwing, Rule::consistencyWaveformIv, Scope::block},
    {Rule::waveformNoSwing, Rule::waveformLevelsDiffer, Scope::section},
    {Rule::waveformTimeImplausible, Rule::consistencyRampWaveform, Scope::section},
    {Rule::modelRampImplausible, Rule::consistencyRampWaveform, Scope::section},
    {Rule::modelVoltageImplausible, Rule::modelThresholdOutside, Scope::section},
    {Rule::modelVoltageImplausible, Rule::modelVmeasOutside, Scope::section},
    {Rule::modelVoltageImplausible, Rule::modelReferenceVsRange, Scope::section},
    {Rule::waveformRFixture, Rule::consistencyWaveformIv, Scope::block},
    {Rule::waveformTimeOrder, Rule::consistencyWaveformIv, Scope::block},
    {Rule::waveformTimeOrder, Rule::waveformLevelsDiffer, Scope::section},
    {Rule::waveformTimeOrder, Rule::consistencyRampWaveform, Scope::section},
    {Rule::modelVmeasOutside, Rule::consistencyVmeas, Scope::section},
    {Rule::packageDiagonalNotPositive, Rule::packageNotDefinite, Scope::block},
    {Rule::packageDiagonalMissing, Rule::packageNotDefinite, Scope::block},
    {Rule::packageCoupling, Rule::packageNotDefinite, Scope::block},
    {Rule::packageCapacitanceDominance, Rule::packageNotDefinite, Scope::block},
    {Rule::modelVinlAboveVinh, Rule::modelThresholdOutside, Scope::section},
};

constexpr Rule numberRules[] = {
    Rule::numericDecimalComma, Rule::numericUnknownSuffix, Rule::numericNotANumber,
    Rule::numericSuffixCase,   Rule::numericDetachedUnit,
};

struct ScaleRow {
  double factor;
  std::string_view letter;
};

constexpr ScaleRow scales[] = {{1e12, "T"}, {1e9, "G"},  {1e6, "M"},  {1e3, "k"},   {1.0, ""},
                               {1e-3, "m"}, {1e-6, "u"}, {1e-9, "n"}, {1e-12, "p"}, {1e-15, "f"}};

}  // namespace

std::string fillText(std::string_view text, Findings::Arguments arguments) {
  std::string filled;
  const std::string* next = arguments.begin();
  for (std::size_t place = text.find("{}"); place != text.npos; place = text.find("{}")) {
    filled.append(text.substr(0, place));
    if (next != arguments.end()) filled.append(*next++);
    text.remove_prefix(place + 2);
  }
  return filled.append(text);
}

Finding& Findings::add(Rule rule, const Spot& spot, Arguments arguments) {
  const RuleRow& row = ruleRow(rule);
  Finding& finding =
      findings_.emplace_back(Finding{.rule = rule,
                                     .diagnostic = {.id = row.id,
                                                    .text = fillText(row.text, arguments),
                                                    .notes = {},
                                                    .line = spot.line,
                                                    .column = spot.column,
                                                    .length = spot.length,
                                                    .severity = row.severity},
                                     .section = spot.section,
                                     .block = spot.block});
  if (!row.remedy.empty()) {
    const std::string last = arguments.size() == 0 ? std::string() : *(arguments.end() - 1);
    addNote(finding, 0, fillText(row.remedy, {last}));
  }
  told_.insert(rule);
  ++bySection_[{rule, spot.section}];
  ++countByBlock_[{rule, spot.block}];
  return finding;
}

Finding* Findings::addOnce(Rule rule, const Spot& spot, Arguments arguments) {
  Finding*& first = byBlock_[{rule, spot.block}];
  if (first != nullptr) {
    ++first->furtherRows;
    return nullptr;
  }
  first = &add(rule, spot, arguments);
  return first;
}

bool Findings::wasTold(Rule rule, std::uint32_t section) const {
  return bySection_.contains({rule, section});
}

bool Findings::hasWrongNumber(std::uint32_t block) const {
  return std::ranges::any_of(numberRules, [&](Rule rule) {
    return countByBlock_.contains({rule, block});
  });
}

bool Findings::followsAnother(const Finding& finding) const {
  return std::ranges::any_of(followUps, [&](const FollowUp& row) {
    if (row.effect != finding.rule) return false;
    switch (row.scope) {
      case Scope::file:
        return told_.contains(row.cause);
      case Scope::section:
        return finding.section != Spot::nowhere &&
               bySection_.contains({row.cause, finding.section});
      case Scope::block:
        return finding.block != Spot::nowhere && countByBlock_.contains({row.cause, finding.block});
    }
    return false;
  });
}

std::vector<Diagnostic> Findings::take() {
  std::vector<Diagnostic> diagnostics;
  for (Finding& finding : findings_) {
    if (followsAnother(finding)) continue;
    Diagnostic& diagnostic = diagnostics.emplace_back(std::move(finding.diagnostic));
    if (finding.furtherRows == 0) continue;
    diagnostic.text.append(" (and ").append(countOf(finding.furtherRows, "more row")).append(")");
  }
  std::ranges::stable_sort(diagnostics, [](const Diagnostic& a, const Diagnostic& b) {
    return a.line != b.line ? a.line < b.line : a.column < b.column;
  });
  return diagnostics;
}

std::string shortNumber(double value, int digits) {
  if (value == 0.0) return "0";  // not "-0"
  char buffer[40];
  const auto [end, fault] =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, digits);
  return {buffer, end};
}

std::string quantity(double value, std::string_view unit) {
  const double size = std::abs(value);
  const ScaleRow* scale = &scales[4];
  if (size > 0.0 && std::isfinite(size)) {
    for (const ScaleRow& row : scales) {
      scale = &row;
      if (size >= row.factor * 0.99995) break;
    }
  }
  if (size >= 1e15) scale = &scales[4];
  std::string text = shortNumber(value / scale->factor);
  return text.append(" ").append(scale->letter).append(unit);
}

std::string countOf(std::size_t count, std::string_view word) {
  std::string text = std::to_string(count) + ' ';
  return text.append(word).append(count == 1 ? "" : "s");
}

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text.append(text.empty() ? "" : ", ").append(word);
  return text;
}

std::string didYouMean(std::string_view word) {
  return word.empty() ? std::string() : "; did you mean '" + std::string(word) + "'?";
}

}  // namespace ibis::checks
