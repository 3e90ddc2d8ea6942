#pragma once

#include <span>

#include "ibis/component.h"
#include "reader/scanner.h"

namespace ibis {

/// Finds the columns of a table by its header: for each name an index of the header's tokens.
///
/// A repeated name counts where it is last; a missing one keeps its index in the expected order. A
/// row's token is one further right, after the pin's name.
std::vector<std::int32_t> mapColumns(IBISString header, std::span<const std::string_view> names);

/// Appends the pins after [Pin] to the component; the index is left on the last row.
void readPins(IBISComponent& component, IBISRecords records, std::int32_t& index);

}  // namespace ibis
