#pragma once

#include <algorithm>
#include <cmath>
#include <string_view>

#include "model/estimate_waveforms.h"
#include "model/numbers/numbers.h"
#include "reader/file/parser.h"

namespace ibis::fuzz {

/// Whether a package model promises more pins than a few; each costs three lines of a netlist.
inline bool promisesManyPins(IBISRecords records) {
  constexpr std::int32_t mostPins = 100;
  return std::ranges::any_of(records, [](const IBISRecord& record) {
    return record.keyword == keyword::numberOfPins && parseInteger(record.text()) > mostPins;
  });
}

/// Whether one corner of a ramp is so much slower than another, whose hundredth part is the step of
/// both, that an estimated waveform has very many points. Beyond that it would have too many and
/// has none, which costs nothing.
inline bool isUnequal(const IBISTriple& time) {
  constexpr double mostUnequal = 10.0;
  constexpr double pointsOfSlowest = 200.0;  // for each time that it is slower, at the least
  const double typ = std::fabs(time.typ);
  const double min = std::fabs(time.min);
  const double max = std::fabs(time.max);
  const double fastest = std::fmin(typ, std::fmin(min, max));
  const double ratio = std::fmax(typ, std::fmax(min, max)) / fastest;
  return fastest > 0.0 && ratio > mostUnequal && ratio * pointsOfSlowest < maxTimePoints + 1;
}

/// Whether a few bytes of the text ask for so much output that a fuzzer would do nothing else,
/// however far the text is read.
inline bool asksForLargeOutput(std::string_view text) {
  if (promisesManyPins(scanIBISText(text).records)) return true;
  IBISFile file;
  IBISScanner scanner(text);
  parseFile(file, scanner, {.newerVersions = true, .keepGoing = true, .selections = {}});
  return std::ranges::any_of(file.data().models, [](const auto& model) {
    return isUnequal(model->rampDtRise) || isUnequal(model->rampDtFall);
  });
}

}  // namespace ibis::fuzz
