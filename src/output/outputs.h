#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "output/file_name.h"
#include "output/template_engine.h"

namespace ibis {

/// Selects what a load writes.
enum class OutputMode : std::uint8_t { script, model, symbol, package, unknown };

/// One output of a load.
struct Output {
  OutputMode mode;
  std::string_view word;                        ///< Its name in a request, in any case.
  std::string_view summary;                     ///< What it writes, for help texts.
  std::span<const std::string_view> templates;  ///< In the order of their expansion.

  /// Returns the names of its files in the order of writing.
  std::vector<std::string> (*names)(const Output& output, const OutputPlace& place);

  /// Writes them all.
  void (*write)(const Output& output, TemplateEngine& engine);
};

/// Every output, in the order in which a request's word is looked up.
std::span<const Output> outputTable();

/// The mode that a text names in any case; the empty text names `model`.
OutputMode outputMode(std::string_view text);

/// The row of a mode, or null for `unknown`.
const Output* findOutput(OutputMode mode);

/// Whether the names of an output's files contain the subcircuit's name.
bool isNamedBySubcircuit(const Output& output);

}  // namespace ibis
