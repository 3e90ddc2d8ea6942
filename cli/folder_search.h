#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "ibis/diagnostic.h"

namespace ibis::cli {

/// A file that a search found, or a fault at a name.
struct FoundFile {
  std::filesystem::path name;   ///< As it is opened.
  std::filesystem::path below;  ///< The same from the folder that was searched.
  std::optional<Diagnostic> fault;
};

/// Whether a name ends in .ibs, in any case.
bool isIbisName(std::string_view name);

/// The files below a folder whose names end in .ibs, by name.
///
/// Each folder is searched once, by its own path rather than by a link. A link to a folder that was
/// searched, or to one that holds the folder itself, is passed over.
std::vector<FoundFile> searchFolder(const std::filesystem::path& folder);

/// The members of a zip archive whose names end in .ibs, by name.
std::vector<FoundFile> searchArchive(const std::filesystem::path& archive);

}  // namespace ibis::cli
