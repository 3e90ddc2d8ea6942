#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ibis/diagnostic.h"

namespace ibis::cli {

/// A file to convert, or the fault found instead of one.
struct Source {
  std::string name;                 ///< As messages call it.
  std::string folder;               ///< Folder of its output; no other source has the same.
  std::optional<Diagnostic> fault;  ///< Why there is nothing to convert; none for a file.
};

/// Whether the arguments may name more than one file: several arguments, or a folder.
bool areManyFiles(const std::vector<std::string>& arguments);

/// The files among the arguments and in the folders among them, with output folders below `output`.
std::vector<Source> listSources(const std::vector<std::string>& arguments,
                                const std::string& output);

}  // namespace ibis::cli
