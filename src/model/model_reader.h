#pragma once

#include "component/names/name_table.h"
#include "host/diagnostics/error_handler.h"
#include "ibis/model.h"
#include "reader/scanner.h"

namespace ibis {

/// Fills a model from the [Model] record at the cursor.
///
/// Returns 1 if a keyword ended the section, with the cursor one before it; 0 if the records ran
/// out.
int readModelSection(IBISModel& model, IBISRecords records, std::int32_t& cursor,
                     IBISNameTable& nameTable, IBISErrorHandler& errors);

/// Reads the name and the lines of sub-parameters; the cursor is left on the last of them.
void readModelSubParameters(IBISModel& model, IBISRecords records, std::int32_t& cursor,
                            IBISNameTable& nameTable, IBISErrorHandler& errors);

/// Reads the triples after [Model Spec]; the cursor is left on the last line.
void readModelSpec(IBISModel& model, IBISRecords records, std::int32_t& cursor);

/// State of a series switch while a [Model] section is read.
enum class SeriesState { on, off, notGiven };

/// Reads a [Series MOSFET] table, which is dropped while the state is not given.
void readSeriesMosfet(IBISModel& model, IBISRecords records, std::int32_t& cursor,
                      SeriesState state, IBISErrorHandler& errors);

}  // namespace ibis
