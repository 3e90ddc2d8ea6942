#pragma once

#include <nlohmann/json.hpp>
#include <ostream>
#include <string_view>
#include <vector>

#include "ibis/diagnostic.h"
#include "json_line.h"

namespace ibis::cli {

/// Prints a JSON array element by element, so that it never stands in memory as a whole.
template <class List, class Print>
void printArray(std::ostream& out, const List& list, Print print) {
  out << '[';
  bool isFirst = true;
  for (const auto& each : list) {
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

/// Prints a JSON object member by member, so that it never stands in memory as a whole.
///
/// A tree asks for memory when it is taken down too, and where none is left that ends the program.
class JsonObject {
 public:
  explicit JsonObject(std::ostream& out) : out_(out) {}
  ~JsonObject() = default;
  JsonObject(const JsonObject&) = delete;
  JsonObject& operator=(const JsonObject&) = delete;

  /// Begins a member; its value is for the caller to print.
  std::ostream& begin(std::string_view name) {
    out_ << separator_ << '"' << name << "\":";
    separator_ = ',';
    return out_;
  }

  void add(std::string_view name, const nlohmann::ordered_json& value) {
    begin(name) << jsonText(value);
  }

  /// An array; each element is for the caller to print.
  template <class List, class Print>
  void addArray(std::string_view name, const List& list, Print print) {
    printArray(begin(name), list, [&](const auto& each) { print(out_, each); });
  }

  /// An array of the texts that a function gives of each element.
  template <class List, class TextOf>
  void addTexts(std::string_view name, const List& list, TextOf textOf) {
    printArray(begin(name), list, [&](const auto& each) { printJsonText(out_, textOf(each)); });
  }

  void finish() { out_ << (separator_ == ',' ? "}" : "{}"); }

 private:
  std::ostream& out_;
  char separator_ = '{';
};

/// Prints notes as an array of objects of line and text.
void printNotes(std::ostream& out, const std::vector<Note>& notes);

/// Prints a message as an object of id, line, text and, where there are some, notes.
void printDiagnostic(std::ostream& out, const Diagnostic& diagnostic);

/// Prints such objects as an array.
void printDiagnostics(std::ostream& out, const std::vector<Diagnostic>& list);

}  // namespace ibis::cli
