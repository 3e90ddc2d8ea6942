#pragma once

#include <algorithm>
#include <string_view>

namespace ibis::testing {

/// Whether a line of a library begins as the templates begin one, whatever the file's words are.
inline bool beginsAsTemplatesDo(std::string_view line) {
  constexpr std::string_view starts[] = {
      "\n",    "**",  "+",         ".SUBCKT ", ".ENDS",
      " ",     "\t",  ".MODEL M_", "U_",       "URLC_",
      "Vpwl_", "BC_", "BL_",       "BR_",      ".model RLC IBIS_rlc_package "};
  return std::ranges::any_of(starts,
                             [&](std::string_view start) { return line.starts_with(start); });
}

}  // namespace ibis::testing
