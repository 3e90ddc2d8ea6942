#include "output/file_keywords.h"

#include <algorithm>

#include "output/file_name.h"
#include "output/output_run.h"
#include "package/netlist/netlist.h"
#include "reader/text/name_index.h"
#include "reader/vocabulary.h"

namespace ibis {
namespace {

constexpr std::int32_t maxPadding = 255;

bool writeText(OutputStream* out, const KeywordPosition& position, std::string_view text) {
  if (out == nullptr) return false;
  out->writeBlanks(position.pendingSpaces);
  out->write(text);
  return false;
}

// A run of line ends counts as one, so empty lines disappear.
std::string_view takeLine(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of('\n'), text.size()));
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(line.size());
  return line;
}

// The heading is the IBIS keyword of the text; its width pads the first line alone.
bool writeLines(OutputStream* out, const KeywordPosition& position,
                const KeywordArguments& arguments, std::string_view text,
                std::string_view heading) {
  writeText(out, position, {});
  if (out == nullptr) return false;
  const std::string_view prefix = arguments.size() > 1 ? arguments[1].view() : std::string_view();
  bool isFirst = true;
  for (std::string_view line = takeLine(text); !line.empty(); line = takeLine(text)) {
    if (!isFirst) out->write('\n');
    out->write(prefix);
    if (isFirst) {
      out->writeBlanks(std::min(static_cast<std::int32_t>(heading.size()), maxPadding));
    }
    out->write(line);
    isFirst = false;
  }
  return false;
}

// The text of the run's component; empty without a component.
std::string_view componentText(const OutputRun& run, IBISString IBISComponent::*text) {
  const IBISComponent* component = run.component();
  return component == nullptr ? std::string_view() : (component->*text).view();
}

bool isBlank(char c) { return c == ' ' || c == '\t'; }

// Reads the word after the keyword; a line end stays for the engine, a blank is consumed.
std::string takeWord(TextBuffer& text) {
  while (isBlank(text.peek())) text.read();
  std::string word;
  for (char c = text.peek(); static_cast<signed char>(c) > 0 && c != '\n'; c = text.peek()) {
    text.read();
    if (isBlank(c)) break;
    word += c;
  }
  return word;
}

// Names the nodes of a package model after the signals of the component's pins.
struct PackageNodes {
  PackageNodes(const IBISPackageModel& model, const IBISComponent& component) {
    NameMap<ExactCase, IBISString> signals;
    for (const IBISPin& pin : component.pins) signals.add(pin.name, pin.signal_name);
    // Each pin that the component lacks still needs a node of its own.
    std::int32_t missing = 0;
    for (const IBISString pin : model.pinNames) {
      const IBISString* signal = signals.find(pin);
      names.push_back(signal != nullptr ? signal->view()
                                        : made.store("ERROR_" + std::to_string(++missing)));
    }
  }

  std::vector<std::string_view> names;
  StringPool made;
};

}  // namespace

bool openFile(OutputRun& run, OutputStream*, const KeywordPosition&, TextBuffer& text,
              const KeywordArguments&) {
  const OutputPlace place{
      .rootDirectory = run.rootDirectory(),
      .subcircuit = run.file().userSubcircuitName.str(),
      .spiceComponentName = std::string(componentText(run, &IBISComponent::spiceName))};
  run.openOutputFile(fileName(takeWord(text), place));
  return true;
}

bool writeComponentName(OutputRun& run, OutputStream* out, const KeywordPosition& position,
                        TextBuffer&, const KeywordArguments&) {
  return writeText(out, position, componentText(run, &IBISComponent::name));
}

bool writeSpiceComponentName(OutputRun& run, OutputStream* out, const KeywordPosition& position,
                             TextBuffer&, const KeywordArguments&) {
  return writeText(out, position, componentText(run, &IBISComponent::spiceName));
}

bool writeManufacturer(OutputRun& run, OutputStream* out, const KeywordPosition& position,
                       TextBuffer&, const KeywordArguments&) {
  return writeText(out, position, componentText(run, &IBISComponent::manufacturer));
}

bool writePackageModelName(OutputRun& run, OutputStream* out, const KeywordPosition& position,
                           TextBuffer&, const KeywordArguments&) {
  return writeText(out, position, componentText(run, &IBISComponent::packageModelName));
}

bool writeSubcircuitName(OutputRun& run, OutputStream* out, const KeywordPosition& position,
                         TextBuffer&, const KeywordArguments&) {
  const IBISString name = run.file().userSubcircuitName;
  return writeText(out, position,
                   name.empty() ? componentText(run, &IBISComponent::spiceName) : name.view());
}

bool writeFileName(OutputRun& run, OutputStream* out, const KeywordPosition& position, TextBuffer&,
                   const KeywordArguments&) {
  return writeText(out, position, run.file().fileName);
}

bool writeFilePath(OutputRun& run, OutputStream* out, const KeywordPosition& position, TextBuffer&,
                   const KeywordArguments&) {
  return writeText(out, position, run.file().filePath);
}

bool writeFileRev(OutputRun& run, OutputStream* out, const KeywordPosition& position, TextBuffer&,
                  const KeywordArguments&) {
  return writeText(out, position, run.file().fileRev);
}

bool writeDate(OutputRun& run, OutputStream* out, const KeywordPosition& position, TextBuffer&,
               const KeywordArguments&) {
  return writeText(out, position, run.file().date);
}

bool writeVersion(OutputRun& run, OutputStream* out, const KeywordPosition& position, TextBuffer&,
                  const KeywordArguments&) {
  return writeText(out, position, versionText(run.file().version));
}

bool writeSource(OutputRun& run, OutputStream* out, const KeywordPosition& position, TextBuffer&,
                 const KeywordArguments& arguments) {
  return writeLines(out, position, arguments, run.file().source, "[Source]");
}

bool writeNotes(OutputRun& run, OutputStream* out, const KeywordPosition& position, TextBuffer&,
                const KeywordArguments& arguments) {
  return writeLines(out, position, arguments, run.file().notes, "[Notes]");
}

bool writeDisclaimer(OutputRun& run, OutputStream* out, const KeywordPosition& position,
                     TextBuffer&, const KeywordArguments& arguments) {
  return writeLines(out, position, arguments, run.file().disclaimer, "[Disclaimer]");
}

bool writeCopyright(OutputRun& run, OutputStream* out, const KeywordPosition& position, TextBuffer&,
                    const KeywordArguments& arguments) {
  return writeLines(out, position, arguments, run.file().copyright, "[Copyright]");
}

bool writePackageModel(OutputRun& run, OutputStream* out, const KeywordPosition&, TextBuffer&,
                       const KeywordArguments&) {
  const std::string_view name = componentText(run, &IBISComponent::packageModelName);
  if (name.empty() || out == nullptr) return true;
  const IBISPackageModel* model = findPackageModel(run.file(), name);
  if (model == nullptr) return true;
  const PackageNodes nodes(*model, *run.component());
  writePackageNetlist(*out, *model, nodes.names);
  out->write('\n');
  return true;
}

bool writeRootDirectory(OutputRun&, OutputStream*, const KeywordPosition&, TextBuffer&,
                        const KeywordArguments&) {
  return true;
}

bool hasModelType(OutputRun& run, TextBuffer&, const KeywordArguments& arguments) {
  const std::string_view type = arguments.size() > 1 ? arguments[1].view() : std::string_view();
  return run.component() != nullptr &&
         std::ranges::any_of(run.component()->models, [&](const IBISModel* model) {
           return modelTypeRow(model->type).name == type;
         });
}

bool hasPackageModel(OutputRun& run, TextBuffer&, const KeywordArguments&) {
  return !componentText(run, &IBISComponent::packageModelName).empty();
}

}  // namespace ibis
