#include "support/files.h"

#include <cerrno>
#include <deque>
#include <filesystem>
#include <optional>
#include <system_error>

namespace {

namespace fs = std::filesystem;

constexpr int mostLinks = 40;  // as many as the kernel follows in one path

std::deque<fs::path> componentsOf(const fs::path& path) { return {path.begin(), path.end()}; }

// Takes one component after the other, since any of them may be a link, even one to nothing.
std::optional<fs::path> withoutLinks(const fs::path& absolute) {
  std::deque<fs::path> pending = componentsOf(absolute);
  fs::path resolved;
  int links = 0;
  while (!pending.empty()) {
    const fs::path component = pending.front();
    pending.pop_front();
    if (component == "..") {
      resolved = resolved.parent_path();
      continue;
    }
    if (component.empty() || component == ".") continue;
    const fs::path next = resolved / component;  // a root component replaces all before it
    std::error_code fault;
    if (!fs::is_symlink(next, fault)) {
      resolved = next;
      continue;
    }
    const fs::path target = fs::read_symlink(next, fault);
    if (fault || ++links > mostLinks) return std::nullopt;
    const std::deque<fs::path> inner = componentsOf(target);
    pending.insert(pending.begin(), inner.begin(), inner.end());
  }
  return resolved;
}

}  // namespace

int fopen_s_utf8(std::FILE** file, const char* name, const char* mode) {
  errno = 0;
  *file = std::fopen(name, (std::string(mode) + 'e').c_str());
  if (*file != nullptr) return 0;
  return errno != 0 ? errno : EINVAL;
}

YString sp_GetFullPath(const YString& name) {
  std::error_code fault;
  const fs::path absolute = fs::absolute(name.text(), fault);
  if (fault) return name;
  const std::optional<fs::path> resolved = withoutLinks(absolute);
  return resolved ? YString(resolved->c_str()) : name;
}
