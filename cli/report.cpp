#include "report.h"

#include "exit_status.h"
#include "json_line.h"
#include "printable.h"

namespace ibis::cli {
namespace {

using nlohmann::ordered_json;

// A name or a text of the file may hold what moves the cursor.
void appendLine(std::string& text, const std::string& source, std::int32_t line, const char* kind,
                const std::string& said) {
  text.append(printable(source)).append(":");
  if (line > 0) text.append(std::to_string(line)).append(":");
  text.append(kind).append(printable(said)).append("\n");
}

void appendList(std::string& text, const std::string& source, const std::vector<Diagnostic>& list) {
  for (const Diagnostic& message : list) {
    appendLine(text, source, message.line,
               message.severity == Severity::error ? " error: " : " warning: ", message.text);
    for (const Note& note : message.notes) {
      appendLine(text, source, note.line, " note: ", note.text);
    }
  }
}

ordered_json toJson(const std::vector<Note>& list) {
  ordered_json array = ordered_json::array();
  for (const Note& note : list) {
    array.push_back(
        {{"line", note.line > 0 ? ordered_json(note.line) : ordered_json()}, {"text", note.text}});
  }
  return array;
}

ordered_json toJson(const std::vector<Diagnostic>& list) {
  ordered_json array = ordered_json::array();
  for (const Diagnostic& message : list) {
    ordered_json& item = array.emplace_back();
    item["line"] = message.line > 0 ? ordered_json(message.line) : ordered_json();
    item["text"] = message.text;
    if (!message.notes.empty()) item["notes"] = toJson(message.notes);
  }
  return array;
}

ordered_json toJson(const std::vector<LeftOut>& list) {
  ordered_json array = ordered_json::array();
  for (const LeftOut& each : list) {
    ordered_json& item = array.emplace_back();
    item["component"] = each.component;
    item["model"] = each.model;
    item["line"] = each.line > 0 ? ordered_json(each.line) : ordered_json();
    item["pins"] = each.pins;
  }
  return array;
}

void addResult(ordered_json& object, const Conversion& conversion, int status) {
  object["status"] = status;
  object["files"] = conversion.files;
  object["warnings"] = toJson(conversion.warnings);
  object["errors"] = toJson(conversion.errors);
  if (!conversion.leftOut.empty()) object["leftOut"] = toJson(conversion.leftOut);
  if (!conversion.notes.empty()) object["notes"] = toJson(conversion.notes);
}

}  // namespace

int exitStatusOf(const Conversion& conversion, bool warningsFail) {
  const bool isWritten = conversion.errors.empty() && !conversion.files.empty();
  const bool isGood = isWritten && (conversion.warnings.empty() || !warningsFail);
  return isGood ? exitStatus::done : exitStatus::failed;
}

std::string messageText(const std::string& source, const Conversion& conversion) {
  std::string text;
  appendList(text, source, conversion.warnings);
  appendList(text, source, conversion.errors);
  for (const Note& note : conversion.notes)
    appendLine(text, source, note.line, " note: ", note.text);
  return text;
}

std::string messageText(const std::string& source, const std::vector<Diagnostic>& list) {
  std::string text;
  appendList(text, source, list);
  return text;
}

void printSummary(std::ostream& out, const Conversion& conversion) {
  for (const std::string& name : conversion.files) out << printable(name) << '\n';
  out << counted(conversion.warnings.size(), "warning") << ", "
      << counted(conversion.errors.size(), "error") << '\n';
}

void printJson(std::ostream& out, const Conversion& conversion, int status) {
  ordered_json object;
  addResult(object, conversion, status);
  out << jsonLine(object);
}

void JsonArray::add(std::ostream& out, const std::string& file, const Conversion& conversion,
                    int status) {
  ordered_json object;
  object["file"] = file;
  addResult(object, conversion, status);
  out << separator_ << jsonText(object);
  separator_ = ",\n";
}

std::string counted(std::size_t count, const std::string& word) {
  return std::to_string(count) + ' ' + word + (count == 1 ? "" : "s");
}

}  // namespace ibis::cli
