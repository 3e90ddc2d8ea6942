#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ibis/diagnostic.h"

namespace ibis::cli {

/// The names that a mistyped one may mean, the nearest first, three at most.
///
/// A name of other case comes first; else a third of its characters may differ.
std::vector<std::string> nearNames(std::string_view name, const std::vector<std::string>& names);

/// The names between commas; of many the first ones and how many more there are.
std::string namesText(const std::vector<std::string>& names, std::size_t most = 12);

/// "did you mean 'A' or 'B'?", or the empty text if no name is near.
std::string meantText(std::string_view name, const std::vector<std::string>& names);

/// Adds a note to an error about a name: which one may be meant, else which there are.
void addNames(Diagnostic& error, std::string_view name, const std::vector<std::string>& names,
              const std::string& there = "the file has ");

}  // namespace ibis::cli
