#pragma once

#include <string>

namespace ibis::cli {

/// A number with its unit in engineering form, such as "4.5 pF", of four digits at most.
std::string quantity(double value, const std::string& unit);

}  // namespace ibis::cli
