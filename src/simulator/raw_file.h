#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ibis {

/// The vectors of one plot of a simulator's binary raw file, by name in lower case.
struct RawPlot {
  std::map<std::string, std::vector<double>, std::less<>> vectors;

  /// The vector of a name, or null.
  const std::vector<double>* find(std::string_view name) const;
};

/// Reads the first plot of a raw file of real values; none if the text is not one.
std::optional<RawPlot> readRawPlot(std::string_view text);

}  // namespace ibis
