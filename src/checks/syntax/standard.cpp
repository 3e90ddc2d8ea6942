#include "checks/syntax/standard.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <vector>

#include "ibis/ibis_string.h"

namespace ibis::checks {
namespace {

using namespace section;

constexpr StandardKeyword keywords[] = {
#define IBIS_STANDARD_KEYWORD(name, version, places, content, opens, flags, last) \
  {name, version, places, Content::content, opens, Count::flags, last},
#include "checks/syntax/standard_keywords.def"
#undef IBIS_STANDARD_KEYWORD
};

using KeywordIndex = std::unordered_map<std::string, const StandardKeyword*>;

const KeywordIndex& keywordIndex() {
  static const KeywordIndex index = [] {
    KeywordIndex all;
    for (const StandardKeyword& row : keywords) all.emplace(foldedName(row.name), &row);
    return all;
  }();
  return index;
}

// In the order of the keywords.
const std::vector<std::string>& foldedKeywords() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> all;
    for (const StandardKeyword& row : keywords) all.push_back(foldedName(row.name));
    return all;
  }();
  return names;
}

struct SectionWord {
  std::uint16_t kind;
  std::string_view name;
};

constexpr SectionWord sectionWords[] = {
    {header, "the header"},
    {component, "a [Component]"},
    {selector, "a [Model Selector]"},
    {model, "a [Model]"},
    {submodel, "a [Submodel]"},
    {testData, "a [Test Data]"},
    {testLoad, "a [Test Load]"},
    {circuit, "a circuit"},
    {package, "a [Define Package Model]"},
    {board, "a board"},
    {file, "what follows [End]"},
};

}  // namespace

std::span<const StandardKeyword> standardKeywords() { return keywords; }

std::string foldedName(std::string_view name) {
  std::string folded;
  folded.reserve(name.size());
  for (const char c : name) {
    const bool isBlank = c == '_' || c == ' ' || c == '\t';
    if (isBlank && (folded.empty() || folded.back() == ' ')) continue;
    folded.push_back(isBlank ? ' ' : upperCase(c));
  }
  if (!folded.empty() && folded.back() == ' ') folded.pop_back();
  return folded;
}

const StandardKeyword* findStandardKeyword(std::string_view name) {
  const auto found = keywordIndex().find(foldedName(name));
  return found == keywordIndex().end() ? nullptr : found->second;
}

bool isClosingName(std::string_view name) {
  static const std::vector<std::string> closing = [] {
    std::vector<std::string> names;
    for (const StandardKeyword& row : keywords) {
      if (!row.last.empty()) names.push_back(foldedName(row.last));
    }
    return names;
  }();
  return std::ranges::find(closing, foldedName(name)) != closing.end();
}

const StandardKeyword* nearestKeyword(std::string_view name, std::uint16_t place) {
  const std::string folded = foldedName(name);
  const StandardKeyword* best = nullptr;
  std::size_t least = editLimit(folded.size()) + 1;
  for (std::size_t i = 0; i < std::size(keywords); ++i) {
    const StandardKeyword& row = keywords[i];
    const std::size_t distance = editDistance(folded, foldedKeywords()[i], least);
    const bool fits = distance == least && best != nullptr && (best->places & place) == 0;
    if (distance < least || (fits && (row.places & place) != 0)) {
      least = distance;
      best = &row;
    }
  }
  return best;
}

std::string_view sectionName(std::uint16_t kind) {
  const auto* row = std::ranges::find_if(
      sectionWords, [&](const SectionWord& each) { return (each.kind & kind) != 0; });
  return row == std::end(sectionWords) ? "the file" : row->name;
}

int versionNumber(std::string_view text) {
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  if (text.size() != 3 || !isDigit(text[0]) || text[1] != '.' || !isDigit(text[2])) return 0;
  return (text[0] - '0') * 10 + (text[2] - '0');
}

std::size_t editLimit(std::size_t length) {
  if (length < 3) return 0;
  return length < 5 ? 1 : std::max<std::size_t>(2, length / 3);
}

std::string_view nearestWord(std::string_view word, std::span<const std::string_view> words) {
  const std::string folded = foldedName(word);
  std::string_view best;
  std::size_t least = editLimit(folded.size()) + 1;
  for (const std::string_view each : words) {
    const std::size_t distance = editDistance(folded, foldedName(each), least);
    if (distance >= least) continue;
    least = distance;
    best = each;
  }
  return best;
}

std::size_t editDistance(std::string_view a, std::string_view b, std::size_t limit) {
  constexpr std::size_t longest = 64;
  const std::size_t difference = a.size() > b.size() ? a.size() - b.size() : b.size() - a.size();
  if (difference > limit || a.size() > longest || b.size() > longest) return limit + 1;
  std::array<std::size_t, longest + 1> rows[3];
  for (std::size_t j = 0; j <= b.size(); ++j) rows[0][j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    auto& row = rows[i % 3];
    const auto& above = rows[(i + 2) % 3];
    const auto& twoAbove = rows[(i + 1) % 3];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t change = above[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, change});
      const bool isExchanged = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (isExchanged) row[j] = std::min(row[j], twoAbove[j - 2] + 1);
    }
  }
  return rows[a.size() % 3][b.size()];
}

}  // namespace ibis::checks
