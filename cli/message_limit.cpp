#include "message_limit.h"

#include <CLI/CLI.hpp>

namespace ibis::cli {

void addMessageLimit(CLI::App& command, MessageLimit& limit) {
  command.add_option("--max-messages", limit.most, "Messages told of a file; 0 for all")
      ->type_name("N")
      ->check(CLI::Range(0, 1'000'000'000))
      ->capture_default_str();
}

}  // namespace ibis::cli
