#include "conversion.h"

#include <cerrno>
#include <exception>
#include <filesystem>
#include <fstream>
#include <limits>

#include "finite_check.h"
#include "host/diagnostics/messages.h"
#include "host/load_sequence.h"
#include "interruption.h"
#include "output_names.h"

namespace ibis::cli {
namespace {

namespace fs = std::filesystem;

std::string inQuotes(std::string_view text) { return '\'' + std::string(text) + '\''; }

// The load takes backslashes for escapes.
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

// A load passes over a file that it cannot read; a person wants to know why.
std::string reasonUnread(const std::string& source) {
  std::error_code fault;
  const fs::file_status status = fs::status(source, fault);
  // Asked first, since opening a pipe would wait for its writer.
  if (fs::exists(status) && !fs::is_regular_file(status)) return "Not a regular file";
  if (!std::ifstream(source)) {
    return "Cannot open the file: " + std::generic_category().message(errno);
  }
  const bool isTooLarge = fs::file_size(source, fault) >= std::numeric_limits<std::int32_t>::max();
  return isTooLarge ? "The file is too large" : "Cannot read the whole file";
}

// Without a name the files would be called ".lb" and "_INFO.html".
void nameSubcircuit(Load& load) {
  const IBISComponent* component = load.chosenComponent();
  if (component == nullptr || !load.file().data().userSubcircuitName.empty()) return;
  load.file().setUserSubcircuitName(component->spiceName);
}

std::string makeFolder(const std::string& folder) {
  std::error_code fault;
  fs::create_directories(folder, fault);
  return fault ? "Cannot make folder " + inQuotes(folder) + ": " + fault.message() : "";
}

// The templates' file names take what stands between percent signs for a keyword.
bool isFileName(std::string_view subcircuit) {
  return !subcircuit.empty() && subcircuit.find('%') == subcircuit.npos;
}

// What keeps a file without errors from being written; empty if nothing does.
std::string findObstacle(const Load& load, const ConversionRequest& request) {
  const std::string_view subcircuit = load.file().data().userSubcircuitName;
  if (load.chosenComponent() == nullptr) return "The file has no component";
  if (load.mode() == OutputMode::symbol) return "Mode 'symbol' writes nothing";
  if (isNamedBySubcircuit(load.mode()) && !isFileName(subcircuit)) {
    return "No file can be called by " + inQuotes(subcircuit) + "; name the subcircuit with -s";
  }
  for (const std::string& name : outputNames(load.mode(), request.folder, subcircuit)) {
    std::error_code isAbsent;
    if (fs::equivalent(request.source, name, isAbsent)) {
      return "Output file " + inQuotes(name) + " is the input file itself";
    }
  }
  return {};
}

// Gives what kept the files from being written, if anything did.
std::string write(Load& load, const ConversionRequest& request, Conversion& result) {
  nameSubcircuit(load);
  std::string obstacle = findObstacle(load, request);
  if (obstacle.empty()) obstacle = makeFolder(request.folder);
  if (!obstacle.empty()) return obstacle;
  const FilesAtRisk files(
      outputNames(load.mode(), request.folder, load.file().data().userSubcircuitName));
  result.files = load.write();
  return {};
}

void takeMessages(const IBISFileData& file, Conversion& result) {
  const MessageLocator locator(file);
  for (const std::string& text : file.warnings) result.warnings.push_back(locator.locate(text));
  for (const std::string& text : file.errors) result.errors.push_back(locator.locate(text));
}

// Only model mode writes models, and their library ahead of the page.
void warnOfValuesNotFinite(const Load& load, Conversion& result) {
  if (load.mode() != OutputMode::model || result.files.empty()) return;
  const std::string& library = result.files.front();
  if (!library.ends_with(".lb")) return;
  for (const IBISModel* model : load.chosenComponent()->models) {
    if (hasFiniteData(*model)) continue;
    result.warnings.push_back(
        {model->lineNumber, "Model " + inQuotes(model->name) +
                                ": a table or waveform value is not finite; " + inQuotes(library) +
                                " holds \"nan\" or \"inf\""});
  }
}

}  // namespace

Conversion failure(const std::string& reason) {
  return {.files = {}, .warnings = {}, .errors = {{std::nullopt, reason}}};
}

Conversion convert(const ConversionRequest& request) {
  Conversion result;
  Load load(toLoadRequest(request));
  std::string obstacle;
  try {
    load.read();
    if (!load.sourceWasRead()) return failure(reasonUnread(request.source));
    if (!load.file().hasErrors()) obstacle = write(load, request, result);
  } catch (const std::exception& fault) {
    load.file().error(message::loadFailed, fault.what());
  }
  takeMessages(load.file().data(), result);
  if (!obstacle.empty()) result.errors.push_back({std::nullopt, obstacle});
  warnOfValuesNotFinite(load, result);
  return result;
}

}  // namespace ibis::cli
