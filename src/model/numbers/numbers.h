#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ibis/yvector.h"

namespace ibis {

/// Corners of a triple, a table or a waveform by index; the file's columns are typ, min, max.
namespace corner {
inline constexpr int typ = 0;
inline constexpr int max = 1;
inline constexpr int min = 2;
inline constexpr int count = 3;
}  // namespace corner

/// A typ-min-max value; `present` tells whether the file gave it.
struct IBISTriple {
  bool present = false;
  double typ = 0.0;
  double max = 0.0;
  double min = 0.0;

  /// The value at a corner's index; any other index means typ.
  double at(int index) const {
    return index == corner::max ? max : index == corner::min ? min : typ;
  }
  friend bool operator==(const IBISTriple&, const IBISTriple&) = default;
};

/// The tokens of one line, in order; a missing token reads as an empty one.
using Fields = YVector<std::string_view>;

/// What separates the fields of a line.
namespace delimiters {
inline constexpr std::string_view blanks = " \t";
inline constexpr std::string_view blanksAndEqual = " \t=";
inline constexpr std::string_view slash = "/";
}  // namespace delimiters

inline constexpr std::string_view notAvailable = "NA";

/// A number and how many characters of the text it took; none for a text that holds no number.
struct NumberPrefix {
  double value = 0.0;
  std::size_t length = 0;
};

/// What strtod of the C library reads in the "C" locale, whatever locale the host has set.
NumberPrefix readNumber(std::string_view text);

/// A number with its unit factor (T G M k m u n p f), or the fallback for "NA".
///
/// Nothing fails: a text without a number gives 0.0.
double parseNumber(std::string_view text, double fallback);

/// What atoi of the C library reads.
std::int32_t parseInteger(std::string_view text);

/// Appends the fields of a text, then fillers until there are `minimumCount` fields.
void splitFields(std::string_view text, Fields& fields, std::int32_t minimumCount = 0,
                 std::string_view filler = {}, std::string_view separators = delimiters::blanks);

/// Takes the next field off a text; empty when there is none left.
std::string_view takeField(std::string_view& text,
                           std::string_view separators = delimiters::blanks);

/// One row of a table or a waveform: a voltage or a time, and a value for each corner.
struct CornerRow {
  double x = 0.0;
  double typ = 0.0;
  double min = 0.0;
  double max = 0.0;
};

/// Reads "x typ min max"; an NA for min or max takes typ. The filler stands for missing fields.
CornerRow readCornerRow(std::string_view text, std::string_view filler);

/// Reads "typ min max"; an explicit NA for min or max takes typ, a missing one is 0.0.
void readTriple(std::string_view text, IBISTriple& triple);

/// Reads one value into all three corners; NA gives 0.8 whatever the parameter is.
void readSingleAsTriple(std::string_view text, IBISTriple& triple);

/// Reads "dV/dt" into swing and time; NA stores both fallbacks.
void readRatio(std::string_view text, double& numerator, double& denominator,
               double numeratorFallback, double denominatorFallback);

}  // namespace ibis
