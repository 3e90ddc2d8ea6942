#pragma once

#include <cstdint>
#include <deque>
#include <initializer_list>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "checks/rules.h"
#include "checks/syntax/syntax.h"

namespace ibis::checks {

/// A place of the file, with the section and the block in which it lies.
struct Spot {
  static constexpr std::uint32_t nowhere = std::numeric_limits<std::uint32_t>::max();

  std::int32_t line = 0;
  std::int32_t column = 0;
  std::int32_t length = 0;
  std::uint32_t section = nowhere;
  std::uint32_t block = nowhere;
};

/// One message of a rule, and how many further rows it stands for.
struct Finding {
  Rule rule;
  Diagnostic diagnostic;
  std::uint32_t section = Spot::nowhere;
  std::uint32_t block = Spot::nowhere;
  std::uint32_t furtherRows = 0;
};

/// Collects what the rules find; it counts repeats and drops what follows from another finding.
class Findings {
 public:
  using Arguments = std::initializer_list<std::string>;

  /// Adds a message from its arguments; a text of the remedy takes the last one.
  Finding& add(Rule rule, const Spot& spot, Arguments arguments);

  /// The same, but a second one of a rule in a block is only counted, and gives null.
  Finding* addOnce(Rule rule, const Spot& spot, Arguments arguments);

  /// Whether a rule was told of a section.
  bool wasTold(Rule rule, std::uint32_t section) const;

  /// Whether any number of a block is wrong.
  bool hasWrongNumber(std::uint32_t block) const;

  /// All findings by line, each with its remedy.
  std::vector<Diagnostic> take();

 private:
  bool followsAnother(const Finding& finding) const;

  std::deque<Finding> findings_;
  std::set<Rule> told_;
  std::map<std::pair<Rule, std::uint32_t>, Finding*> byBlock_;
  std::map<std::pair<Rule, std::uint32_t>, std::uint32_t> bySection_;
  std::map<std::pair<Rule, std::uint32_t>, std::uint32_t> countByBlock_;
};

/// Puts each argument in the place of a "{}".
std::string fillText(std::string_view text, Findings::Arguments arguments);

/// Adds a note about another place.
inline void addNote(Finding& finding, std::int32_t line, std::string text) {
  finding.diagnostic.notes.push_back({.line = line, .text = std::move(text)});
}

/// A number with a unit and a scale letter, to four digits: "4.5 pF".
std::string quantity(double value, std::string_view unit);

/// A number to so many digits.
std::string shortNumber(double value, int digits = 4);

/// A count with its word: "1 row", "2 rows".
std::string countOf(std::size_t count, std::string_view word);

/// Words joined by commas.
std::string joined(const std::vector<std::string>& words);

/// "; did you mean 'WORD'?" for a word, else nothing.
std::string didYouMean(std::string_view word);

}  // namespace ibis::checks
