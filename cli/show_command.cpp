#include "show_command.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <optional>

#include "exit_status.h"
#include "json_pieces.h"
#include "messages.h"
#include "model_report.h"
#include "near_names.h"
#include "record_json.h"
#include "report.h"
#include "show_report.h"

namespace ibis::cli {
namespace {

constexpr const char* details =
    R"(NAME is a model, a component, a selector, a package model or a pin, in this order; all
that have it are shown. Where nothing has it, the pins of that signal are. Without NAME
the whole file is shown, with the texts of its header.

Of a model come its values by corner, the ramp in V/ns, the rows and ranges of its tables
and waveforms, and of a driver what it does at its pin: half the swing between its
references over the current of its pullup or pulldown there, and the levels of driver and
clamps on 50 ohms. "-" stands where the file gives nothing. --json has every number.

TABLE is pulldown, pullup, gnd_clamp, power_clamp, rising_1, falling_1 and so on. Its
columns are volts, or seconds for a waveform, and the three corners in amperes, or volts
for a waveform; a cell that the file leaves out is empty.

Standard error: what is refused or left out of the file.

Exit status: 0 shown; 1 the file could not be read, or nothing has the name; 2 usage error.

Examples:
  ibis-load show buffer.ibs out_24mA
      shows a model
  ibis-load show buffer.ibs A1
      shows a pin
  ibis-load show buffer.ibs out_24mA --csv pullup > pullup.csv
      writes a table for a spreadsheet
  ibis-load show buffer.ibs out_24mA --json | jq '.models[0].driver'
      prints what a driver does at its pin)";

void beginJson(JsonObject& object, const ShowOptions& options, int status) {
  object.add("schema", jsonSchema);
  object.add("file", options.source);
  object.add("status", status);
}

// What went wrong, told beside what is refused; nothing else is shown then.
int fail(const ShowOptions& options, const std::vector<Diagnostic>& errors) {
  printMessages(std::cerr, options.source, errors, options.messages.count());
  if (options.asJson) {
    JsonObject object(std::cout);
    beginJson(object, options, exitStatus::failed);
    printDiagnostics(object.begin("errors"), errors);
    object.finish();
    std::cout << '\n';
  }
  return exitStatus::failed;
}

void addNote(Diagnostic& diagnostic, std::string text) {
  if (!text.empty()) diagnostic.notes.push_back({.line = 0, .text = std::move(text)});
}

Diagnostic nothingCalled(const ShowOptions& options, const IBISFileData& file) {
  Diagnostic diagnostic = tell(Severity::error, message::nothingCalled, options.name.c_str());
  addNote(diagnostic, meantText(options.name, allNames(file)));
  return diagnostic;
}

std::vector<std::string> tableNames(const IBISModel& model) {
  std::vector<std::string> names;
  for (const NamedTable& each : namedTables(model)) names.push_back(each.name);
  for (const NamedWaveform& each : namedWaveforms(model)) names.push_back(each.name);
  return names;
}

std::optional<std::string> csvOf(const IBISModel& model, const std::string& name) {
  for (const NamedTable& each : namedTables(model)) {
    if (each.name == name) return csvText(*each.table);
  }
  for (const NamedWaveform& each : namedWaveforms(model)) {
    if (each.name == name) return csvText(*each.waveform);
  }
  return std::nullopt;
}

int writeCsv(const ShowOptions& options, const Found& found) {
  if (found.models.empty()) {
    return fail(options, {tell(Severity::error, message::noModelCalled, options.name.c_str())});
  }
  const IBISModel& model = *found.models.front()->model;
  if (const std::optional<std::string> csv = csvOf(model, options.table)) {
    std::cout << *csv;
    return exitStatus::done;
  }
  Diagnostic diagnostic =
      tell(Severity::error, message::noTableCalled, options.name.c_str(), options.table.c_str());
  const std::vector<std::string> names = tableNames(model);
  addNote(diagnostic, names.empty() ? "it has no tables" : "it has " + namesText(names));
  return fail(options, {diagnostic});
}

void print(const ShowOptions& options, const TolerantReading& reading, const Found& found) {
  const IBISFileData& file = reading.document->file();
  if (!options.asJson) {
    if (options.name.empty()) std::cout << headerText(options.source, file) << '\n';
    std::cout << showText(found);
    return;
  }
  JsonObject object(std::cout);
  beginJson(object, options, exitStatus::done);
  addHeader(object, file);
  object.add("source", textOrNull(file.source));
  object.add("notes", textOrNull(file.notes));
  object.add("disclaimer", textOrNull(file.disclaimer));
  object.add("copyright", textOrNull(file.copyright));
  printFoundJson(object, found);
  printDiagnostics(object.begin("leftOut"), reading.leftOut);
  object.begin("errors") << "[]";
  object.finish();
  std::cout << '\n';
}

void checkAgainstEachOther(const ShowOptions& options) {
  if (options.table.empty()) return;
  if (options.name.empty())
    throw CLI::ValidationError("--csv", "A table needs the NAME of a model");
  if (options.asJson) throw CLI::ValidationError("--csv", "A table is written as CSV or as JSON");
}

}  // namespace

CLI::App* addShowCommand(CLI::App& program, ShowOptions& options) {
  CLI::App* command = program.add_subcommand(
      "show", "Show a model, pin or component in full, or write one table as CSV.");
  command->add_option("FILE", options.source, "An IBIS file, or - for standard input")
      ->type_name("")
      ->required();
  command->add_option("NAME", options.name, "What to show; else all")->type_name("");
  addMessageLimit(*command, options.messages);
  command->add_flag("--json", options.asJson, "Show as JSON, with every number");
  command->add_option("--csv", options.table, "Write this table or waveform of model NAME as CSV")
      ->type_name("TABLE");
  command->footer(details);
  command->parse_complete_callback([&options] { checkAgainstEachOther(options); });
  return command;
}

int runShow(const ShowOptions& options) {
  const TolerantReading reading = readTolerantly(options.source);
  if (!reading.errors.empty()) return fail(options, reading.errors);
  const IBISFileData& file = reading.document->file();
  const FileSummary summary = summarize(reading);
  const Found found =
      options.name.empty() ? findAll(file, summary) : findByName(file, summary, options.name);
  if (found.empty()) return fail(options, {nothingCalled(options, file)});
  printMessages(std::cerr, options.source, reading.leftOut, options.messages.count());
  if (!options.table.empty()) return writeCsv(options, found);
  print(options, reading, found);
  return exitStatus::done;
}

}  // namespace ibis::cli
