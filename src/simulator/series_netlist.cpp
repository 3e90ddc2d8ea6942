#include "simulator/series_netlist.h"

#include <algorithm>

namespace ibis {
namespace {

constexpr double shortResistance = 1e-6;  // ohms, where the file has a wire

// One element of a branch; 0 for none.
struct BranchElement {
  const char* name;
  double value;
};

// The elements from a to b, one behind the other.
void writeBranch(NetlistWriter& writer, std::vector<BranchElement> elements, const char* inner) {
  std::erase_if(elements, [](const BranchElement& each) { return !(each.value > 0.0); });
  std::string from = "a";
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const bool isLast = i + 1 == elements.size();
    const std::string to = isLast ? "b" : inner + std::to_string(i + 1);
    writer.line(elements[i].name + (' ' + from) + ' ' + to + ' ' + spiceNumber(elements[i].value));
    from = to;
  }
}

void writeInductor(NetlistWriter& writer, double inductance, double resistance) {
  const bool isWire = !(inductance > 0.0) && !(resistance > 0.0);
  writeBranch(writer, {{"Ll", inductance}, {"Rl", isWire ? shortResistance : resistance}}, "l");
}

}  // namespace

void writeSeries(NetlistWriter& writer, const SeriesNetlist& netlist) {
  const SeriesElements& elements = netlist.elements;
  for (const std::string& note : netlist.notes) writer.comment(note);
  writer.line(".subckt " + netlist.name + " a b");
  if (elements.r) writeBranch(writer, {{"Rr", std::max(*elements.r, shortResistance)}}, "r");
  if (elements.l) writeInductor(writer, *elements.l, elements.rl);
  if (elements.c > 0.0) {
    writeBranch(writer, {{"Cc", elements.c}, {"Lc", elements.lc}, {"Rc", elements.rc}}, "c");
  }
  if (!elements.current.empty()) {
    writer.tableSource("Bi", "a b", 'I', "", "V(a,b)", elements.current);
  }
  writer.line(".ends " + netlist.name);
  writer.blank();
}

}  // namespace ibis
