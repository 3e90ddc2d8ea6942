#include "output_names.h"

namespace ibis::cli {
namespace {

// mode, whether the subcircuit's name comes first, rest of the file's name
struct OutputRow {
  OutputMode mode;
  bool isNamedBySubcircuit;
  std::string_view ending;
};

// As the "file" lines of the templates have it.
constexpr OutputRow outputs[] = {
    {OutputMode::model, true, ".lb"},
    {OutputMode::model, true, "_INFO.html"},
    {OutputMode::package, true, ".lb"},
    {OutputMode::script, false, "ibis_components.kvscr"},
};

}  // namespace

std::vector<std::string> outputNames(OutputMode mode, std::string_view folder,
                                     std::string_view subcircuit) {
  std::vector<std::string> names;
  for (const OutputRow& row : outputs) {
    if (row.mode != mode) continue;
    std::string& name = names.emplace_back(folder);
    name += '/';
    if (row.isNamedBySubcircuit) name += subcircuit;
    name += row.ending;
  }
  return names;
}

bool isNamedBySubcircuit(OutputMode mode) {
  for (const OutputRow& row : outputs) {
    if (row.mode == mode) return row.isNamedBySubcircuit;
  }
  return false;
}

}  // namespace ibis::cli
