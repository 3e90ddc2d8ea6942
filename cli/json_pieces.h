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

  /// Each member of an object.
  void addMembers(const nlohmann::ordered_json& object) {
    for (const auto& [name, value] : object.items()) add(name, value);
  }

  /// An array of what a function makes of each element.
  template <class Element, class ToJson>
  void addArray(std::string_view name, const std::vector<Element>& list, ToJson toJson) {
    printArray(begin(name), list, [&](const Element& each) {
      out_ << jsonText(nlohmann::ordered_json(toJson(each)));
    });
  }

  void finish() { out_ << '}'; }

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
