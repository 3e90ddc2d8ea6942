// The rules about a model's name, type and words, and the order in which a model is judged.

#include "checks/model_rules.h"

#include <algorithm>

#include "checks/families.h"
#include "ibis/ibis_string.h"

namespace ibis::checks {
namespace {

constexpr std::string_view typeWords[] = {
    "Input",          "Output",        "I/O",           "3-state",     "Open_drain",
    "I/O_open_drain", "Open_sink",     "I/O_open_sink", "Open_source", "I/O_open_source",
    "Input_ECL",      "Output_ECL",    "I/O_ECL",       "3-state_ECL", "Terminator",
    "Series",         "Series_switch", "Input_diff",    "Output_diff", "I/O_diff",
    "3-state_diff"};

class ModelChecker {
 public:
  ModelChecker(const View& view, const ModelUses& uses, const ModelView& model, Findings& findings)
      : view_(view), uses_(uses), findings_(findings), model_(&model), name_(model.name) {}

  void check() {
    checkNames();
    checkType();
    checkWords();
  }

 private:
  void checkNames() {
    const ModelView& first = view_.models[*view_.modelByName.find(model_->name)];
    if (&first != model_) {
      addNote(findings_.add(Rule::modelDuplicate, model_->spot, {name_}), first.spot.line,
              "the first one is here");
    }
    if (!view_.components.empty() && !uses_.used.contains(model_->name)) {
      findings_.add(Rule::modelUnused, model_->spot, {name_});
    }
  }

  void checkType() {
    if (!model_->single("Model_type").given) {
      if (!findings_.wasTold(Rule::numericMissingValue, model_->section)) {
        findings_.add(Rule::modelTypeMissing, model_->spot, {name_});
      }
      return;
    }
    if (model_->type != ModelType::unknown &&
        std::ranges::find(typeWords, model_->typeWord) != std::end(typeWords)) {
      return;
    }
    const std::string word(model_->typeWord);
    for (const std::string_view known : typeWords) {
      if (!equalIgnoringCase(known, word)) continue;
      findings_.add(Rule::modelTypeCase, model_->typeSpot, {word, std::string(known)});
      return;
    }
    findings_.add(Rule::modelTypeUnknown, model_->typeSpot,
                  {word, didYouMean(nearestWord(word, typeWords))});
  }

  void checkWords() {
    checkWord("Polarity", Rule::modelPolarityWord, "Non-Inverting", "Inverting");
    checkWord("Enable", Rule::modelEnableWord, "Active-High", "Active-Low");
  }

  void checkWord(std::string_view parameter, Rule rule, std::string_view first,
                 std::string_view second) {
    const Single& value = model_->single(parameter);
    if (!value.given || value.word == first || value.word == second) return;
    for (const std::string_view known : {first, second}) {
      if (!equalIgnoringCase(known, value.word)) continue;
      findings_.add(Rule::syntaxWordCase, value.spot,
                    {std::string(value.word), std::string(known)});
      return;
    }
    findings_.add(rule, value.spot, {std::string(value.word)});
  }

  const View& view_;
  const ModelUses& uses_;
  Findings& findings_;
  const ModelView* model_;
  std::string name_;
};

}  // namespace

ModelUses::ModelUses(const View& view) {
  for (const Section& part : view.syntax.sections()) {
    if (part.kind == section::submodel && !part.isAfterEnd) submodels.findOrAdd(part.name);
  }
  for (const ComponentView& component : view.components) {
    for (const PinView& pin : component.pins) used.findOrAdd(pin.model);
  }
  for (const SelectorView& selector : view.selectors) {
    for (const SelectorRow& row : selector.rows) used.findOrAdd(row.model);
  }
  for (const Block& block : view.syntax.blocks()) {
    if (block.keyword == nullptr) continue;
    const std::string_view name = block.keyword->name;
    if (name != "Driver Schedule" && name != "Series Pin Mapping") continue;
    for (const SourceLine& line : view.syntax.linesOf(block)) {
      for (const Word& word : view.syntax.words(line)) used.findOrAdd(word.text);
    }
  }
}

void checkModels(const View& view, Findings& findings) {
  ModelUses uses(view);
  for (const ModelView& model : view.models) {
    if (model.isAfterEnd) continue;
    ModelChecker(view, uses, model, findings).check();
    checkModelValues(model, findings);
    checkModelSwitching(view, model, findings);
    checkModelParts(view, model, uses, findings);
    if (model.type != ModelType::unknown) checkFitOfType(view, model, findings);
  }
}

}  // namespace ibis::checks
