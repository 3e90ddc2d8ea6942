#include "export_files.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>

#include "analysis/load_line.h"
#include "export_source.h"
#include "finding_messages.h"
#include "interruption.h"
#include "messages.h"
#include "model/model_types.h"
#include "output/stream/number_text.h"
#include "simulator/component_netlist.h"
#include "simulator/names.h"
#include "simulator/test_bench.h"
#include "verify_model.h"

namespace ibis::cli {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t mostCoupledPins = 24;  // without a choice of pins or of couplings

// What every file of one export shares.
struct Plan {
  const ExportRequest& request;
  const IBISFileData& data;
  const Dialect& dialect;
  const IBISComponent* component = nullptr;  // null for models alone
  std::vector<const IBISPinEntry*> entries;
  std::vector<const IBISModel*> models;                // each once
  std::map<const IBISModel*, std::string> modelWords;  // names without a corner
  std::string word;                                    // of the component or the file
  std::string componentWord;                           // name without a corner
  UniqueNames names;
};

// One file while it is put together.
struct FileDraft {
  int corner = 0;
  std::string name;
  std::vector<DeviceNetlist> devices;
  std::vector<PairNetlist> pairs;
  ComponentNetlist component;
  std::vector<std::string> warnings;
  std::map<const IBISModel*, std::size_t> deviceOf;
};

void warn(Export& result, FileDraft& draft, Diagnostic diagnostic) {
  draft.warnings.push_back(diagnostic.text);
  result.warnings.push_back(std::move(diagnostic));
}

bool wantsPin(const ExportRequest& request, const IBISPin* pin) {
  return pin != nullptr &&
         (request.pins.empty() ||
          std::ranges::find(request.pins, pin->name.view()) != request.pins.end());
}

bool isExportable(const IBISPinEntry& entry) {
  return entry.pin != nullptr && entry.model != nullptr && isDevice(*entry.model);
}

void addModel(Plan& plan, const IBISModel* model) {
  if (std::ranges::find(plan.models, model) == plan.models.end()) plan.models.push_back(model);
}

void choosePins(Plan& plan) {
  for (const IBISPinEntry& entry : plan.component->pinEntries) {
    if (!wantsPin(plan.request, entry.pin) && !wantsPin(plan.request, entry.invertedPin)) continue;
    if (!isExportable(entry)) continue;
    plan.entries.push_back(&entry);
    addModel(plan, entry.model);
    if (entry.isPair() && isDevice(*entry.invertedModel)) addModel(plan, entry.invertedModel);
  }
}

void checkPins(const Plan& plan, Export& result) {
  for (const std::string& name : plan.request.pins) {
    const auto isNamed = [&](const IBISPin& pin) { return pin.name == name; };
    if (std::ranges::any_of(plan.component->pins, isNamed)) continue;
    result.errors.push_back(tell(Severity::error, message::noSuchPin,
                                 plan.component->name.str().c_str(), name.c_str()));
  }
}

const IBISComponent* findComponent(const IBISFileData& data, const std::string& name) {
  for (const auto& component : data.components) {
    if (name.empty() || component->name == name) return component.get();
  }
  return nullptr;
}

void chooseComponent(Plan& plan, Export& result) {
  const std::string& name = plan.request.component;
  plan.component = findComponent(plan.data, name);
  if (plan.component == nullptr) {
    result.errors.push_back(name.empty()
                                ? tell(Severity::error, message::noComponent)
                                : tell(Severity::error, message::noSuchComponent, name.c_str()));
    return;
  }
  plan.word = spiceWord(plan.component->name);
  plan.componentWord = plan.names.take(plan.word);
  checkPins(plan, result);
  choosePins(plan);
}

void chooseModels(Plan& plan, Export& result) {
  std::vector<std::string> unknown;
  plan.models = devicesNamed(plan.data, plan.request.models, unknown);
  for (const std::string& name : unknown) {
    result.errors.push_back(tell(Severity::error, message::noSuchModel, name.c_str()));
  }
  plan.word = spiceWord(fs::path(plan.request.source).stem().string());
}

// Names follow the order of the file, so that they are the same whatever is chosen.
void nameModels(Plan& plan) {
  for (const IBISModel* model : devicesOf(plan.data)) {
    plan.modelWords[model] = plan.names.take(spiceWord(model->name));
  }
}

std::string withNumber(const char* text, double value, const char* unit) {
  return text + numberText(value, 4) + unit;
}

std::vector<std::string> deviceNotes(const Plan& plan, const DeviceNetlist& netlist,
                                     const IBISModel& model, int corner) {
  const Rails& rails = netlist.device.rails;
  std::vector<std::string> notes;
  notes.push_back("model " + model.name.str() + ", " + typeText(model.type) + ", corner " +
                  cornerWord(corner));
  notes.push_back(withNumber("rails: pu ", rails.pu, " V") + withNumber(", pd ", rails.pd, " V") +
                  withNumber(", pc ", rails.pc, " V") + withNumber(", gc ", rails.gc, " V"));
  if (netlist.device.driver == DriverKind::none) return notes;
  notes.push_back("rising from " + std::string(methodText(netlist.rising.method)) +
                  ", falling from " + std::string(methodText(netlist.falling.method)) +
                  withNumber("; span ", std::max(netlist.rising.span, netlist.falling.span), " s") +
                  withNumber(", dead time ",
                             std::min(netlist.rising.deadTime, netlist.falling.deadTime), " s"));
  notes.push_back(
      withNumber("recommended: .tran step of at most ", recommendedStep(netlist), " s, ") +
      std::string(plan.dialect.options));
  return notes;
}

void addDevice(const Plan& plan, FileDraft& draft, const IBISModel* model, Export& result) {
  Findings findings;
  const std::string name = plan.modelWords.at(model) + '_' + cornerWord(draft.corner);
  DeviceNetlist netlist = makeDeviceNetlist(*model, draft.corner, name, findings);
  netlist.notes = deviceNotes(plan, netlist, *model, draft.corner);
  for (const Finding& finding : findings) {
    Diagnostic told = tellFinding(*model, draft.corner, finding);
    netlist.notes.push_back("warning: " + told.text);
    result.warnings.push_back(std::move(told));
  }
  draft.deviceOf[model] = draft.devices.size();
  draft.devices.push_back(std::move(netlist));
}

double launchSkew(const IBISDiffPin& pair, int corner) {
  const double skew = corner == corner::max   ? pair.tdelay_max
                      : corner == corner::min ? pair.tdelay_min
                                              : pair.tdelay_typ;
  return std::isfinite(skew) ? skew : 0.0;
}

// A copy of a device whose edges come later, once for each delay.
std::string delayedCopy(Plan& plan, FileDraft& draft, std::size_t device, double delay) {
  const std::string base = draft.devices[device].name;
  for (const DeviceNetlist& each : draft.devices) {
    if (each.delay == delay && each.name.starts_with(base + "_late")) return each.name;
  }
  DeviceNetlist copy = draft.devices[device];
  copy.name = plan.names.take(base + "_late");
  copy.delay = delay;
  copy.notes = {withNumber("the same, later by ", delay, " s")};
  draft.devices.push_back(copy);
  return copy.name;
}

// A positive skew delays the pin that does not invert.
std::string pairName(Plan& plan, FileDraft& draft, const IBISPinEntry& entry) {
  const std::size_t first = draft.deviceOf.at(entry.model);
  const std::size_t second = draft.deviceOf.at(entry.invertedModel);
  PairNetlist pair;
  pair.first = draft.devices[first].name;
  pair.second = draft.devices[second].name;
  pair.device = draft.devices[first].device;
  const bool isDriver = pair.device.driver != DriverKind::none;
  const double skew = isDriver && entry.diffPin ? launchSkew(*entry.diffPin, draft.corner) : 0.0;
  if (skew > 0.0) pair.first = delayedCopy(plan, draft, first, skew);
  if (skew < 0.0) pair.second = delayedCopy(plan, draft, second, -skew);
  pair.threshold =
      entry.diffPin && std::isfinite(entry.diffPin->vdiff) ? entry.diffPin->vdiff : 0.0;
  for (const PairNetlist& each : draft.pairs) {
    const bool isSame = each.first == pair.first && each.second == pair.second;
    if (isSame && each.threshold == pair.threshold) return each.name;
  }
  pair.name = plan.names.take(draft.devices[first].name + "_pair");
  draft.pairs.push_back(pair);
  return pair.name;
}

double finiteOrZero(double value) { return std::isfinite(value) && value > 0.0 ? value : 0.0; }

PinPackage packageOf(const IBISComponent& component, const IBISPin& pin, int corner) {
  const auto value = [&](bool isMissing, const IBISTriple& own, const IBISTriple& shared) {
    return finiteOrZero(ownOrTyp(isMissing ? shared : own, corner));
  };
  const IBISPackage& shared = component.package;
  return {value(pin.hasOwnRLC && pin.missingR, pin.R_pin(), shared.R_pkg),
          value(pin.hasOwnRLC && pin.missingL, pin.L_pin(), shared.L_pkg),
          value(pin.hasOwnRLC && pin.missingC, pin.C_pin(), shared.C_pkg)};
}

std::size_t railsIndex(ComponentNetlist& component, const Rails& rails) {
  const auto found = std::ranges::find(component.rails, rails);
  if (found != component.rails.end()) {
    return static_cast<std::size_t>(found - component.rails.begin());
  }
  component.rails.push_back(rails);
  return component.rails.size() - 1;
}

// A name that differs from the others in more than its case, of any characters that a name takes.
std::string padLabel(UniqueNames& labels, std::string_view pin) {
  const std::string word = spiceWord("p" + std::string(pin)).substr(1);
  return labels.take(word);
}

void addPin(Plan& plan, FileDraft& draft, const IBISPinEntry& entry, UniqueNames& labels) {
  const DeviceNetlist& device = draft.devices[draft.deviceOf.at(entry.model)];
  const bool isPair = entry.isPair() && draft.deviceOf.contains(entry.invertedModel);
  PinNetlist pin;
  pin.signals = signalPortsOf(device.device);
  pin.signals.erase(pin.signals.begin());
  pin.rails = railsIndex(draft.component, device.device.rails);
  pin.subcircuit = device.name;
  const auto addPad = [&](const IBISPin& each) {
    pin.pads.push_back({padLabel(labels, each.name), packageOf(*plan.component, each, draft.corner),
                        std::nullopt});
  };
  addPad(*entry.pin);
  if (isPair) {
    addPad(*entry.invertedPin);
    pin.subcircuit = pairName(plan, draft, entry);
  }
  draft.component.pins.push_back(std::move(pin));
}

// The pads of a component with their pins' names, in the order of the entries.
struct NamedPad {
  PadNetlist* pad;
  IBISString name;
};

std::vector<NamedPad> namedPads(const Plan& plan, FileDraft& draft) {
  std::vector<NamedPad> pads;
  for (std::size_t i = 0; i < plan.entries.size(); ++i) {
    std::vector<PadNetlist>& list = draft.component.pins[i].pads;
    pads.push_back({&list[0], plan.entries[i]->pin->name});
    if (list.size() > 1) pads.push_back({&list[1], plan.entries[i]->invertedPin->name});
  }
  return pads;
}

void tellCoupled(Export& result, FileDraft& draft, const std::string& name,
                 const CoupledPackage& package, double smallest) {
  const auto count = [](std::size_t n) { return static_cast<int>(n); };
  const char* n = name.c_str();
  constexpr Severity warning = Severity::warning;
  if (package.droppedCouplings != 0) {
    warn(result, draft,
         tell(warning, message::couplingsDropped, n, count(package.droppedCouplings), smallest));
  }
  if (package.droppedResistances != 0) {
    warn(result, draft,
         tell(warning, message::resistancesDropped, n, count(package.droppedResistances)));
  }
  if (package.inductanceScale != 1.0) {
    warn(result, draft, tell(warning, message::inductancesScaled, n, package.inductanceScale));
  }
  if (package.droppedCapacitances != 0) {
    warn(result, draft,
         tell(warning, message::capacitancesDropped, n, count(package.droppedCapacitances)));
  }
  if (package.hasBadDiagonal) {
    warn(result, draft, tell(warning, message::packageDiagonalNegative, n));
  }
}

void couple(const Plan& plan, FileDraft& draft, Export& result) {
  const IBISPackageModel* model =
      findPackageModel(plan.data, plan.component->packageModelName.view());
  if (model == nullptr) {
    warn(result, draft,
         tell(Severity::warning, message::noPackageModel, plan.component->name.str().c_str()));
    return;
  }
  std::vector<std::int32_t> rows;
  for (const NamedPad& each : namedPads(plan, draft)) {
    const auto found = std::ranges::find(model->pinNames, each.name);
    if (found == model->pinNames.end()) {
      warn(result, draft,
           tell(Severity::warning, message::pinNotInPackage, each.name.str().c_str()));
      continue;
    }
    each.pad->coupled = rows.size();
    rows.push_back(static_cast<std::int32_t>(found - model->pinNames.begin()) + 1);
  }
  CoupledPackage package = coupledPackage(*model, rows, plan.request.smallestCoupling);
  const bool isChosen = !plan.request.pins.empty() || plan.request.hasSmallestCoupling;
  if (rows.size() > mostCoupledPins && !isChosen) {
    result.errors.push_back(tell(Severity::error, message::tooManyCoupledPins,
                                 static_cast<int>(rows.size()),
                                 static_cast<int>(package.couplings.size())));
  }
  tellCoupled(result, draft, model->name.str(), package, plan.request.smallestCoupling);
  draft.component.coupled = std::move(package);
}

std::vector<std::string> componentNotes(const Plan& plan, const FileDraft& draft) {
  std::vector<std::string> notes;
  notes.push_back("component " + plan.component->name.str() + ", corner " +
                  cornerWord(draft.corner));
  notes.push_back("ports: pins, then drv, en and mon of each pin, then the rails");
  for (std::size_t i = 0; i < plan.entries.size(); ++i) {
    const PinNetlist& pin = draft.component.pins[i];
    notes.push_back("p_" + pin.pads[0].label + ": pin " + plan.entries[i]->pin->name.str() + ", " +
                    plan.entries[i]->pin->signal_name.str() + ", rails " +
                    railPortsOf(pin.rails)[0] + " ...");
  }
  return notes;
}

void draftComponent(Plan& plan, FileDraft& draft, Export& result) {
  UniqueNames labels;
  draft.component.name = plan.componentWord + '_' + cornerWord(draft.corner);
  for (const IBISPinEntry* entry : plan.entries) addPin(plan, draft, *entry, labels);
  draft.component.hasPackage = plan.request.package != PackageKind::none;
  if (plan.request.package == PackageKind::coupled) couple(plan, draft, result);
  draft.component.notes = componentNotes(plan, draft);
}

FileDraft draftFile(Plan& plan, int corner, Export& result) {
  FileDraft draft;
  draft.corner = corner;
  draft.name =
      (fs::path(plan.request.folder) / (plan.word + '_' + cornerWord(corner) + ".inc")).string();
  for (const IBISModel* model : plan.models) addDevice(plan, draft, model, result);
  if (plan.component != nullptr) draftComponent(plan, draft, result);
  return draft;
}

bool isSource(const Plan& plan, const std::string& name) {
  std::error_code ignored;
  return fs::equivalent(plan.request.source, name, ignored);
}

// Writes one file by a function of a writer; false, with an error, if that cannot be.
template <class Write>
bool writeFile(const Plan& plan, const std::string& name, Export& result, Write write) {
  if (isSource(plan, name)) {
    result.errors.push_back(tell(Severity::error, message::outputIsInput, name.c_str()));
    return false;
  }
  WatchedSink sink;
  const std::unique_ptr<OutputStream> out = OutputStream::open(sink, name);
  bool isWritten = out != nullptr;
  if (isWritten) {
    NetlistWriter writer(*out, plan.dialect);
    write(writer);
    isWritten = out->close() && sink.keep(name);
  }
  if (isWritten) {
    result.files.push_back(name);
  } else {
    result.errors.push_back(tell(Severity::error, message::cannotWriteFile, name.c_str()));
  }
  return isWritten;
}

void writeHead(NetlistWriter& writer, const Plan& plan, const FileDraft& draft) {
  writer.comment("subcircuits for " + std::string(plan.dialect.title) + ", corner " +
                 cornerWord(draft.corner) + ", made from the IBIS file " +
                 fs::path(plan.request.source).filename().string());
  if (!plan.data.fileRev.empty()) writer.comment("file revision " + plan.data.fileRev.str());
  writer.comment("drv and en: 0 or 1 V against node 0, threshold vth; mon: 0 or 1 V likewise");
  writer.comment(
      "pad, pu, pd, pc, gc: die pad and the references of pullup, pulldown, power clamp");
  writer.comment("and ground clamp; subcircuits that end in _v hold them as ideal sources");
  for (const std::string& text : draft.warnings) writer.comment("warning: " + text);
  writer.blank();
}

void writeDraft(NetlistWriter& writer, const Plan& plan, const FileDraft& draft) {
  writeHead(writer, plan, draft);
  for (const DeviceNetlist& device : draft.devices) writeDevice(writer, device);
  for (const PairNetlist& pair : draft.pairs) writePair(writer, pair);
  if (plan.component != nullptr) writeComponent(writer, draft.component);
}

ExportedSubcircuit describe(const Plan& plan, const FileDraft& draft, const IBISModel* model,
                            const DeviceNetlist& netlist) {
  return {.name = netlist.name,
          .model = model->name.str(),
          .component = plan.component ? plan.component->name.str() : std::string(),
          .corner = cornerWord(draft.corner),
          .file = draft.name,
          .ports = portsOf(netlist.device),
          .rails = netlist.device.rails,
          .span = std::max(netlist.rising.span, netlist.falling.span),
          .rising = netlist.rising.method,
          .falling = netlist.falling.method};
}

void describeAll(const Plan& plan, const FileDraft& draft, Export& result) {
  for (const IBISModel* model : plan.models) {
    result.subcircuits.push_back(
        describe(plan, draft, model, draft.devices[draft.deviceOf.at(model)]));
  }
  if (plan.component == nullptr) return;
  ExportedSubcircuit component;
  component.name = draft.component.name;
  component.component = plan.component->name.str();
  component.corner = cornerWord(draft.corner);
  component.file = draft.name;
  component.ports = portsOf(draft.component);
  if (!draft.component.rails.empty()) component.rails = draft.component.rails.front();
  for (const DeviceNetlist& each : draft.devices) {
    component.span = std::max({component.span, each.rising.span, each.falling.span});
  }
  result.subcircuits.push_back(std::move(component));
}

// The first model whose device has a property, or null.
template <class Wanted>
const IBISModel* findModel(const Plan& plan, const FileDraft& draft, Wanted wanted) {
  const auto found = std::ranges::find_if(plan.models, [&](const IBISModel* model) {
    return wanted(draft.devices[draft.deviceOf.at(model)].device);
  });
  return found == plan.models.end() ? nullptr : *found;
}

// A model's device, with the package of its first pin where a component tells one.
BenchEnd endOf(const Plan& plan, const FileDraft& draft, const IBISModel* model) {
  if (model == nullptr) return {};
  const DeviceNetlist& device = draft.devices[draft.deviceOf.at(model)];
  BenchEnd end{device.name + "_v", device.device, {}};
  const auto hasModel = [&](const IBISPinEntry* entry) { return entry->model == model; };
  const auto entry = std::ranges::find_if(plan.entries, hasModel);
  if (entry != plan.entries.end() && plan.request.package != PackageKind::none) {
    end.package = packageOf(*plan.component, *(*entry)->pin, draft.corner);
  }
  return end;
}

// What a driver needs to reach both levels: the fixture that it was measured with, else for an open
// one the rail that it lacks and for an ECL one the usual 2 V below its supply.
std::optional<ResistiveLoad> neededLoad(const DeviceNetlist& netlist, const IBISModel& model,
                                        int corner) {
  constexpr double usualResistance = 50.0;
  constexpr double eclTermination = 2.0;
  const Device& device = netlist.device;
  if (device.driver == DriverKind::pushPull && !device.isEcl) return std::nullopt;
  if (!netlist.rising.used.empty()) {
    const Fixture fixture = fixtureOf(model.risingWaveforms[netlist.rising.used[0]], corner);
    return ResistiveLoad{fixture.resistance, fixture.voltage};
  }
  if (device.isEcl) return ResistiveLoad{usualResistance, device.rails.pu - eclTermination};
  const bool isDrain = device.driver == DriverKind::openDrain;
  return ResistiveLoad{usualResistance, isDrain ? device.rails.pu : device.rails.pd};
}

// The level at the far end, where the receiver's tables and terminators draw current too.
double settledLevel(const TestBench& bench, bool isHigh) {
  constexpr double openResistance = 1e6;
  const Device& device = bench.driver.device;
  const double supply = isHigh ? device.rails.pu : device.rails.pd;
  const BiasedDevice ends[] = {{&device, settled(device.driver, isHigh)},
                               {&bench.receiver.device, {}}};
  const ResistiveLoad load = bench.load.value_or(ResistiveLoad{openResistance, supply});
  return nearestOf(operatingPoints(ends, load), supply);
}

void writeBench(const Plan& plan, const FileDraft& draft, Export& result) {
  const auto drives = [](const Device& device) { return device.driver != DriverKind::none; };
  const auto receives = [](const Device& device) { return device.hasInput; };
  const IBISModel* model = findModel(plan, draft, drives);
  if (model == nullptr) {
    result.warnings.push_back(tell(Severity::warning, message::nothingToDrive));
    return;
  }
  const DeviceNetlist& driver = draft.devices[draft.deviceOf.at(model)];
  TestBench bench;
  bench.title = "bench: " + driver.name + " drives a line of 50 ohm";
  bench.include = fs::path(draft.name).filename().string();
  bench.driver = endOf(plan, draft, model);
  bench.receiver = endOf(plan, draft, findModel(plan, draft, receives));
  bench.load = neededLoad(driver, *model, draft.corner);
  bench.low = settledLevel(bench, false);
  bench.high = settledLevel(bench, true);
  bench.span = std::max(driver.rising.span, driver.falling.span);
  bench.step = recommendedStep(driver);
  const std::string name = draft.name.substr(0, draft.name.size() - 4) + "_bench.cir";
  writeFile(plan, name, result, [&](NetlistWriter& writer) { writeTestBench(writer, bench); });
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

void writeCorner(Plan& plan, int corner, Export& result) {
  FileDraft draft = draftFile(plan, corner, result);
  if (!result.errors.empty()) return;
  const auto write = [&](NetlistWriter& writer) { writeDraft(writer, plan, draft); };
  if (!writeFile(plan, draft.name, result, write)) return;
  describeAll(plan, draft, result);
  if (plan.request.hasBench) writeBench(plan, draft, result);
}

}  // namespace

Export exportFile(const ExportRequest& request) {
  Export result;
  const Document source = readForExport(request.source, request.selections);
  if (auto refusal = findRefusal(source, request.source)) {
    result.errors.push_back(std::move(*refusal));
    return result;
  }
  result.warnings = source.file().warnings;
  Plan plan{.request = request,
            .data = source.file(),
            .dialect = *findDialect(request.format),
            .component = nullptr,
            .entries = {},
            .models = {},
            .modelWords = {},
            .word = {},
            .componentWord = {},
            .names = {}};
  nameModels(plan);
  if (request.allModels || !request.models.empty()) {
    chooseModels(plan, result);
  } else {
    chooseComponent(plan, result);
  }
  if (result.errors.empty() && plan.models.empty()) {
    result.errors.push_back(tell(Severity::error, message::nothingToExport));
  }
  if (!result.errors.empty() || !makeFolder(request.folder, result)) return result;
  const std::vector<std::string> typ{"typ"};
  for (const std::string& word : request.corners.empty() ? typ : request.corners) {
    writeCorner(plan, cornerIndex(word), result);
  }
  return result;
}

}  // namespace ibis::cli
