#include "export_command.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>

#include "conversion.h"
#include "exit_status.h"
#include "export_source.h"
#include "interruption.h"
#include "json_pieces.h"
#include "report.h"
#include "simulator/device_notes.h"
#include "simulator/dialect.h"
#include "verify_model.h"

namespace ibis::cli {
namespace {

constexpr const char* details =
    R"(Writes DIR/COMPONENT_CORNER.inc for each corner, to be included by a netlist: a subcircuit
for each model and one for the component with its package. Without options: the first component,
all of its pins, typ, the pins' own R, L and C. With --model or --all-models: models alone, into
DIR/FILE_CORNER.inc.

Standard output: the files written and the counts of warnings and errors.
Standard error: each message as FILE:LINE: warning: TEXT, or without LINE.

Exit status: 0 files written, with or without warnings; 1 errors, or nothing written, or, with
--werror, warnings (the files are written nevertheless); 2 wrong use.

Examples:
  ibis-load export buffer.ibs -o spice --bench
      writes spice/BUFFER_typ.inc and spice/BUFFER_typ_bench.cir, which ngspice -b runs
  ibis-load export hub.ibs -c HUB -p A1 -p A2 --package coupled --corner min --corner max
      writes two pins with what couples them, at two corners
  ibis-load export hub.ibs --all-models -f ltspice -o spice
      writes every model of the file in another dialect)";

const std::map<std::string, PackageKind> packageWords{
    {"none", PackageKind::none}, {"pins", PackageKind::pins}, {"coupled", PackageKind::coupled}};

std::vector<std::string> dialectWords() {
  std::vector<std::string> words;
  for (const Dialect& dialect : dialectTable()) words.emplace_back(dialect.word);
  return words;
}

std::string checkFolder(const std::string& name) {
  return name.empty() ? "A folder's name is not empty" : "";
}

void addChoiceOptions(CLI::App& command, ExportRequest& request) {
  command.add_option("-f,--format", request.format, "The simulator whose dialect is written")
      ->type_name("SIMULATOR")
      ->check(CLI::IsMember(dialectWords()))
      ->capture_default_str();
  command.add_option("--corner", request.corners, "A corner, once for each; else typ")
      ->type_name("CORNER")
      ->check(CLI::IsMember(cornerWords()))
      ->allow_extra_args(false);
  command.add_option("-c,--component", request.component, "The component; else the file's first")
      ->type_name("COMPONENT");
  command.add_option("-p,--pin", request.pins, "A pin to write, once for each; else all")
      ->type_name("PIN")
      ->allow_extra_args(false);
  command.add_option("--model", request.models, "A model to write without a component")
      ->type_name("NAME")
      ->allow_extra_args(false);
  command.add_flag("--all-models", request.allModels, "Every model, without a component");
  command
      .add_option("--select", request.selections,
                  "Description of the model that a selector takes, once for each")
      ->type_name("DESCRIPTION")
      ->allow_extra_args(false);
}

void addPackageOptions(CLI::App& command, ExportRequest& request) {
  command
      .add_option_function<std::string>(
          "--package",
          [&request](const std::string& word) { request.package = packageWords.at(word); },
          "What stands between die and pin: none, pins (default) or coupled")
      ->type_name("KIND")
      ->check(CLI::IsMember(packageWords).description(""));
  command
      .add_option("--min-coupling", request.smallestCoupling,
                  "Smallest inductive coupling that is written")
      ->type_name("K")
      ->check(CLI::Range(0.0, 1.0))
      ->capture_default_str();
}

void addOutputOptions(CLI::App& command, ExportOptions& options) {
  command.add_flag("--bench", options.request.hasBench, "Write a bench that runs as it stands");
  command.add_option("-o,--output", options.request.folder, "Where files go; made if absent")
      ->type_name("DIR")
      ->check(checkFolder)
      ->capture_default_str();
  command.add_flag("!--no-limit", options.request.isLimited,
                   "Write files of any size; else each 200 bytes for each of FILE and 100 MB");
  addMessageLimit(command, options.messages);
  command.add_flag("--json", options.asJson, "Report as JSON on standard output");
  command.add_flag("-q,--quiet", options.isQuiet, "No standard output but that of --json");
  command.add_flag("--werror", options.warningsFail,
                   "Exit status 1 for warnings; the files are written nevertheless");
}

using Json = nlohmann::ordered_json;

Json nameOrNull(const std::string& name) { return name.empty() ? Json() : Json(name); }

Json toJson(const Rails& rails) {
  return {{"pu", rails.pu}, {"pd", rails.pd}, {"pc", rails.pc}, {"gc", rails.gc}};
}

Json toJson(const ExportedRails& set) {
  return {{"ports", set.ports}, {"rails", toJson(set.rails)}, {"pins", set.pins}};
}

Json toJson(const ExportedSubcircuit& each) {
  Json object{{"name", each.name},
              {"model", nameOrNull(each.model)},
              {"component", nameOrNull(each.component)},
              {"corner", each.corner},
              {"file", each.file},
              {"ports", each.ports},
              {"rails", toJson(each.rails)},
              {"span", each.span},
              {"rising", methodText(each.rising)},
              {"falling", methodText(each.falling)}};
  if (!each.model.empty()) return object;
  object["railSets"] = Json::array();
  for (const ExportedRails& set : each.railSets) object["railSets"].push_back(toJson(set));
  return object;
}

void printDiagnosticLine(std::ostream& out, const Diagnostic& each) {
  JsonObject object(out);
  object.add("id", each.id);
  printLineNumber(object.begin("line"), each.line);
  object.add("text", each.text);
  object.finish();
}

void printJson(const Export& result, int status) {
  JsonObject object(std::cout);
  object.add("status", status);
  object.add("files", result.files);
  object.addArray("subcircuits", result.subcircuits,
                  [](std::ostream& out, const auto& each) { out << jsonText(toJson(each)); });
  object.addArray("warnings", result.warnings, printDiagnosticLine);
  object.addArray("errors", result.errors, printDiagnosticLine);
  object.finish();
  std::cout << '\n';
}

}  // namespace

CLI::App* addExportCommand(CLI::App& program, ExportOptions& options) {
  CLI::App* command =
      program.add_subcommand("export", "Write models as plain SPICE for open simulators.");
  command->add_option("FILE", options.request.source, "An IBIS file, or - for standard input")
      ->type_name("")
      ->required();
  addChoiceOptions(*command, options.request);
  addPackageOptions(*command, options.request);
  addOutputOptions(*command, options);
  command->footer(details);
  command->parse_complete_callback([command, &options] {
    options.request.hasSmallestCoupling = command->count("--min-coupling") != 0;
  });
  return command;
}

int runExport(const ExportOptions& options) {
  watchForInterruption();
  const Export result = exportFile(options.request);
  const Conversion report{result.files, result.warnings, result.errors};
  const int status = exitStatusOf(report, options.warningsFail);
  printMessages(std::cerr, options.request.source, report, options.messages.count());
  if (options.asJson) {
    printJson(result, status);
  } else if (!options.isQuiet) {
    printSummary(std::cout, report);
  }
  return status;
}

}  // namespace ibis::cli
