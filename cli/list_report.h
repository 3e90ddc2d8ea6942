#pragma once

#include <string>

#include "json_pieces.h"
#include "tolerant_reading.h"

namespace ibis::cli {

/// What a file that was read holds, for a person: tables of 80 columns.
std::string listText(const std::string& source, const TolerantReading& reading);

/// The same for a program, without its schema, file and status; see docs/json.md.
void printListJson(JsonObject& object, const TolerantReading& reading);

}  // namespace ibis::cli
