#include "output/stream/file_sink.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <string_view>
#include <utility>

namespace ibis {
namespace {

// Opening a pipe would wait for its reader, and the host would wait too. This fails for a pipe
// without a reader, and keeps the reader of any other for as long as it lives.
class PipeProbe {
 public:
  explicit PipeProbe(const std::string& name) {
    struct stat status {};
    if (stat(name.c_str(), &status) != 0 || !S_ISFIFO(status.st_mode)) return;
    end_ = ::open(name.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    hasNoReader_ = end_ < 0;
  }
  ~PipeProbe() {
    if (end_ >= 0) ::close(end_);
  }
  PipeProbe(const PipeProbe&) = delete;
  PipeProbe& operator=(const PipeProbe&) = delete;

  bool hasNoReader() const { return hasNoReader_; }

 private:
  int end_ = -1;
  bool hasNoReader_ = false;
};

class FileTarget final : public SinkTarget {
 public:
  FileTarget() = default;
  ~FileTarget() override {
    if (file_ != nullptr) std::fclose(file_);
  }
  FileTarget(const FileTarget&) = delete;
  FileTarget& operator=(const FileTarget&) = delete;

  // Takes over a file, once. The stream of the output has a buffer; a second one would hold text
  // back.
  void take(std::FILE* file) {
    file_ = file;
    closeOnExec(file);
    std::setvbuf(file, nullptr, _IONBF, 0);
  }

  bool write(std::string_view text) override {
    if (std::fwrite(text.data(), 1, text.size(), file_) != text.size()) failed_ = true;
    return !failed_;
  }

  bool close() override {
    if (std::fclose(std::exchange(file_, nullptr)) != 0) failed_ = true;
    return !failed_;
  }

 private:
  std::FILE* file_ = nullptr;
  bool failed_ = false;
};

// The name of a file in two parts: the folder as it stands in the name, and the rest.
struct Place {
  explicit Place(const std::string& name) : begin(name.rfind('/') + 1), folder(name, 0, begin) {
    base = std::string_view(name).substr(begin);
  }

  bool isName() const { return !base.empty() && base != "." && base != ".."; }

  std::size_t begin;
  std::string folder;  // empty, or with its slash at the end
  std::string_view base;
};

// Whether the file is another user's, in a folder where it may be written but not replaced.
bool isProtected(const std::string& folder, const struct stat& file) {
  struct stat status {};
  if (geteuid() == 0 || file.st_uid == geteuid()) return false;
  if (stat(folder.empty() ? "." : folder.c_str(), &status) != 0) return true;
  return (status.st_mode & S_ISVTX) != 0 && status.st_uid != geteuid();
}

bool isRefusalOfFolder(int fault) {
  return fault == EACCES || fault == EPERM || fault == EROFS || fault == ENAMETOOLONG;
}

// Takes over owner and mode as far as the process may; a refusal is not a failure.
void takeOver(std::FILE* file, const struct stat& old) {
  const int number = fileno(file);
  struct stat now {};
  if (fstat(number, &now) != 0) return;
  const bool isOthers = now.st_uid != old.st_uid || now.st_gid != old.st_gid;
  if (isOthers && fchown(number, old.st_uid, old.st_gid) != 0) errno = 0;
  if (fchmod(number, old.st_mode & 07777) != 0) errno = 0;
}

std::uint64_t makeKey(const void* object) {
  const auto now = std::chrono::system_clock::now().time_since_epoch().count();
  const auto place = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(object));
  return static_cast<std::uint64_t>(now) ^ (place << 16) ^
         (static_cast<std::uint64_t>(getpid()) << 40);
}

std::string hexadecimal(std::uint64_t value) {
  char text[17];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(value));
  return text;
}

}  // namespace

FileSink::FileSink(OpenFunction opener) : open_(opener), key_(makeKey(this)) {}

FileSink::~FileSink() {
  for (const auto& [name, temporary] : made_) std::remove(temporary.c_str());
}

void FileSink::discardAll() {
  for (const auto& [name, temporary] : made_) discard(temporary);
  made_.clear();
}

void FileSink::discard(const std::string& temporary) {
  std::remove(temporary.c_str());
  forget(temporary);
}

std::unique_ptr<SinkTarget> FileSink::openBeside(const std::string& name, bool& cannotBe) {
  cannotBe = false;
  const Place place(name);
  struct stat old {};
  const bool exists = lstat(name.c_str(), &old) == 0;
  if (!place.isName() || (!exists && errno != ENOENT)) return nullptr;
  if (exists && (!S_ISREG(old.st_mode) || isProtected(place.folder, old))) return nullptr;
  if (exists && faccessat(AT_FDCWD, name.c_str(), W_OK, AT_EACCESS) != 0) {
    cannotBe = true;
    return nullptr;
  }
  const std::string temporary =
      place.folder + ".ibis-load-" + hexadecimal(key_ + ++count_) + ".part";
  // All memory is there before the file is, so that none is left that nobody knows of.
  auto target = std::make_unique<FileTarget>();
  std::map<std::string, std::string> made{{name, temporary}};
  announce(temporary);
  std::FILE* file = nullptr;
  const int fault = open_(&file, temporary.c_str(), "w");
  if (fault != 0) {
    forget(temporary);
    cannotBe = !isRefusalOfFolder(fault);
    return nullptr;
  }
  target->take(file);
  if (exists) takeOver(file, old);
  giveUp(name);
  made_.merge(made);
  return target;
}

std::unique_ptr<SinkTarget> FileSink::open(const std::string& name) {
  bool cannotBe = false;
  auto beside = openBeside(name, cannotBe);
  if (beside || cannotBe) return beside;
  const PipeProbe pipe(name);
  auto target = std::make_unique<FileTarget>();
  std::FILE* file = nullptr;
  if (pipe.hasNoReader() || open_(&file, name.c_str(), "w") != 0) return nullptr;
  target->take(file);
  giveUp(name);
  return target;
}

void FileSink::giveUp(const std::string& name) {
  const auto made = made_.find(name);
  if (made == made_.end()) return;
  discard(made->second);
  made_.erase(made);
}

bool FileSink::keep(const std::string& name) {
  const auto made = made_.find(name);
  if (made == made_.end()) return true;  // written in place
  const bool isKept = std::rename(made->second.c_str(), name.c_str()) == 0;
  if (isKept) {
    forget(made->second);
  } else {
    discard(made->second);
  }
  made_.erase(made);
  return isKept;
}

}  // namespace ibis
