#pragma once

#include <ostream>

#include "checked_file.h"

namespace ibis::cli {

/// Prints checked files as JSON, one at a time: one FILE as an object, several as an array.
class CheckJson {
 public:
  CheckJson(std::ostream& out, bool isArray) : out_(out), isArray_(isArray) {}

  void add(const CheckedFile& file);
  void finish();

 private:
  std::ostream& out_;
  bool isArray_;
  bool isFirst_ = true;
};

}  // namespace ibis::cli
