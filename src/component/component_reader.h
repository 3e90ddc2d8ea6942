#pragma once

#include "component/names/name_table.h"
#include "host/diagnostics/error_handler.h"
#include "ibis/component.h"
#include "reader/scanner.h"

namespace ibis {

/// Reads the section that begins at the index, if that is a [Component].
///
/// True when it stopped at a keyword that ends the component, with the index one before it; false
/// when the records ran out.
bool readComponent(IBISComponent& component, IBISRecords records, std::int32_t& index,
                   IBISNameTable& nameTable, IBISErrorHandler& errors);

}  // namespace ibis
