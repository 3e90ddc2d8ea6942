#include "model/strings/data_strings.h"

#include <algorithm>

#include "output/stream/number_text.h"

namespace ibis {
namespace {

constexpr std::int32_t minIndent = 2;
constexpr std::int32_t maxIndent = 255;
constexpr std::uint64_t foldingLength = 80;

void startCorner(OutputStream& out, std::int32_t indent) {
  out.write("\n+\n+");
  out.writeBlanks(indent - minIndent);
}

}  // namespace

void writePairs(OutputStream& out, const YVector<double>& x, const YVector<double>& y,
                std::int32_t indent, bool moreFollows) {
  const std::int32_t blanks = std::clamp(indent, minIndent, maxIndent) - minIndent;
  const std::int32_t last = x.size() - 1;
  std::uint64_t lineStart = out.position();
  for (std::int32_t i = 0; i <= last; ++i) {
    out.writeNumber(x[i], valueDigits);
    out.write(", ");
    out.writeNumber(y[i], valueDigits);
    if (i != last || moreFollows) out.write(", ");
    if (i == last || out.position() - lineStart <= foldingLength) continue;
    out.write("\n+");
    out.writeBlanks(blanks);
    lineStart = out.position();
  }
}

void writeTypPairs(const IBISTable& table, OutputStream& out, std::int32_t indent) {
  writePairs(out, table.voltage, table.typ, indent, false);
}

void writeMaxPairs(const IBISTable& table, OutputStream& out, std::int32_t indent) {
  writePairs(out, table.voltage, table.max, indent, false);
}

void writeMinPairs(const IBISTable& table, OutputStream& out, std::int32_t indent) {
  writePairs(out, table.voltage, table.min, indent, false);
}

void writeTableCorners(const IBISTable& table, OutputStream& out, std::int32_t indent,
                       bool moreFollows) {
  writePairs(out, table.voltage, table.typ, indent, true);
  writePairs(out, table.voltage, table.min, indent, true);
  writePairs(out, table.voltage, table.max, indent, moreFollows);
}

void writeWaveformCorners(const IBISWaveform& waveform, OutputStream& out, std::int32_t indent,
                          bool moreFollows) {
  const auto orTyp = [&](const YVector<double>& corner) -> const YVector<double>& {
    return corner.empty() ? waveform.typ : corner;
  };
  indent = std::max(indent, minIndent);
  startCorner(out, indent);
  writePairs(out, waveform.time, waveform.typ, indent, true);
  startCorner(out, indent);
  writePairs(out, waveform.time, orTyp(waveform.min), indent, true);
  startCorner(out, indent);
  writePairs(out, waveform.time, orTyp(waveform.max), indent, moreFollows);
}

void writeWaveformTypPairs(const IBISWaveform& waveform, OutputStream& out, std::int32_t indent) {
  writePairs(out, waveform.time, waveform.typ, indent, false);
}

}  // namespace ibis
