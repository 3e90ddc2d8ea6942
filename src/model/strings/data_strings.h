#pragma once

#include "ibis/model.h"
#include "output/stream/output_stream.h"

namespace ibis {

// Numbers have valueDigits digits; corners are in the order typ, min, max. A line of more than 80
// characters ends after its pair; the next begins with "+" and indent - 2 blanks.

/// Writes "x, y" pairs; `moreFollows` adds a comma after the last, and a missing y is 0.
void writePairs(OutputStream& out, const YVector<double>& x, const YVector<double>& y,
                std::int32_t indent, bool moreFollows);

void writeTypPairs(const IBISTable& table, OutputStream& out, std::int32_t indent);
void writeMaxPairs(const IBISTable& table, OutputStream& out, std::int32_t indent);
void writeMinPairs(const IBISTable& table, OutputStream& out, std::int32_t indent);

/// Writes the pairs of a table's three corners as one list.
void writeTableCorners(const IBISTable& table, OutputStream& out, std::int32_t indent,
                       bool moreFollows);

/// Writes the pairs of a waveform's three corners, each after a line that holds a plus sign alone.
///
/// A corner without values takes those of typ.
void writeWaveformCorners(const IBISWaveform& waveform, OutputStream& out, std::int32_t indent,
                          bool moreFollows);

/// Writes the pairs of a waveform's typ corner.
void writeWaveformTypPairs(const IBISWaveform& waveform, OutputStream& out, std::int32_t indent);

}  // namespace ibis
