#include "output/outputs.h"

#include "output/embedded_templates.h"
#include "reader/text/text_buffer.h"

namespace ibis {
namespace {

constexpr std::string_view fileKeyword = "%file% ";

// The words after a template's "file" keywords.
std::vector<std::string> fileWords(std::string_view templateName) {
  std::vector<std::string> words;
  TextBuffer buffer;
  loadEmbedded(buffer, templateName);
  std::string_view text = buffer.text();
  for (std::size_t at = text.find(fileKeyword); at != text.npos; at = text.find(fileKeyword)) {
    text.remove_prefix(at + fileKeyword.size());
    words.emplace_back(text.substr(0, text.find_first_of(" \t\n")));
  }
  return words;
}

std::vector<std::string> namesInTemplates(const Output& output, const OutputPlace& place) {
  std::vector<std::string> names;
  for (const std::string_view name : output.templates) {
    for (const std::string& word : fileWords(name)) names.push_back(fileName(word, place));
  }
  return names;
}

// One engine runs them all, so each template sees what the ones before it opened or set.
void expandTemplates(const Output& output, TemplateEngine& engine) {
  for (const std::string_view name : output.templates) {
    TextBuffer text;
    if (loadEmbedded(text, name)) engine.expand(text);
  }
}

constexpr std::string_view scriptTemplates[] = {"script.tmpl"};
constexpr std::string_view modelTemplates[] = {"component.tmpl", "info.tmpl"};
// There is no such template: the mode passes every check and writes nothing.
constexpr std::string_view symbolTemplates[] = {"symbol.tmpl"};
constexpr std::string_view packageTemplates[] = {"package.tmpl"};

// mode, word, summary, templates, names of the files, writer
constexpr Output outputs[] = {
    {OutputMode::model, "model",
     "SUBCKT.lb, the SPICE library of the component and its models, and SUBCKT_INFO.html, a page "
     "about them",
     modelTemplates, namesInTemplates, expandTemplates},
    {OutputMode::package, "package",
     "SUBCKT.lb, the SPICE library of the component's package alone", packageTemplates,
     namesInTemplates, expandTemplates},
    {OutputMode::script, "script",
     "ibis_components.kvscr, a host script about every component of the file; it needs no "
     "COMPONENT, and with one leaves out the pins of the others",
     scriptTemplates, namesInTemplates, expandTemplates},
    {OutputMode::symbol, "symbol",
     "nothing; the file is read and checked, which ends with status 1", symbolTemplates,
     namesInTemplates, expandTemplates},
};

}  // namespace

std::span<const Output> outputTable() { return outputs; }

OutputMode outputMode(std::string_view text) {
  if (text.empty()) return OutputMode::model;
  for (const Output& output : outputs) {
    if (equalIgnoringCase(output.word, text)) return output.mode;
  }
  return OutputMode::unknown;
}

const Output* findOutput(OutputMode mode) {
  for (const Output& output : outputs) {
    if (output.mode == mode) return &output;
  }
  return nullptr;
}

bool isNamedBySubcircuit(const Output& output) {
  for (const std::string_view name : output.templates) {
    for (const std::string& word : fileWords(name)) {
      if (word.find(subcircuitWord) != word.npos) return true;
    }
  }
  return false;
}

}  // namespace ibis
