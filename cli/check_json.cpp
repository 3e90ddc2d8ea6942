#include "check_json.h"

#include "checks/rules.h"
#include "json_pieces.h"

namespace ibis::cli {
namespace {

using nlohmann::ordered_json;

ordered_json countsOf(const CheckedFile& file) {
  ordered_json counts = ordered_json::object();
  counts["error"] = file.count(Severity::error);
  counts["warning"] = file.count(Severity::warning);
  counts["note"] = file.count(Severity::note);
  return counts;
}

ordered_json positive(std::int32_t number) {
  return number > 0 ? ordered_json(number) : ordered_json();
}

ordered_json findingJson(const Diagnostic& each) {
  ordered_json item = ordered_json::object();
  item["id"] = each.id;
  item["severity"] = checks::severityWord(each.severity);
  item["line"] = positive(each.line);
  item["column"] = positive(each.column);
  item["length"] = positive(each.length);
  item["text"] = each.text;
  item["notes"] = ordered_json::array();
  for (const Note& note : each.notes) {
    item["notes"].push_back({{"line", positive(note.line)}, {"text", note.text}});
  }
  return item;
}

}  // namespace

void CheckJson::add(const CheckedFile& file) {
  if (isArray_) out_ << (isFirst_ ? "[" : ",\n");
  isFirst_ = false;
  out_ << "{\"file\":";
  printJsonText(out_, file.name);
  out_ << ",\"diagnostics\":";
  printArray(out_, file.diagnostics,
             [&](const Diagnostic& each) { out_ << jsonText(findingJson(each)); });
  out_ << ",\"counts\":" << jsonText(countsOf(file)) << '}';
}

void CheckJson::finish() {
  if (isArray_) out_ << (isFirst_ ? "[]" : "]");
  out_ << '\n';
}

}  // namespace ibis::cli
