#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "conversion.h"

namespace ibis::cli {

/// What one conversion alone ends the program with.
int exitStatusOf(const Conversion& conversion, bool warningsFail);

/// Each message on a line of its own that editors can jump on; in one piece, since standard error
/// writes each piece by itself.
std::string messageText(const std::string& source, const Conversion& conversion);

/// Writes the names of the files and the counts of messages.
void printSummary(std::ostream& out, const Conversion& conversion);

/// Writes all of it and the exit status as one JSON object on one line.
void printJson(std::ostream& out, const Conversion& conversion, int status);

/// A JSON array of such objects, each with its file and on a line of its own.
class JsonArray {
 public:
  void add(std::ostream& out, const std::string& file, const Conversion& conversion, int status);

  /// Closes the array, to which something was added.
  void finish(std::ostream& out) const { out << "]\n"; }

 private:
  std::string_view separator_ = "[";
};

/// A number and a word, such as "1 file" and "2 files".
std::string counted(std::size_t count, const std::string& word);

}  // namespace ibis::cli
