#include "program.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <sstream>

#include "call_command.h"
#include "check_command.h"
#include "command_word.h"
#include "convert_command.h"
#include "export_command.h"
#include "ibis/exception.h"
#include "list_command.h"
#include "printable.h"
#include "show_command.h"
#include "verify_command.h"

namespace ibis::cli {
namespace {

constexpr const char* details = R"(Exit status: 0 done; 1 errors, or nothing written; 2 usage error.

Examples:
  ibis-load list buffer.ibs
  ibis-load show buffer.ibs out_24mA
  ibis-load check buffer.ibs
  ibis-load convert buffer.ibs -o out
  ibis-load convert --help)";

std::vector<std::string> namesOf(const CLI::App& program) {
  std::vector<std::string> names;
  for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(command->get_name());
  }
  return names;
}

// A command, and what runs it with the options that a line has filled.
struct Command {
  const CLI::App* command;
  std::function<int()> run;
};

template <class Options, class Run>
Command makeCommand(CLI::App& program, CLI::App* (*add)(CLI::App&, Options&), Run run) {
  auto options = std::make_shared<Options>();
  return {add(program, *options), [options, run] { return run(*options); }};
}

std::vector<Command> addCommands(CLI::App& program) {
  return {
      makeCommand(program, addListCommand, runList),
      makeCommand(program, addShowCommand, runShow),
      makeCommand(program, addCheckCommand, runCheck),
      makeCommand(program, addConvertCommand, runConvert),
      makeCommand(program, addExportCommand, runExport),
      makeCommand(program, addVerifyCommand, runVerify),
      makeCommand(program, addCallCommand, runCall),
  };
}

// A fault repeats words of the line, whatever stands in them.
int endWith(const CLI::App& program, const CLI::ParseError& end) {
  std::stringstream fault;
  const bool isDone = program.exit(end, std::cout, fault) == 0;
  for (std::string line; std::getline(fault, line);) std::cerr << printable(line) + '\n';
  return isDone ? exitStatus::done : exitStatus::wrongUse;
}

int fail(const char* reason) {
  std::cerr << "ibis-load: error: " << reason << '\n';
  return exitStatus::failed;
}

}  // namespace

CommandLine readCommandLine(int count, char** words) {
  CLI::App program("Turns IBIS files into SPICE libraries.", "ibis-load");
  program.set_version_flag("-V,--version", "ibis-load " IBIS_LOAD_VERSION,
                           "Print the version and exit");
  program.require_subcommand(1);
  program.footer(details);
  const std::vector<Command> commands = addCommands(program);
  if (const std::string fault = faultOfCommandWord({words + 1, words + count}, namesOf(program));
      !fault.empty()) {
    std::cerr << fault;
    return {.run = {}, .status = exitStatus::wrongUse};
  }
  try {
    program.parse(count, words);
  } catch (const CLI::ParseError& end) {
    return {.run = {}, .status = endWith(program, end)};
  }
  const auto asked =
      std::ranges::find_if(commands, [](const Command& each) { return each.command->parsed(); });
  return {.run = asked->run, .status = exitStatus::done};
}

int runProgram(int count, char** words) {
  try {
    const CommandLine line = readCommandLine(count, words);
    const int status = line.run ? line.run() : line.status;
    return std::cout.flush() ? status : fail("cannot write to standard output");
  } catch (const std::exception& fault) {
    return fail(fault.what());
  } catch (const KelvrantException& fault) {
    return fail(fault.message);
  }
}

}  // namespace ibis::cli
