#pragma once

#include <filesystem>
#include <string>
#include <unordered_map>

namespace ibis::cli {

/// A file's name with small ASCII letters alone; names that are equal then may be one file.
std::string foldedName(std::string name);

/// Names of output folders, each given once, so that no two sources write into one folder.
///
/// Names that differ by the case of ASCII letters alone count as one, as they do on some file
/// systems.
class FolderNames {
 public:
  /// The wanted name, or the first of NAME_2, NAME_3 and so on that is free.
  ///
  /// A part that ends as an output file does gets a "_", so that no folder stands where a file of
  /// another source belongs.
  std::string take(const std::filesystem::path& output, const std::filesystem::path& below);

 private:
  std::unordered_map<std::string, std::size_t> taken_;  // with the last number given
};

}  // namespace ibis::cli
