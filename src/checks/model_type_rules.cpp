// The rules about what a model's type asks for and what it has no use for.

#include <algorithm>
#include <cmath>

#include "checks/model_rules.h"

namespace ibis::checks {
namespace {

// Keywords that belong to some types, and submodels.
class PartChecker {
 public:
  PartChecker(const View& view, const ModelView& model, ModelUses& uses, Findings& findings)
      : view_(view), uses_(uses), findings_(findings), model_(&model), name_(model.name) {}

  void check() {
    const bool isTerminator = model_->type == ModelType::terminator;
    for (const Block& block : view_.syntax.blocksOf(view_.syntax.sections()[model_->section])) {
      if (block.keyword == nullptr) continue;
      const std::string_view name = block.keyword->name;
      if (name == "Add Submodel") checkSubmodels(block);
      const bool isOfTerminator =
          name == "Rgnd" || name == "Rpower" || name == "Rac" || name == "Cac";
      if (!isOfTerminator) continue;
      const std::string text = "[" + std::string(name) + "]";
      if (!isTerminator && model_->type != ModelType::unknown) {
        findings_.add(Rule::modelTerminatorKeyword, view_.spotOf(block),
                      {name_, text + " stands in a model of type " + type()});
      }
      checkAcPair(name, block, text);
    }
  }

 private:
  std::string type() const { return std::string(model_->typeWord); }

  void checkAcPair(std::string_view name, const Block& block, const std::string& text) {
    const std::string_view other = name == "Rac" ? "Cac" : name == "Cac" ? "Rac" : "";
    if (other.empty() || model_->triple(other).given) return;
    findings_.add(Rule::modelTerminatorKeyword, view_.spotOf(block),
                  {name_, text + " stands without [" + std::string(other) + "]"});
  }

  void checkSubmodels(const Block& block) {
    for (const SourceLine& line : view_.syntax.linesOf(block)) {
      const auto words = view_.syntax.words(line);
      if (words.empty() || uses_.submodels.contains(words[0].text)) continue;
      findings_.add(Rule::modelSubmodelUndefined,
                    view_.spotOf(line, words[0], view_.indexOf(block)),
                    {std::string(words[0].text), didYouMean(nearSubmodel(words[0].text))});
    }
  }

  std::string_view nearSubmodel(std::string_view word) {
    constexpr std::int32_t hints = 20;
    if (++uses_.asked > hints) return {};
    std::vector<std::string_view> names;
    for (std::int32_t i = 0; i < std::min(uses_.submodels.size(), 200); ++i) {
      names.push_back(uses_.submodels.name(i));
    }
    return nearestWord(word, names);
  }

  const View& view_;
  ModelUses& uses_;
  Findings& findings_;
  const ModelView* model_;
  std::string name_;
};

// What a type must have and what it has no use for.
class TypeFitChecker {
 public:
  TypeFitChecker(const View& view, const ModelView& model, Findings& findings)
      : view_(view), findings_(findings), model_(&model), name_(model.name) {}

  void check() {
    const ModelView& model = *model_;
    const bool isListener = model.type == ModelType::input || model.type == ModelType::terminator ||
                            model.type == ModelType::inputEcl;
    const bool isWhole = model.isDriver() && !model.hasExternalModel && !model.isDiff();
    if (isWhole && !model.hasSchedule) {
      if (!model.isOpenSource()) checkTable(pulldown);
      if (!model.isOpenDrain()) checkTable(pullup);
    }
    if (isWhole && model.ramp == Spot::nowhere) {
      findings_.add(Rule::modelRampMissing, model.spot, {type(), name_});
    }
    if (isListener) checkListener();
    if (model.isOpenDrain()) checkIdle(pullup);
    if (model.isOpenSource()) checkIdle(pulldown);
    checkUnusedParameters();
  }

 private:
  std::string type() const { return std::string(model_->typeWord); }

  void checkTable(std::size_t place) {
    if (model_->table[place].given()) return;
    findings_.add(Rule::modelTableMissing, model_->spot,
                  {type(), name_, std::string(tableNames[place])});
  }

  void checkListener() {
    const std::uint32_t first[] = {
        model_->table[pulldown].block, model_->table[pullup].block,
        model_->waveforms.empty() ? Spot::nowhere : model_->waveforms[0].rows.block};
    for (const std::uint32_t block : first) {
      if (block == Spot::nowhere) continue;
      const Block& each = view_.block(block);
      findings_.add(Rule::modelTableNotForType, view_.spotOf(each),
                    {type(), "it has a [" + std::string(each.keyword->name) + "]"});
    }
    if (model_->ramp == Spot::nowhere) return;
    findings_.add(Rule::modelRampNotForType, view_.spotOf(view_.block(model_->ramp)),
                  {type(), name_});
  }

  void checkIdle(std::size_t place) {
    const Rows& rows = model_->table[place];
    double most = 0.0;
    for (const double current : rows.y[typ]) most = std::max(most, std::abs(current));
    if (most <= 1e-6 || !rows.isSound) return;
    findings_.add(
        Rule::modelTableNotForType, view_.spotOf(view_.block(rows.block)),
        {type(), "[" + std::string(tableNames[place]) + "] carries " + quantity(most, "A")});
  }

  void checkUnusedParameters() {
    const auto tell = [&](Rule rule, std::initializer_list<std::string_view> words) {
      for (const std::string_view word : words) {
        const Single& value = model_->single(word);
        if (!value.given) continue;
        findings_.add(rule, value.spot, {type(), name_, std::string(word)});
        return;
      }
    };
    if (model_->isDriver() && !model_->isInput()) {
      tell(Rule::modelThresholdUnused, {"Vinl", "Vinh"});
    }
    if (model_->isInput() && !model_->isDriver()) {
      tell(Rule::modelTestLoadUnused, {"Vmeas", "Cref", "Rref", "Vref"});
    }
  }

  const View& view_;
  Findings& findings_;
  const ModelView* model_;
  std::string name_;
};

}  // namespace

void checkModelParts(const View& view, const ModelView& model, ModelUses& uses,
                     Findings& findings) {
  PartChecker(view, model, uses, findings).check();
}

void checkFitOfType(const View& view, const ModelView& model, Findings& findings) {
  TypeFitChecker(view, model, findings).check();
}

}  // namespace ibis::checks
