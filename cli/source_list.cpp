#include "source_list.h"

#include <algorithm>
#include <filesystem>

#include "folder_names.h"
#include "folder_search.h"
#include "messages.h"
#include "packed_input.h"

namespace ibis::cli {
namespace {

namespace fs = std::filesystem;

bool isFolder(const std::string& name) {
  std::error_code isAbsent;
  return fs::is_directory(name, isAbsent);
}

bool holdsFiles(const std::string& name) { return isFolder(name) || isZipArchive(name); }

// Without their ending, "..ibs" and "...ibs" would lead out of the output folder.
fs::path withoutEnding(fs::path name) {
  const fs::path stem = name.stem();
  const bool isName = !stem.empty() && stem != "." && stem != "..";
  return isName && isIbisName(name.native()) ? name.replace_filename(stem) : name;
}

class SourceCollector {
 public:
  explicit SourceCollector(fs::path output) : output_(std::move(output)) {}

  void addFile(const fs::path& name, const fs::path& below) {
    sources_.push_back({.name = name.string(),
                        .folder = folders_.take(output_, withoutEnding(below)),
                        .fault = {}});
  }

  void addAll(const fs::path& name, std::vector<FoundFile> files) {
    for (FoundFile& file : files) {
      if (file.fault) {
        addFault(file.name, std::move(*file.fault));
      } else {
        addFile(file.name, file.below);
      }
    }
    if (files.empty()) addFault(name, tell(Severity::error, message::nothingToConvert));
  }

  std::vector<Source> take() { return std::move(sources_); }

 private:
  void addFault(const fs::path& name, Diagnostic fault) {
    sources_.push_back({.name = name.string(), .folder = {}, .fault = std::move(fault)});
  }

  fs::path output_;
  FolderNames folders_;
  std::vector<Source> sources_;
};

}  // namespace

bool areManyFiles(const std::vector<std::string>& arguments) {
  return arguments.size() > 1 || std::ranges::any_of(arguments, holdsFiles);
}

std::vector<Source> listSources(const std::vector<std::string>& arguments,
                                const std::string& output) {
  SourceCollector collector(output);
  for (const std::string& argument : arguments) {
    if (isFolder(argument)) {
      collector.addAll(argument, searchFolder(argument));
    } else if (isZipArchive(argument)) {
      collector.addAll(argument, searchArchive(argument));
    } else {
      collector.addFile(argument, fs::path(argument).filename());
    }
  }
  return collector.take();
}

}  // namespace ibis::cli
