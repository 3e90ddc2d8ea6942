#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ibis/diagnostic.h"

namespace ibis::cli {

/// A file to convert, or what was found instead of one.
struct Source {
  std::string name;                 ///< As messages call it.
  std::string folder;               ///< Where its output goes, no other source's goes there.
  std::optional<Diagnostic> fault;  ///< Why there is nothing to convert; none for a file.
};

/// Whether the arguments may give more than one file: several of them, or a folder.
bool areManyFiles(const std::vector<std::string>& arguments);

/// The files among the arguments and in the folders among them, with output folders below `output`.
std::vector<Source> listSources(const std::vector<std::string>& arguments,
                                const std::string& output);

}  // namespace ibis::cli
