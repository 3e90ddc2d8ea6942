#include "program.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "call_command.h"
#include "check_command.h"
#include "command_word.h"
#include "convert_command.h"
#include "exit_status.h"
#include "export_command.h"
#include "ibis/exception.h"
#include "list_command.h"
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

int runCommandLine(int count, char** words) {
  CLI::App program("Turns IBIS files into SPICE libraries.", "ibis-load");
  program.set_version_flag("-V,--version", "ibis-load " IBIS_LOAD_VERSION,
                           "Print the version and exit");
  program.require_subcommand(1);
  program.footer(details);
  ListOptions listOptions;
  ShowOptions showOptions;
  CheckCommandOptions checkOptions;
  ConvertOptions convertOptions;
  ExportOptions exportOptions;
  VerifyOptions verifyOptions;
  CallOptions callOptions;
  const CLI::App* listCommand = addListCommand(program, listOptions);
  const CLI::App* showCommand = addShowCommand(program, showOptions);
  const CLI::App* checkCommand = addCheckCommand(program, checkOptions);
  const CLI::App* convertCommand = addConvertCommand(program, convertOptions);
  const CLI::App* exportCommand = addExportCommand(program, exportOptions);
  const CLI::App* verifyCommand = addVerifyCommand(program, verifyOptions);
  addCallCommand(program, callOptions);
  if (const std::string fault = faultOfCommandWord({words + 1, words + count}, namesOf(program));
      !fault.empty()) {
    std::cerr << fault;
    return exitStatus::wrongUse;
  }
  try {
    program.parse(count, words);
  } catch (const CLI::ParseError& end) {
    return program.exit(end) == 0 ? exitStatus::done : exitStatus::wrongUse;
  }
  if (listCommand->parsed()) return runList(listOptions);
  if (showCommand->parsed()) return runShow(showOptions);
  if (checkCommand->parsed()) return runCheck(checkOptions);
  if (convertCommand->parsed()) return runConvert(convertOptions);
  if (exportCommand->parsed()) return runExport(exportOptions);
  return verifyCommand->parsed() ? runVerify(verifyOptions) : runCall(callOptions);
}

int fail(const char* reason) {
  std::cerr << "ibis-load: error: " << reason << '\n';
  return exitStatus::failed;
}

}  // namespace

int runProgram(int count, char** words) {
  try {
    const int status = runCommandLine(count, words);
    return std::cout.flush() ? status : fail("cannot write to standard output");
  } catch (const std::exception& fault) {
    return fail(fault.what());
  } catch (const KelvrantException& fault) {
    return fail(fault.message);
  }
}

}  // namespace ibis::cli
