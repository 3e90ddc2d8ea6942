#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "conversion.h"

namespace ibis::cli {

/// The exit status of the program for one conversion alone.
int exitStatusOf(const Conversion& conversion, bool warningsFail);

/// How many messages of a file are printed unless a user says otherwise.
inline constexpr std::size_t usualMessageLimit = 1000;

/// How many findings of a rule are printed of a file.
inline constexpr std::size_t toldOfRule = 5;

/// Prints warnings, what a check found, errors and notes, each in a form that editors can follow to
/// the source.
///
/// Beyond the limit it tells how many more there are; errors come before the others are cut.
void printMessages(std::ostream& out, const std::string& source, const Conversion& conversion,
                   std::size_t limit = usualMessageLimit);

/// The same of a list.
void printMessages(std::ostream& out, const std::string& source,
                   const std::vector<Diagnostic>& list, std::size_t limit = usualMessageLimit);

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

/// That messages beyond a limit, or findings of a rule beyond the usual, are not printed.
Diagnostic tellMoreMessages(std::size_t count);
Diagnostic tellMoreOfRule(std::size_t count, std::string_view id);

/// What a summary adds about errors that a check found; nothing for none.
std::string findingsText(std::size_t count);

/// A number and a word, such as "1 file" and "2 files".
std::string counted(std::size_t count, const std::string& word);

}  // namespace ibis::cli
