#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "conversion.h"

namespace ibis::cli {

/// The exit status of the program for one conversion alone.
int exitStatusOf(const Conversion& conversion, bool warningsFail);

/// The messages, one a line in a form that editors can follow to the source; in one piece, since
/// standard error writes each piece by itself.
std::string messageText(const std::string& source, const Conversion& conversion);

/// The same of a list.
std::string messageText(const std::string& source, const std::vector<Diagnostic>& list);

/// Writes the names of the files and the counts of messages.
void printSummary(std::ostream& out, const Conversion& conversion);

/// Writes the conversion and its exit status as one JSON object on one line.
void printJson(std::ostream& out, const Conversion& conversion, int status);

/// Writes a JSON array of such objects, each with its file and on a line of its own.
class JsonArray {
 public:
  void add(std::ostream& out, const std::string& file, const Conversion& conversion, int status);

  /// Closes the array, which must not be empty.
  void finish(std::ostream& out) const { out << "]\n"; }

 private:
  std::string_view separator_ = "[";
};

/// A number and a word, such as "1 file" and "2 files".
std::string counted(std::size_t count, const std::string& word);

}  // namespace ibis::cli
