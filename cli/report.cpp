#include "report.h"

#include <algorithm>
#include <map>

#include "exit_status.h"
#include "json_pieces.h"
#include "messages.h"
#include "printable.h"

namespace ibis::cli {
namespace {

// Standard error writes each piece by itself, so that a message is one piece.
class MessagePrinter {
 public:
  MessagePrinter(std::ostream& out, const std::string& source, std::size_t limit)
      : out_(out), source_(printable(source)), limit_(limit) {}

  // Leaves room for so many messages behind those that are added now.
  void keepRoom(std::size_t count) { kept_ = std::min(count, limit_); }

  void add(const std::vector<Diagnostic>& list) {
    for (const Diagnostic& each : list) add(each);
  }

  // Of what a check finds five of a rule are enough.
  void addFindings(const std::vector<Diagnostic>& list) {
    std::map<std::string_view, std::size_t> told;
    for (const Diagnostic& each : list) {
      if (++told[each.id] <= toldOfRule) add(each, true);
    }
    for (const auto& [id, count] : told) {
      if (count <= toldOfRule) continue;
      addLine(0, 0, " note: ", tellMoreOfRule(count - toldOfRule, id).text, {});
    }
  }

  void add(const Note& note) { addLine(note.line, 0, " note: ", note.text, {}); }

  void finish() {
    if (count_ == told_) return;
    addLine(0, 0, " note: ", tellMoreMessages(count_ - told_).text, {});
  }

 private:
  void add(const Diagnostic& each, bool isFinding = false) {
    ++count_;
    if (told_ + kept_ >= limit_) return;
    ++told_;
    addLine(each.line, each.column,
            each.severity == Severity::error ? " error: " : " warning: ", each.text,
            isFinding ? each.id : std::string_view());
    for (Note note : each.notes) {
      if (isFinding && note.line == 0) note.line = each.line;
      add(note);
    }
  }

  void addLine(std::int32_t line, std::int32_t column, const char* kind, const std::string& said,
               std::string_view id) {
    std::string text = source_ + ':';
    if (line > 0) text.append(std::to_string(line)).append(":");
    if (column > 0) text.append(std::to_string(column)).append(":");
    text.append(kind).append(printable(said));
    if (!id.empty()) text.append(" [").append(id).append("]");
    out_ << text.append("\n");
  }

  std::ostream& out_;
  const std::string source_;
  const std::size_t limit_;
  std::size_t kept_ = 0;
  std::size_t told_ = 0;
  std::size_t count_ = 0;
};

void printLeftOut(std::ostream& out, const LeftOut& each) {
  out << "{\"component\":";
  printJsonText(out, each.component);
  out << ",\"model\":";
  printJsonText(out, each.model);
  out << ",\"line\":";
  printLineNumber(out, each.line);
  out << ",\"pins\":";
  printArray(out, each.pins, [&](const std::string& pin) { printJsonText(out, pin); });
  out << '}';
}

void printResult(std::ostream& out, const Conversion& conversion, int status) {
  const auto print = [&](const Diagnostic& each) { printDiagnostic(out, each); };
  out << "\"status\":" << status << ",\"files\":";
  printArray(out, conversion.files, [&](const std::string& name) { printJsonText(out, name); });
  out << ",\"warnings\":";
  printArray(out, conversion.warnings, print);
  out << ",\"errors\":";
  printArray(out, conversion.errors, print);
  if (!conversion.findings.empty()) {
    out << ",\"findings\":";
    printArray(out, conversion.findings, print);
  }
  if (!conversion.leftOut.empty()) {
    out << ",\"leftOut\":";
    printArray(out, conversion.leftOut, [&](const LeftOut& each) { printLeftOut(out, each); });
  }
  if (!conversion.notes.empty()) {
    out << ",\"notes\":";
    printNotes(out, conversion.notes);
  }
}

}  // namespace

int exitStatusOf(const Conversion& conversion, bool warningsFail) {
  const bool isWritten = conversion.errors.empty() && !conversion.files.empty();
  const bool isDoubtful = !conversion.warnings.empty() || !conversion.findings.empty();
  return isWritten && !(isDoubtful && warningsFail) ? exitStatus::done : exitStatus::failed;
}

void printMessages(std::ostream& out, const std::string& source, const Conversion& conversion,
                   std::size_t limit) {
  MessagePrinter printer(out, source, limit);
  printer.keepRoom(conversion.errors.size());
  printer.add(conversion.warnings);
  printer.addFindings(conversion.findings);
  printer.keepRoom(0);
  printer.add(conversion.errors);
  printer.finish();
  for (const Note& note : conversion.notes) printer.add(note);
}

void printMessages(std::ostream& out, const std::string& source,
                   const std::vector<Diagnostic>& list, std::size_t limit) {
  MessagePrinter printer(out, source, limit);
  printer.add(list);
  printer.finish();
}

void printSummary(std::ostream& out, const Conversion& conversion) {
  for (const std::string& name : conversion.files) out << printable(name) << '\n';
  out << counted(conversion.warnings.size(), "warning") << ", "
      << counted(conversion.errors.size(), "error") << findingsText(conversion.findings.size())
      << '\n';
}

void printJson(std::ostream& out, const Conversion& conversion, int status) {
  out << '{';
  printResult(out, conversion, status);
  out << "}\n";
}

void JsonArray::add(std::ostream& out, const std::string& file, const Conversion& conversion,
                    int status) {
  out << separator_ << "{\"file\":";
  printJsonText(out, file);
  out << ',';
  printResult(out, conversion, status);
  out << '}';
  separator_ = ",\n";
}

Diagnostic tellMoreMessages(std::size_t count) {
  return tell(Severity::note, message::moreMessages, count);
}

Diagnostic tellMoreOfRule(std::size_t count, std::string_view id) {
  return tell(Severity::note, message::moreOfRule, count, std::string(id).c_str());
}

std::string findingsText(std::size_t count) {
  return count == 0 ? "" : ", " + counted(count, "error") + " of a check";
}

std::string counted(std::size_t count, const std::string& word) {
  return std::to_string(count) + ' ' + word + (count == 1 ? "" : "s");
}

}  // namespace ibis::cli
