#pragma once

#include <iosfwd>
#include <string>

#include "conversion.h"

namespace ibis::cli {

/// Writes each message on a line of its own that editors can jump on.
void printMessages(std::ostream& out, const std::string& source, const Conversion& conversion);

/// Writes the names of the files and the counts of messages.
void printSummary(std::ostream& out, const Conversion& conversion);

/// Writes all of it and the exit status as one JSON object on one line.
void printJson(std::ostream& out, const Conversion& conversion, int status);

}  // namespace ibis::cli
