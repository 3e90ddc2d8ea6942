#pragma once

#include <string>
#include <vector>

#include "ibis/diagnostic.h"

namespace ibis::cli {

/// What a user asks of one conversion.
struct ConversionRequest {
  std::string source;
  std::string mode;
  std::string component;   ///< Empty for the file's first.
  std::string folder;      ///< Folder of the output; made if absent.
  std::string subcircuit;  ///< Empty for the component's SPICE name.
  std::vector<std::string> pins;
  std::vector<std::string> selections;  ///< Plain texts, without escapes.
};

/// The files and messages of one conversion.
struct Conversion {
  std::vector<std::string> files;
  std::vector<Diagnostic> warnings;
  std::vector<Diagnostic> errors;
};

/// A conversion that wrote nothing.
Conversion failure(Diagnostic reason);

/// Reads the file and writes what the mode asks for, unless an error stands.
Conversion convert(const ConversionRequest& request);

}  // namespace ibis::cli
