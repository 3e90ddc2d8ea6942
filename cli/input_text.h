#pragma once

#include <memory>
#include <string>

namespace ibis::cli {

/// The name that stands for standard input.
inline constexpr const char* standardInput = "-";

/// The text of standard input for its name, or null for any other source, which has its own.
std::shared_ptr<const std::string> inputText(const std::string& source);

}  // namespace ibis::cli
