#include "folder_search.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <deque>
#include <memory>
#include <set>
#include <utility>

#include "ibis/ibis_string.h"
#include "messages.h"
#include "packed_input.h"

namespace ibis::cli {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view ibisEnding = ".ibs";

class Search {
 public:
  explicit Search(const fs::path& folder) : top_(folder) { knowAllAbove(folder); }

  std::vector<FoundFile> run() {
    search({top_, {}});
    // A folder's own path is searched first, so that its links do not take its place.
    for (; !links_.empty(); links_.pop_front()) search(links_.front());
    std::ranges::stable_sort(found_, {}, &FoundFile::below);
    return std::move(found_);
  }

 private:
  using Identity = std::pair<dev_t, ino_t>;

  struct Folder {
    fs::path name;
    fs::path below;
  };

  void addFault(const Folder& at, Diagnostic fault) {
    found_.push_back({.name = at.name, .below = at.below, .fault = std::move(fault)});
  }

  // What lies above the folder would lead back to it.
  void knowAllAbove(const fs::path& folder) {
    std::error_code fault;
    for (fs::path above = fs::canonical(folder, fault); above.has_relative_path();) {
      above = above.parent_path();
      struct stat status {};
      if (::stat(above.c_str(), &status) == 0) known_.emplace(status.st_dev, status.st_ino);
    }
  }

  void search(const Folder& first) {
    std::vector<Folder> waiting = {first};
    while (!waiting.empty()) {
      const Folder folder = std::move(waiting.back());
      waiting.pop_back();
      if (isNew(folder)) readFolder(folder, waiting);
    }
  }

  bool isNew(const Folder& folder) {
    struct stat status {};
    if (::stat(folder.name.c_str(), &status) != 0) {
      addFault(folder, tell(Severity::error, message::cannotReadFolder,
                            std::generic_category().message(errno).c_str()));
      return false;
    }
    return known_.emplace(status.st_dev, status.st_ino).second;
  }

  // The standard library's iterator of folders ends the program where memory lacks.
  void readFolder(const Folder& folder, std::vector<Folder>& waiting) {
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.name.c_str()), closedir);
    for (const dirent* each = nextOf(entries.get()); each != nullptr;
         each = nextOf(entries.get())) {
      const fs::path name = each->d_name;
      if (name == "." || name == "..") continue;
      addEntry(folder.name / name, each->d_type, folder.below / name, waiting);
    }
    if (errno == 0) return;
    addFault(folder, tell(Severity::error, message::cannotReadWholeFolder,
                          std::generic_category().message(errno).c_str()));
  }

  // Null at the end, where errno is 0, and for a fault.
  static const dirent* nextOf(DIR* entries) {
    if (entries == nullptr) return nullptr;
    errno = 0;
    return readdir(entries);
  }

  // A folder may lie too deep to be asked for its type, but its own folder tells it.
  void addEntry(const fs::path& path, unsigned char type, fs::path below,
                std::vector<Folder>& waiting) {
    std::error_code fault;
    std::error_code isUnknown;
    const bool mayLead = type == DT_LNK || type == DT_UNKNOWN;
    if (type == DT_DIR || (mayLead && fs::is_directory(path, fault))) {
      Folder folder{path, std::move(below)};
      if (mayLead && fs::is_symlink(path, isUnknown)) {
        links_.push_back(std::move(folder));
      } else {
        waiting.push_back(std::move(folder));
      }
    } else if (isIbisName(path.native())) {
      found_.push_back({.name = path, .below = std::move(below), .fault = {}});
    } else if (fault && fault != std::errc::no_such_file_or_directory) {
      addFault({path, std::move(below)},
               tell(Severity::error, message::cannotTellFolder, fault.message().c_str()));
    }
  }

  const fs::path top_;
  std::set<Identity> known_;
  std::deque<Folder> links_;
  std::vector<FoundFile> found_;
};

}  // namespace

bool isIbisName(std::string_view name) {
  return name.size() >= ibisEnding.size() &&
         equalIgnoringCase(name.substr(name.size() - ibisEnding.size()), ibisEnding);
}

std::vector<FoundFile> searchFolder(const fs::path& folder) { return Search(folder).run(); }

std::vector<FoundFile> searchArchive(const fs::path& archive) {
  MemberList members = listMembers(archive.string());
  std::vector<FoundFile> found;
  for (const std::string& name : members.names) {
    if (isIbisName(name)) {
      found.push_back({.name = archive.string() + '/' + name, .below = name, .fault = {}});
    }
  }
  if (members.fault) {
    found.push_back({.name = archive, .below = {}, .fault = std::move(members.fault)});
  }
  return found;
}

}  // namespace ibis::cli
