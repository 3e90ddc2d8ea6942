#include "checked_file.h"

#include <algorithm>

namespace ibis::cli {

std::size_t CheckedFile::count(Severity severity) const {
  return static_cast<std::size_t>(std::ranges::count(diagnostics, severity, &Diagnostic::severity));
}

}  // namespace ibis::cli
