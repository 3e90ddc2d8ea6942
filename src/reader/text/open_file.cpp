#include "reader/text/open_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace ibis {
namespace {

// Names a file without opening it, so that no pipe is waited for and no device is woken.
class FileHandle {
 public:
  explicit FileHandle(const std::string& name)
      : number_(::open(name.c_str(), O_PATH | O_CLOEXEC)) {}
  ~FileHandle() {
    if (number_ >= 0) ::close(number_);
  }
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;

  bool isRegular() const {
    struct stat status {};
    return number_ >= 0 && fstat(number_, &status) == 0 && S_ISREG(status.st_mode);
  }

  // The name under which this very file can be opened, whatever became of the name before.
  std::string nameIn(const char* descriptors) const {
    return descriptors + std::to_string(number_);
  }

 private:
  int number_;
};

}  // namespace

int openFile(std::FILE** file, const char* name, const char* mode) {
  errno = 0;
  *file = std::fopen(name, (std::string(mode) + 'e').c_str());
  if (*file != nullptr) return 0;
  return errno != 0 ? errno : EINVAL;
}

void closeOnExec(std::FILE* file) {
  const int number = fileno(file);
  const int flags = fcntl(number, F_GETFD);
  if (flags >= 0) fcntl(number, F_SETFD, flags | FD_CLOEXEC);
}

OpenFile openRegularFile(const std::string& name, OpenFunction open, struct stat& status,
                         const char* descriptors) {
  const FileHandle handle(name);
  if (!handle.isRegular()) return nullptr;
  const std::string same = handle.nameIn(descriptors);
  const bool isThere = access(same.c_str(), F_OK) == 0;
  std::FILE* file = nullptr;
  if (open(&file, isThere ? same.c_str() : name.c_str(), "rb") != 0) return nullptr;
  OpenFile opened(file);
  closeOnExec(file);
  if (fstat(fileno(file), &status) != 0 || !S_ISREG(status.st_mode)) return nullptr;
  return opened;
}

}  // namespace ibis
