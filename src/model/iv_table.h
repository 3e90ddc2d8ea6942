#pragma once

#include "host/diagnostics/error_handler.h"
#include "ibis/model.h"
#include "reader/scanner.h"

namespace ibis {

/// Appends the rows behind the keyword at the cursor and drops points that break monotony.
///
/// A first column that does not grow (or fall) strictly costs one warning a table. The cursor is
/// left on the last row.
void readTable(IBISTable& table, IBISRecords records, std::int32_t& cursor,
               IBISErrorHandler& errors, const char* tableName);

/// Current and slope at a voltage, in amperes and amperes a volt; the end segments go on outside.
///
/// Writes nothing for a table that is not present.
void evaluateTable(const IBISTable& table, double& value, double& slope, double x, int corner);

}  // namespace ibis
