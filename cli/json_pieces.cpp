#include "json_pieces.h"

namespace ibis::cli {

void printNotes(std::ostream& out, const std::vector<Note>& notes) {
  printArray(out, notes, [&](const Note& note) {
    out << "{\"line\":";
    printLineNumber(out, note.line);
    out << ",\"text\":";
    printJsonText(out, note.text);
    out << '}';
  });
}

void printDiagnostic(std::ostream& out, const Diagnostic& diagnostic) {
  out << "{\"id\":";
  printJsonText(out, diagnostic.id);
  out << ",\"line\":";
  printLineNumber(out, diagnostic.line);
  out << ",\"text\":";
  printJsonText(out, diagnostic.text);
  if (!diagnostic.notes.empty()) {
    out << ",\"notes\":";
    printNotes(out, diagnostic.notes);
  }
  out << '}';
}

void printDiagnostics(std::ostream& out, const std::vector<Diagnostic>& list) {
  printArray(out, list, [&](const Diagnostic& each) { printDiagnostic(out, each); });
}

}  // namespace ibis::cli
