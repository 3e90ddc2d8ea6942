#include "check_json.h"

#include "checks/rules.h"
#include "json_pieces.h"

namespace ibis::cli {
namespace {

void printNumber(JsonObject& object, const char* name, std::int32_t number) {
  printLineNumber(object.begin(name), number);
}

void printFinding(std::ostream& out, const Diagnostic& each) {
  JsonObject object(out);
  object.add("id", each.id);
  object.add("severity", checks::severityWord(each.severity));
  printNumber(object, "line", each.line);
  printNumber(object, "column", each.column);
  printNumber(object, "length", each.length);
  object.add("text", each.text);
  printNotes(object.begin("notes"), each.notes);
  object.finish();
}

void printCounts(std::ostream& out, const CheckedFile& file) {
  JsonObject counts(out);
  for (const Severity severity : {Severity::error, Severity::warning, Severity::note}) {
    counts.add(checks::severityWord(severity), file.count(severity));
  }
  counts.finish();
}

}  // namespace

void CheckJson::add(const CheckedFile& file) {
  if (isArray_) out_ << (isFirst_ ? "[" : ",\n");
  isFirst_ = false;
  JsonObject object(out_);
  object.add("file", file.name);
  printArray(object.begin("diagnostics"), file.diagnostics,
             [&](const Diagnostic& each) { printFinding(out_, each); });
  printCounts(object.begin("counts"), file);
  object.finish();
}

void CheckJson::finish() {
  if (isArray_) out_ << (isFirst_ ? "[]" : "]");
  out_ << '\n';
}

}  // namespace ibis::cli
