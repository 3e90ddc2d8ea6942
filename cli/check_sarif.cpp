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

using nlohmann::ordered_json;

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

ordered_json sarifResult(const CheckedFile& file, const TextLines& lines, const Diagnostic& each) {
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
    out_ << (isFirst_ ? "" : ",") << jsonText(sarifResult(file, lines, each));
    isFirst_ = false;
  }
}

void CheckSarif::finish() { out_ << "]}]}\n"; }

}  // namespace ibis::cli
