#include "near_names.h"

#include <algorithm>
#include <utility>

#include "ibis/ibis_string.h"

namespace ibis::cli {
namespace {

constexpr std::size_t longestName = 200;
constexpr std::size_t mostNames = 3;

bool isSwapped(std::string_view a, std::string_view b, std::size_t i, std::size_t j) {
  return i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
}

// How many characters are to be changed, added, left out or swapped with the next, whatever their
// case.
std::size_t distance(std::string_view from, std::string_view to) {
  std::string a(from);
  std::string b(to);
  std::ranges::transform(a, a.begin(), upperCase);
  std::ranges::transform(b, b.begin(), upperCase);
  std::vector<std::size_t> beforeLast(b.size() + 1);
  std::vector<std::size_t> last(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::swap(beforeLast, last);
    std::swap(last, row);
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t changed = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({changed, last[j] + 1, row[j - 1] + 1});
      if (isSwapped(a, b, i, j)) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
  }
  return row[b.size()];
}

}  // namespace

std::vector<std::string> nearNames(std::string_view name, const std::vector<std::string>& names) {
  const std::size_t most = std::max<std::size_t>(1, (name.size() + 1) / 3);
  std::vector<std::pair<std::size_t, std::string>> near;
  if (name.empty() || name.size() > longestName) return {};
  for (const std::string& each : names) {
    const std::size_t longer = std::max(each.size(), name.size());
    const std::size_t shorter = std::min(each.size(), name.size());
    if (each.empty() || longer - shorter > most) continue;
    const std::size_t apart = distance(name, each);
    // A name of which nothing is left is another name.
    if (apart <= most && apart < longer) near.emplace_back(apart, each);
  }
  std::ranges::stable_sort(near, {}, &std::pair<std::size_t, std::string>::first);
  std::vector<std::string> result;
  for (auto& [apart, each] : near) {
    const bool isThere = std::ranges::find(result, each) != result.end();
    if (result.size() < mostNames && !isThere) result.push_back(std::move(each));
  }
  return result;
}

std::string namesText(const std::vector<std::string>& names, std::size_t most) {
  std::string text;
  for (std::size_t i = 0; i < names.size() && i < most; ++i) {
    text += (i == 0 ? "" : ", ") + names[i];
  }
  if (names.size() > most) text += " and " + std::to_string(names.size() - most) + " more";
  return text;
}

std::string meantText(std::string_view name, const std::vector<std::string>& names) {
  const std::vector<std::string> near = nearNames(name, names);
  if (near.empty()) return {};
  std::string text = "did you mean '" + near.front() + '\'';
  for (std::size_t i = 1; i < near.size(); ++i) {
    text += (i + 1 == near.size() ? " or '" : ", '") + near[i] + '\'';
  }
  return text + '?';
}

void addNames(Diagnostic& error, std::string_view name, const std::vector<std::string>& names,
              const std::string& there) {
  std::string text = meantText(name, names);
  if (text.empty() && !names.empty()) text = there + namesText(names);
  if (!text.empty()) error.notes.push_back({.line = 0, .text = std::move(text)});
}

}  // namespace ibis::cli
