#include "memory_disk.h"

#include <sys/mman.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "fuzz.h"
#include "support/files.h"

namespace ibis::fuzz {
namespace {

constexpr std::size_t roomWhenFull = 1000;

struct OpenFile {
  std::string& content;
  std::size_t room;
};

ssize_t writeFile(void* cookie, const char* data, std::size_t size) {
  const auto* file = static_cast<OpenFile*>(cookie);
  if (size > file->room - file->content.size()) {
    memoryDisk().hasFailed = true;
    errno = ENOSPC;
    return 0;
  }
  file->content.append(data, size);
  return static_cast<ssize_t>(size);
}

int closeFile(void* cookie) {
  delete static_cast<OpenFile*>(cookie);
  return 0;
}

std::FILE* openForWriting(const std::string& name) {
  std::string& content = memoryDisk().files[name];
  content.clear();
  const std::size_t room = name.starts_with("full/") ? roomWhenFull : content.max_size();
  cookie_io_functions_t functions{};
  functions.write = writeFile;
  functions.close = closeFile;
  return fopencookie(new OpenFile{content, room}, "w", functions);
}

}  // namespace

bool MemoryDisk::holds(const std::vector<std::string>& names) const {
  const auto isThere = [this](const std::string& name) { return files.contains(name); };
  return names.size() == files.size() && std::ranges::all_of(names, isThere);
}

MemoryDisk& memoryDisk() {
  static MemoryDisk disk;
  return disk;
}

std::string inputFile(std::string_view text) {
  static const int file = memfd_create("input.ibs", MFD_CLOEXEC);
  const auto size = static_cast<ssize_t>(text.size());
  REQUIRE(ftruncate(file, size) == 0);
  REQUIRE(pwrite(file, text.data(), text.size(), 0) == size);
  return "/proc/self/fd/" + std::to_string(file);
}

}  // namespace ibis::fuzz

// Stands in front of the support library's own, so that no input can name a file of this machine.
int fopen_s_utf8(std::FILE** file, const char* name, const char* mode) {
  *file = nullptr;
  if (std::strcmp(mode, "rb") == 0) {
    *file = std::fopen(name, mode);
  } else if (std::strncmp(name, "nowhere/", 8) != 0) {
    *file = ibis::fuzz::openForWriting(name);
  }
  if (*file != nullptr) return 0;
  ibis::fuzz::memoryDisk().hasFailed = true;
  return ENOENT;
}
