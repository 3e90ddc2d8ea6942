#pragma once

#include <memory>
#include <optional>
#include <string>

#include "ibis/diagnostic.h"

namespace ibis::cli {

/// The name that stands for standard input.
inline constexpr const char* standardInput = "-";

/// The text of a source that no load can read by itself.
struct InputText {
  std::shared_ptr<const std::string> text;  ///< Null for any other source.
  std::optional<Diagnostic> fault;          ///< Why there is no text.
};

/// Reads standard input for its name, and unpacks gzip data from there or from a file.
InputText readInputText(const std::string& source);

}  // namespace ibis::cli
