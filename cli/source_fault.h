#pragma once

#include <string>

#include "ibis/diagnostic.h"

namespace ibis::cli {

/// Why a file that could not be read could not be read.
Diagnostic reasonUnread(const std::string& source);

}  // namespace ibis::cli
