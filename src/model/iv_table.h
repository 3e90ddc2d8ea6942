#pragma once

#include "host/diagnostics/error_handler.h"
#include "ibis/model.h"
#include "reader/scanner.h"

namespace ibis {

/// Appends the rows after the keyword at the cursor and drops points that break monotony.
///
/// One warning a table reports that points were dropped. The cursor is left on the last row.
void readTable(IBISTable& table, IBISRecords records, std::int32_t& cursor,
               IBISErrorHandler& errors, const char* tableName);

/// Sets `value` and `slope` to the current at the voltage `x`, in amperes and amperes a volt.
///
/// Outside the table its end segments go on. A table that is not present sets nothing.
void evaluateTable(const IBISTable& table, double& value, double& slope, double x, int corner);

}  // namespace ibis
