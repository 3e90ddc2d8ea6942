#pragma once

#include <cstddef>
#include <cstdint>

#include "report.h"

namespace CLI {
class App;
}

namespace ibis::cli {

/// How many messages of a file a command prints.
struct MessageLimit {
  std::size_t most = usualMessageLimit;  ///< 0 for all.

  std::size_t count() const { return most == 0 ? SIZE_MAX : most; }
};

/// Adds `--max-messages` to a command.
void addMessageLimit(CLI::App& command, MessageLimit& limit);

}  // namespace ibis::cli
