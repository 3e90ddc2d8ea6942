#include "input_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <optional>

#include "input_text.h"

namespace ibis::cli {
namespace {

std::optional<std::pair<dev_t, ino_t>> identityOf(const std::string& name) {
  struct stat status {};
  if (::stat(name.c_str(), &status) != 0) return std::nullopt;
  return std::pair(status.st_dev, status.st_ino);
}

}  // namespace

void InputFiles::add(const std::string& source) {
  struct stat status {};
  if (source == standardInput) {
    if (::fstat(STDIN_FILENO, &status) == 0) identities_.insert({status.st_dev, status.st_ino});
    return;
  }
  const std::optional<MemberName> member = splitMemberName(source);
  if (const auto identity = identityOf(member ? member->archive : source)) {
    identities_.insert(*identity);
  }
}

bool InputFiles::hold(const std::string& name) const {
  const auto identity = identityOf(name);
  return identity && identities_.contains(*identity);
}

}  // namespace ibis::cli
