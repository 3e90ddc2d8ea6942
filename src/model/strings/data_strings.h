#pragma once

#include "ibis/model.h"
#include "output/stream/output_stream.h"

namespace ibis {

// Numbers are printed at 12 digits, corners in the order typ, min, max. A line of more than 80
// characters ends behind its pair; the next begins with "+" and indent - 2 blanks.

/// "x, y" pairs; `moreFollows` adds a comma behind the last, and a missing y is 0.
void writePairs(OutputStream& out, const YVector<double>& x, const YVector<double>& y,
                std::int32_t indent, bool moreFollows);

void writeTypPairs(const IBISTable& table, OutputStream& out, std::int32_t indent);
void writeMaxPairs(const IBISTable& table, OutputStream& out, std::int32_t indent);
void writeMinPairs(const IBISTable& table, OutputStream& out, std::int32_t indent);

/// The pairs of a table's three corners as one list.
void writeTableCorners(const IBISTable& table, OutputStream& out, std::int32_t indent,
                       bool moreFollows);

/// The pairs of a waveform's three corners, each behind a line that holds a plus sign alone.
///
/// A corner without values takes those of typ.
void writeWaveformCorners(const IBISWaveform& waveform, OutputStream& out, std::int32_t indent,
                          bool moreFollows);

/// The pairs of a waveform's typ corner.
void writeWaveformTypPairs(const IBISWaveform& waveform, OutputStream& out, std::int32_t indent);

}  // namespace ibis
