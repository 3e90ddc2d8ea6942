// Writes a fuzzer's dictionary from the tables that the product itself looks words up in.
//
// usage: make_dictionary ibis|template FILE

#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include "output/embedded_templates.h"
#include "reader/vocabulary.h"

namespace ibis::fuzz {
namespace {

using Words = std::set<std::string>;

// Words that stand beside the code that reads them and in no table.
constexpr const char* otherWords[] = {
    "signal_name",
    "model_name",
    "R_pin",
    "L_pin",
    "C_pin",
    "inv_pin",
    "vdiff",
    "tdelay_typ",
    "tdelay_min",
    "tdelay_max",
    "pulldown_ref",
    "pullup_ref",
    "gnd_clamp_ref",
    "power_clamp_ref",
    "pin_2",
    "function_table_group",
    "Si_location",
    "Timing_location",
    "Die",
    "R_pkg",
    "L_pkg",
    "C_pkg",
    "Full_matrix",
    "Banded_matrix",
    "Sparse_matrix",
    "dV/dt_r",
    "dV/dt_f",
    "R_load",
    "Non-Inverting",
    "Inverting",
    "Active-High",
    "Active-Low",
    "Vds",
    "_char",
    "On",
    "Off",
    "NA",
    "nan",
    "inf",
    "1e400",
    "0x1p-1074",
    "GND",
    "POWER",
    "NC",
};

Words ibisWords() {
  Words words(std::begin(otherWords), std::end(otherWords));
  for (const KeywordRow& row : keywordTable()) words.insert('[' + std::string(row.name) + ']');
  for (const SubParameterRow& row : subParameterTable()) words.emplace(row.name);
  for (const ModelTypeRow& row : modelTypeTable()) words.insert(row.name);
  for (const VersionRow& row : versionTable()) words.insert(row.text);
  return words;
}

// The templates in use name nearly every keyword that there is.
Words templateWords() {
  Words words;
  for (const EmbeddedTemplate& text : embeddedTemplates()) {
    for (std::int32_t i = 0; i < text.lineCount; ++i) {
      std::string_view line = text.lines[i];
      for (std::size_t begin = line.find('%'); begin != line.npos; begin = line.find('%')) {
        const std::size_t end = line.find('%', begin + 1);
        if (end == line.npos) break;
        words.emplace(line.substr(begin, end + 1 - begin));
        line.remove_prefix(end + 1);
      }
    }
  }
  return words;
}

// The fuzzer takes printable characters but the quote and the backslash as they are.
void write(const Words& words, std::ostream& out) {
  for (const std::string& word : words) {
    if (word.find_first_of("\"\\") == word.npos) out << '"' << word << "\"\n";
  }
}

}  // namespace
}  // namespace ibis::fuzz

int main(int argc, char** argv) {
  using namespace ibis::fuzz;
  if (argc != 3) return 2;
  std::ofstream out(argv[2]);
  write(std::strcmp(argv[1], "template") == 0 ? templateWords() : ibisWords(), out);
  return out.flush() ? 0 : 1;
}
