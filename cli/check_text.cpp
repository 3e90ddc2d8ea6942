#include "check_text.h"

#include <algorithm>

#include "checks/rules.h"
#include "printable.h"
#include "report.h"
#include "text_columns.h"
#include "text_lines.h"

namespace ibis::cli {
namespace {

constexpr std::size_t shownColumns = 200;

struct Colors {
  std::string_view bold, error, warning, note, mark, end;
};

constexpr Colors plain = {"", "", "", "", "", ""};
constexpr Colors colored = {"\x1b[1m",    "\x1b[1;31m", "\x1b[1;35m",
                            "\x1b[1;36m", "\x1b[1;32m", "\x1b[0m"};

std::string_view colorOf(const Colors& colors, Severity severity) {
  return severity == Severity::error     ? colors.error
         : severity == Severity::warning ? colors.warning
                                         : colors.note;
}

std::string withBlanks(std::string_view text) {
  std::string blanks(text);
  std::ranges::replace(blanks, '\t', ' ');
  return blanks;
}

// The line of the file and a caret below the word; nothing for a finding without a line.
void appendLine(std::string& out, std::string_view line, const Diagnostic& each,
                const Colors& colors) {
  if (each.column < 1 || line.empty()) return;
  const auto column = std::min(static_cast<std::size_t>(each.column) - 1, line.size());
  const std::size_t cut = column > shownColumns / 2 ? column - shownColumns / 2 : 0;
  std::size_t from = line.size() <= shownColumns ? 0 : cut;
  while (from > 0 && from < line.size() && (line[from] & 0xc0) == 0x80) --from;
  const std::string_view shown = line.substr(from, shownColumns);
  const std::size_t place = column - from;
  const auto length = static_cast<std::size_t>(std::max(each.length, 1));
  const std::string before = printable(withBlanks(shown.substr(0, place)));
  const std::string word =
      printable(withBlanks(shown.substr(std::min(place, shown.size()), length)));
  out.append("    ").append(printable(withBlanks(shown))).append("\n    ");
  out.append(columnsOf(before), ' ').append(colors.mark).append("^");
  const std::size_t width = columnsOf(word);
  if (width > 1) out.append(width - 1, '~');
  out.append(colors.end).append("\n");
}

void appendFinding(std::string& out, const CheckedFile& file, const TextLines& lines,
                   const Diagnostic& each, const Colors& colors) {
  std::string place = printable(file.name) + ":";
  if (each.line > 0) place.append(std::to_string(each.line)).append(":");
  const std::string notePlace = place;
  if (each.column > 0) place.append(std::to_string(each.column)).append(":");
  out.append(colors.bold).append(place).append(colors.end).append(" ");
  out.append(colorOf(colors, each.severity)).append(checks::severityWord(each.severity));
  out.append(":").append(colors.end).append(" ").append(printable(each.text));
  out.append(" [").append(each.id).append("]\n");
  appendLine(out, lines.at(each.line), each, colors);
  for (const Note& note : each.notes) {
    const std::string other = printable(file.name) + ":" + std::to_string(note.line) + ":";
    out.append(colors.bold).append(note.line > 0 ? other : notePlace).append(colors.end);
    out.append(" ").append(colors.note).append("note:").append(colors.end).append(" ");
    out.append(printable(note.text)).append("\n");
  }
}

}  // namespace

std::string checkText(const CheckedFile& file, bool isColored) {
  const Colors& colors = isColored ? colored : plain;
  const TextLines lines(file.text);
  std::map<std::string_view, std::size_t> told;
  std::string out;
  for (const Diagnostic& each : file.diagnostics) {
    if (++told[each.id] <= toldOfRule) appendFinding(out, file, lines, each, colors);
  }
  for (const auto& [id, count] : told) {
    if (count <= toldOfRule) continue;
    out.append(printable(file.name)).append(": ... ").append(std::to_string(count - toldOfRule));
    out.append(" more of ").append(id).append("\n");
  }
  return out;
}

void CheckTotals::add(const CheckedFile& file) {
  ++files_;
  for (const Diagnostic& each : file.diagnostics) ++ofRule_[std::string(each.id)];
  errors_ += file.count(Severity::error);
  warnings_ += file.count(Severity::warning);
  notes_ += file.count(Severity::note);
}

std::string CheckTotals::summary() const {
  std::string out;
  for (const auto& [id, count] : ofRule_) {
    const std::string number = std::to_string(count);
    out.append(number.size() < 6 ? 6 - number.size() : 0, ' ').append(number);
    out.append("  ").append(id).append("\n");
  }
  out.append(counted(files_, "file")).append(": ").append(counted(errors_, "error"));
  out.append(", ").append(counted(warnings_, "warning"));
  if (notes_ > 0) out.append(", ").append(counted(notes_, "note"));
  return out.append("\n");
}

}  // namespace ibis::cli
