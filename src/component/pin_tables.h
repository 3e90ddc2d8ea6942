#pragma once

#include "ibis/component.h"
#include "reader/scanner.h"

namespace ibis {

// Each reads the lines after its keyword and leaves the index on the last one that it used.

/// [Diff Pin]: a short row is completed with NA, which means 0.2 V and no delays.
void readDiffPins(IBISComponent& component, IBISRecords records, std::int32_t& index);

/// [Pin Mapping]: a short row is completed with NC.
void readPinMappings(IBISComponent& component, IBISRecords records, std::int32_t& index);

/// [Series Pin Mapping]: a short row is completed with NA.
void readSeriesPinMappings(IBISComponent& component, IBISRecords records, std::int32_t& index);

/// [Series Switch Groups]: a stored group holds the pins of its first line alone.
void readSeriesSwitchGroups(IBISComponent& component, IBISRecords records, std::int32_t& index);

}  // namespace ibis
