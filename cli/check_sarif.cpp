#include "check_sarif.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "checks/rules.h"
#include "json_pieces.h"
#include "text_columns.h"
#include "text_lines.h"

namespace ibis::cli {
namespace {

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

void printText(std::ostream& out, std::string_view text) {
  JsonObject object(out);
  object.add("text", text);
  object.finish();
}

void printRule(std::ostream& out, const checks::RuleRow& row) {
  JsonObject rule(out);
  rule.add("id", row.id);
  printText(rule.begin("shortDescription"), row.fires);
  printText(rule.begin("fullDescription"),
            std::string(row.fires) + " Basis: " + std::string(row.clause) + ".");
  if (!row.remedy.empty()) printText(rule.begin("help"), row.remedy);
  JsonObject configuration(rule.begin("defaultConfiguration"));
  configuration.add("level", checks::severityWord(row.severity));
  configuration.finish();
  JsonObject properties(rule.begin("properties"));
  properties.begin("tags") << '[' << jsonText(nlohmann::json(row.group())) << ']';
  properties.finish();
  rule.finish();
}

// Characters of a line count in SARIF, bytes do here.
void printRegion(std::ostream& out, const Diagnostic& each, std::string_view line) {
  JsonObject region(out);
  region.add("startLine", each.line);
  if (each.column > 0) {
    const auto begin = std::min(static_cast<std::size_t>(each.column) - 1, line.size());
    const std::size_t start = columnsOf(line.substr(0, begin)) + 1;
    region.add("startColumn", start);
    if (each.length > 0) {
      const std::string_view word = line.substr(begin, static_cast<std::size_t>(each.length));
      region.add("endColumn", start + std::max<std::size_t>(1, columnsOf(word)));
    }
  }
  region.finish();
}

// A place in a file; of the whole file for a line of 0.
template <class Print>
void printPlace(std::ostream& out, const std::string& uri, std::int32_t line, Print printRegion) {
  JsonObject place(out);
  JsonObject artifact(place.begin("artifactLocation"));
  artifact.add("uri", uri);
  artifact.finish();
  if (line > 0) printRegion(place.begin("region"));
  place.finish();
}

void printFinding(std::ostream& out, const std::string& uri, const TextLines& lines,
                  const Diagnostic& each) {
  JsonObject location(out);
  printPlace(location.begin("physicalLocation"), uri, each.line,
             [&](std::ostream& to) { printRegion(to, each, lines.at(each.line)); });
  location.finish();
}

void printNote(std::ostream& out, const std::string& uri, const Note& note) {
  JsonObject location(out);
  printPlace(location.begin("physicalLocation"), uri, note.line, [&](std::ostream& to) {
    JsonObject region(to);
    region.add("startLine", note.line);
    region.finish();
  });
  printText(location.begin("message"), note.text);
  location.finish();
}

void printResult(std::ostream& out, const CheckedFile& file, const TextLines& lines,
                 const Diagnostic& each) {
  const std::string uri = uriOf(file.name);
  JsonObject result(out);
  result.add("ruleId", each.id);
  if (const auto rule = checks::findRule(each.id)) {
    result.add("ruleIndex", static_cast<std::size_t>(*rule));
  }
  result.add("level", checks::severityWord(each.severity));
  printText(result.begin("message"), each.text);
  result.begin("locations") << '[';
  printFinding(out, uri, lines, each);
  out << ']';
  if (!each.notes.empty()) {
    printArray(result.begin("relatedLocations"), each.notes,
               [&](const Note& note) { printNote(out, uri, note); });
  }
  result.finish();
}

void printDriver(std::ostream& out) {
  JsonObject driver(out);
  driver.add("name", "ibis-load");
  driver.add("version", IBIS_LOAD_VERSION);
  driver.addArray("rules", checks::ruleTable(), printRule);
  driver.finish();
}

}  // namespace

CheckSarif::CheckSarif(std::ostream& out, const std::vector<std::string>& names) : out_(out) {
  out_ << R"({"$schema":"https://json.schemastore.org/sarif-2.1.0.json","version":"2.1.0","runs":)"
       << R"([{"tool":{"driver":)";
  printDriver(out_);
  out_ << R"(},"columnKind":"unicodeCodePoints","artifacts":)";
  printArray(out_, names, [&](const std::string& name) {
    out_ << R"({"location":{"uri":)";
    printJsonText(out_, uriOf(name));
    out_ << "}}";
  });
  out_ << ",\"results\":[";
}

void CheckSarif::add(const CheckedFile& file) {
  const TextLines lines(file.text);
  for (const Diagnostic& each : file.diagnostics) {
    if (!isFirst_) out_ << ',';
    isFirst_ = false;
    printResult(out_, file, lines, each);
  }
}

void CheckSarif::finish() { out_ << "]}]}\n"; }

}  // namespace ibis::cli
