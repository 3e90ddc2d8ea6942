#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "checks/number_word.h"
#include "checks/view.h"

namespace ibis::checks {

/// Words of a file that set something.
inline constexpr std::string_view cComps[] = {"C_comp", "C_comp_pullup", "C_comp_pulldown",
                                              "C_comp_power_clamp", "C_comp_gnd_clamp"};

/// Whether a word looks like a value and like no name.
bool startsAsValue(std::string_view word);

/// What the readers of all sections share: values are taken from words and faults are told.
///
/// Nothing is told of a section behind [End].
class ValueReader {
 public:
  ValueReader(View& view, Findings& findings, std::uint32_t section)
      : view_(view), findings_(findings), section_(section) {}

 protected:
  using Words = std::span<const Word>;

  bool isCounted() const { return !view_.syntax.sections()[section_].isAfterEnd; }

  /// Tells what is wrong with a word, and what stands in the rows around it.
  void tellFault(const NumberWord& read, const Spot& spot, std::string_view word,
                 const std::string& label, const std::string& around);

  /// Tells of a unit that stands by itself; behind the last column it shifts nothing.
  void tellDetached(const SourceLine& line, std::size_t index, Words words, std::uint32_t block,
                    const std::string& label, std::span<const std::string_view> columns);

  /// Reads typ, min and max from a line; units that stand by themselves are passed over.
  Triple triple(const SourceLine& line, Words words, std::uint32_t block, const std::string& label,
                std::string_view absentMeans);

  /// Tells of a name that no value follows.
  void tellMissingValue(const SourceLine& line, std::uint32_t block, const std::string& label);

  /// Tells of a scale letter M that was to be m.
  void tellCapital(const SourceLine& line, const Word& word, std::uint32_t block,
                   const std::string& label);

  /// Reads the first word as a number.
  Single single(const SourceLine& line, Words words, std::uint32_t block, const std::string& label);

  /// Tells of a typ that is NA.
  void checkTyp(const Triple& triple, const std::string& label, Rule rule = Rule::numericTypNa);

  /// Gives the standard's word that a line begins with; one in another case is told and taken.
  std::string_view knownWord(const SourceLine& line, Words words,
                             std::span<const std::string_view> known, std::uint32_t block);

  /// Tells of a line that begins with a word that sets nothing, or with a stray value.
  void tellUnknownParameter(const SourceLine& line, const Word& word, std::uint32_t block,
                            std::span<const std::string_view> known);

  View& view_;
  Findings& findings_;
  std::uint32_t section_;

 private:
  double number(const SourceLine& line, const Word& word, std::uint32_t block,
                const std::string& label);
  static std::string readingOf(Words words, std::span<const std::string_view> columns);
  const Word* milliInCapitals(Words words) const;
};

}  // namespace ibis::checks
