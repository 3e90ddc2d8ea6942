#pragma once

#include <string>
#include <vector>

#include "conversion.h"
#include "message_limit.h"

namespace ibis::cli {

/// The options of `convert`.
struct ConvertOptions {
  ConversionRequest request{.source = {},
                            .mode = "model",
                            .component = {},
                            .folder = ".",
                            .subcircuit = {},
                            .pins = {},
                            .selections = {}};
  std::vector<std::string> sources;  ///< Files and folders; the request's own is set for each.
  std::vector<std::string> modes = {"model"};
  unsigned jobs = 1;      ///< Threads for many files; 0 for one a core.
  std::string asVersion;  ///< "4.2" to read what came later too; empty for not.
  bool asJson = false;
  bool isQuiet = false;
  bool warningsFail = false;
  MessageLimit messages;
};

}  // namespace ibis::cli
