#pragma once

#include <string>
#include <vector>

namespace ibis::cli {

/// What is wrong with the first word of a command line, as lines for standard error; else empty.
///
/// An option in front of the command is none of its concern.
std::string faultOfCommandWord(const std::vector<std::string>& words,
                               const std::vector<std::string>& commands);

}  // namespace ibis::cli
