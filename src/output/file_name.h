#pragma once

#include <string>
#include <string_view>

namespace ibis {

/// The word of a file's name that stands for the subcircuit's name.
inline constexpr std::string_view subcircuitWord = "%subcktname%";

/// What the names of output files are made from.
struct OutputPlace {
  std::string rootDirectory;
  std::string subcircuit;          ///< As the user typed it.
  std::string spiceComponentName;  ///< Empty without a component.
};

/// The name of a file as a template has it, with its three words replaced, each once.
std::string fileName(std::string_view word, const OutputPlace& place);

}  // namespace ibis
