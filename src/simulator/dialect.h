#pragma once

#include <span>
#include <string>
#include <string_view>

namespace ibis {

/// How one simulator writes what all of them can do; texts that stand around others.
struct Dialect {
  std::string_view word;           ///< Name on a command line and in file names.
  std::string_view title;          ///< Name for a person.
  std::string_view lookup;         ///< Function that interpolates in a list of points.
  std::string_view beforeIf;       ///< Before the condition of a choice.
  std::string_view beforeThen;     ///< Between the condition and the value if it holds.
  std::string_view beforeElse;     ///< Between the two values.
  std::string_view afterIf;        ///< After the value if it does not hold.
  std::string_view beforeFormula;  ///< Before the formula of a source.
  std::string_view afterFormula;   ///< After it.
  std::string_view threshold;      ///< The parameter vth inside a formula.
  std::string_view options;        ///< Recommended options, as a line of a bench.
  bool hasLineOptions = false;     ///< Whether a lossless line takes rel and abs.
};

/// The table of dialects; the first is the one that is taken when none is named.
std::span<const Dialect> dialectTable();

/// The dialect of a word in any case of letters, or null.
const Dialect* findDialect(std::string_view word);

/// A formula's choice between two values.
std::string choice(const Dialect& dialect, std::string_view condition, std::string_view then,
                   std::string_view otherwise);

}  // namespace ibis
