#include "harness/harness.h"

#include <cstdarg>

#include "host/diagnostics/format_message.h"
#include "model/estimate_waveforms.h"

namespace ibis::testing {

namespace fs = std::filesystem;

void Recorder::error(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  errors.push_back(makeDiagnostic(Severity::error, format, arguments));
  va_end(arguments);
}

void Recorder::warning(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  warnings.push_back(makeDiagnostic(Severity::warning, format, arguments));
  va_end(arguments);
}

std::string lines(std::initializer_list<std::string_view> items) {
  std::string text;
  for (std::string_view item : items) text.append(item).append(1, '\n');
  return text;
}

void drawWaveforms(IBISModel& model) {
  for (auto* list : {&model.risingWaveforms, &model.fallingWaveforms}) {
    for (IBISWaveform& waveform : *list) waveform = withPoints(waveform);
  }
}

Loaded loadText(std::string_view text, const LoadOptions& options) {
  const TemporaryFolder input;
  writeWholeFile(input.file("input.ibs"), text);
  const std::string root = input.file("output");
  Load load({.source = input.file("input.ibs"),
             .mode = options.mode,
             .component = options.component,
             .rootDirectory = root,
             .subcircuit = options.subcircuit,
             .pins = options.pins,
             .selections = options.selections});
  load.read();
  Loaded loaded;
  MemorySink sink;
  for (const std::string& name : load.write(sink)) {
    loaded.written.push_back(fs::path(name).filename().string());
  }
  loaded.errors = texts(load.file().data().errors);
  loaded.warnings = texts(load.file().data().warnings);
  for (const auto& [name, content] : sink.files()) {
    loaded.files[fs::path(name).filename().string()] = content;
  }
  return loaded;
}

std::string expandTemplate(std::string_view text, const IBISFile& file,
                           const IBISComponent* component, IBISErrorHandler& errors) {
  MemorySink sink;
  {
    TemplateEngine engine(file.data(), component, "root", errors, sink);
    TextBuffer buffer("%file% %rootdir%/expanded\n" + std::string(text));
    engine.expand(buffer);
  }
  return sink.files().at("root/expanded");
}

}  // namespace ibis::testing
