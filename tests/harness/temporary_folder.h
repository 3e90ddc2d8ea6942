#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace ibis::testing {

/// A folder of its own that goes away with the object.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string path() const { return path_.string(); }
  std::string file(const std::string& name) const { return (path_ / name).string(); }

  /// Writes a file and gives its whole name.
  std::string write(const std::string& name, std::string_view text) const;

  /// Every file of the folder, name to content.
  std::map<std::string, std::string> contents() const;

  /// The names of all entries, sorted.
  std::vector<std::string> names() const;

 private:
  std::filesystem::path path_;
};

std::string readWholeFile(const std::string& name);
void writeWholeFile(const std::string& name, std::string_view text);

}  // namespace ibis::testing
