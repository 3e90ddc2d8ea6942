#include "many_files.h"

#include <algorithm>
#include <iostream>
#include <memory>

#include "conversion_queue.h"
#include "exit_status.h"
#include "print_alone.h"
#include "progress.h"
#include "report.h"
#include "result_table.h"

namespace ibis::cli {
namespace {

std::size_t threadCount(unsigned jobs) {
  return jobs == 0 ? std::max(1U, std::thread::hardware_concurrency()) : jobs;
}

// Reports each conversion as soon as those before it are reported.
class RunningReport {
 public:
  explicit RunningReport(const ConvertOptions& options) : options_(options) {}

  // A result too large to be printed is its own file's fault.
  void add(const Source& source, const Conversion& conversion, Progress& progress) {
    if (!printAlone(source.name, [&] { print(source, conversion, progress); })) {
      status_ = exitStatus::failed;
    }
  }

  int finish() {
    if (options_.asJson) {
      json_.finish(std::cout);
    } else if (!options_.isQuiet) {
      table_.print(std::cout);
    }
    return status_;
  }

 private:
  void print(const Source& source, const Conversion& conversion, Progress& progress) {
    const int status = exitStatusOf(conversion, options_.warningsFail);
    if (status != exitStatus::done) status_ = status;
    progress.wipe();
    printMessages(std::cerr, source.name, conversion, options_.messages.count());
    if (options_.asJson) {
      json_.add(std::cout, source.name, conversion, status);
    } else if (!options_.isQuiet) {
      table_.add(source, conversion, status);
    }
  }

  const ConvertOptions& options_;
  JsonArray json_;
  ResultTable table_;
  int status_ = exitStatus::done;
};

void convertAll(const std::vector<Source>& sources, const ConversionRequest& request,
                const ConvertOptions& options, RunningReport& report) {
  Progress progress(sources.size(), !options.isQuiet);
  progress.show(0, sources.front().name);
  ConversionQueue queue(sources, request, threadCount(options.jobs));
  for (const Source& source : sources) {
    auto conversion = queue.take(Progress::interval);
    for (; !conversion; conversion = queue.take(Progress::interval)) {
      progress.show(queue.doneCount(), queue.current().name);
    }
    report.add(source, *conversion, progress);
    progress.show(queue.doneCount(), queue.current().name);
  }
}

}  // namespace

int convertManyFiles(const ConvertOptions& options) {
  const std::vector<Source> sources = listSources(options.sources, options.request.folder);
  const auto inputs = std::make_shared<InputFiles>();
  for (const Source& source : sources) inputs->add(source.name);
  ConversionRequest request = options.request;
  request.inputs = inputs;
  RunningReport report(options);
  convertAll(sources, request, options, report);
  return report.finish();
}

}  // namespace ibis::cli
