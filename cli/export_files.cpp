#include "export_files.h"

#include <algorithm>
#include <filesystem>

#include "export_choice.h"
#include "export_package.h"
#include "export_series.h"
#include "export_source.h"
#include "finding_messages.h"
#include "interruption.h"
#include "limited_sink.h"
#include "messages.h"
#include "simulator/bench_setup.h"
#include "simulator/component_assembly.h"
#include "simulator/device_notes.h"
#include "tolerant_reading.h"

namespace ibis::cli {
namespace {

namespace fs = std::filesystem;

void addDevice(const ExportChoice& choice, SubcircuitFile& file, const IBISModel* model,
               Export& result) {
  Findings findings;
  const std::string name = choice.modelWords.at(model) + '_' + file.word;
  DeviceNetlist netlist = makeDeviceNetlist(*model, file.corner, name, findings);
  netlist.notes = deviceNotes(netlist, *model, file.word, choice.dialect);
  for (const Finding& finding : findings) {
    Diagnostic told = tellFinding(*model, file.corner, finding);
    netlist.notes.push_back("warning: " + told.text);
    result.warnings.push_back(std::move(told));
  }
  file.deviceOf[model] = file.devices.size();
  file.devices.push_back(std::move(netlist));
}

void addComponent(ExportChoice& choice, SubcircuitFile& file, Export& result) {
  const PackageKind package = choice.request.package;
  file.component.emplace();
  file.component->name = choice.componentWord + '_' + file.word;
  const ChosenPins pins{choice.entries, choice.barePins};
  addPins(file, *choice.component, pins, choice.names);
  addSeries(choice, file, result);
  file.component->hasPackage = package != PackageKind::none;
  tellPinValues(choice, file, result);
  if (package == PackageKind::coupled) couplePins(choice, file, result);
  file.component->notes = componentNotes(file, *choice.component, pins);
}

SubcircuitFile makeFile(ExportChoice& choice, int corner, Export& result) {
  SubcircuitFile file;
  file.corner = corner;
  file.word = cornerWord(corner);
  file.name = (fs::path(choice.request.folder) / (choice.word + '_' + file.word + ".inc")).string();
  file.source = fs::path(choice.request.source).filename().string();
  file.revision = choice.data.fileRev.str();
  for (const IBISModel* model : choice.models) addDevice(choice, file, model, result);
  if (choice.component != nullptr) addComponent(choice, file, result);
  return file;
}

// Whether the whole file was written and is in its place.
template <class Write>
bool isPut(const ExportChoice& choice, const std::string& name, Write write) {
  WatchedSink files;
  LimitedSink sink(files, choice.mostBytes);
  const std::unique_ptr<OutputStream> out = OutputStream::open(sink, name);
  if (!out) return false;
  NetlistWriter writer(*out, choice.dialect);
  write(writer);
  return out->close() && sink.keep(name);
}

// What kept a file from being written by a function of a writer, if anything did.
template <class Write>
std::optional<Diagnostic> put(const ExportChoice& choice, const std::string& name, Write write) {
  if (choice.inputs.hold(name)) return tell(Severity::error, message::outputIsInput, name.c_str());
  try {
    if (isPut(choice, name, write)) return std::nullopt;
  } catch (const OutputTooLarge&) {
    return tell(Severity::error, message::outputTooLarge, choice.mostBytes);
  }
  return tell(Severity::error, message::cannotWriteFile, name.c_str());
}

// Writes one file; false, with an error, if that cannot be.
template <class Write>
bool writeFile(const ExportChoice& choice, const std::string& name, Export& result, Write write) {
  std::optional<Diagnostic> obstacle = put(choice, name, write);
  if (!obstacle) {
    result.files.push_back(name);
    return true;
  }
  result.errors.push_back(std::move(*obstacle));
  return false;
}

ExportedSubcircuit describeModel(const ExportChoice& choice, const SubcircuitFile& file,
                                 const IBISModel* model) {
  const DeviceNetlist& netlist = file.device(model);
  return {.name = netlist.name,
          .model = model->name.str(),
          .component = choice.component ? choice.component->name.str() : std::string(),
          .corner = file.word,
          .file = file.name,
          .ports = portsOf(netlist.device),
          .rails = netlist.device.rails,
          .railSets = {},
          .span = std::max(netlist.rising.span, netlist.falling.span),
          .rising = netlist.rising.method,
          .falling = netlist.falling.method};
}

std::vector<ExportedRails> railSetsOf(const ComponentNetlist& component) {
  std::vector<ExportedRails> sets;
  for (const Rails& rails : component.rails) sets.push_back({railPortsOf(sets.size()), rails, {}});
  for (const PinNetlist& pin : component.pins) {
    if (pin.subcircuit.empty()) continue;
    for (const PadNetlist& pad : pin.pads) sets[pin.rails].pins.push_back(pinPort(pad));
  }
  return sets;
}

ExportedSubcircuit describeComponent(const ExportChoice& choice, const SubcircuitFile& file) {
  ExportedSubcircuit component;
  component.name = file.component->name;
  component.component = choice.component->name.str();
  component.corner = file.word;
  component.file = file.name;
  component.ports = portsOf(*file.component);
  component.railSets = railSetsOf(*file.component);
  if (!component.railSets.empty()) component.rails = component.railSets.front().rails;
  for (const DeviceNetlist& each : file.devices) {
    component.span = std::max({component.span, each.rising.span, each.falling.span});
  }
  return component;
}

void describe(const ExportChoice& choice, const SubcircuitFile& file, Export& result) {
  for (const IBISModel* model : choice.models) {
    result.subcircuits.push_back(describeModel(choice, file, model));
  }
  if (file.component) result.subcircuits.push_back(describeComponent(choice, file));
}

// The first model whose device has a property, or null.
template <class Wanted>
const IBISModel* findModel(const ExportChoice& choice, const SubcircuitFile& file, Wanted wanted) {
  const auto found = std::ranges::find_if(
      choice.models, [&](const IBISModel* model) { return wanted(file.device(model).device); });
  return found == choice.models.end() ? nullptr : *found;
}

// A model's device, with the package of its first pin where a component tells one.
BenchEnd endOf(const ExportChoice& choice, const SubcircuitFile& file, const IBISModel* model) {
  if (model == nullptr) return {};
  const DeviceNetlist& device = file.device(model);
  BenchEnd end{device.name + "_v", device.device, {}};
  const auto hasModel = [&](const IBISPinEntry* entry) { return entry->model == model; };
  const auto entry = std::ranges::find_if(choice.entries, hasModel);
  if (entry != choice.entries.end() && choice.request.package != PackageKind::none) {
    end.package = packageOf(*choice.component, *(*entry)->pin, file.corner);
  }
  return end;
}

void writeBench(const ExportChoice& choice, const SubcircuitFile& file, Export& result) {
  const auto drives = [](const Device& device) { return device.driver != DriverKind::none; };
  const auto receives = [](const Device& device) { return device.hasInput; };
  const IBISModel* model = findModel(choice, file, drives);
  if (model == nullptr) {
    result.warnings.push_back(tell(Severity::warning, message::nothingToDrive));
    return;
  }
  TestBench bench = setUpBench(file.device(model), *model, file.corner, endOf(choice, file, model),
                               endOf(choice, file, findModel(choice, file, receives)));
  bench.include = fs::path(file.name).filename().string();
  const std::string name = file.name.substr(0, file.name.size() - 4) + "_bench.cir";
  writeFile(choice, name, result, [&](NetlistWriter& writer) { writeTestBench(writer, bench); });
}

bool makeFolder(const std::string& folder, Export& result) {
  std::error_code fault;
  fs::create_directories(folder, fault);
  if (fault) {
    result.errors.push_back(
        tell(Severity::error, message::cannotMakeFolder, folder.c_str(), fault.message().c_str()));
  }
  return !fault;
}

void writeCorner(ExportChoice& choice, int corner, Export& result) {
  const SubcircuitFile file = makeFile(choice, corner, result);
  if (!result.errors.empty()) return;
  const auto write = [&](NetlistWriter& writer) { writeSubcircuitFile(writer, file); };
  if (!writeFile(choice, file.name, result, write)) return;
  describe(choice, file, result);
  if (choice.request.hasBench) writeBench(choice, file, result);
}

}  // namespace

Export exportFile(const ExportRequest& request) {
  Export result;
  ExportSource source = readForExport(request.source, request.selections);
  if (source.refusal) {
    result.errors.push_back(std::move(*source.refusal));
    return result;
  }
  const IBISFileData& data = source.document->file();
  result.warnings = data.warnings;
  InputFiles inputs;
  inputs.add(request.source);
  ExportChoice choice{
      .request = request, .data = data, .dialect = *findDialect(request.format), .inputs = inputs};
  if (request.isLimited) choice.mostBytes = usualOutputLimit(source.size);
  choose(choice, result);
  if (choice.component != nullptr) chooseSeries(choice, result);
  if (!choice.series.empty()) forgetSeriesRefusals(result.warnings);
  if (result.errors.empty() && choice.models.empty() && choice.series.empty()) {
    result.errors.push_back(tell(Severity::error, message::nothingToExport));
  }
  if (!result.errors.empty() || !makeFolder(request.folder, result)) return result;
  const std::vector<std::string> typ{"typ"};
  for (const std::string& word : request.corners.empty() ? typ : request.corners) {
    writeCorner(choice, cornerIndex(word), result);
  }
  removeRepeats(result.warnings);  // a table may be read for several subcircuits
  return result;
}

}  // namespace ibis::cli
