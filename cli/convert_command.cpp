#include "convert_command.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <set>

#include "interruption.h"
#include "many_files.h"
#include "output/outputs.h"
#include "report.h"
#include "source_list.h"
#include "text_pieces.h"

namespace ibis::cli {
namespace {

constexpr const char* details =
    R"(Standard output: the files written and the counts of warnings and errors.
Standard error: each message as FILE:LINE: warning: TEXT, or without LINE, and notes below it.

--as-version 4.2 reads files of later versions as far as 4.2 goes: keywords that came
later are passed over with what belongs to them, and each kind is told. --keep-going
passes over what else would be refused; models that cannot be converted are left out of
the files with their pins, and each is told with its pins. A package keeps the pins of
such models.

Several modes are written one after the other; the library of a package beside that of
a model is called SUBCKT_package.lb.

Many files: several FILEs, or a folder, which stands for every file in it and in its
folders whose name ends in .ibs in any case. What is written of NAME.ibs goes into
DIR/NAME, of SUB/NAME.ibs in a folder into DIR/SUB/NAME; a name that is taken gets _2,
_3 and so on. A file that fails stops no other. Messages come in the order of the files;
at the end stands a table of all files, their status, counts and folders. A terminal
shows the progress. SUBCKT is for one FILE alone.

Exit status: 0 files written, with or without warnings; 1 errors, or nothing written,
or, with --werror, warnings (the files are written nevertheless); 2 usage error.
Of many files one that ends in 1 makes it 1.

Examples:
  ibis-load convert buffer.ibs
      writes the library of the first component into the current folder
  ibis-load convert hub.ibs -c HUB -o out -s hub_io -p A1 -p A2
      writes out/hub_io.lb and out/hub_io_INFO.html for two of HUB's pins
  unzip -p hub.zip hub.ibs | ibis-load convert - -o out
      reads standard input
  ibis-load convert hub.ibs -m package -o out
      writes the library of the package alone
  ibis-load convert hub.ibs -m model -m package --all-components -o out
      writes NAME.lb, NAME_INFO.html and NAME_package.lb of each component
  ibis-load convert dram.ibs --select DQ=DQ_HALF
      chooses a model of a selector by their names
  ibis-load convert dram.ibs --select "40 Ohm driver" --werror
      chooses a model by its description; a warning fails the command
  ibis-load convert buffer.ibs --json -o out > report.json
      reports as JSON: status, files, warnings and errors
  ibis-load convert hub.ibs --as-version 4.2 --keep-going
      reads a newer file and writes what can be converted of it
  ibis-load convert vendor -j 0 -o libraries
      converts each .ibs file below vendor, with a thread for each core
  ibis-load convert a.ibs b.ibs old/a.ibs -o libraries
      writes into libraries/a, libraries/b and libraries/a_2
  ibis-load convert vendor -j 4 --json -o libraries > report.json
      reports as one JSON array: each object begins with its file)";

// Each mode with what it writes, in lines of at most 80 columns.
std::string modesText() {
  constexpr std::size_t nameColumns = 8;
  constexpr std::size_t lineColumns = 80;
  const std::string indent(2 + nameColumns + 1, ' ');
  std::string text = "Modes, and what each writes into DIR:\n";
  for (const Output& output : outputTable()) {
    std::string line = "  " + std::string(output.word);
    line.resize(indent.size(), ' ');
    for (const std::string_view word : wordsOf(output.summary)) {
      if (line.size() + word.size() > lineColumns) {
        text += line + '\n';
        line = indent;
      }
      line.append(line.ends_with(' ') ? "" : " ").append(word);
    }
    text += line + '\n';
  }
  return text;
}

std::vector<std::string> modeWords() {
  std::vector<std::string> words;
  for (const Output& output : outputTable()) words.emplace_back(output.word);
  return words;
}

std::string checkSubcircuit(const std::string& name) {
  const bool isName = name.find_first_of(" \t\n/%") == name.npos;
  return isName ? "" : "A subcircuit's name holds no blank, '/' or '%'";
}

std::string checkJobs(const std::string& text) {
  const bool isNumber = !text.empty() && text.find_first_not_of("0123456789") == text.npos;
  const bool isPlain = text == "0" || !text.starts_with('0');
  const bool isSmall = text.size() < 4 || (text.size() == 4 && text <= "1024");
  return isNumber && isPlain && isSmall ? "" : '\'' + text + "' is not a number from 0 to 1024";
}

std::string checkFolder(const std::string& name) {
  return name.empty() ? "A folder's name is not empty" : "";
}

void addSourceOptions(CLI::App& command, ConvertOptions& options) {
  command
      .add_option("FILE", options.sources, "IBIS files, folders of them, or - for standard input")
      ->type_name("")
      ->required();
  command.add_option("-j,--jobs", options.jobs, "Threads for many files; 0 for one a core")
      ->type_name("N")
      ->check(checkJobs)
      ->allow_extra_args(false)
      ->capture_default_str();
}

void addFileOptions(CLI::App& command, ConvertOptions& options) {
  const CLI::IsMember modes(modeWords(), CLI::ignore_case);
  command
      .add_option("-m,--mode", options.modes,
                  "What to write, in any case of letters; once for each mode")
      ->type_name("MODE")
      ->check(modes)
      ->allow_extra_args(false)
      ->capture_default_str();
  command.add_option("-o,--output", options.request.folder, "Where files go; made if absent")
      ->type_name("DIR")
      ->check(checkFolder)
      ->capture_default_str();
  command.add_flag("!--no-limit", options.request.isLimited,
                   "Write output of any size; else 200 bytes for each of the file and 100 MB");
  command.add_flag("--no-clobber", options.request.keepsFiles, "Replace no file that is there");
  command.add_flag("--dry-run", options.request.isRehearsal, "Write nothing, tell what would be");
}

void addChoiceOptions(CLI::App& command, ConversionRequest& request) {
  command.add_option("-c,--component", request.component, "The component; else the file's first")
      ->type_name("COMPONENT");
  command.add_flag("--all-components", request.allComponents, "Each component of the file");
  command
      .add_option("-s,--subcircuit", request.subcircuit,
                  "Name of the subcircuit; else the component's SPICE name")
      ->type_name("SUBCKT")
      ->check(checkSubcircuit);
  command.add_option("-p,--pin", request.pins, "A pin to write, once for each; else all")
      ->type_name("PIN")
      ->allow_extra_args(false);
  command
      .add_option("--select", request.selections,
                  "Model that a selector takes, by its description or as SELECTOR=MODEL")
      ->type_name("DESCRIPTION")
      ->allow_extra_args(false);
}

void addReadingOptions(CLI::App& command, ConvertOptions& options) {
  command
      .add_option("--as-version", options.asVersion,
                  "Read versions above 4.2 as far as 4.2 goes, with a warning")
      ->type_name("VERSION")
      ->check(CLI::IsMember({"4.2"}));
  command.add_flag("-k,--keep-going", options.request.reading.keepGoing,
                   "Leave out models that cannot be converted, with their pins");
}

void addReportOptions(CLI::App& command, ConvertOptions& options) {
  command.add_flag("!--no-check", options.request.isChecked,
                   "Do not tell the errors that the command check finds");
  addMessageLimit(command, options.messages);
  command.add_flag("--json", options.asJson, "Report as JSON on standard output");
  command.add_flag("-q,--quiet", options.isQuiet,
                   "No progress, and no standard output but that of --json");
  command.add_flag("--werror", options.warningsFail,
                   "Exit status 1 for warnings; the files are written nevertheless");
}

// Completion in a shell leaves a slash at the end, which would be doubled in the files' names.
std::string withoutSlashAtEnd(std::string folder) {
  while (folder.size() > 1 && folder.ends_with('/')) folder.pop_back();
  return folder;
}

// One subcircuit name cannot be right for many files.
void checkAgainstEachOther(const ConvertOptions& options) {
  const ConversionRequest& request = options.request;
  if (request.allComponents && !request.component.empty()) {
    throw CLI::ValidationError("--all-components", "It excludes --component");
  }
  if (request.allComponents && !request.subcircuit.empty()) {
    throw CLI::ValidationError("--all-components", "It excludes --subcircuit");
  }
  if (request.allComponents && !request.pins.empty()) {
    throw CLI::ValidationError("--all-components", "It excludes --pin");
  }
  if (options.request.subcircuit.empty() || !areManyFiles(options.sources)) return;
  throw CLI::ValidationError("--subcircuit", "Only one FILE can be given a subcircuit's name");
}

// Each mode but the first, once.
std::vector<std::string> furtherModes(const std::vector<std::string>& words) {
  std::vector<std::string> modes;
  std::set<OutputMode> taken = {outputMode(words.front())};
  for (const std::string& word : words) {
    if (taken.insert(outputMode(word)).second) modes.push_back(word);
  }
  return modes;
}

// "-p=-1" keeps the sign, which "--pin=-1" does not.
void dropSigns(std::vector<std::string>& pins) {
  for (std::string& pin : pins) {
    if (pin.size() > 1 && pin.starts_with('=')) pin.erase(0, 1);
  }
}

int convertOneFile(const ConvertOptions& options) {
  ConversionRequest request = options.request;
  const auto inputs = std::make_shared<InputFiles>();
  inputs->add(request.source);
  request.inputs = inputs;
  const Conversion conversion = convert(request);
  const int status = exitStatusOf(conversion, options.warningsFail);
  printMessages(std::cerr, options.request.source, conversion, options.messages.count());
  if (options.asJson) {
    printJson(std::cout, conversion, status);
  } else if (!options.isQuiet) {
    printSummary(std::cout, conversion);
  }
  return status;
}

}  // namespace

CLI::App* addConvertCommand(CLI::App& program, ConvertOptions& options) {
  CLI::App* command =
      program.add_subcommand("convert", "Convert IBIS files, in the way that MODE tells.");
  addSourceOptions(*command, options);
  addFileOptions(*command, options);
  addChoiceOptions(*command, options.request);
  addReadingOptions(*command, options);
  addReportOptions(*command, options);
  command->footer(modesText() + '\n' + details);
  command->parse_complete_callback([&options] { checkAgainstEachOther(options); });
  return command;
}

int runConvert(ConvertOptions options) {
  watchForInterruption();
  dropSigns(options.request.pins);
  options.request.mode = options.modes.front();
  options.request.furtherModes = furtherModes(options.modes);
  options.request.reading.newerVersions = !options.asVersion.empty();
  options.request.folder = withoutSlashAtEnd(options.request.folder);
  if (areManyFiles(options.sources)) return convertManyFiles(options);
  options.request.source = options.sources.front();
  return convertOneFile(options);
}

}  // namespace ibis::cli
