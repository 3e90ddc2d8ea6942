#pragma once

#include <nlohmann/json.hpp>
#include <ostream>
#include <string_view>
#include <vector>

#include "ibis/diagnostic.h"
#include "json_line.h"

namespace ibis::cli {

/// Prints a JSON array element by element, so that it never stands in memory as a whole.
template <class Element, class Print>
void printArray(std::ostream& out, const std::vector<Element>& list, Print print) {
  out << '[';
  bool isFirst = true;
  for (const Element& each : list) {
    if (!isFirst) out << ',';
    isFirst = false;
    print(each);
  }
  out << ']';
}

/// Prints a text as JSON.
inline void printJsonText(std::ostream& out, std::string_view text) {
  out << jsonText(nlohmann::json(text));
}

/// Prints a line number, or null for none.
inline void printLineNumber(std::ostream& out, std::int32_t line) {
  if (line > 0) {
    out << line;
  } else {
    out << "null";
  }
}

/// Prints notes as an array of objects of line and text.
void printNotes(std::ostream& out, const std::vector<Note>& notes);

/// Prints a message as an object of id, line, text and, where there are some, notes.
void printDiagnostic(std::ostream& out, const Diagnostic& diagnostic);

}  // namespace ibis::cli
