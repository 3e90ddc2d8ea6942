#include "list_command.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <new>
#include <optional>
#include <utility>

#include "exit_status.h"
#include "list_report.h"
#include "messages.h"
#include "print_alone.h"
#include "record_json.h"
#include "report.h"
#include "source_list.h"

namespace ibis::cli {
namespace {

constexpr const char* details =
    R"(Standard output: for each file its version, revision and date, then tables of
components, models, selectors and package models, the models that convert refuses,
each with the reason, and what else is refused or left out.
Standard error: why a file cannot be listed.

A folder stands for every file in it and in its folders whose name ends in .ibs in any
case. Files of versions above 4.2 are read as far as version 4.2 goes; what convert
refuses is passed over and named.

Exit status: 0 all listed; 1 a file could not be read, or holds nothing to list;
2 usage error.

Examples:
  ibis-load list buffer.ibs
      tells what the file holds
  ibis-load list vendor
      tells it of every .ibs file below vendor
  ibis-load list hub.ibs --json | jq -r '.models[].name'
      prints the names of the models)";

TolerantReading failure(Diagnostic reason) {
  return {.document = {}, .leftOut = {}, .errors = {std::move(reason)}};
}

// What is told of a file: it ends no run, not even by taking all memory.
struct Listed {
  TolerantReading reading;
  std::optional<FileSummary> summary;  // none for a file that could not be read
};

// A file that holds nothing has a reading all the same.
Listed readSource(const Source& source) {
  if (source.fault) return {failure(*source.fault), {}};
  try {
    Listed listed{readTolerantly(source.name), {}};
    if (listed.reading.document) listed.summary = summarize(listed.reading);
    return listed;
  } catch (const std::bad_alloc& fault) {
    return {failure(tell(Severity::error, message::workFailed, fault.what())), {}};
  }
}

void printFileJson(std::ostream& out, const std::string& name, const Listed& listed) {
  const TolerantReading& reading = listed.reading;
  JsonObject object(out);
  object.add("schema", jsonSchema);
  object.add("file", name);
  object.add("status", reading.errors.empty() ? exitStatus::done : exitStatus::failed);
  if (listed.summary) printListJson(object, reading, *listed.summary);
  printDiagnostics(object.begin("errors"), reading.errors);
  object.finish();
}

class Listing {
 public:
  Listing(const ListOptions& options, bool isArray) : options_(options), isArray_(isArray) {}

  void add(const Source& source) {
    if (!printAlone(source.name, [&] { print(source, readSource(source)); })) {
      status_ = exitStatus::failed;
    }
  }

  int finish() const {
    if (options_.asJson) std::cout << (isArray_ ? "]\n" : "\n");
    return status_;
  }

 private:
  void print(const Source& source, const Listed& listed) {
    const TolerantReading& reading = listed.reading;
    if (!reading.errors.empty()) status_ = exitStatus::failed;
    printMessages(std::cerr, source.name, reading.errors, options_.messages.count());
    if (options_.asJson) {
      separate("[", ",\n");
      printFileJson(std::cout, source.name, listed);
    } else if (listed.summary && reading.errors.empty()) {
      const std::string text =
          listText(source.name, reading, *listed.summary, options_.messages.count());
      separate("", "\n");
      std::cout << text;
    }
  }

  void separate(const char* first, const char* next) {
    if (isArray_ || !options_.asJson) std::cout << (isFirst_ ? first : next);
    isFirst_ = false;
  }

  const ListOptions& options_;
  bool isArray_;
  bool isFirst_ = true;
  int status_ = exitStatus::done;
};

}  // namespace

CLI::App* addListCommand(CLI::App& program, ListOptions& options) {
  CLI::App* command =
      program.add_subcommand("list", "List components, models, selectors and packages of files.");
  command
      ->add_option("FILE", options.sources, "IBIS files, folders of them, or - for standard input")
      ->type_name("")
      ->required();
  addMessageLimit(*command, options.messages);
  command->add_flag("--json", options.asJson, "List as JSON on standard output");
  command->footer(details);
  return command;
}

int runList(const ListOptions& options) {
  Listing listing(options, areManyFiles(options.sources));
  for (const Source& source : listSources(options.sources, ".")) listing.add(source);
  return listing.finish();
}

}  // namespace ibis::cli
