#include "harness/temporary_folder.h"

#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace ibis::testing {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  std::string pattern = (fs::temp_directory_path() / "ibis-load-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path_ = fs::canonical(pattern);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string TemporaryFolder::write(const std::string& name, std::string_view text) const {
  writeWholeFile(file(name), text);
  return file(name);
}

std::map<std::string, std::string> TemporaryFolder::contents() const {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::directory_iterator(path_)) {
    if (entry.is_regular_file()) {
      files[entry.path().filename().string()] = readWholeFile(entry.path().string());
    }
  }
  return files;
}

std::vector<std::string> TemporaryFolder::names() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(path_)) {
    names.push_back(entry.path().filename().string());
  }
  std::ranges::sort(names);
  return names;
}

std::string readWholeFile(const std::string& name) {
  std::ifstream stream(name, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  if (!stream) throw std::runtime_error("cannot read " + name);
  return text.str();
}

void writeWholeFile(const std::string& name, std::string_view text) {
  std::ofstream stream(name, std::ios::binary);
  stream << text;
  if (!stream.flush()) throw std::runtime_error("cannot write " + name);
}

}  // namespace ibis::testing
