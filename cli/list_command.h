#pragma once

#include <string>
#include <vector>

#include "message_limit.h"

namespace ibis::cli {

/// What the command line of `list` gives.
struct ListOptions {
  std::vector<std::string> sources;  ///< Files and folders.
  bool asJson = false;
  MessageLimit messages;
};

/// Adds `list` to the program; the record is filled when the command line is parsed.
CLI::App* addListCommand(CLI::App& program, ListOptions& options);

/// Lists what the files hold and gives the exit status.
int runList(const ListOptions& options);

}  // namespace ibis::cli
