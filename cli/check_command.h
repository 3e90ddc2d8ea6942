#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace ibis::cli {

/// What the command line of `check` gives.
struct CheckCommandOptions {
  std::vector<std::string> sources;     ///< Files and folders.
  std::vector<std::string> switches;    ///< What stood behind each -W.
  std::vector<std::string> errorRules;  ///< Of each --werror; "all" without a rule.
  std::string explained;                ///< A rule's id, or "all".
  std::string color = "auto";
  bool asJson = false;
  bool asSarif = false;
};

/// Adds the command to the program; it fills the options when it is parsed.
CLI::App* addCheckCommand(CLI::App& program, CheckCommandOptions& options);

/// Checks all files, tells what was found and returns the exit status.
int runCheck(const CheckCommandOptions& options);

}  // namespace ibis::cli
