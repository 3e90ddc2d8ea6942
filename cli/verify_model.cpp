#include "verify_model.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "model/estimate_waveforms.h"
#include "ngspice.h"
#include "output/stream/memory_sink.h"
#include "simulator/measuring_bench.h"
#include "simulator/names.h"

namespace ibis::cli {
namespace {

using Clock = std::chrono::steady_clock;

constexpr double testResistance = 50.0;  // ohms to each rail

// A waveform of the file and the run that repeats it.
struct Reference {
  WaveformResult result;
  WaveformPoints points;
  FixtureRun run;
};

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

template <class Write>
std::string textOf(Write write) {
  MemorySink sink;
  const std::unique_ptr<OutputStream> out = OutputStream::open(sink, "deck");
  NetlistWriter writer(*out, dialectTable().front());
  write(writer);
  out->close();
  sink.keep("deck");
  return sink.files().at("deck");
}

void addReferences(std::vector<Reference>& references, const IBISModel& model,
                   const DeviceNetlist& netlist, Edge edge, int corner) {
  const bool rises = edge == Edge::rising;
  const EdgeCoefficients& found = rises ? netlist.rising : netlist.falling;
  const std::vector<IBISWaveform>& list = rises ? model.risingWaveforms : model.fallingWaveforms;
  for (std::size_t i = 0; i < list.size(); ++i) {
    Reference each;
    each.points = ownPoints(list[i].estimate ? withPoints(list[i]) : list[i], corner);
    if (each.points.size() < 2 || !(swingOf(each.points) > 1e-3)) continue;
    if (!(each.points.time.back() > 0.0)) continue;
    each.run = {edge, fixtureOf(list[i], corner)};
    each.result = {.edge = edge, .index = i};
    each.result.isUsed = !found.isFromTyp && std::ranges::find(found.used, i) != found.used.end();
    each.result.mismatch = staticMismatch(netlist.device, edge, each.points, each.run.fixture);
    references.push_back(std::move(each));
  }
}

double interpolated(const std::vector<double>& x, const std::vector<double>& y, double place) {
  const auto above = std::ranges::upper_bound(x, place);
  if (above == x.begin()) return y.front();
  if (above == x.end()) return y.back();
  const auto i = static_cast<std::size_t>(above - x.begin());
  return y[i - 1] + (y[i] - y[i - 1]) * (place - x[i - 1]) / (x[i] - x[i - 1]);
}

// Root of the mean square at the points, each weighted with half the time to its neighbours.
double rmsError(const WaveformPoints& points, const std::vector<double>& time,
                const std::vector<double>& voltage, double start) {
  double sum = 0.0;
  double weights = 0.0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (points.time[i] < 0.0) continue;
    const double before = points.time[i == 0 ? 0 : i - 1];
    const double after = points.time[std::min(i + 1, points.size() - 1)];
    const double weight = 0.5 * (after - before);
    const double miss = interpolated(time, voltage, start + points.time[i]) - points.voltage[i];
    sum += weight * miss * miss;
    weights += weight;
  }
  return std::sqrt(sum / weights);
}

void checkEnd(const RawPlot& plot, const BenchTimes& times) {
  const std::vector<double>* time = plot.find("time");
  if (time == nullptr || time->empty() || time->back() < times.stop * (1.0 - 1e-6)) {
    throw SimulatorFault("the run did not reach its end");
  }
}

const std::vector<double>& voltageOf(const RawPlot& plot, std::size_t run) {
  const std::vector<double>* voltage = plot.find("v(" + measuredNode(run) + ')');
  if (voltage == nullptr || voltage->empty()) throw SimulatorFault("a voltage was not saved");
  return *voltage;
}

void runEdges(ModelResult& result, const DeviceNetlist& netlist, const IBISModel& model,
              const RunOptions& options, const TemporaryFolder& folder) {
  std::vector<Reference> references;
  addReferences(references, model, netlist, Edge::rising, result.corner);
  addReferences(references, model, netlist, Edge::falling, result.corner);
  std::vector<FixtureRun> runs;
  double last = 0.0;
  for (const Reference& each : references) {
    runs.push_back(each.run);
    last = std::max(last, each.points.time.back());
  }
  if (runs.empty()) {
    runs.push_back({Edge::rising, {}});
    runs.push_back({Edge::falling, {}});
  }
  const BenchTimes times = benchTimes(netlist, last);
  const std::string deck = textOf([&](NetlistWriter& writer) {
    writeFixtureBench(writer, netlist, runs, times, options.line);
  });
  const RawPlot plot = runNgspice(folder, deck, options.seconds);
  checkEnd(plot, times);
  for (std::size_t i = 0; i < references.size(); ++i) {
    WaveformResult& each = references[i].result;
    each.error =
        rmsError(references[i].points, *plot.find("time"), voltageOf(plot, i), times.start) /
        swingOf(references[i].points);
    result.waveforms.push_back(each);
  }
}

std::vector<StaticRun> staticRuns(const Device& device) {
  const Rails& rails = device.rails;
  std::vector<double> voltages{rails.pu, rails.pd, rails.pc, rails.gc};
  std::ranges::sort(voltages);
  voltages.erase(std::unique(voltages.begin(), voltages.end()), voltages.end());
  std::vector<StaticRun> runs;
  for (const double voltage : voltages) {
    runs.push_back({false, {testResistance, voltage}});
    if (device.driver != DriverKind::none) runs.push_back({true, {testResistance, voltage}});
  }
  return runs;
}

void runLevels(ModelResult& result, const DeviceNetlist& netlist, const RunOptions& options,
               const TemporaryFolder& folder) {
  const std::vector<StaticRun> runs = staticRuns(netlist.device);
  const std::string deck =
      textOf([&](NetlistWriter& writer) { writeStaticBench(writer, netlist, runs); });
  const RawPlot plot = runNgspice(folder, deck, options.seconds);
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const double level = voltageOf(plot, i).front();
    const Coefficients k = settled(netlist.device.driver, runs[i].isHigh);
    const double point = operatingPointNear(netlist.device, k, runs[i].load, level);
    result.dcError = std::max(result.dcError, std::fabs(level - point));
  }
}

}  // namespace

ModelResult verifyModel(const IBISModel& model, int corner, const RunOptions& options) {
  ModelResult result;
  result.model = model.name.str();
  result.corner = corner;
  Clock::time_point start = Clock::now();
  const DeviceNetlist netlist =
      makeDeviceNetlist(model, corner, spiceWord(model.name), result.findings);
  result.textSize = textOf([&](NetlistWriter& writer) { writeDevice(writer, netlist); }).size();
  result.exportSeconds = secondsSince(start);
  result.rising = netlist.rising.method;
  result.falling = netlist.falling.method;
  result.isFromTyp = netlist.rising.isFromTyp || netlist.falling.isFromTyp;
  start = Clock::now();
  try {
    const TemporaryFolder folder;
    if (netlist.device.driver != DriverKind::none) {
      runEdges(result, netlist, model, options, folder);
    }
    runLevels(result, netlist, options, folder);
  } catch (const SimulatorFault& fault) {
    result.fault = fault.what();
  }
  result.runSeconds = secondsSince(start);
  return result;
}

std::string_view edgeText(Edge edge) { return edge == Edge::rising ? "rising" : "falling"; }

}  // namespace ibis::cli
