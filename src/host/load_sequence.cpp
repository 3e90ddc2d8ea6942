#include "host/load_sequence.h"

#include "host/diagnostics/messages.h"
#include "output/outputs.h"
#include "output/stream/file_sink.h"
#include "reader/file/parser.h"
#include "support/files.h"

namespace ibis {
namespace {

constexpr std::size_t maxSelection = 255;

char unescaped(char c) {
  switch (c) {
    case 'f':
      return '\f';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 's':
      return ' ';
    case 't':
      return '\t';
    default:
      return c;
  }
}

}  // namespace

std::string withoutEscapes(std::string_view text) {
  std::string plain;
  bool escaped = false;
  for (const char c : text) {
    if (plain.size() == maxSelection) break;
    if (!escaped && c == '\\') {
      escaped = true;
      continue;
    }
    plain += escaped ? unescaped(c) : c;
    escaped = false;
  }
  return plain;
}

Load::Load(LoadRequest request)
    : request_(std::move(request)),
      mode_(outputMode(request_.mode)),
      component_(request_.component),
      pinFilter_(request_.pins.begin(), request_.pins.end()) {}

void Load::read() {
  if (wasRead_) return;
  wasRead_ = true;
  takeOptions();
  if (request_.source.empty()) {
    file_.error(message::cannotOpenSource, "");
    return;
  }
  if (request_.text) {
    text_.assign(*request_.text);
    text_.convertLineEnds();
    sourceWasRead_ = true;
  } else {
    sourceWasRead_ = text_.loadFile(request_.source, fopen_s_utf8);
  }
  if (sourceWasRead_) readSource();
  if (!component_.empty()) checkComponent();
  if (mode_ == OutputMode::unknown) file_.error(message::unknownMode);
}

void Load::takeOptions() {
  for (const std::string& selection : request_.selections) {
    file_.addUserModelSelector(withoutEscapes(selection));
  }
  if (!request_.subcircuit.empty()) file_.setUserSubcircuitName(request_.subcircuit);
}

void Load::readSource() {
  file_.setFilePath(sp_GetFullPath(request_.source.c_str()).text());
  scanner_.emplace(text_.text(), IBISScanner::usualPiece, request_.reading.newerVersions);
  parseFile(file_, *scanner_, request_.reading);
  scanner_->dropPiece();
  if (!file_.hasErrors()) {
    if (request_.adapt) request_.adapt(file_.data());
    postParse(file_, component_, pinFilter_);
  }
  file_.tolerateErrors(false);
}

void Load::checkComponent() {
  std::string packageModel;
  if (!file_.hasComponent(component_)) {
    file_.error(message::componentNotFound, component_.str().c_str());
  } else if (mode_ == OutputMode::package && !file_.packageModelFor(component_, packageModel)) {
    file_.error(message::packageModelMissing, component_.str().c_str(), packageModel.c_str());
  }
}

// Of several components with the name asked for, this is the last, although the first was prepared.
const IBISComponent* Load::chosenComponent() const {
  const auto& components = file_.data().components;
  if (component_.empty()) return components.empty() ? nullptr : components.front().get();
  for (auto candidate = components.rbegin(); candidate != components.rend(); ++candidate) {
    if ((*candidate)->name == component_) return candidate->get();
  }
  return nullptr;
}

std::vector<std::string> Load::write() {
  FileSink sink(fopen_s_utf8);
  return write(sink);
}

std::vector<std::string> Load::write(Sink& sink) {
  const IBISComponent* component = chosenComponent();
  const Output* output = findOutput(mode_);
  if (file_.hasErrors() || component == nullptr || output == nullptr) return {};
  TemplateEngine engine(file_.data(), component, request_.rootDirectory, file_, sink);
  try {
    output->write(*output, engine);
  } catch (...) {
    engine.abandonOutputFile();
    throw;
  }
  engine.finish();
  nonFiniteFiles_ = engine.nonFiniteFiles();
  return engine.generatedFiles();
}

}  // namespace ibis
