#include "advice.h"

#include <algorithm>
#include <set>

#include "host/diagnostics/messages.h"
#include "near_names.h"
#include "quantity.h"
#include "reader/vocabulary.h"

namespace ibis::cli {
namespace {

namespace load = ibis::message;

void addNote(Diagnostic& error, std::string text, std::int32_t line = 0) {
  if (!text.empty()) error.notes.push_back({.line = line, .text = std::move(text)});
}

// What stands between the first quotes of a text.
std::string quotedIn(std::string_view text) {
  const std::size_t begin = text.find('\'');
  const std::size_t end = begin == text.npos ? text.npos : text.find('\'', begin + 1);
  return end == text.npos ? "" : std::string(text.substr(begin + 1, end - begin - 1));
}

std::string tripleText(const IBISTriple& triple) {
  const std::vector<std::string> corners = cornerTexts(triple, "V");
  return corners[0] + ", " + corners[1] + ", " + corners[2];
}

const IBISModel* modelOnLine(const IBISFileData& file, std::int32_t line) {
  for (const auto& model : file.models) {
    if (line > 0 && model->lineNumber == line) return model.get();
  }
  return nullptr;
}

const IBISPin* pinOnLine(const IBISFileData& file, std::int32_t line) {
  for (const auto& component : file.components) {
    for (const IBISPin& pin : component->pins) {
      if (pin.line == line) return &pin;
    }
  }
  return nullptr;
}

std::vector<std::string> typeWords() {
  std::vector<std::string> words;
  for (const ModelTypeRow& row : modelTypeTable()) {
    if (row.supported) words.emplace_back(row.name);
  }
  return words;
}

// An error of some kind, and the function that knows more of it.
struct Case {
  const char* format;
  void (*advise)(const Adviser&, Diagnostic&, const SourceText&, const IBISFileData&);
};

void adviseOnComponent(const Adviser& adviser, Diagnostic& error, const SourceText&,
                       const IBISFileData&) {
  const std::vector<std::string> names = adviser.componentNames();
  addNames(error, quotedIn(error.text), names, "the file has ");
}

void adviseOnSelection(const Adviser& adviser, Diagnostic& error, const SourceText&,
                       const IBISFileData& file) {
  if (file.modelSelectors.empty()) {
    addNote(error, "the file has no model selectors");
    return;
  }
  const std::string text = quotedIn(error.text);
  for (const IBISModelSelector& selector : file.modelSelectors) {
    if (!text.starts_with(selector.name.str() + '=')) continue;
    std::vector<std::string> models;
    for (const IBISModelSelectorRow& row : selector.rows) models.push_back(row.modelName.str());
    addNote(error, "selector '" + selector.name.str() + "' has " + namesText(models));
    return;
  }
  addNames(error, text, adviser.choices(), "there are: ");
}

void adviseOnPinModel(const Adviser& adviser, Diagnostic& error, const SourceText& text,
                      const IBISFileData& file) {
  const IBISPin* pin = pinOnLine(file, error.line);
  if (pin == nullptr) return;
  const std::string name = pin->model_name.str();
  if (name.empty()) {
    addNote(error, "the row gives no model");
    return;
  }
  if (const std::int32_t line = text.modelBehindEnd(name)) {
    addNote(error, "model '" + name + "' stands behind [End], where nothing is read", line);
    return;
  }
  const std::vector<std::string> names = adviser.modelNames();
  std::string more = meantText(name, names);
  if (more.empty() && !names.empty()) more = "the file has " + namesText(names);
  addNote(error, "the pin names model '" + name + '\'' + (more.empty() ? "" : "; " + more));
}

void adviseOnVersion(const Adviser&, Diagnostic& error, const SourceText&, const IBISFileData&) {
  addNote(error, "versions 1.0 to 4.2 are read; --as-version 4.2 reads as far as that goes");
}

void adviseOnUnknownVersion(const Adviser&, Diagnostic& error, const SourceText&,
                            const IBISFileData&) {
  addNote(error, "versions 1.0 to 4.2 are read");
}

void adviseOnPullupReference(const Adviser&, Diagnostic& error, const SourceText&,
                             const IBISFileData& file) {
  if (const IBISModel* model = modelOnLine(file, error.line)) {
    addNote(error, "pullup " + tripleText(model->pullupReference) + "; power clamp " +
                       tripleText(model->powerClampReference));
  }
}

void adviseOnPulldownReference(const Adviser&, Diagnostic& error, const SourceText&,
                               const IBISFileData& file) {
  if (const IBISModel* model = modelOnLine(file, error.line)) {
    addNote(error, "pulldown " + tripleText(model->pulldownReference) + "; ground clamp " +
                       tripleText(model->gndClampReference));
  }
}

void adviseOnLeavingOut(const Adviser&, Diagnostic& error, const SourceText&, const IBISFileData&) {
  addNote(error, "--keep-going leaves out what cannot be converted, with its pins");
}

void adviseOnType(const Adviser&, Diagnostic& error, const SourceText& text, const IBISFileData&) {
  const std::string word(wordOf(text.line(error.line), 1));
  bool isKnown = false;
  if (word.empty() || modelTypeFromWord(word, isKnown) != ModelType::unknown) {
    addNote(error, "--keep-going leaves out what cannot be converted, with its pins");
    return;
  }
  const std::string meant = meantText(word, typeWords());
  addNote(error, "the file says '" + word + '\'' + (meant.empty() ? "" : "; " + meant));
}

void adviseOnPlace(const Adviser&, Diagnostic& error, const SourceText&, const IBISFileData&) {
  const KeywordRow* row = findKeyword(keywordId(quotedIn(error.text)));
  if (row == nullptr) return;
  switch (row->inComponent) {
    case InComponent::own:
      return addNote(error, "it belongs to a [Component]");
    case InComponent::ofHeader:
      return addNote(error, "it belongs to the header, in front of the first [Component]");
    case InComponent::ofModel:
      return addNote(error, "it belongs to a [Model]");
    case InComponent::ofSubmodel:
      return addNote(error, "it belongs to a [Submodel]");
    case InComponent::ofPackage:
      return addNote(error, "it belongs to a [Define Package Model]");
    default:
      return;
  }
}

void adviseOnLocation(const Adviser&, Diagnostic& error, const SourceText&, const IBISFileData&) {
  addNote(error, "'Pin' or 'Die' is expected, in this case of letters");
}

void adviseOnMatrix(const Adviser&, Diagnostic& error, const SourceText&, const IBISFileData&) {
  addNames(error, quotedIn(error.text), {"Full_matrix", "Banded_matrix", "Sparse_matrix"},
           "there are: ");
}

void adviseOnPackageModel(const Adviser&, Diagnostic& error, const SourceText&,
                          const IBISFileData& file) {
  std::vector<std::string> names;
  for (const auto& each : file.packageModels) names.push_back(each->name.str());
  if (names.empty()) {
    addNote(error, "the file defines no package model; vendors put them into a .pkg file");
    return;
  }
  addNote(error, "the file defines " + namesText(names));
}

constexpr Case cases[] = {
    {load::componentNotFound, adviseOnComponent},
    {load::selectorNotFound, adviseOnSelection},
    {load::pinModelUndefined, adviseOnPinModel},
    {load::versionNotSupported, adviseOnVersion},
    {load::unknownVersion, adviseOnUnknownVersion},
    {load::pullupReferenceDiffers, adviseOnPullupReference},
    {load::pulldownReferenceDiffers, adviseOnPulldownReference},
    {load::modelTypeNotSupported, adviseOnType},
    {load::modelKeywordNotSupported, adviseOnLeavingOut},
    {load::keywordNotSupported, adviseOnLeavingOut},
    {load::seriesPinMappingNotSupported, adviseOnLeavingOut},
    {load::seriesSwitchGroupsNotSupported, adviseOnLeavingOut},
    {load::keywordNotExpected, adviseOnPlace},
    {load::unexpectedLocation, adviseOnLocation},
    {load::unknownMatrixType, adviseOnMatrix},
    {load::packageModelMissing, adviseOnPackageModel},
};

const Case* findCase(const Diagnostic& error) {
  const MessageRow* row = findMessageById(error.id);
  if (row == nullptr) return nullptr;
  for (const Case& each : cases) {
    if (findMessage(each.format) == row) return &each;
  }
  return nullptr;
}

}  // namespace

std::vector<std::string> Adviser::componentNames() const {
  std::vector<std::string> names;
  for (const auto& each : file_.components) names.push_back(each->name.str());
  return names;
}

std::vector<std::string> Adviser::modelNames() const {
  std::vector<std::string> names;
  for (const auto& each : file_.models) {
    if (each->lineNumber > 0) names.push_back(each->name.str());
  }
  for (const IBISModelSelector& each : file_.modelSelectors) names.push_back(each.name.str());
  return names;
}

std::vector<std::string> Adviser::choices() const {
  std::vector<std::string> texts;
  std::set<std::string_view> taken;
  for (const IBISModelSelector& selector : file_.modelSelectors) {
    for (const IBISModelSelectorRow& row : selector.rows) {
      const std::string_view text = row.description;
      if (!text.empty() && taken.insert(text).second) texts.emplace_back(text);
    }
  }
  return texts;
}

// The same advice is given once, at the first error that asks for it.
void Adviser::advise(std::vector<Diagnostic>& errors) const {
  constexpr std::size_t most = 50;
  const SourceText text(errors.empty() ? std::string_view() : text_);
  std::vector<std::string> given;
  for (std::size_t i = 0; i < errors.size() && i < most; ++i) {
    if (const Case* found = findCase(errors[i])) found->advise(*this, errors[i], text, file_);
    std::erase_if(errors[i].notes, [&](const Note& note) {
      if (note.line > 0) return false;
      if (std::ranges::find(given, note.text) != given.end()) return true;
      given.push_back(note.text);
      return false;
    });
  }
}

void adviseOnNothing(Diagnostic& error, std::string_view text) {
  if (text.empty()) return addNote(error, "it is empty");
  if (const std::string_view kind = SourceText::kindOf(text); !kind.empty()) {
    return addNote(error, "it looks like " + std::string(kind));
  }
  for (const Note& note : SourceText(text).unclosedBrackets()) error.notes.push_back(note);
}

}  // namespace ibis::cli
