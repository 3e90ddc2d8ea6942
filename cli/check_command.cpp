#include "check_command.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <new>

#include "check_errors.h"
#include "check_json.h"
#include "check_sarif.h"
#include "check_text.h"
#include "checks/check.h"
#include "checks/rules.h"
#include "exit_status.h"
#include "input_text.h"
#include "messages.h"
#include "print_alone.h"
#include "reader/text/text_buffer.h"
#include "rule_selection.h"
#include "source_fault.h"
#include "source_list.h"

namespace ibis::cli {
namespace {

constexpr const char* details =
    R"(Each finding is told as FILE:LINE:COLUMN: error|warning|note: TEXT [ID] with its line and
the remedy; of a rule five in a file at most. A summary by rule stands at the end.

Rules are switched by -W, once for each: -Wall tells notes too, -WID and -WGROUP tell a
rule or a group, -Wno-ID and -Wno-GROUP leave it out. A later one wins. --werror makes
errors of all warnings, --werror=ID of those of a rule or a group.

Exit status: 0 no error; 1 errors, or a file that cannot be read; 2 wrong use.

Examples:
  ibis-load check buffer.ibs
  ibis-load check vendor -Wno-quality -Wtable-range
  ibis-load check buffer.ibs --werror=numeric --json > findings.json
  ibis-load check vendor --sarif > findings.sarif
  ibis-load check --explain consistency-waveform-iv)";

std::string unknownRule(const std::string& name) {
  const std::string_view bare =
      std::string_view(name).starts_with("no-") ? std::string_view(name).substr(3) : name;
  const std::string_view near = checks::nearestRule(bare);
  std::string text = "'" + name + "' is no rule and no group";
  if (!near.empty()) text.append("; did you mean '").append(near).append("'?");
  return text;
}

RuleSelection selectionOf(const CheckCommandOptions& options) {
  RuleSelection selection;
  for (const std::string& word : options.switches) {
    if (!selection.apply(word)) throw CLI::ValidationError("-W", unknownRule(word));
  }
  for (const std::string& name : options.errorRules) {
    if (!selection.makeError(name)) throw CLI::ValidationError("--werror", unknownRule(name));
  }
  return selection;
}

void checkOptions(const CheckCommandOptions& options) {
  selectionOf(options);
  if (options.explained.empty() && options.sources.empty()) {
    throw CLI::RequiredError("FILE");
  }
  if (options.asJson && options.asSarif) {
    throw CLI::ValidationError("--sarif", "--json and --sarif exclude each other");
  }
  const bool isKnown = options.explained.empty() || options.explained == "all" ||
                       checks::findRule(options.explained).has_value();
  if (!isKnown) throw CLI::ValidationError("--explain", unknownRule(options.explained));
}

int explain(const std::string& id) {
  std::cout << (id == "all" ? checks::ruleGuide()
                            : checks::rulePage(checks::ruleRow(*checks::findRule(id))));
  return exitStatus::done;
}

bool isColored(const std::string& choice) {
  if (choice != "auto") return choice == "always";
  const char* off = std::getenv("NO_COLOR");
  return (off == nullptr || *off == '\0') && isatty(STDERR_FILENO) == 1;
}

// A file that cannot be read has its reason for a finding.
CheckedFile checkFile(const Source& source, const RuleSelection& selection) {
  CheckedFile file{.name = source.name, .text = {}, .diagnostics = {}};
  TextBuffer buffer;
  InputText input;
  if (!source.fault) input = readInputText(source.name);
  const std::optional<Diagnostic>& fault = source.fault ? source.fault : input.fault;
  if (fault || (!input.text && !buffer.loadFile(source.name))) {
    file.diagnostics.push_back(fault ? *fault : reasonUnread(source.name));
    return file;
  }
  file.text = input.text ? std::string_view(*input.text) : buffer.text();
  file.diagnostics = selection.select(checks::check(file.text, checkOptionsOf(source.name)));
  return file;
}

// A file ends no run, not even by taking all memory.
CheckedFile checkFileAlone(const Source& source, const RuleSelection& selection) {
  try {
    return checkFile(source, selection);
  } catch (const std::bad_alloc& fault) {
    return {.name = source.name,
            .text = {},
            .diagnostics = {tell(Severity::error, message::workFailed, fault.what())}};
  }
}

std::vector<std::string> namesOf(const std::vector<Source>& sources) {
  std::vector<std::string> names;
  for (const Source& source : sources) names.push_back(source.name);
  return names;
}

// Checks file after file and hands each to what prints it.
template <class Print>
int checkAll(const std::vector<Source>& sources, const RuleSelection& selection,
             CheckTotals& totals, Print print) {
  bool isTold = true;
  for (const Source& source : sources) {
    const CheckedFile file = checkFileAlone(source, selection);
    const auto tellOfFile = [&] {
      totals.add(file);
      print(file);
    };
    isTold = printAlone(source.name, tellOfFile) && isTold;
  }
  return totals.hasErrors() || !isTold ? exitStatus::failed : exitStatus::done;
}

}  // namespace

CLI::App* addCheckCommand(CLI::App& program, CheckCommandOptions& options) {
  CLI::App* command = program.add_subcommand("check", "Check IBIS files, line by line.");
  command
      ->add_option("FILE", options.sources, "IBIS files, folders of them, or - for standard input")
      ->type_name("");
  command->add_option("-W", options.switches, "all, RULE, GROUP, no-RULE or no-GROUP")
      ->type_name("SWITCH")
      ->allow_extra_args(false);
  command
      ->add_flag("--werror{all}", options.errorRules, "Make errors of all warnings, or of a rule's")
      ->type_name("[=RULE]")
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command->add_option("--explain", options.explained, "Print a rule's page, or all pages")
      ->type_name("RULE");
  command->add_option("--color", options.color, "Color the findings: auto, always or never")
      ->type_name("WHEN")
      ->check(CLI::IsMember({"auto", "always", "never"}))
      ->capture_default_str();
  command->add_flag("--json", options.asJson, "Print the findings as JSON on standard output");
  command->add_flag("--sarif", options.asSarif, "Print them as SARIF 2.1.0 on standard output");
  command->footer(details);
  command->parse_complete_callback([&options] { checkOptions(options); });
  return command;
}

int runCheck(const CheckCommandOptions& options) {
  if (!options.explained.empty()) return explain(options.explained);
  const RuleSelection selection = selectionOf(options);
  const std::vector<Source> sources = listSources(options.sources, {});
  CheckTotals totals;
  if (options.asJson) {
    CheckJson json(std::cout, areManyFiles(options.sources));
    const int status =
        checkAll(sources, selection, totals, [&](const auto& file) { json.add(file); });
    json.finish();
    return status;
  }
  if (options.asSarif) {
    CheckSarif sarif(std::cout, namesOf(sources));
    const int status =
        checkAll(sources, selection, totals, [&](const auto& file) { sarif.add(file); });
    sarif.finish();
    return status;
  }
  const bool colored = isColored(options.color);
  const int status = checkAll(sources, selection, totals,
                              [&](const auto& file) { std::cerr << checkText(file, colored); });
  std::cout << totals.summary();
  return status;
}

}  // namespace ibis::cli
