#include "checks/case_file.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "checks/rules.h"

namespace ibis::testing {
namespace {

constexpr std::string_view arrow = " => ";

// "\n", "\r", "\t", "\\" and "\xNN" for what a line of a case cannot hold.
std::string unescaped(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      plain.push_back(text[i]);
      continue;
    }
    const char kind = text[++i];
    if (kind == 'x') {
      plain.push_back(
          static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16)));
      i += 2;
    } else {
      plain.push_back(kind == 'n' ? '\n' : kind == 'r' ? '\r' : kind == 't' ? '\t' : kind);
    }
  }
  return plain;
}

// Puts rows in the place of those of the table or waveform at a keyword.
void replaceRows(std::string& text, std::size_t keyword, const std::string& rows) {
  std::size_t begin = text.find('\n', keyword) + 1;
  while (std::string_view("-0123456789").find(text[begin]) == std::string_view::npos) {
    begin = text.find('\n', begin) + 1;
  }
  const std::size_t end = text.find("\n|\n", begin) + 1;
  text.replace(begin, end - begin, rows);
}

// What a file of cases cannot hold, as "\\xNN".
std::string escaped(std::string_view text) {
  std::string plain;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte == '\n' || (byte >= 32 && byte < 127)) {
      plain.push_back(c);
      continue;
    }
    char hex[8];
    std::snprintf(hex, sizeof hex, "\\x%02x", byte);
    plain.append(hex);
  }
  return plain;
}

void apply(std::string& text, std::string_view edit, const std::string& origin) {
  const std::size_t colon = edit.find(": ");
  const std::string_view kind = edit.substr(0, colon);
  const std::string_view rest = edit.substr(colon + 2);
  if (kind == "text") {
    text.append(unescaped(rest)).append("\n");
    return;
  }
  const std::size_t middle = rest.find(arrow);
  const std::string old = unescaped(rest.substr(0, middle));
  const std::string other =
      middle == rest.npos ? std::string() : unescaped(rest.substr(middle + arrow.size()));
  const std::size_t place = text.find(kind == "rows" ? "\n" + old : old);
  ASSERT_NE(place, text.npos) << origin << ": nothing to edit: " << edit;
  if (kind == "rows") {
    replaceRows(text, place + 1, other);
  } else if (kind == "s") {
    text.replace(place, old.size(), other);
  } else if (kind == "all") {
    for (std::size_t at = place; at != text.npos; at = text.find(old, at + other.size())) {
      text.replace(at, old.size(), other);
    }
  } else {
    ASSERT_EQ(kind, "cut") << origin;
    const std::size_t end = text.find(other, place + old.size());
    ASSERT_NE(end, text.npos) << origin << ": nothing to cut up to: " << edit;
    text.erase(place, end - place);
  }
}

}  // namespace

std::string readText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  EXPECT_TRUE(in) << path;
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string CheckCase::text() const {
  std::string text;
  if (!base.empty()) text = readText(std::string(IBIS_SOURCE_DIR) + "/examples/" + base);
  for (const std::string& edit : edits) apply(text, edit, origin);
  return text;
}

std::string headOf(const std::string& path) {
  std::istringstream lines(readText(path));
  std::string head;
  for (std::string line; std::getline(lines, line) && line.starts_with('#');) {
    head.append(line).append("\n");
  }
  return head;
}

std::vector<CheckCase> readCases(const std::string& path) {
  std::istringstream lines(readText(path));
  std::vector<CheckCase> cases;
  int number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    if (line.empty() || line.starts_with('#')) continue;
    if (line.starts_with("== ")) {
      std::istringstream words(line.substr(3));
      CheckCase& each = cases.emplace_back();
      words >> each.rule >> each.base >> each.fileName;
      if (each.base == "-") each.base.clear();
      each.origin = path + ":" + std::to_string(number);
    } else if (line.starts_with("> ")) {
      cases.back().expected.append(line.substr(2)).append("\n");
    } else {
      cases.back().edits.push_back(line);
    }
  }
  return cases;
}

std::string writeCases(std::string_view head, const std::vector<CheckCase>& cases) {
  std::string text(head);
  for (const CheckCase& each : cases) {
    text.append("\n== ").append(each.rule).append(" ");
    text.append(each.base.empty() ? "-" : each.base);
    if (!each.fileName.empty()) text.append(" ").append(each.fileName);
    text.append("\n");
    for (const std::string& edit : each.edits) text.append(edit).append("\n");
    std::istringstream lines(each.expected);
    for (std::string line; std::getline(lines, line);) text.append("> ").append(line).append("\n");
  }
  return text;
}

std::string render(const std::vector<Diagnostic>& diagnostics, std::string_view rule) {
  std::string text;
  for (const Diagnostic& each : diagnostics) {
    if (each.severity == Severity::note && each.id != rule) continue;
    text.append(std::to_string(each.line)).append(":").append(std::to_string(each.column));
    text.append("+").append(std::to_string(each.length)).append(": ");
    text.append(checks::severityWord(each.severity)).append(": ").append(each.text);
    text.append(" [").append(each.id).append("]\n");
    for (const Note& note : each.notes) {
      text.append("  ").append(std::to_string(note.line)).append(": note: ");
      text.append(note.text).append("\n");
    }
  }
  return escaped(text);
}

}  // namespace ibis::testing
