#include "simulator/netlist_writer.h"

#include "output/stream/number_text.h"
#include "simulator/names.h"

namespace ibis {
namespace {

constexpr std::size_t columns = 80;
constexpr int digits = 7;

// Where a text that begins at a column is cut: behind its last blank that fits, or its first one.
std::size_t cutOf(std::string_view text, std::size_t room) {
  if (text.size() <= room) return text.size();
  const std::size_t last = text.rfind(' ', room);
  if (last != text.npos && last != 0) return last;
  const std::size_t first = text.find(' ', 1);
  return first == text.npos ? text.size() : first;
}

void writeFolded(OutputStream& out, std::string_view text, std::string_view first,
                 std::string_view next) {
  std::string_view lead = first;
  do {
    const std::size_t cut = cutOf(text, columns - lead.size());
    out.write(lead);
    out.write(text.substr(0, cut));
    out.write('\n');
    text.remove_prefix(cut == text.size() ? cut : cut + 1);
    lead = next;
  } while (!text.empty());
}

}  // namespace

std::string spiceNumber(double value) { return numberText(value, digits); }

void NetlistWriter::comment(std::string_view text) {
  writeFolded(out_, commentText(text), "* ", "*   ");
}

void NetlistWriter::line(std::string_view text) { writeFolded(out_, text, "", "+ "); }

void NetlistWriter::source(std::string_view name, std::string_view nodes, char quantity,
                           std::string_view formula) {
  std::string text(name);
  text.append(" ").append(nodes).append(" ") += quantity;
  text.append("=").append(dialect_.beforeFormula).append(formula).append(dialect_.afterFormula);
  line(text);
}

void NetlistWriter::tableSource(std::string_view name, std::string_view nodes, char quantity,
                                std::string_view factor, std::string_view argument,
                                const Curve& curve) {
  std::string text(name);
  text.append(" ").append(nodes).append(" ") += quantity;
  text.append("=").append(dialect_.beforeFormula).append(factor).append(dialect_.lookup);
  text.append("(").append(argument).append("\n+");
  std::size_t used = 1;
  for (std::size_t i = 0; i < curve.size(); ++i) {
    const std::string point = " ," + spiceNumber(curve.x[i]) + ',' + spiceNumber(curve.y[i]);
    if (used + point.size() > columns) {
      text += "\n+";
      used = 1;
    }
    text += point;
    used += point.size();
  }
  out_.write(text);
  out_.write("\n+ )");
  out_.write(dialect_.afterFormula);
  out_.write('\n');
}

}  // namespace ibis
