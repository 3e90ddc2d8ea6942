#pragma once

#include <nlohmann/json.hpp>
#include <vector>

#include "file_summary.h"

namespace ibis::cli {

/// Version of what `list` and `show` print; see docs/json.md.
inline constexpr int jsonSchema = 1;

/// The text, or null for an empty one.
nlohmann::ordered_json textOrNull(IBISString text);

/// The corners that the file gives, the others null; null for no triple and an absent one.
nlohmann::ordered_json tripleJson(const IBISTriple* triple);

/// Each as an object of id, line and text.
nlohmann::ordered_json diagnosticsJson(const std::vector<Diagnostic>& list);

/// Each component with the names of its pins.
nlohmann::ordered_json usersJson(const std::vector<PinGroup>& groups);

/// Adds version, file name, revision and date.
void addHeaderJson(nlohmann::ordered_json& object, const IBISFileData& file);

/// A selector with its users and choices.
nlohmann::ordered_json selectorJson(const SelectorSummary& summary);

/// The names of the selectors that offer a model.
nlohmann::ordered_json selectorNamesJson(const ModelSummary& summary);

}  // namespace ibis::cli
