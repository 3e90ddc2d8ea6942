#include "call_command.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <iterator>

#include "exit_status.h"
#include "host_call.h"
#include "ibis/exception.h"
#include "json_pieces.h"
#include "plugin.h"

namespace ibis::cli {
namespace {

constexpr const char* details = R"(The request holds two to four arrays of strings:
  0  the IBIS file
  1  mode, component, root folder, subcircuit
  2  the pins wanted; none for all
  3  selector choices, with backslash escapes

The result holds status ("0" written, "1" warnings, "2" errors), root folder, number of
warnings, number of errors, then the warnings and the errors.

Exit status: 0 the call was made, whatever its result; 1 the result could not be
printed; 2 a malformed request, a plug-in that cannot be loaded, or a usage error.

Examples:
  echo '[["buffer.ibs"],["model","","out","buffer"]]' | ibis-load call
  echo '[["hub.ibs"],["package","HUB","out","hub"],["A1","A2"]]' | ibis-load call
  ibis-load call --plugin lib/ibis-load/ibis_load.so < request.json)";

std::string readAll(std::istream& in) {
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void printResult(std::ostream& out, const CallResult& result) {
  printArray(out, result, [&](const auto& text) {
    out << jsonText(text ? nlohmann::json(*text) : nlohmann::json());
  });
  out << '\n';
}

CallResult callPlugin(const std::string& path, const CallArguments& arguments) {
  const Plugin plugin(path);
  try {
    return callAsHost(plugin.function("IBIS_Load"), arguments);
  } catch (const KelvrantException& fault) {
    // The plug-in's exception must not outlive the plug-in.
    throw std::runtime_error(fault.message);
  }
}

int refuse(const std::exception& fault) {
  std::cerr << "ibis-load: error: " << fault.what() << '\n';
  return exitStatus::wrongUse;
}

}  // namespace

CLI::App* addCallCommand(CLI::App& program, CallOptions& options) {
  CLI::App* command = program.add_subcommand(
      "call", "Call the plug-in as a host does: JSON arguments in, JSON result out.");
  command->add_option("--plugin", options.plugin, "The plug-in, if not the program's own")
      ->type_name("PATH");
  command->footer(details);
  return command;
}

int runCall(const CallOptions& options) {
  try {
    const CallArguments arguments = parseRequest(readAll(std::cin));
    const std::string path = options.plugin.empty() ? ownPluginPath() : options.plugin;
    printResult(std::cout, callPlugin(path, arguments));
    return exitStatus::done;
  } catch (const MalformedRequest& fault) {
    return refuse(fault);
  } catch (const PluginFault& fault) {
    return refuse(fault);
  }
}

}  // namespace ibis::cli
