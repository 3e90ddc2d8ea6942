#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace ibis::fuzz {

/// What a target's load writes: every file that it opens for writing lies here, on no disk.
///
/// Names that begin with "nowhere/" cannot be opened, those that begin with "full/" take 1000
/// bytes.
struct MemoryDisk {
  /// Whether the files are those of these names and no others.
  bool holds(const std::vector<std::string>& names) const;

  std::map<std::string, std::string> files;  ///< Name to content.
  bool hasFailed = false;                    ///< Whether anything could not be opened or written.
};

/// The one disk; an assignment empties it, when no file is open.
MemoryDisk& memoryDisk();

/// Puts a text into a file that exists in memory alone, and gives its name, always the same.
std::string inputFile(std::string_view text);

}  // namespace ibis::fuzz
