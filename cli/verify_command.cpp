#include "verify_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <exception>
#include <iomanip>
#include <iostream>
#include <mutex>
#include <thread>

#include "exit_status.h"
#include "export_source.h"
#include "interruption.h"
#include "json_line.h"
#include "messages.h"
#include "ngspice.h"
#include "printable.h"
#include "progress.h"
#include "report.h"
#include "simulator/device_notes.h"
#include "text_columns.h"
#include "verify_model.h"

namespace ibis::cli {
namespace {

constexpr const char* details =
    R"(Runs ngspice, which must be on the PATH, and prints a line for each waveform: model,
corner, waveform, error (rms at the file's own points, in per cent of their swing), distance of
the settled levels from the tables' load line with 50 ohm to each rail, in volts, time of the
runs, and what the edge was made from. A waveform that the coefficients were not made from
stands in brackets and is not held against the limit.

Exit status: 0 all within the limit; 1 one is not, or a run was not complete, or the file cannot
be read; 2 wrong use.

Examples:
  ibis-load verify buffer.ibs
  ibis-load verify buffer.ibs --model DQ --corner typ --corner min --corner max
  ibis-load verify buffer.ibs -j 0 --limit 0.2 --json)";

constexpr double perCent = 100.0;
constexpr double dcLimit = 1e-3;  // volts

struct Task {
  const IBISModel* model;
  int corner;
};

std::vector<Task> tasksOf(const std::vector<const IBISModel*>& models,
                          const std::vector<std::string>& corners) {
  std::vector<Task> tasks;
  for (const IBISModel* model : models) {
    for (const std::string& word : corners) tasks.push_back({model, cornerIndex(word)});
  }
  return tasks;
}

unsigned threadsFor(unsigned jobs, std::size_t tasks) {
  const unsigned wanted = jobs == 0 ? std::max(1u, std::thread::hardware_concurrency()) : jobs;
  return static_cast<unsigned>(std::min<std::size_t>(wanted, tasks));
}

std::vector<ModelResult> runTasks(const std::vector<Task>& tasks, const VerifyOptions& options) {
  std::vector<ModelResult> results(tasks.size());
  std::atomic<std::size_t> next{0};
  std::mutex mutex;
  std::size_t done = 0;
  Progress progress(tasks.size(), !options.asJson);
  RunOptions runOptions{.seconds = options.seconds};
  if (options.isCoarse) runOptions.line = dialectTable().front().options;
  const auto run = [&](std::size_t i) {
    results[i] = verifyModel(*tasks[i].model, tasks[i].corner, runOptions);
    const std::scoped_lock lock(mutex);
    progress.show(++done, results[i].model);
  };
  std::exception_ptr fault;
  const auto work = [&] {
    try {
      for (std::size_t i = next++; i < tasks.size(); i = next++) run(i);
    } catch (...) {
      next = tasks.size();
      const std::scoped_lock lock(mutex);
      fault = std::current_exception();
    }
  };
  {
    std::vector<std::jthread> threads;
    const unsigned count = threadsFor(options.jobs, tasks.size());
    for (unsigned i = 1; i < count; ++i) threads.emplace_back(work);
    work();
  }
  if (fault) std::rethrow_exception(fault);
  return results;
}

bool passes(const ModelResult& result, double limit) {
  if (!result.fault.empty() || result.dcError > dcLimit) return false;
  return std::ranges::all_of(result.waveforms, [&](const WaveformResult& each) {
    return !each.isUsed || each.error * perCent <= limit;
  });
}

EdgeMethod methodOf(const ModelResult& result, Edge edge) {
  return edge == Edge::rising ? result.rising : result.falling;
}

void printHead(std::ostream& out, const std::string& name, std::size_t columns, int corner) {
  const std::string shown = printable(name);
  out << shown << std::string(columns - std::min(columns, columnsOf(shown)), ' ') << "  "
      << cornerWord(corner) << "  ";
}

void printWaveform(std::ostream& out, const WaveformResult& each) {
  std::ostringstream cell;
  cell << std::fixed << std::setprecision(3) << each.error * perCent;
  out << std::left << std::setw(8) << edgeText(each.edge) << std::right << std::setw(3)
      << each.index + 1 << std::setw(10)
      << (each.isUsed ? cell.str() + ' ' : '[' + cell.str() + ']');
}

void printTail(std::ostream& out, const ModelResult& result, EdgeMethod method) {
  out << std::scientific << std::setprecision(1) << std::setw(10) << result.dcError << std::fixed
      << std::setprecision(2) << std::setw(8) << result.runSeconds << "  " << methodText(method)
      << (result.isFromTyp ? " of typ" : "") << '\n';
}

void printResult(std::ostream& out, const ModelResult& result, std::size_t columns) {
  if (!result.fault.empty()) {
    printHead(out, result.model, columns, result.corner);
    out << "run not complete: " << printable(result.fault) << '\n';
    return;
  }
  for (const WaveformResult& each : result.waveforms) {
    printHead(out, result.model, columns, result.corner);
    printWaveform(out, each);
    printTail(out, result, methodOf(result, each.edge));
  }
  if (!result.waveforms.empty()) return;
  printHead(out, result.model, columns, result.corner);
  out << "-                    ";
  printTail(out, result, result.rising);
}

void printTable(std::ostream& out, const std::vector<ModelResult>& results) {
  constexpr std::size_t mostColumns = 40;  // a longer name shifts its own line alone
  std::size_t columns = 5;
  for (const ModelResult& each : results) {
    const std::size_t wanted = columnsOf(printable(each.model));
    if (wanted <= mostColumns) columns = std::max(columns, wanted);
  }
  out << "model" << std::string(columns - 5, ' ')
      << "  corner waveform   error %     DC V   time s  made from\n";
  for (const ModelResult& each : results) printResult(out, each, columns);
}

nlohmann::ordered_json waveformJson(const WaveformResult& each) {
  return {{"edge", edgeText(each.edge)},
          {"number", each.index + 1},
          {"used", each.isUsed},
          {"errorPercent", each.error * perCent},
          {"staticMismatchPercent", each.mismatch * perCent}};
}

nlohmann::ordered_json resultJson(const ModelResult& result) {
  nlohmann::ordered_json object{{"model", result.model},
                                {"corner", cornerWord(result.corner)},
                                {"rising", methodText(result.rising)},
                                {"falling", methodText(result.falling)},
                                {"coefficientsOfTyp", result.isFromTyp},
                                {"waveforms", nlohmann::ordered_json::array()},
                                {"dcErrorVolts", result.dcError},
                                {"exportSeconds", result.exportSeconds},
                                {"runSeconds", result.runSeconds},
                                {"textSize", result.textSize},
                                {"fault", nullptr}};
  for (const WaveformResult& each : result.waveforms) {
    object["waveforms"].push_back(waveformJson(each));
  }
  if (!result.fault.empty()) object["fault"] = result.fault;
  return object;
}

void printJson(const std::vector<ModelResult>& results, int status) {
  nlohmann::ordered_json object{{"status", status}, {"models", nlohmann::ordered_json::array()}};
  for (const ModelResult& each : results) object["models"].push_back(resultJson(each));
  std::cout << jsonLine(object);
}

std::string checkLimit(const std::string& text) {
  double limit = 0.0;
  const bool isPositive = CLI::detail::lexical_cast(text, limit) && limit > 0.0;
  return isPositive ? "" : '\'' + text + "' is not a number above 0";
}

int refuse(const std::string& source, Diagnostic diagnostic) {
  printMessages(std::cerr, source, {std::move(diagnostic)});
  return exitStatus::failed;
}

}  // namespace

CLI::App* addVerifyCommand(CLI::App& program, VerifyOptions& options) {
  CLI::App* command =
      program.add_subcommand("verify", "Export models, simulate them and compare with the file.");
  command->add_option("FILE", options.source, "An IBIS file, or - for standard input")
      ->type_name("")
      ->required();
  command->add_option("--model", options.models, "A model, once for each; else all")
      ->type_name("NAME")
      ->allow_extra_args(false);
  command->add_option("--corner", options.corners, "A corner, once for each; else typ")
      ->type_name("CORNER")
      ->check(CLI::IsMember(cornerWords()))
      ->allow_extra_args(false);
  command->add_option("--limit", options.limit, "Largest error that passes, in per cent")
      ->type_name("PERCENT")
      ->check(checkLimit)
      ->capture_default_str();
  command->add_option("-j,--jobs", options.jobs, "Runs side by side; 0 for one a core")
      ->type_name("N")
      ->check(CLI::Range(0, 1024))
      ->capture_default_str();
  command->add_option("--max-time", options.seconds, "Processor time of a run, at most, in seconds")
      ->type_name("SECONDS")
      ->check(CLI::Range(1, 1'000'000))
      ->capture_default_str();
  addMessageLimit(*command, options.messages);
  command->add_flag("--coarse", options.isCoarse,
                    "With the options that an export recommends, not with finer ones");
  command->add_flag("--json", options.asJson, "Report as JSON on standard output");
  command->footer(details);
  return command;
}

int runVerify(const VerifyOptions& options) {
  watchForInterruption();
  try {
    requireNgspice();
  } catch (const SimulatorFault& fault) {
    return refuse("ibis-load", tell(Severity::error, message::workFailed, fault.what()));
  }
  const ExportSource source = readForExport(options.source, {});
  if (source.refusal) return refuse(options.source, *source.refusal);
  const IBISFileData& data = source.document->file();
  printMessages(std::cerr, options.source, data.warnings, options.messages.count());
  std::vector<std::string> unknown;
  const auto models = devicesNamed(data, options.models, unknown);
  for (const std::string& name : unknown) {
    return refuse(options.source, refuseModel(data, name));
  }
  if (models.empty())
    return refuse(options.source, tell(Severity::error, message::nothingToExport));
  const std::vector<std::string> typ{"typ"};
  const auto tasks = tasksOf(models, options.corners.empty() ? typ : options.corners);
  const std::vector<ModelResult> results = runTasks(tasks, options);
  const bool isGood = std::ranges::all_of(
      results, [&](const ModelResult& each) { return passes(each, options.limit); });
  const int status = isGood ? exitStatus::done : exitStatus::failed;
  if (options.asJson) {
    printJson(results, status);
  } else {
    printTable(std::cout, results);
  }
  return status;
}

}  // namespace ibis::cli
