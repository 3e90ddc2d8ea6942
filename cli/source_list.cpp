#include "source_list.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <unordered_map>
#include <utility>

#include "ibis/ibis_string.h"
#include "messages.h"

namespace ibis::cli {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view ibisEnding = ".ibs";

bool isFolder(const std::string& name) {
  std::error_code isAbsent;
  return fs::is_directory(name, isAbsent);
}

bool isIbisName(std::string_view name) {
  return name.size() >= ibisEnding.size() &&
         equalIgnoringCase(name.substr(name.size() - ibisEnding.size()), ibisEnding);
}

// Without their ending, "..ibs" and "...ibs" would lead out of the output folder.
std::string withoutEnding(const std::string& name) {
  if (!isIbisName(name)) return name;
  const std::string stem = name.substr(0, name.size() - ibisEnding.size());
  return stem.empty() || stem == "." || stem == ".." ? name : stem;
}

// Returns each folder name once, so that no two sources write into one folder.
class FolderNames {
 public:
  std::string take(const std::string& wanted) {
    std::string name = wanted;
    while (!taken_.try_emplace(name, 1).second) {
      name = wanted + '_' + std::to_string(++taken_[wanted]);
    }
    return name;
  }

 private:
  std::unordered_map<std::string, std::size_t> taken_;  // with the last number given
};

class SourceCollector {
 public:
  explicit SourceCollector(fs::path output) : output_(std::move(output)) {}

  void addFile(const fs::path& name, const fs::path& below) {
    const fs::path wanted = output_ / below / withoutEnding(name.filename().string());
    sources_.push_back(
        {.name = name.string(), .folder = folders_.take(wanted.string()), .fault = {}});
  }

  void addFolder(const fs::path& name) {
    const std::size_t before = sources_.size();
    search(name, {});
    if (sources_.size() == before) addFault(name, tell(Severity::error, message::nothingToConvert));
  }

  std::vector<Source> take() { return std::move(sources_); }

 private:
  using Identity = std::pair<dev_t, ino_t>;

  void addFault(const fs::path& name, Diagnostic fault) {
    sources_.push_back({.name = name.string(), .folder = {}, .fault = std::move(fault)});
  }

  // Takes the files and folders of a folder by name, whatever order the file system has.
  void search(const fs::path& name, const fs::path& below) {
    if (!enter(name)) return;
    std::error_code fault;
    std::vector<fs::directory_entry> entries;
    for (fs::directory_iterator entry(name, fault), end; !fault && entry != end;
         entry.increment(fault)) {
      entries.push_back(*entry);
    }
    if (fault)
      addFault(name,
               tell(Severity::error, message::cannotReadWholeFolder, fault.message().c_str()));
    std::ranges::sort(entries);
    for (const fs::directory_entry& entry : entries) addEntry(entry, below);
    searched_.pop_back();
  }

  void addEntry(const fs::directory_entry& entry, const fs::path& below) {
    std::error_code fault;
    if (entry.is_directory(fault)) {
      search(entry.path(), below / entry.path().filename());
    } else if (isIbisName(entry.path().native())) {
      addFile(entry.path(), below);
    } else if (fault && fault != std::errc::no_such_file_or_directory) {
      addFault(entry.path(),
               tell(Severity::error, message::cannotTellFolder, fault.message().c_str()));
    }
  }

  // A folder that leads to itself would be searched for ever.
  bool enter(const fs::path& name) {
    struct stat status {};
    if (::stat(name.c_str(), &status) != 0) {
      addFault(name, tell(Severity::error, message::cannotReadFolder,
                          std::generic_category().message(errno).c_str()));
      return false;
    }
    const Identity identity(status.st_dev, status.st_ino);
    if (std::ranges::find(searched_, identity) != searched_.end()) {
      addFault(name, tell(Severity::error, message::linkLeadsBack));
      return false;
    }
    searched_.push_back(identity);
    return true;
  }

  fs::path output_;
  FolderNames folders_;
  std::vector<Identity> searched_;  // the folder that is being searched, and those above it
  std::vector<Source> sources_;
};

}  // namespace

bool areManyFiles(const std::vector<std::string>& arguments) {
  return arguments.size() > 1 || std::ranges::any_of(arguments, isFolder);
}

std::vector<Source> listSources(const std::vector<std::string>& arguments,
                                const std::string& output) {
  SourceCollector collector(output);
  for (const std::string& argument : arguments) {
    if (isFolder(argument)) {
      collector.addFolder(argument);
    } else {
      collector.addFile(argument, {});
    }
  }
  return collector.take();
}

}  // namespace ibis::cli
