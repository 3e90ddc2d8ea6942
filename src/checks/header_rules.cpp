// The rules about the header.

#include <algorithm>
#include <map>

#include "checks/families.h"
#include "ibis/ibis_string.h"

namespace ibis::checks {
namespace {

constexpr std::size_t longestFileName = 40;
constexpr std::string_view endings[] = {".ibs", ".pkg", ".ebd", ".ims", ".emd"};
constexpr std::string_view versions[] = {"1.0", "1.1", "2.0", "2.1", "3.0", "3.1",
                                         "3.2", "4.0", "4.1", "4.2", "5.0", "5.1",
                                         "6.0", "6.1", "7.0", "7.1", "7.2"};

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isRevision(std::string_view text) {
  const std::size_t dot = text.find('.');
  const std::string_view whole = text.substr(0, dot);
  const std::string_view part = dot == text.npos ? "0" : text.substr(dot + 1);
  return !whole.empty() && std::ranges::all_of(whole, isDigit) &&
         std::ranges::all_of(part, isDigit);
}

// The numbers of a date that is written with them.
std::vector<int> numbersOf(std::string_view text) {
  std::vector<int> numbers;
  bool isOpen = false;
  for (const char c : text) {
    if (!isDigit(c)) {
      isOpen = false;
    } else if (isOpen) {
      numbers.back() = std::min(numbers.back() * 10 + (c - '0'), 99999);
    } else {
      numbers.push_back(c - '0');
      isOpen = true;
    }
  }
  return numbers;
}

std::string faultOfDate(std::string_view text) {
  const std::vector<int> numbers = numbersOf(text);
  const bool hasYear =
      std::ranges::any_of(numbers, [](int number) { return number >= 1980 && number < 2200; });
  if (!hasYear) return "has no year of four digits";
  const bool hasMonth =
      std::ranges::any_of(text, [](char c) { return upperCase(c) >= 'A' && upperCase(c) <= 'Z'; });
  const bool isOpen = !hasMonth && numbers.size() >= 3 && numbers[0] <= 12 && numbers[1] <= 12 &&
                      numbers[0] != numbers[1];
  return isOpen ? "does not tell the day from the month" : std::string();
}

class HeaderChecker {
 public:
  HeaderChecker(const View& view, Findings& findings) : view_(view), findings_(findings) {
    for (const Block& block : view.syntax.blocks()) {
      if (block.keyword == nullptr || view.syntax.sectionOf(block).isAfterEnd) continue;
      if ((block.keyword->places & section::header) == 0) continue;
      first_.try_emplace(block.keyword->name, &block);
    }
  }

  void check() {
    checkVersion();
    checkFileName();
    checkRevision();
    checkDate();
    checkComponents();
    checkReservedNames();
    checkTexts();
  }

 private:
  const Block* find(std::string_view name) const {
    const auto found = first_.find(name);
    return found == first_.end() ? nullptr : found->second;
  }

  void checkVersion() {
    const Block* block = find("IBIS Ver");
    if (block == nullptr) {
      findings_.add(Rule::headerIbisVerMissing, {.line = 1}, {});
      return;
    }
    const std::string text(block->argument.substr(0, block->argument.find_first_of(" \t")));
    const Spot spot = view_.argumentSpot(*block);
    if (std::ranges::find(versions, text) == std::end(versions)) {
      findings_.add(Rule::headerIbisVerUnknown, spot, {text});
    } else if (view_.version > 42) {
      noteLaterKeywords(findings_.add(Rule::headerIbisVerNewer, spot, {text}));
    } else if (view_.version < 32) {
      findings_.add(Rule::headerIbisVerOld, spot, {text});
    }
    for (const Block& each : view_.syntax.blocks()) {
      if (&each == block) return;
      if (each.keyword != nullptr && each.keyword->name == "Comment Char") continue;
      findings_.add(Rule::headerIbisVerNotFirst, view_.spotOf(*block), {std::string(each.name)});
      return;
    }
  }

  // Each keyword of a later version that a reader of 4.2 leaves out.
  void noteLaterKeywords(Finding& finding) const {
    std::map<std::string_view, std::pair<std::size_t, std::int32_t>> later;
    for (const Block& block : view_.syntax.blocks()) {
      if (block.keyword == nullptr || versionNumber(block.keyword->version) <= 42) continue;
      auto& [count, line] = later[block.keyword->name];
      if (count++ == 0) line = view_.syntax.headOf(block).number;
    }
    for (const auto& [name, place] : later) {
      addNote(finding, place.second,
              "[" + std::string(name) + "] is left out by a reader of 4.2 (" +
                  std::to_string(place.first) + "x)");
    }
  }

  void checkFileName() {
    const Block* block = find("File Name");
    if (block == nullptr) {
      findings_.add(Rule::headerFileNameMissing, {.line = 1}, {});
      return;
    }
    const std::string name(block->argument);
    const Spot spot = view_.argumentSpot(*block);
    if (!view_.fileName.empty() && name != view_.fileName) {
      const bool isCase = equalIgnoringCase(name, view_.fileName);
      findings_.add(isCase ? Rule::headerFileNameCase : Rule::headerFileNameMismatch, spot,
                    {name, view_.fileName});
    }
    const std::string fault = faultOfFileName(name);
    if (!fault.empty()) findings_.add(Rule::headerFileNameForm, spot, {name, fault});
  }

  static std::string faultOfFileName(std::string_view name) {
    if (std::ranges::any_of(name, [](char c) { return c >= 'A' && c <= 'Z'; })) {
      return "holds capital letters";
    }
    if (name.find_first_of(" \t") != name.npos) return "holds blanks";
    if (name.size() > longestFileName) return "is longer than 40 characters";
    const bool isKnown = std::ranges::any_of(
        endings, [&](std::string_view ending) { return name.ends_with(ending); });
    return isKnown ? std::string() : "does not end in .ibs";
  }

  void checkRevision() {
    const Block* block = find("File Rev");
    if (block == nullptr) {
      findings_.add(Rule::headerFileRevMissing, {.line = 1}, {});
    } else if (!isRevision(block->argument)) {
      findings_.add(Rule::headerFileRevForm, view_.argumentSpot(*block),
                    {std::string(block->argument)});
    }
  }

  void checkDate() {
    const Block* block = find("Date");
    if (block == nullptr || block->argument.empty()) return;
    const std::string fault = faultOfDate(block->argument);
    if (!fault.empty()) {
      findings_.add(Rule::headerDateForm, view_.argumentSpot(*block),
                    {std::string(block->argument), fault});
    }
  }

  void checkComponents() {
    std::vector<std::string> names;
    for (const Section& part : view_.syntax.sections()) {
      const bool counts = part.kind == section::component || part.kind == section::package ||
                          part.kind == section::board || part.kind == section::circuit;
      if (counts && !part.isAfterEnd) return;
    }
    for (const Block& block : view_.syntax.blocks()) {
      const std::string name = "[" + std::string(block.name) + "]";
      if (std::ranges::find(names, name) == names.end() && names.size() < 6) names.push_back(name);
    }
    findings_.add(Rule::headerNoComponent, {.line = 1}, {"; keywords found: " + joined(names)});
  }

  void checkReservedNames() {
    const auto tell = [&](std::string_view kind, const auto& each) {
      if (each.isAfterEnd || !View::isReserved(each.name)) return;
      findings_.add(Rule::headerReservedName, each.spot,
                    {std::string(kind), std::string(each.name)});
    };
    for (const ComponentView& each : view_.components) tell("component", each);
    for (const ModelView& each : view_.models) tell("model", each);
    for (const SelectorView& each : view_.selectors) tell("selector", each);
  }

  void checkTexts() {
    const auto check = [&](std::string_view name, Rule rule) {
      const Block* block = find(name);
      if (block != nullptr && (!block->argument.empty() || block->lineCount > 0)) return;
      findings_.add(rule, block == nullptr ? Spot{.line = 1} : view_.spotOf(*block), {});
    };
    check("Source", Rule::qualitySource);
    check("Notes", Rule::qualityNotes);
    check("Copyright", Rule::qualityCopyright);
    check("Disclaimer", Rule::qualityDisclaimer);
    check("Date", Rule::qualityDate);
  }

  const View& view_;
  Findings& findings_;
  std::map<std::string_view, const Block*> first_;
};

}  // namespace

void checkHeader(const View& view, Findings& findings) { HeaderChecker(view, findings).check(); }

}  // namespace ibis::checks
