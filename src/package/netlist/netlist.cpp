#include "package/netlist/netlist.h"

#include <algorithm>

#include "output/stream/number_text.h"

namespace ibis {
namespace {

// head of a matrix row, term of an entry
struct ElementForm {
  std::string_view head;
  std::string_view term;
};

constexpr ElementForm capacitor{"BC_%row% IN_%rownode% REF q=", "%value%*V(IN_%colnode%,REF)"};
constexpr ElementForm inductor{"BL_%row% IN_%rownode% L_%rownode% flux=", "%value%*I(BL_%column%)"};
constexpr ElementForm resistor{"BR_%row% L_%rownode% OUT_%rownode% v=", "%value%*I(BL_%column%)"};

// The name of a pin's node, from 1; a pin beyond the names has the empty name.
std::string_view nodeName(std::span<const std::string_view> nodes, std::int32_t place) {
  const auto index = static_cast<std::size_t>(place) - 1;
  return place >= 1 && index < nodes.size() ? nodes[index] : std::string_view();
}

std::string rowHead(std::string_view head, std::int32_t row, std::string_view node) {
  std::string text = replaceFirst(std::string(head), "%row%", std::to_string(row));
  text = replaceFirst(std::move(text), "%rownode%", node);
  return replaceFirst(std::move(text), "%rownode%", node);
}

std::string entryTerm(std::string_view term, const IBISMatrixEntry& entry, std::string_view node) {
  std::string text =
      replaceFirst(std::string(term), "%value%", numberText(entry.value, matrixDigits));
  text = replaceFirst(std::move(text), "%column%", std::to_string(entry.column));
  text = replaceFirst(std::move(text), "%colnode%", node);
  return replaceFirst(std::move(text), "%colnode%", node);
}

// Orders entries by row, those of one row in file order.
std::vector<const IBISMatrixEntry*> orderByRow(std::span<const IBISMatrixEntry> matrix,
                                               std::int32_t rows) {
  std::vector<const IBISMatrixEntry*> entries;
  for (const IBISMatrixEntry& entry : matrix) {
    if (entry.row >= 1 && entry.row <= rows) entries.push_back(&entry);
  }
  std::ranges::stable_sort(entries, {}, &IBISMatrixEntry::row);
  return entries;
}

void writeNodes(OutputStream& out, std::string_view prefix, std::span<const std::string_view> nodes,
                std::int32_t count) {
  for (std::int32_t place = 1; place <= count; ++place) {
    out.write(' ');
    out.write(prefix);
    out.write(nodeName(nodes, place));
  }
}

}  // namespace

std::string replaceFirst(std::string text, std::string_view pattern, std::string_view replacement) {
  const std::size_t index = text.find(pattern);
  if (index != std::string::npos) text.replace(index, pattern.size(), replacement);
  return text;
}

void writeMatrix(OutputStream& out, std::span<const IBISMatrixEntry> matrix,
                 const IBISPackageModel& model, std::span<const std::string_view> nodes,
                 std::string_view term, std::string_view head) {
  const std::vector<const IBISMatrixEntry*> entries = orderByRow(matrix, model.numberOfPins);
  auto entry = entries.begin();
  for (std::int32_t row = 1; row <= model.numberOfPins; ++row) {
    out.write(rowHead(head, row, nodeName(nodes, row)));
    for (bool isFirst = true; entry != entries.end() && (*entry)->row == row; ++entry) {
      // A negative number has its own operator.
      out.write(isFirst || (*entry)->value < 0.0 ? " " : " + ");
      out.write(entryTerm(term, **entry, nodeName(nodes, (*entry)->column)));
      isFirst = false;
    }
    out.write('\n');
  }
}

void writePackageNetlist(OutputStream& out, const IBISPackageModel& model,
                         std::span<const std::string_view> nodes) {
  writeNodes(out, "IN_", nodes, model.numberOfPins);
  writeNodes(out, "OUT_", nodes, model.numberOfPins);
  out.write('\n');
  writeMatrix(out, model.capacitance, model, nodes, capacitor.term, capacitor.head);
  writeMatrix(out, model.inductance, model, nodes, inductor.term, inductor.head);
  writeMatrix(out, model.resistance, model, nodes, resistor.term, resistor.head);
}

}  // namespace ibis
