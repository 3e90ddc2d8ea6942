#include "conversion.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <iterator>
#include <optional>
#include <system_error>

#include "advice.h"
#include "check_errors.h"
#include "first_choices.h"
#include "folder_names.h"
#include "host/diagnostics/messages.h"
#include "host/load_sequence.h"
#include "input_text.h"
#include "interruption.h"
#include "left_out.h"
#include "library/selections.h"
#include "limited_sink.h"
#include "messages.h"
#include "model/estimate_waveforms.h"
#include "model_checks.h"
#include "near_names.h"
#include "pin_requests.h"
#include "source_fault.h"
#include "tolerant_reading.h"
#include "written_checks.h"

namespace ibis::cli {
namespace {

namespace fs = std::filesystem;

// The load reads backslashes as escapes.
std::string withEscapes(std::string_view text) {
  std::string escaped;
  for (const char c : text) escaped.append(c == '\\' ? 2 : 1, c);
  return escaped;
}

LoadRequest toLoadRequest(const ConversionRequest& request) {
  LoadRequest load{.source = request.source,
                   .mode = request.mode,
                   .component = request.component,
                   .rootDirectory = request.folder,
                   .subcircuit = request.subcircuit,
                   .pins = request.pins,
                   .selections = {},
                   .reading = request.reading,
                   .text = request.text ? std::optional(*request.text) : std::nullopt};
  for (const std::string& text : request.selections) load.selections.push_back(withEscapes(text));
  return load;
}

// The components whose pins an output holds.
std::vector<const IBISComponent*> writtenComponents(const Load& load,
                                                    const ConversionRequest& request) {
  std::vector<const IBISComponent*> components;
  if (load.mode() == OutputMode::script && request.component.empty()) {
    for (const auto& each : load.file().data().components) components.push_back(each.get());
  } else if (const IBISComponent* component = load.chosenComponent()) {
    components.push_back(component);
  }
  return components;
}

// A load passes over a pin that is not there, and would write an output without it.
void addPinErrors(Load& load, const ConversionRequest& request) {
  for (Diagnostic& error : checkPins(request.pins, writtenComponents(load, request))) {
    load.file().data().errors.push_back(std::move(error));
  }
}

// Where a load keeps going, a choice that was not there is an error all the same.
void refuseUnknownSelections(IBISFileData& file) {
  const MessageRow* row = findMessage(ibis::message::selectorNotFound);
  const auto isOf = [&](const Diagnostic& each) { return each.id == row->id.view(); };
  for (Diagnostic& each : file.warnings) {
    if (!isOf(each)) continue;
    each.severity = Severity::error;
    file.errors.push_back(std::move(each));
  }
  std::erase_if(file.warnings, [&](const Diagnostic& each) {
    return isOf(each) || each.severity == Severity::error;
  });
}

// A package needs no models, so that pins of those that are refused stay.
void leaveOut(Load& load, const ConversionRequest& request, Conversion& result) {
  if (!request.reading.keepGoing) return;
  const std::vector<const IBISComponent*> written = writtenComponents(load, request);
  for (const auto& component : load.file().data().components) {
    if (std::ranges::find(written, component.get()) == written.end()) continue;
    if (load.mode() != OutputMode::package) removeUnsoundModels(*component);
    std::ranges::move(pinsLeftOut(*component, request.pins), std::back_inserter(result.leftOut));
  }
}

// Without a name the files would be called ".lb" and "_INFO.html".
std::string subcircuitOf(const Load& load) {
  const IBISString name = load.file().data().userSubcircuitName;
  const IBISComponent* component = load.chosenComponent();
  return (name.empty() && component != nullptr ? component->spiceName : name).str();
}

// Whether an output of this run has one of the names, or one that differs by case alone.
bool areTaken(const ConversionRequest& request, const std::vector<std::string>& names) {
  return request.taken && std::ranges::any_of(names, [&](const std::string& name) {
           return request.taken->contains(foldedName(name));
         });
}

std::optional<Diagnostic> makeFolder(const std::string& folder) {
  std::error_code fault;
  fs::create_directories(folder, fault);
  if (!fault) return std::nullopt;
  return tell(Severity::error, message::cannotMakeFolder, folder.c_str(), fault.message().c_str());
}

// The templates' file names read a text between percent signs as a keyword.
bool isFileName(std::string_view subcircuit) {
  return !subcircuit.empty() && subcircuit.find('%') == subcircuit.npos;
}

bool isThere(const std::string& name) {
  std::error_code fault;
  return fs::exists(fs::symlink_status(name, fault));
}

// What keeps a file without errors from being written, if anything does; else the files' names.
std::optional<Diagnostic> findObstacle(const Load& load, const ConversionRequest& request,
                                       std::vector<std::string>& names) {
  const IBISFileData& file = load.file().data();
  const IBISComponent* component = load.chosenComponent();
  const Output* output = findOutput(load.mode());
  if (component == nullptr) {
    Diagnostic error = tell(Severity::error, message::noComponent);
    adviseOnNothing(error, load.text());
    return error;
  }
  const OutputPlace place{.rootDirectory = request.folder,
                          .subcircuit = file.userSubcircuitName.str(),
                          .spiceComponentName = component->spiceName.str()};
  names = output->names(*output, place);
  if (names.empty()) {
    return tell(Severity::error, message::modeWritesNothing, std::string(output->word).c_str());
  }
  if (isNamedBySubcircuit(*output) && !isFileName(place.subcircuit)) {
    return tell(Severity::error, message::noFileName, place.subcircuit.c_str());
  }
  for (const std::string& name : names) {
    if (isSource(file, name)) return tell(Severity::error, message::outputIsInput, name.c_str());
    if (request.inputs && request.inputs->hold(name)) {
      return tell(Severity::error, message::outputIsOtherInput, name.c_str());
    }
    if (request.keepsFiles && isThere(name)) {
      return tell(Severity::error, message::outputIsThere, name.c_str());
    }
  }
  return std::nullopt;
}

// Names the subcircuit so that no file of this run is replaced.
std::optional<Diagnostic> nameOutputs(Load& load, const ConversionRequest& request,
                                      std::vector<std::string>& names) {
  const std::string base = subcircuitOf(load) + request.suffix;
  load.file().setUserSubcircuitName(base);
  std::optional<Diagnostic> obstacle = findObstacle(load, request, names);
  for (int number = 2; !obstacle && areTaken(request, names); ++number) {
    load.file().setUserSubcircuitName(base + '_' + std::to_string(number));
    obstacle = findObstacle(load, request, names);
  }
  if (request.taken) {
    for (const std::string& name : names) request.taken->insert(foldedName(name));
  }
  return obstacle;
}

// Returns what kept the files from being written, if anything did.
std::optional<Diagnostic> write(Load& load, const ConversionRequest& request, Conversion& result) {
  std::vector<std::string> names;
  std::optional<Diagnostic> obstacle = nameOutputs(load, request, names);
  if (!obstacle && request.isRehearsal) {
    result.files = std::move(names);
    return std::nullopt;
  }
  if (!obstacle) obstacle = makeFolder(request.folder);
  if (obstacle) return obstacle;
  WatchedSink files;
  const std::uint64_t limit =
      request.isLimited ? usualOutputLimit(load.text().size()) : std::uint64_t{UINT64_MAX};
  LimitedSink sink(files, limit, request.written ? *request.written : 0);
  try {
    result.files = load.write(sink);
    if (request.written) *request.written = sink.taken();
  } catch (const OutputTooLarge&) {
    return tell(Severity::error, message::outputTooLarge, limit);
  }
  return std::nullopt;
}

template <class T>
void append(std::vector<T>& to, std::vector<T>&& from) {
  std::ranges::move(from, std::back_inserter(to));
}

// Warns, model by model, of waveforms without points.
void warnOfModels(const Load& load, Conversion& result) {
  if (load.mode() != OutputMode::model || result.files.empty()) return;
  for (const IBISModel* model : load.chosenComponent()->models) {
    if (lacksPoints(*model)) {
      result.warnings.push_back(tell(Severity::warning, message::tooManyEstimatedPoints,
                                     model->lineNumber, model->name.str().c_str(), maxTimePoints));
    }
  }
}

// What was taken unasked, where something was written.
void addNotes(const Load& load, const ConversionRequest& request,
              const std::vector<std::string>& chosen, Conversion& result) {
  const IBISComponent* component = load.chosenComponent();
  if (result.files.empty() || component == nullptr || load.mode() == OutputMode::script) return;
  const IBISFileData& file = load.file().data();
  const std::vector<std::string> names = Adviser(load.text(), file).componentNames();
  if (request.component.empty() && names.size() > 1) {
    result.notes.push_back({.line = 0,
                            .text = "component '" + names.front() + "' is the first of " +
                                    std::to_string(names.size()) +
                                    "; -c or --all-components writes the others: " +
                                    namesText({names.begin() + 1, names.end()})});
  }
  const std::vector<std::string> first = firstChoices(file, *component, chosen);
  if (load.mode() != OutputMode::model || first.empty()) return;
  result.notes.push_back({.line = 0,
                          .text = "selectors take their first model: " + namesText(first) +
                                  "; --select takes another"});
}

Conversion convertOne(const ConversionRequest& request) {
  Conversion result;
  std::vector<std::string> chosen;
  LoadRequest asked = toLoadRequest(request);
  asked.adapt = [&chosen](IBISFileData& file) { chosen = chooseByName(file); };
  Load load(std::move(asked));
  std::optional<Diagnostic> obstacle;
  try {
    load.read();
    if (!load.sourceWasRead()) return failure(reasonUnread(request.source));
    if (request.reading.keepGoing) refuseUnknownSelections(load.file().data());
    addPinErrors(load, request);
    leaveOut(load, request, result);
    if (!load.file().hasErrors()) obstacle = write(load, request, result);
  } catch (const std::exception& fault) {
    load.file().error(ibis::message::loadFailed, fault.what());
  }
  addNotes(load, request, chosen, result);
  Adviser(load.text(), load.file().data()).advise(load.file().data().errors);
  result.warnings = std::move(load.file().data().warnings);
  result.errors = std::move(load.file().data().errors);
  if (obstacle) result.errors.push_back(std::move(*obstacle));
  if (request.isChecked) result.findings = checkErrors(load.text(), request.source, result.errors);
  append(result.warnings, checkWritten(load, result.files));
  warnOfModels(load, result);
  if (request.reading.keepGoing) {
    removeRepeats(result.warnings);
    std::ranges::move(tellLeftOut(result.leftOut), std::back_inserter(result.warnings));
  }
  return result;
}

// The names of a file's components, each once; none for a file that cannot be read.
std::vector<std::string> componentsOf(const ConversionRequest& request) {
  LoadRequest asked = toLoadRequest(request);
  asked.pins.clear();
  asked.selections.clear();
  Load load(std::move(asked));
  load.read();
  std::vector<std::string> names;
  for (const auto& component : load.file().data().components) {
    std::string name = component->name.str();
    if (std::ranges::find(names, name) == names.end()) names.push_back(std::move(name));
  }
  return names;
}

// What several conversions of one file say of the file is said once.
void append(Conversion& to, Conversion&& from) {
  append(to.files, std::move(from.files));
  append(to.warnings, std::move(from.warnings));
  append(to.errors, std::move(from.errors));
  append(to.findings, std::move(from.findings));
  append(to.leftOut, std::move(from.leftOut));
  append(to.notes, std::move(from.notes));
}

bool isMode(const std::string& word, OutputMode mode) { return outputMode(word) == mode; }

// One request for each mode; a package beside a model gets a name of its own.
std::vector<ConversionRequest> requestPerMode(const ConversionRequest& request) {
  std::vector<ConversionRequest> requests = {request};
  requests.front().furtherModes.clear();
  for (const std::string& mode : request.furtherModes) {
    requests.push_back(requests.front());
    requests.back().mode = mode;
  }
  const bool hasModel = std::ranges::any_of(
      requests, [](const auto& each) { return isMode(each.mode, OutputMode::model); });
  for (ConversionRequest& each : requests) {
    if (hasModel && isMode(each.mode, OutputMode::package)) each.suffix = "_package";
  }
  return requests;
}

// A script holds every component at once.
std::vector<ConversionRequest> requestPerComponent(const ConversionRequest& request) {
  if (!request.allComponents || isMode(request.mode, OutputMode::script)) return {request};
  std::vector<ConversionRequest> requests;
  for (std::string& name : componentsOf(request)) {
    requests.push_back(request);
    requests.back().component = std::move(name);
  }
  return requests.empty() ? std::vector{request} : requests;
}

}  // namespace

Conversion failure(Diagnostic reason) {
  Conversion result;
  result.errors.push_back(std::move(reason));
  return result;
}

Conversion convert(const ConversionRequest& asked) {
  ConversionRequest request = asked;
  if (!request.text) {
    InputText input = readInputText(request.source);
    if (input.fault) return failure(std::move(*input.fault));
    request.text = std::move(input.text);
  }
  if (!request.allComponents && request.furtherModes.empty()) return convertOne(request);
  Conversion result;
  request.taken = std::make_shared<std::set<std::string>>();
  request.written = std::make_shared<std::uint64_t>(0);
  for (const ConversionRequest& ofMode : requestPerMode(request)) {
    for (ConversionRequest& each : requestPerComponent(ofMode)) {
      each.isChecked = request.isChecked;
      request.isChecked = false;  // a file is checked once
      append(result, convertOne(each));
    }
  }
  removeRepeats(result.warnings);
  removeRepeats(result.errors);
  return result;
}

}  // namespace ibis::cli
