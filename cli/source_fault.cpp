#include "source_fault.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <limits>
#include <system_error>

#include "messages.h"

namespace ibis::cli {

namespace fs = std::filesystem;

Diagnostic reasonUnread(const std::string& source) {
  std::error_code fault;
  const fs::file_status status = fs::status(source, fault);
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    return tell(Severity::error, message::notRegular);
  }
  const int file = open(source.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) {
    return tell(Severity::error, message::cannotOpenFile,
                std::generic_category().message(errno).c_str());
  }
  close(file);
  const bool isTooLarge = fs::file_size(source, fault) >= std::numeric_limits<std::int32_t>::max();
  return tell(Severity::error, isTooLarge ? message::fileTooLarge : message::cannotReadFile);
}

}  // namespace ibis::cli
