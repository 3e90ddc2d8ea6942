#include "source_fault.h"

#include <cstdio>
#include <filesystem>
#include <limits>
#include <system_error>

#include "messages.h"
#include "reader/text/open_file.h"

namespace ibis::cli {

namespace fs = std::filesystem;

Diagnostic reasonUnread(const std::string& source) {
  std::error_code fault;
  const fs::file_status status = fs::status(source, fault);
  // This comes first, since opening a pipe would wait for its writer.
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    return tell(Severity::error, message::notRegular);
  }
  std::FILE* file = nullptr;
  if (const int number = openFile(&file, source.c_str(), "rb"); number != 0) {
    return tell(Severity::error, message::cannotOpenFile,
                std::generic_category().message(number).c_str());
  }
  std::fclose(file);
  const bool isTooLarge = fs::file_size(source, fault) >= std::numeric_limits<std::int32_t>::max();
  return tell(Severity::error, isTooLarge ? message::fileTooLarge : message::cannotReadFile);
}

}  // namespace ibis::cli
