#include "reader/text/open_file.h"

#include <cerrno>

namespace ibis {

int openFile(std::FILE** file, const char* name, const char* mode) {
  errno = 0;
  *file = std::fopen(name, mode);
  if (*file != nullptr) return 0;
  return errno != 0 ? errno : EINVAL;
}

}  // namespace ibis
