#pragma once

#include <string>

#include "file_summary.h"
#include "model_values.h"

namespace ibis::cli {

/// A model in full for a person, with units and without the points of its tables.
std::string modelText(const ModelSummary& summary);

/// The points of a table or a waveform as lines of four numbers behind a line of titles.
///
/// A cell that the file leaves out is empty.
std::string csvText(const IBISTable& table);
std::string csvText(const IBISWaveform& waveform);

/// The pins of groups, all of them, each group with its component.
std::string usersText(const std::vector<PinGroup>& groups);

}  // namespace ibis::cli
