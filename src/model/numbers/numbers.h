#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ibis/ibis_string.h"
#include "ibis/values.h"
#include "ibis/yvector.h"

namespace ibis {

/// The tokens of one line, in order; a missing token reads as an empty one.
using Fields = YVector<std::string_view>;

/// Sets of characters that separate the fields of a line.
namespace delimiters {
inline constexpr std::string_view blanks = " \t";
inline constexpr std::string_view blanksAndEqual = " \t=";
inline constexpr std::string_view slash = "/";
}  // namespace delimiters

inline constexpr std::string_view notAvailable = "NA";

/// Whether a field has no value: NA, or nothing at all.
inline bool isMissingValue(std::string_view field) {
  return field.empty() || field == notAvailable;
}

/// A number and how many characters of the text it took; 0 for a text that holds no number.
struct NumberPrefix {
  double value = 0.0;
  std::size_t length = 0;
};

/// Reads what the C library's strtod reads in the "C" locale, whatever locale the host has set.
NumberPrefix readNumber(std::string_view text);

/// Reads a decimal number whose digits and power of ten a double holds exactly: then one correctly
/// rounded operation has strtod's result.
///
/// A length of 0 stands for a text that is longer, larger or not a decimal number.
NumberPrefix readShortNumber(std::string_view text);

/// A number with its unit factor (T G M k m u n p f), or the fallback for "NA".
///
/// Nothing fails: a text without a number is 0.0.
double parseNumber(std::string_view text, double fallback);

/// Reads what the C library's atoi reads.
std::int32_t parseInteger(std::string_view text);

/// Appends the fields of a text, then fillers until there are `minimumCount` fields.
void splitFields(std::string_view text, Fields& fields, std::int32_t minimumCount = 0,
                 std::string_view filler = {}, std::string_view separators = delimiters::blanks);

/// Takes the next field off a text; empty when none is left.
std::string_view takeField(std::string_view& text,
                           std::string_view separators = delimiters::blanks);

/// Takes the first word and the one separator after it off a line; the rest stays.
IBISString popToken(std::string_view& line);

/// One row of a table or a waveform: a voltage or a time, and a value for each corner.
struct CornerRow {
  double x = 0.0;
  double typ = 0.0;
  double min = 0.0;
  double max = 0.0;
  MissingCorners missing = {};
};

/// Reads "x typ min max"; an NA for min or max takes typ. The filler stands for missing fields.
CornerRow readCornerRow(std::string_view text, std::string_view filler);

/// Reads "typ min max"; an explicit NA for min or max takes typ, a missing one is 0.0.
void readTriple(std::string_view text, IBISTriple& triple);

/// Reads one value into all three corners; NA is 0.8 whatever the parameter is.
void readSingleAsTriple(std::string_view text, IBISTriple& triple);

/// Reads "dV/dt" into swing and time; NA stores both fallbacks.
///
/// True if the file has the ratio; false for NA and for an empty text.
bool readRatio(std::string_view text, double& numerator, double& denominator,
               double numeratorFallback, double denominatorFallback);

}  // namespace ibis
