#pragma once

#include <sys/types.h>

#include <set>
#include <string>
#include <utility>

namespace ibis::cli {

/// The files that a run reads, whatever name each goes by.
class InputFiles {
 public:
  /// Adds a file; a member of a zip archive stands for the archive, "-" for standard input.
  void add(const std::string& source);

  /// Whether a name leads to one of them.
  bool hold(const std::string& name) const;

 private:
  std::set<std::pair<dev_t, ino_t>> identities_;
};

}  // namespace ibis::cli
