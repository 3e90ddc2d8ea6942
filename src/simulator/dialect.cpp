#include "simulator/dialect.h"

#include "ibis/ibis_string.h"

namespace ibis {
namespace {

// A point that a lookup does not hold is the line through the end segment in the first simulator
// and the end's value in the others; the points that curves have far outside make them agree.
constexpr Dialect dialects[] = {
    {.word = "ngspice",
     .title = "ngspice",
     .lookup = "pwl",
     .beforeIf = "((",
     .beforeThen = ") ? (",
     .beforeElse = ") : (",
     .afterIf = "))",
     .beforeFormula = "",
     .afterFormula = "",
     .threshold = "{vth}",
     .options = ".options trtol=1 method=gear",
     .hasLineOptions = true},
    {.word = "xyce",
     .title = "Xyce",
     .lookup = "table",
     .beforeIf = "if(",
     .beforeThen = ",",
     .beforeElse = ",",
     .afterIf = ")",
     .beforeFormula = "{",
     .afterFormula = "}",
     .threshold = "vth",
     .options = ".options timeint reltol=1e-4"},
    {.word = "ltspice",
     .title = "LTspice",
     .lookup = "table",
     .beforeIf = "if(",
     .beforeThen = ",",
     .beforeElse = ",",
     .afterIf = ")",
     .beforeFormula = "",
     .afterFormula = "",
     .threshold = "{vth}",
     .options = ".options reltol=1e-4"},
};

std::string joined(std::initializer_list<std::string_view> parts) {
  std::string text;
  for (const std::string_view part : parts) text += part;
  return text;
}

}  // namespace

std::span<const Dialect> dialectTable() { return dialects; }

const Dialect* findDialect(std::string_view word) {
  for (const Dialect& dialect : dialects) {
    if (equalIgnoringCase(dialect.word, word)) return &dialect;
  }
  return nullptr;
}

std::string choice(const Dialect& dialect, std::string_view condition, std::string_view then,
                   std::string_view otherwise) {
  return joined({dialect.beforeIf, condition, dialect.beforeThen, then, dialect.beforeElse,
                 otherwise, dialect.afterIf});
}

}  // namespace ibis
