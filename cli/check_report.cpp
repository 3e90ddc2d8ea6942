#include "check_report.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <span>
#include <utility>

#include "checks/rules.h"
#include "json_pieces.h"
#include "printable.h"
#include "report.h"
#include "text_columns.h"

namespace ibis::cli {
namespace {

using nlohmann::ordered_json;

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

// The lines of a text by number.
class Lines {
 public:
  explicit Lines(std::string_view text) : text_(text) {
    const char end = text.find('\n') == text.npos ? '\r' : '\n';
    std::size_t begin = 0;
    while (begin < text.size()) {
      const std::size_t stop = std::min(text.find(end, begin), text.size());
      begins_.push_back(begin);
      ends_.push_back(stop);
      begin = stop + 1;
    }
  }

  std::string_view at(std::int32_t number) const {
    const auto index = static_cast<std::size_t>(number) - 1;
    if (number < 1 || index >= begins_.size()) return {};
    std::string_view line = text_.substr(begins_[index], ends_[index] - begins_[index]);
    while (line.ends_with('\r')) line.remove_suffix(1);
    return line;
  }

 private:
  std::string_view text_;
  std::vector<std::size_t> begins_;
  std::vector<std::size_t> ends_;
};

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

void appendFinding(std::string& out, const CheckedFile& file, const Lines& lines,
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

// A path as a reference of a URI: all but plain characters are escaped.
std::string uriOf(std::string_view path) {
  std::string uri = path.starts_with('/') ? "file://" : "";
  for (const char c : path) {
    const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                         (c >= '0' && c <= '9') ||
                         std::string_view("/-._~").find(c) != std::string_view::npos;
    if (isPlain) {
      uri.push_back(c);
      continue;
    }
    std::array<char, 4> escaped{};
    std::snprintf(escaped.data(), escaped.size(), "%%%02X",
                  static_cast<unsigned>(static_cast<unsigned char>(c)));
    uri.append(escaped.data());
  }
  return uri;
}

ordered_json sarifText(std::string_view text) { return {{"text", text}}; }

ordered_json sarifRule(const checks::RuleRow& row) {
  ordered_json rule = ordered_json::object();
  rule["id"] = row.id;
  rule["shortDescription"] = sarifText(row.fires);
  rule["fullDescription"] =
      sarifText(std::string(row.fires) + " Basis: " + std::string(row.clause) + ".");
  if (!row.remedy.empty()) rule["help"] = sarifText(row.remedy);
  rule["defaultConfiguration"] = {{"level", checks::severityWord(row.severity)}};
  rule["properties"] = {{"tags", ordered_json::array({row.group()})}};
  return rule;
}

// Characters of a line count in SARIF, bytes do here.
ordered_json regionOf(const Diagnostic& each, std::string_view line) {
  ordered_json region = ordered_json::object();
  region["startLine"] = each.line;
  if (each.column < 1) return region;
  const auto begin = std::min(static_cast<std::size_t>(each.column) - 1, line.size());
  const std::size_t start = columnsOf(line.substr(0, begin)) + 1;
  region["startColumn"] = start;
  if (each.length > 0) {
    region["endColumn"] =
        start + std::max<std::size_t>(
                    1, columnsOf(line.substr(begin, static_cast<std::size_t>(each.length))));
  }
  return region;
}

// A place in a file; of the whole file where the region is null.
ordered_json sarifLocation(const std::string& uri, ordered_json region) {
  ordered_json place = {{"artifactLocation", {{"uri", uri}}}};
  if (!region.is_null()) place["region"] = std::move(region);
  ordered_json location = ordered_json::object();
  location["physicalLocation"] = std::move(place);
  return location;
}

ordered_json sarifResult(const CheckedFile& file, const Lines& lines, const Diagnostic& each) {
  const std::string uri = uriOf(file.name);
  ordered_json result = ordered_json::object();
  result["ruleId"] = each.id;
  if (const auto rule = checks::findRule(each.id)) {
    result["ruleIndex"] = static_cast<std::size_t>(*rule);
  }
  result["level"] = checks::severityWord(each.severity);
  result["message"] = sarifText(each.text);
  ordered_json region = each.line > 0 ? regionOf(each, lines.at(each.line)) : ordered_json();
  result["locations"] = ordered_json::array({sarifLocation(uri, std::move(region))});
  ordered_json related = ordered_json::array();
  for (const Note& note : each.notes) {
    const bool hasLine = note.line > 0;
    ordered_json other =
        sarifLocation(uri, hasLine ? ordered_json{{"startLine", note.line}} : ordered_json());
    other["message"] = sarifText(note.text);
    related.push_back(std::move(other));
  }
  if (!related.empty()) result["relatedLocations"] = std::move(related);
  return result;
}

void printDriver(std::ostream& out) {
  JsonObject driver(out);
  driver.add("name", "ibis-load");
  driver.add("version", IBIS_LOAD_VERSION);
  const std::span<const checks::RuleRow> rows = checks::ruleTable();
  driver.addArray("rules", std::vector(rows.begin(), rows.end()), sarifRule);
  driver.finish();
}

void printResults(std::ostream& out, const std::vector<CheckedFile>& files) {
  std::string_view separator;
  for (const CheckedFile& file : files) {
    const Lines lines(file.text);
    for (const Diagnostic& each : file.diagnostics) {
      out << std::exchange(separator, ",") << jsonText(sarifResult(file, lines, each));
    }
  }
}

void printRun(std::ostream& out, const std::vector<CheckedFile>& files) {
  JsonObject run(out);
  run.begin("tool") << "{\"driver\":";
  printDriver(out);
  out << '}';
  run.add("columnKind", "unicodeCodePoints");
  run.addArray("artifacts", files, [](const CheckedFile& file) {
    return ordered_json{{"location", {{"uri", uriOf(file.name)}}}};
  });
  run.begin("results") << '[';
  printResults(out, files);
  out << ']';
  run.finish();
}

}  // namespace

std::size_t CheckedFile::count(Severity severity) const {
  return static_cast<std::size_t>(std::ranges::count(diagnostics, severity, &Diagnostic::severity));
}

std::string checkText(const CheckedFile& file, bool isColored) {
  const Colors& colors = isColored ? colored : plain;
  const Lines lines(file.text);
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

std::string checkSummary(const std::vector<CheckedFile>& files) {
  std::map<std::string_view, std::size_t> counts;
  std::size_t totals[3] = {0, 0, 0};
  for (const CheckedFile& file : files) {
    for (const Diagnostic& each : file.diagnostics) ++counts[each.id];
    totals[0] += file.count(Severity::error);
    totals[1] += file.count(Severity::warning);
    totals[2] += file.count(Severity::note);
  }
  std::string out;
  for (const auto& [id, count] : counts) {
    const std::string number = std::to_string(count);
    out.append(number.size() < 6 ? 6 - number.size() : 0, ' ').append(number);
    out.append("  ").append(id).append("\n");
  }
  out.append(counted(files.size(), "file")).append(": ").append(counted(totals[0], "error"));
  out.append(", ").append(counted(totals[1], "warning"));
  if (totals[2] > 0) out.append(", ").append(counted(totals[2], "note"));
  return out.append("\n");
}

void printCheckJson(std::ostream& out, const std::vector<CheckedFile>& files) {
  std::string_view separator = "[";
  for (const CheckedFile& file : files) {
    out << separator;
    JsonObject object(out);
    object.add("file", file.name);
    object.addArray("diagnostics", file.diagnostics, findingJson);
    object.add("counts", countsOf(file));
    object.finish();
    separator = ",\n";
  }
  out << (files.empty() ? "[]\n" : "]\n");
}

void printSarif(std::ostream& out, const std::vector<CheckedFile>& files) {
  JsonObject log(out);
  log.add("$schema", "https://json.schemastore.org/sarif-2.1.0.json");
  log.add("version", "2.1.0");
  log.begin("runs") << '[';
  printRun(out, files);
  out << ']';
  log.finish();
  out << '\n';
}

}  // namespace ibis::cli
