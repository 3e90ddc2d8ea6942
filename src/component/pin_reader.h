#pragma once

#include <span>

#include "ibis/component.h"
#include "reader/scanner.h"

namespace ibis {

/// Finds the columns of a table by its header: a place among the header's tokens for each name.
///
/// A name that stands twice counts at its last place; one that is missing keeps its place in the
/// expected order. A row's token is one further right, behind the pin's name.
std::vector<std::int32_t> mapColumns(IBISString header, std::span<const std::string_view> names);

/// Appends the pins behind [Pin] to the component; the index is left on the last row.
void readPins(IBISComponent& component, IBISRecords records, std::int32_t& index);

}  // namespace ibis
