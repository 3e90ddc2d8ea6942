#pragma once

#include <string>

#include "packed_input.h"

namespace ibis::cli {

/// The name that stands for standard input.
inline constexpr const char* standardInput = "-";

/// Reads standard input for its name, unpacks gzip data from there or from a file, and a member of
/// a zip archive for its name, ARCHIVE/MEMBER.
InputText readInputText(const std::string& source);

}  // namespace ibis::cli
