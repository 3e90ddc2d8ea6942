#pragma once

#include <string>

#include "file_summary.h"
#include "json_pieces.h"
#include "tolerant_reading.h"

namespace ibis::cli {

/// What a file that was read holds, for a person: tables of 80 columns. Of what is refused or left
/// out it tells as many messages as the limit says.
std::string listText(const std::string& source, const TolerantReading& reading,
                     const FileSummary& summary, std::size_t limit);

/// The same for a program, without its schema, file and status; see docs/json.md.
void printListJson(JsonObject& object, const TolerantReading& reading, const FileSummary& summary);

}  // namespace ibis::cli
