#include "written_checks.h"

#include "finite_checks.h"
#include "messages.h"
#include "reader/text/name_index.h"

namespace ibis::cli {
namespace {

// Counts texts that hold one of some characters and keeps the first of them.
class OddTexts {
 public:
  explicit OddTexts(std::string_view characters) : characters_(characters) {}

  void look(std::string_view text) {
    if (text.find_first_of(characters_) != text.npos) add(text);
  }

  void add(std::string_view text) {
    if (count_++ == 0) first_ = text;
  }

  int count() const { return count_; }
  const char* first() const { return first_.c_str(); }

 private:
  std::string_view characters_;
  std::string first_;
  int count_ = 0;
};

constexpr std::string_view plainCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";

using Diagnostics = std::vector<Diagnostic>;

// The nodes of a package model are called as the signals are.
void checkNodes(const Load& load, const std::string& file, Diagnostics& told) {
  const IBISComponent& component = *load.chosenComponent();
  const IBISPackageModel* model =
      component.packageModelName.empty()
          ? nullptr
          : findPackageModel(load.file().data(), component.packageModelName);
  if (model == nullptr) return;
  NameMap<ExactCase, IBISString> signals;
  for (const IBISPin& pin : component.pins) signals.add(pin.name, pin.signal_name);
  OddTexts odd({});
  for (const IBISString pin : model->pinNames) {
    const IBISString* signal = signals.find(pin);
    if (signal == nullptr) continue;
    const std::string_view name = *signal;
    if (name.find_first_not_of(plainCharacters) != name.npos) odd.add(name);
  }
  if (odd.count() == 0) return;
  told.push_back(tell(Severity::warning, message::oddNodeNames, model->line,
                      model->name.str().c_str(), file.c_str(), odd.count(), odd.first()));
}

void checkPage(const Load& load, const std::string& file, Diagnostics& told) {
  const IBISFileData& data = load.file().data();
  const IBISComponent& component = *load.chosenComponent();
  OddTexts odd("<>&");
  for (const std::string_view text :
       {data.fileName.view(), component.name.view(), component.manufacturer.view(),
        data.fileRev.view(), data.date.view()}) {
    odd.look(text);
  }
  for (const IBISModel* model : component.models) odd.look(model->name);
  if (odd.count() == 0) return;
  told.push_back(
      tell(Severity::warning, message::markupInPage, file.c_str(), odd.count(), odd.first()));
}

void lookAtComponent(const IBISComponent& component, OddTexts& odd) {
  odd.look(component.name);
  odd.look(component.packageModelName);
  for (const IBISPinEntry& entry : component.pinEntries) {
    odd.look(entry.pin->name);
    odd.look(entry.pin->model_name);
  }
}

// Its texts stand between quotes.
void checkScript(const Load& load, const std::string& file, Diagnostics& told) {
  const IBISFileData& data = load.file().data();
  OddTexts odd("'\"");
  odd.look(data.filePath);
  for (const auto& component : data.components) lookAtComponent(*component, odd);
  for (const IBISDiffPin& row : load.chosenComponent()->diffPins) {
    odd.look(row.pin);
    odd.look(row.inv_pin);
  }
  for (const IBISModelSelector& selector : data.modelSelectors) {
    odd.look(selector.name);
    for (const IBISModelSelectorRow& row : selector.rows) odd.look(row.modelName);
  }
  for (const auto& model : data.models) odd.look(model->name);
  if (odd.count() == 0) return;
  told.push_back(
      tell(Severity::warning, message::quotesInScript, file.c_str(), odd.count(), odd.first()));
}

}  // namespace

std::vector<Diagnostic> checkWritten(const Load& load, const std::vector<std::string>& files) {
  Diagnostics told;
  if (files.empty() || load.chosenComponent() == nullptr) return told;
  told = checkFinite(load, files.front());
  if (load.mode() == OutputMode::package) checkNodes(load, files.front(), told);
  if (load.mode() == OutputMode::model) checkPage(load, files.back(), told);
  if (load.mode() == OutputMode::script) checkScript(load, files.front(), told);
  return told;
}

}  // namespace ibis::cli
