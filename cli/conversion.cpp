#include "conversion.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <optional>
#include <system_error>

#include "advice.h"
#include "host/diagnostics/messages.h"
#include "host/load_sequence.h"
#include "interruption.h"
#include "messages.h"
#include "model/estimate_waveforms.h"
#include "model_checks.h"
#include "pin_requests.h"
#include "source_fault.h"

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
                   .selections = {}};
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

// Without a name the files would be called ".lb" and "_INFO.html".
void nameSubcircuit(Load& load) {
  const IBISComponent* component = load.chosenComponent();
  if (component == nullptr || !load.file().data().userSubcircuitName.empty()) return;
  load.file().setUserSubcircuitName(component->spiceName);
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

// Returns what keeps a file without errors from being written, if anything does.
std::optional<Diagnostic> findObstacle(const Load& load, const ConversionRequest& request) {
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
  const std::vector<std::string> names = output->names(*output, place);
  if (names.empty()) {
    return tell(Severity::error, message::modeWritesNothing, std::string(output->word).c_str());
  }
  if (isNamedBySubcircuit(*output) && !isFileName(place.subcircuit)) {
    return tell(Severity::error, message::noFileName, place.subcircuit.c_str());
  }
  for (const std::string& name : names) {
    if (isSource(file, name)) return tell(Severity::error, message::outputIsInput, name.c_str());
  }
  return std::nullopt;
}

// Returns what kept the files from being written, if anything did.
std::optional<Diagnostic> write(Load& load, const ConversionRequest& request, Conversion& result) {
  nameSubcircuit(load);
  std::optional<Diagnostic> obstacle = findObstacle(load, request);
  if (!obstacle) obstacle = makeFolder(request.folder);
  if (obstacle) return obstacle;
  WatchedSink sink;
  result.files = load.write(sink);
  return std::nullopt;
}

// Warns, model by model, of values that are not finite and of waveforms without points.
void warnOfModels(const Load& load, Conversion& result) {
  if (load.mode() != OutputMode::model || result.files.empty()) return;
  const std::string& library = result.files.front();
  const bool isFinite =
      std::ranges::find(load.nonFiniteFiles(), library) == load.nonFiniteFiles().end();
  for (const IBISModel* model : load.chosenComponent()->models) {
    const std::string name = model->name.str();
    if (!isFinite && !hasFiniteData(*model)) {
      result.warnings.push_back(tell(Severity::warning, message::valueNotFinite, model->lineNumber,
                                     name.c_str(), library.c_str()));
    }
    if (lacksPoints(*model)) {
      result.warnings.push_back(tell(Severity::warning, message::tooManyEstimatedPoints,
                                     model->lineNumber, name.c_str(), maxTimePoints));
    }
  }
}

}  // namespace

Conversion failure(Diagnostic reason) {
  Conversion result;
  result.errors.push_back(std::move(reason));
  return result;
}

Conversion convert(const ConversionRequest& request) {
  Conversion result;
  Load load(toLoadRequest(request));
  std::optional<Diagnostic> obstacle;
  try {
    load.read();
    if (!load.sourceWasRead()) return failure(reasonUnread(request.source));
    addPinErrors(load, request);
    if (!load.file().hasErrors()) obstacle = write(load, request, result);
  } catch (const std::exception& fault) {
    load.file().error(ibis::message::loadFailed, fault.what());
  }
  Adviser(load.text(), load.file().data()).advise(load.file().data().errors);
  result.warnings = std::move(load.file().data().warnings);
  result.errors = std::move(load.file().data().errors);
  if (obstacle) result.errors.push_back(std::move(*obstacle));
  warnOfModels(load, result);
  return result;
}

}  // namespace ibis::cli
