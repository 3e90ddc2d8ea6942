#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "ibis/diagnostic.h"

namespace ibis::cli {

/// What a check of one file brought.
struct CheckedFile {
  std::string name;
  std::string text;  ///< What was checked, for the lines below messages.
  std::vector<Diagnostic> diagnostics;

  std::size_t count(Severity severity) const;
};

}  // namespace ibis::cli
