// The stages of a load, one by one, over files by kind and size.
//
// Each run checks what it made against the generator's counts. Beside the time it reports bytes of
// input a second, and of the last run the allocations, the most memory that it held on the heap,
// and the most that the process had resident.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>

#include "allocation_counter.h"
#include "check.h"
#include "harness/temporary_folder.h"
#include "model/estimate_waveforms.h"
#include "output/embedded_templates.h"
#include "output/stream/file_sink.h"
#include "output/template_engine.h"
#include "reader/file/parser.h"

namespace ibis::bench {
namespace {

namespace fs = std::filesystem;

constexpr const char* subcircuit = "generated";

// Whether any run gave a wrong answer, which the benchmark library forgets.
bool anyFault = false;

// A folder of the process for its input and output files.
const testing::TemporaryFolder& folder() {
  static const testing::TemporaryFolder instance;
  return instance;
}

// The text in memory and on disk; runs of one text follow each other, so one is kept.
const GeneratedFile& generated(const Kind& kind, Amount amount) {
  static GeneratedFile file;
  static const Kind* lastKind = nullptr;
  static Amount last;
  if (lastKind == &kind && last.bytes == amount.bytes && last.items == amount.items) return file;
  file = {};
  file = generate(kind, amount);
  lastKind = &kind;
  last = amount;
  folder().write("input.ibs", file.text);
  return file;
}

std::string nameFor(std::string_view templateName) {
  if (templateName == "info.tmpl") return folder().file("generated_INFO.html");
  if (templateName == "script.tmpl") return folder().file("ibis_components.kvscr");
  return folder().file("generated.lb");
}

LoadRequest requestFor(const GeneratedFile& file, std::string_view mode) {
  return {.source = folder().file("input.ibs"),
          .mode = std::string(mode),
          .component = {},
          .rootDirectory = folder().path(),
          .subcircuit = subcircuit,
          .pins = file.pinFilter,
          .selections = file.selections};
}

// Counts what the runs of one measurement take.
class Meter {
 public:
  explicit Meter(benchmark::State& state) : state_(state) {}

  // Before and behind the part of a run that is measured.
  void begin() {
    restartPeakResidentBytes();
    restartAllocations();
    heldBefore_ = allocations().bytes;
  }
  void end() {
    taken_ = allocations();
    resident_ = peakResidentBytes();
  }

  void report(std::size_t bytes) {
    const auto number = [](std::size_t value) { return static_cast<double>(value); };
    state_.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state_.iterations());
    state_.counters["allocations"] = number(taken_.count);
    state_.counters["peak"] = number(taken_.peak - heldBefore_);
    state_.counters["resident"] = number(resident_);
  }

 private:
  benchmark::State& state_;
  std::size_t heldBefore_ = 0;
  Allocations taken_;
  std::size_t resident_ = 0;
};

// Runs prepare and finish off the clock and run on it; finish gives what is wrong, or nothing.
template <class Prepare, class Run, class Finish>
void measure(benchmark::State& state, std::size_t bytes, Prepare prepare, Run run, Finish finish) {
  Meter meter(state);
  for ([[maybe_unused]] auto _ : state) {
    state.PauseTiming();
    prepare();
    meter.begin();
    state.ResumeTiming();
    run();
    state.PauseTiming();
    meter.end();
    const std::string fault = finish();
    state.ResumeTiming();
    if (fault.empty()) continue;
    anyFault = true;
    return state.SkipWithError(fault.c_str());
  }
  meter.report(bytes);
}

void scan(benchmark::State& state, const Kind& kind, Amount amount) {
  const GeneratedFile& file = generated(kind, amount);
  IBISScanResult result;
  measure(
      state, file.text.size(), [&] { result = {}; }, [&] { result = scanIBISText(file.text); },
      [&] { return checkScan(file.counts, result); });
}

// A text behind the scanner, and what becomes of it.
struct Parsed {
  explicit Parsed(const GeneratedFile& source) : generated(source) {
    scanned = scanIBISText(source.text);
    for (const std::string& pin : source.pinFilter) filter.emplace_back(pin);
  }
  void parse() {
    std::int32_t index = 0;
    parseFile(*file, scanned.records, index);
  }
  void resolve() {
    for (const std::string& each : generated.selections) file->addUserModelSelector(each);
    file->setUserSubcircuitName(subcircuit);
    postParse(*file, {}, filter);
  }
  void restart() { file = std::make_unique<IBISFile>(); }

  const GeneratedFile& generated;
  IBISScanResult scanned;
  std::vector<IBISString> filter;
  std::unique_ptr<IBISFile> file = std::make_unique<IBISFile>();
};

void parse(benchmark::State& state, const Kind& kind, Amount amount) {
  const GeneratedFile& file = generated(kind, amount);
  Parsed parsed(file);
  measure(
      state, file.text.size(), [&] { parsed.restart(); }, [&] { parsed.parse(); },
      [&] { return checkParsed(file.counts, parsed.file->data()); });
}

// Both as a load does them, piece by piece.
void scanAndParse(benchmark::State& state, const Kind& kind, Amount amount) {
  const GeneratedFile& file = generated(kind, amount);
  std::unique_ptr<IBISScanner> scanner;
  std::unique_ptr<IBISFile> parsed;
  const auto prepare = [&] {
    scanner = std::make_unique<IBISScanner>(file.text);
    parsed = std::make_unique<IBISFile>();
  };
  measure(
      state, file.text.size(), prepare, [&] { parseFile(*parsed, *scanner); },
      [&] { return checkParsed(file.counts, parsed->data()); });
}

void resolve(benchmark::State& state, const Kind& kind, Amount amount) {
  const GeneratedFile& file = generated(kind, amount);
  Parsed parsed(file);
  const auto prepare = [&] {
    parsed.restart();
    parsed.parse();
  };
  measure(
      state, file.text.size(), prepare, [&] { parsed.resolve(); },
      [&] { return checkResolved(file, parsed.file->data()); });
}

void estimate(benchmark::State& state, const Kind& kind, Amount amount) {
  const GeneratedFile& file = generated(kind, amount);
  Parsed parsed(file);
  parsed.parse();
  parsed.resolve();
  IBISFileData& data = parsed.file->data();
  const auto forget = [&] {
    data.warnings.clear();
    for (const auto& model : data.models) {
      model->risingWaveforms = {};
      model->fallingWaveforms = {};
    }
  };
  const auto run = [&] {
    for (const auto& model : data.models) estimateWaveforms(*model, *parsed.file);
  };
  measure(state, file.text.size(), forget, run, [&] { return checkResolved(file, data); });
}

void expand(benchmark::State& state, const Kind& kind, Amount amount, std::string_view name) {
  const GeneratedFile& file = generated(kind, amount);
  Parsed parsed(file);
  parsed.parse();
  parsed.resolve();
  const IBISFileData& data = parsed.file->data();
  const auto run = [&] {
    FileSink sink;
    TemplateEngine engine(data, data.components[0].get(), folder().path(), *parsed.file, sink);
    TextBuffer text;
    if (loadEmbedded(text, name)) engine.expand(text);
  };
  measure(
      state, file.text.size(), [] {}, run,
      [&] { return checkOutput(file, data, name, readFile(nameFor(name))); });
}

std::string_view templateOf(std::string_view mode) {
  if (mode == "package") return "package.tmpl";
  return mode == "script" ? "script.tmpl" : "component.tmpl";
}

void load(benchmark::State& state, const Kind& kind, Amount amount, std::string_view mode) {
  const GeneratedFile& file = generated(kind, amount);
  const std::string_view name = templateOf(mode);
  std::unique_ptr<Load> load;
  const auto prepare = [&] {
    load.reset();
    fs::remove(nameFor(name));
  };
  const auto run = [&] {
    load = std::make_unique<Load>(requestFor(file, mode));
    load->read();
    load->write();
  };
  measure(state, file.text.size(), prepare, run, [&] {
    const IBISFileData& data = load->file().data();
    const std::string fault = checkResolved(file, data);
    return fault.empty() ? checkOutput(file, data, name, readFile(nameFor(name))) : fault;
  });
}

void grow(benchmark::State& state, const Kind& kind) {
  state.counters["time_per_item"] = benchmark::Counter(
      static_cast<double>(state.range(0)),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
  load(state, kind, {.items = static_cast<std::size_t>(state.range(0))}, "model");
}

template <class... Arguments>
void add(const std::string& name, Arguments... arguments) {
  benchmark::RegisterBenchmark(name.c_str(), arguments...)->Unit(benchmark::kMillisecond);
}

void addStages(const Kind& kind, std::size_t bytes, const std::string& size) {
  const Amount amount{.bytes = bytes};
  const std::string place = '/' + std::string(kind.name) + '/' + size;
  add("scan" + place, scan, kind, amount);
  add("parse" + place, parse, kind, amount);
  add("scan+parse" + place, scanAndParse, kind, amount);
  add("resolve" + place, resolve, kind, amount);
  if (kind.name == "ramps") add("estimate" + place, estimate, kind, amount);
  for (const EmbeddedTemplate& each : embeddedTemplates()) {
    const std::string_view name = each.name;
    add("expand:" + std::string(name) + place, expand, kind, amount, name);
  }
  for (const std::string_view mode : {"model", "package", "script"}) {
    add("load:" + std::string(mode) + place, load, kind, amount, mode);
  }
}

struct Size {
  std::size_t bytes;
  const char* name;
};

constexpr Size sizes[] = {{10'000, "10K"},
                          {100'000, "100K"},
                          {1'000'000, "1M"},
                          {10'000'000, "10M"},
                          {100'000'000, "100M"}};

bool hadFault() { return anyFault; }

void addAll() {
  constexpr std::int64_t fewestItems = 1 << 10;
  constexpr std::int64_t mostItems = 1 << 16;
  for (const Kind& kind : contentKinds()) {
    for (const Size& size : sizes) addStages(kind, size.bytes, size.name);
  }
  for (const Kind& kind : growthKinds()) {
    benchmark::RegisterBenchmark(("grow/" + std::string(kind.name)).c_str(), grow, kind)
        ->RangeMultiplier(2)
        ->Range(fewestItems, mostItems)
        ->Unit(benchmark::kMillisecond);
  }
}

}  // namespace
}  // namespace ibis::bench

int main(int count, char** words) {
  ibis::bench::addAll();
  benchmark::Initialize(&count, words);
  if (benchmark::ReportUnrecognizedArguments(count, words)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return ibis::bench::hadFault() ? 1 : 0;
}
