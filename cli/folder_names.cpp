#include "folder_names.h"

#include <algorithm>
#include <string_view>

#include "ibis/ibis_string.h"

namespace ibis::cli {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view outputEndings[] = {".lb", "_INFO.html", ".kvscr"};

bool endsAsOutput(std::string_view name) {
  return std::ranges::any_of(outputEndings, [&](std::string_view ending) {
    return name.size() >= ending.size() &&
           equalIgnoringCase(name.substr(name.size() - ending.size()), ending);
  });
}

// Without parts that lead elsewhere: a member of an archive may have any name.
fs::path harmless(const fs::path& below) {
  fs::path parts;
  for (const fs::path& part : below.relative_path()) {
    if (part.empty() || part == "." || part == "..") continue;
    parts /= endsAsOutput(part.native()) ? part.native() + '_' : part.native();
  }
  return parts;
}

}  // namespace

std::string foldedName(std::string name) {
  for (char& c : name) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return name;
}

std::string FolderNames::take(const fs::path& output, const fs::path& below) {
  const std::string wanted = (output / harmless(below)).string();
  std::string name = wanted;
  while (!taken_.try_emplace(foldedName(name), 1).second) {
    name = wanted + '_' + std::to_string(++taken_[foldedName(wanted)]);
  }
  return name;
}

}  // namespace ibis::cli
