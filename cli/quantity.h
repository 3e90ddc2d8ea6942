#pragma once

#include <string>
#include <vector>

#include "ibis/values.h"

namespace ibis::cli {

/// A number with its unit in engineering form, such as "4.5 pF", of four digits at most.
std::string quantity(double value, const std::string& unit);

/// The corners typ, min and max of a value with its unit; "-" for one that is missing.
std::vector<std::string> cornerTexts(const IBISTriple& triple, const std::string& unit);

}  // namespace ibis::cli
