#pragma once

#include <nlohmann/json.hpp>
#include <vector>

#include "file_summary.h"
#include "json_pieces.h"

namespace ibis::cli {

/// Version of what `list` and `show` print; see docs/json.md.
inline constexpr int jsonSchema = 1;

/// The text, or null for an empty one.
nlohmann::ordered_json textOrNull(IBISString text);

/// The word, or null for none.
nlohmann::ordered_json wordOrNull(const char* word);

/// The corners that the file gives, the others null; null for no triple and an absent one.
void addCorners(JsonObject& object, std::string_view name, const IBISTriple* triple);

/// The components that use something, each with the names of its pins.
void addUsers(JsonObject& object, const std::vector<PinGroup>& groups);

/// Version, file name, revision and date.
void addHeader(JsonObject& object, const IBISFileData& file);

/// The names of the selectors that offer a model.
void addSelectors(JsonObject& object, const ModelSummary& summary);

/// Prints a selector with its users and choices.
void printSelector(std::ostream& out, const SelectorSummary& summary);

}  // namespace ibis::cli
