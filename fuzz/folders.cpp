// Folders, files and links made from the bytes, and the search for IBIS files among them.
//
// A line that ends in '/' is a folder, one with '>' a link with its target, any other a file. All
// targets lie in the tree. Against a walk that follows no link: since each folder is in the tree by
// its own path, links lead to nothing more.

#include <algorithm>
#include <fstream>
#include <set>

#include "folder_search.h"
#include "fuzz.h"
#include "harness/temporary_folder.h"

namespace ibis::fuzz {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t mostLines = 40;
constexpr int mostFolders = 6;

// A name below a folder: neither the folder above nor a name too long to be made is among its
// parts.
fs::path below(const fs::path& top, std::string_view text) {
  constexpr std::size_t longestPart = 60;
  fs::path path = top;
  for (int depth = 0; !text.empty() && depth < mostFolders; ++depth) {
    const std::string_view part = text.substr(0, text.find('/'));
    text.remove_prefix(std::min(part.size() + 1, text.size()));
    const std::string_view name = part.substr(0, std::min(part.find('\0'), longestPart));
    if (!name.empty() && name != "." && name != "..") path /= name;
  }
  return path;
}

// What is in the way of what stays as it is.
void make(const fs::path& top, std::string_view line) {
  std::error_code fault;
  const std::size_t link = line.find('>');
  const fs::path name = below(top, line.substr(0, link));
  if (!fs::weakly_canonical(name.parent_path(), fault).native().starts_with(top.native())) return;
  fs::create_directories(line.ends_with('/') ? name : name.parent_path(), fault);
  if (link != line.npos) {
    fs::create_symlink(below(top, line.substr(link + 1)), name, fault);
  } else if (!line.ends_with('/') && !fs::is_symlink(name, fault)) {
    std::ofstream(name, std::ios::app);
  }
}

void makeTree(const fs::path& top, std::string_view text) {
  for (std::size_t count = 0; !text.empty() && count < mostLines; ++count) {
    const std::string_view line = text.substr(0, text.find('\n'));
    make(top, line);
    text.remove_prefix(std::min(line.size() + 1, text.size()));
  }
}

// A walk of every folder by its own path; what cannot be told of a name is a fault.
std::set<fs::path> namesInTree(const fs::path& top) {
  std::set<fs::path> names;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(top)) {
    std::error_code fault;
    const bool isFolder = fs::is_directory(entry.path(), fault);
    const bool isUnknown = fault && fault != std::errc::no_such_file_or_directory;
    const bool isFound = cli::isIbisName(entry.path().native()) || isUnknown;
    if (!isFolder && isFound) names.insert(entry.path().lexically_relative(top));
  }
  return names;
}

// Each is found once, by whatever path, and the list is in the order of its names.
void checkOnce(const fs::path& from) {
  std::set<fs::path> known;
  fs::path last;
  for (const cli::FoundFile& each : cli::searchFolder(from)) {
    REQUIRE(each.name == from / each.below && last <= each.below);
    REQUIRE(known.insert(fs::canonical(each.name.parent_path()) / each.name.filename()).second);
    last = each.below;
  }
}

void checkTree(const fs::path& top) {
  std::set<fs::path> found;
  for (const cli::FoundFile& each : cli::searchFolder(top)) found.insert(each.below);
  REQUIRE(found == namesInTree(top));
  checkOnce(top);
  for (const fs::directory_entry& entry : fs::directory_iterator(top)) {
    std::error_code fault;
    if (entry.is_directory(fault)) checkOnce(entry.path());
  }
}

}  // namespace
}  // namespace ibis::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ibis;
  static const testing::TemporaryFolder folder;
  std::filesystem::create_directory(folder.file("tree"));
  const std::filesystem::path top = std::filesystem::canonical(folder.file("tree"));
  fuzz::makeTree(top, fuzz::textOf(data, size));
  fuzz::checkTree(top);
  std::filesystem::remove_all(top);
  return 0;
}
