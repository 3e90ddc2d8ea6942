#pragma once

#include "host/diagnostics/error_handler.h"
#include "ibis/package_model.h"
#include "reader/scanner.h"

namespace ibis {

/// Reads the [Define Package Model] at the index; always true.
///
/// The index is left on [End Package Model], or one before the keyword that ends the section.
bool readPackageModel(IBISPackageModel& model, IBISRecords records, std::int32_t& index,
                      IBISErrorHandler& errors);

}  // namespace ibis
