#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "checked_file.h"

namespace ibis::cli {

/// Prints checked files as one run of SARIF 2.1.0, result by result.
class CheckSarif {
 public:
  /// Prints what stands in front of the results: the rules, and the names of all files.
  CheckSarif(std::ostream& out, const std::vector<std::string>& names);

  void add(const CheckedFile& file);
  void finish();

 private:
  std::ostream& out_;
  bool isFirst_ = true;
};

}  // namespace ibis::cli
