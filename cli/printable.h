#pragma once

#include <string>
#include <string_view>

namespace ibis::cli {

/// The text as a terminal may get it: control characters and bytes that are not UTF-8 as \xNN.
std::string printable(std::string_view text);

}  // namespace ibis::cli
