// The rules about models but for their tables and waveforms.

#include <algorithm>
#include <cmath>
#include <functional>

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
constexpr std::string_view references[] = {"Pullup Reference", "Pulldown Reference",
                                           "POWER Clamp Reference", "GND Clamp Reference"};
constexpr std::string_view cComps[] = {"C_comp", "C_comp_pullup", "C_comp_pulldown",
                                       "C_comp_power_clamp", "C_comp_gnd_clamp"};
constexpr std::string_view edgeWords[] = {"dV/dt_r", "dV/dt_f"};

class ModelChecker {
 public:
  ModelChecker(const View& view, Findings& findings) : view_(view), findings_(findings) {
    for (const Section& part : view.syntax.sections()) {
      if (part.kind == section::submodel && !part.isAfterEnd) submodels_.findOrAdd(part.name);
    }
    collectUses();
  }

  void check() {
    for (const ModelView& model : view_.models) {
      if (!model.isAfterEnd) checkModel(model);
    }
  }

 private:
  void collectUses() {
    for (const ComponentView& component : view_.components) {
      for (const PinView& pin : component.pins) used_.findOrAdd(pin.model);
    }
    for (const SelectorView& selector : view_.selectors) {
      for (const SelectorRow& row : selector.rows) used_.findOrAdd(row.model);
    }
    for (const Block& block : view_.syntax.blocks()) {
      if (block.keyword == nullptr) continue;
      const std::string_view name = block.keyword->name;
      if (name != "Driver Schedule" && name != "Series Pin Mapping") continue;
      for (const SourceLine& line : view_.syntax.linesOf(block)) {
        for (const Word& word : view_.syntax.words(line)) used_.findOrAdd(word.text);
      }
    }
  }

  void checkModel(const ModelView& model) {
    model_ = &model;
    name_ = std::string(model.name);
    checkNames();
    checkType();
    checkWords();
    checkCapacitance();
    checkTriples();
    checkSupply();
    checkRamp();
    checkTestLoad();
    checkThresholds();
    checkSpec();
    checkParts();
    if (model.type != ModelType::unknown) checkFitOfType();
  }

  std::string type() const { return std::string(model_->typeWord); }

  void checkNames() {
    const ModelView& first = view_.models[*view_.modelByName.find(model_->name)];
    if (&first != model_) {
      addNote(findings_.add(Rule::modelDuplicate, model_->spot, {name_}), first.spot.line,
              "the first one is here");
    }
    if (!view_.components.empty() && !used_.contains(model_->name)) {
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

  void checkCapacitance() {
    bool isGiven = model_->hasCCompCorner || model_->hasExternalModel;
    for (const std::string_view word : cComps) {
      const Triple& value = model_->triple(word);
      isGiven = isGiven || value.given;
      if (value.given && !findings_.hasWrongNumber(value.spot.block)) checkCComp(word, value);
    }
    const bool isKnown = model_->type != ModelType::unknown;
    const bool isMistyped = findings_.wasTold(Rule::modelUnknownParameter, model_->section) ||
                            findings_.wasTold(Rule::numericMissingValue, model_->section);
    if (!isGiven && isKnown && !model_->isSeries() && !isMistyped) {
      findings_.add(Rule::modelCCompMissing, model_->spot, {name_});
    }
    const bool hasParts =
        std::ranges::any_of(std::span(cComps).subspan(1),
                            [&](std::string_view word) { return model_->triple(word).given; });
    const Triple& whole = model_->triple("C_comp");
    const bool isBuffer = model_->isDriver() || model_->isInput();
    if (whole.given && whole.at[typ] == 0.0 && isBuffer && !hasParts) {
      findings_.add(Rule::modelCCompZero, whole.spot, {name_});
    }
    const Single& cref = model_->single("Cref");
    if (cref.value > 1e-6 && !findings_.hasWrongNumber(cref.spot.block)) {
      findings_.add(Rule::modelCrefImplausible, cref.spot, {name_, quantity(cref.value, "F")});
    }
  }

  void checkCComp(std::string_view word, const Triple& value) {
    for (std::size_t c = 0; c < corners; ++c) {
      const double each = value.at[c];
      const bool isTooSmall = word == "C_comp" && each < 10e-15 && each != 0.0;
      if (!(each > 100e-12) && !isTooSmall && !(each < 0.0)) continue;
      findings_.add(Rule::modelCCompImplausible, value.spots[c],
                    {std::string(word), name_, quantity(each, "F")});
      return;
    }
  }

  // The order of typ, min and max.
  void checkTriples() {
    for (const std::string_view word : cComps) checkOrder(word, std::string(word), "F");
    for (const std::string_view keyword :
         {"Voltage Range", "Pullup Reference", "Pulldown Reference", "POWER Clamp Reference",
          "GND Clamp Reference"}) {
      checkOrder(keyword, "[" + std::string(keyword) + "]", "V");
    }
    const Triple& heat = model_->triple("Temperature Range");
    if (heat.given) checkTemperature(heat);
  }

  void checkOrder(std::string_view key, const std::string& label, std::string_view unit) {
    const Triple& value = model_->triple(key);
    if (!value.given || findings_.hasWrongNumber(value.spot.block)) return;
    const double low = value.at[min];
    const double high = value.at[max];
    const double middle = value.at[typ];
    if (std::isnan(low) || std::isnan(high) || std::isnan(middle)) return;
    if (middle < std::min(low, high) || middle > std::max(low, high)) {
      findings_.add(
          Rule::modelTypOutside, value.spot,
          {label, name_, quantity(middle, unit), quantity(low, unit), quantity(high, unit)});
    } else if (low > high && middle > 0.0) {
      Finding& told = findings_.add(Rule::modelMinAboveMax, value.spots[min],
                                    {label, name_, quantity(low, unit), quantity(high, unit)});
      if (unit == "F") told.diagnostic.severity = Severity::note;
    }
  }

  void checkTemperature(const Triple& heat) {
    const double low = std::min(heat.corner(min), heat.corner(max));
    const double high = std::max(heat.corner(min), heat.corner(max));
    if (high > 200.0 || low < -80.0) {
      findings_.add(Rule::modelTemperatureOutside, heat.spot,
                    {name_, "values " + shortNumber(low) + " to " + shortNumber(high)});
    } else if (heat.at[typ] < low || heat.at[typ] > high) {
      findings_.add(Rule::modelTemperatureOutside, heat.spot,
                    {name_, "typ " + shortNumber(heat.at[typ]) + " is outside of " +
                                shortNumber(low) + " to " + shortNumber(high)});
    }
  }

  void checkSupply() {
    const Triple& range = model_->triple("Voltage Range");
    std::vector<std::string> missing;
    for (const std::string_view each : references) {
      if (!model_->triple(each).given) missing.push_back("[" + std::string(each) + "]");
    }
    const bool isWrong = range.given && findings_.hasWrongNumber(range.spot.block);
    if (!range.given) {
      const bool needs = model_->type != ModelType::unknown && !model_->isSeries() &&
                         !model_->hasExternalModel && !missing.empty() &&
                         !findings_.wasTold(Rule::numericMissingValue, model_->section);
      if (needs) {
        findings_.add(Rule::modelVoltageRangeMissing, model_->spot, {name_, joined(missing)});
      }
      return;
    }
    const double volts = range.at[typ];
    const bool isOdd = std::abs(volts) > 30.0 || std::abs(volts) < 0.4;
    if (isOdd && !isWrong && !missing.empty()) {
      findings_.add(Rule::modelVoltageImplausible, range.spot, {name_, quantity(volts, "V")});
    }
    if (!isWrong) checkReferences(range);
  }

  void checkReferences(const Triple& range) {
    const Triple& high = model_->triple("Pullup Reference");
    const Triple& clamp = model_->triple("POWER Clamp Reference");
    const double span = model_->pullupReference(typ) - model_->pulldownReference(typ);
    const double volts = range.at[typ];
    const bool hasPulls = high.given || model_->triple("Pulldown Reference").given;
    if (hasPulls && !model_->isEcl() && std::abs(span - volts) > 0.02 * std::abs(volts)) {
      findings_.add(Rule::modelReferenceVsRange, range.spot,
                    {name_, quantity(volts, "V"), quantity(span, "V")});
    }
    if (high.given && clamp.given && high.at[typ] != clamp.at[typ]) {
      addNote(findings_.add(Rule::modelReferenceClampDiffers, clamp.spot,
                            {name_, quantity(high.at[typ], "V"), quantity(clamp.at[typ], "V")}),
              high.spot.line, "the pullup reference is here");
    }
  }

  // [Ramp]

  void checkRamp() {
    if (model_->ramp == Spot::nowhere) return;
    const Spot head = view_.spotOf(view_.block(model_->ramp));
    const bool isWrong = findings_.hasWrongNumber(model_->ramp) ||
                         findings_.wasTold(Rule::modelRampForm, model_->section) ||
                         findings_.wasTold(Rule::modelUnknownParameter, model_->section);
    for (std::size_t e = 0; e < 2; ++e) {
      const std::string word(edgeWords[e]);
      if (!model_->edges[e].given) {
        if (!isWrong) findings_.add(Rule::modelRampIncomplete, head, {name_, word});
      } else {
        checkEdge(word, model_->edges[e], isWrong);
      }
    }
    const double load = model_->rLoad.value;
    if (model_->rLoad.given && !isWrong && (load < 10.0 || load > 1e6)) {
      findings_.add(Rule::modelRloadImplausible, model_->rLoad.spot,
                    {name_, quantity(load, "ohm")});
    }
  }

  void checkEdge(const std::string& word, const RampEdge& edge, bool isWrong) {
    for (std::size_t c = 0; c < corners; ++c) {
      if (std::isnan(edge.dv[c]) || isWrong) continue;
      if (edge.dv[c] <= 0.0 || edge.dt[c] <= 0.0) {
        findings_.addOnce(Rule::modelRampZero, edge.spots[c],
                          {word, name_, std::string(edge.words[c])});
        continue;
      }
      const double slew = edge.dv[c] / edge.dt[c];
      if (slew >= 1e5 && slew <= 5e11) continue;
      findings_.addOnce(Rule::modelRampImplausible, edge.spots[c],
                        {word, name_, std::string(cornerNames[c]), std::string(edge.words[c]),
                         shortNumber(slew)});
    }
  }

  void checkTestLoad() {
    const Single& vmeas = model_->single("Vmeas");
    const Single& rref = model_->single("Rref");
    if (rref.value > 0.0 && rref.value < 1.0) {
      findings_.add(Rule::modelRrefImplausible, rref.spot, {name_, quantity(rref.value, "ohm")});
    }
    if (!model_->isDriver() || !model_->isElectrical()) return;
    if (!vmeas.given && !model_->specTriple("Vmeas").given) {
      findings_.add(Rule::modelVmeasMissing, model_->spot, {name_});
    }
    const double low = std::min(model_->pulldownReference(typ), model_->pullupReference(typ));
    const double high = std::max(model_->pulldownReference(typ), model_->pullupReference(typ));
    const double vref = model_->single("Vref").value;
    const bool hasOwnRail = model_->isOpenDrain() && vref > high;
    const bool isOutside = vmeas.value <= low || vmeas.value >= high;
    const bool isWrong = findings_.hasWrongNumber(vmeas.spot.block) ||
                         findings_.hasWrongNumber(model_->triple("Voltage Range").spot.block);
    if (isOutside && high > low && !hasOwnRail && !isWrong) {
      findings_.add(Rule::modelVmeasOutside, vmeas.spot,
                    {name_, quantity(vmeas.value, "V"), quantity(low, "V"), quantity(high, "V")});
    }
  }

  void checkThresholds() {
    const Single& low = model_->single("Vinl");
    const Single& high = model_->single("Vinh");
    if (low.value > high.value) {
      findings_.add(Rule::modelVinlAboveVinh, low.spot,
                    {name_, quantity(low.value, "V"), quantity(high.value, "V")});
    } else if (low.value == high.value) {
      findings_.add(Rule::modelVinlEqualsVinh, low.spot, {name_, quantity(low.value, "V")});
    }
    if (!model_->isInput() || model_->isEcl() || model_->isDiff()) return;
    checkMissing("Vinl", low, "0.8 V");
    checkMissing("Vinh", high, "2 V");
    if (model_->triple("Pullup Reference").given || findings_.hasWrongNumber(low.spot.block))
      return;
    if (findings_.hasWrongNumber(model_->triple("Voltage Range").spot.block)) return;
    const double rail = model_->pullupReference(typ);
    if (high.value > 1.05 * rail)
      tellOutside("Vinh", high, "above its " + quantity(rail, "V") + " supply");
    if (low.value < -0.05) tellOutside("Vinl", low, "below ground");
  }

  void tellOutside(const std::string& word, const Single& value, const std::string& where) {
    findings_.add(Rule::modelThresholdOutside, value.spot,
                  {word, name_, quantity(value.value, "V"), where});
  }

  void checkMissing(std::string_view word, const Single& value, const std::string& standIn) {
    const bool isGiven = value.given || model_->specTriple(word).given || model_->hasThresholds ||
                         model_->hasExternalModel;
    const bool isMistyped = findings_.wasTold(Rule::modelUnknownParameter, model_->section) ||
                            findings_.wasTold(Rule::numericMissingValue, model_->section);
    if (isGiven || isMistyped) return;
    findings_.add(Rule::modelThresholdMissing, model_->spot, {std::string(word), name_, standIn});
  }

  // [Model Spec]

  void checkSpec() {
    const auto at = [&](std::string_view word) { return model_->specTriple(word).at[typ]; };
    const auto tell = [&](std::string_view word, const std::string& text) {
      findings_.add(Rule::modelSpecOrder, model_->specTriple(word).spot, {name_, text});
    };
    if (at("Vinl") >= at("Vinh")) tell("Vinl", "Vinl is not below Vinh");
    if (at("Vinl-") > at("Vinl+")) tell("Vinl-", "Vinl- is above Vinl+");
    if (at("Vinh-") > at("Vinh+")) tell("Vinh-", "Vinh- is above Vinh+");
    if (at("S_overshoot_high") < at("Vinh"))
      tell("S_overshoot_high", "S_overshoot_high is below Vinh");
    if (at("S_overshoot_low") > at("Vinl"))
      tell("S_overshoot_low", "S_overshoot_low is above Vinl");
    const bool hasTime = model_->specTriple("D_overshoot_time").given ||
                         model_->specTriple("D_overshoot_area_h").given;
    for (const std::string_view side : {"high", "low"}) {
      const std::string dynamic = "D_overshoot_" + std::string(side);
      const std::string fixed = "S_overshoot_" + std::string(side);
      if (!model_->specTriple(dynamic).given) continue;
      if (!model_->specTriple(fixed).given) tell(dynamic, dynamic + " without " + fixed);
      if (!hasTime) tell(dynamic, dynamic + " without D_overshoot_time");
    }
  }

  // Keywords that belong to some types, and submodels.
  void checkParts() {
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

  void checkAcPair(std::string_view name, const Block& block, const std::string& text) {
    const std::string_view other = name == "Rac" ? "Cac" : name == "Cac" ? "Rac" : "";
    if (other.empty() || model_->triple(other).given) return;
    findings_.add(Rule::modelTerminatorKeyword, view_.spotOf(block),
                  {name_, text + " stands without [" + std::string(other) + "]"});
  }

  void checkSubmodels(const Block& block) {
    for (const SourceLine& line : view_.syntax.linesOf(block)) {
      const auto words = view_.syntax.words(line);
      if (words.empty() || submodels_.contains(words[0].text)) continue;
      findings_.add(Rule::modelSubmodelUndefined,
                    view_.spotOf(line, words[0], view_.indexOf(block)),
                    {std::string(words[0].text), didYouMean(nearSubmodel(words[0].text))});
    }
  }

  std::string_view nearSubmodel(std::string_view word) {
    constexpr std::int32_t hints = 20;
    if (++asked_ > hints) return {};
    std::vector<std::string_view> names;
    for (std::int32_t i = 0; i < std::min(submodels_.size(), 200); ++i) {
      names.push_back(submodels_.name(i));
    }
    return nearestWord(word, names);
  }

  // What a type must have and what it has no use for.
  void checkFitOfType() {
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
  NameIndex<ExactCase> submodels_;
  NameIndex<ExactCase> used_;
  std::int32_t asked_ = 0;
  const ModelView* model_ = nullptr;
  std::string name_;
};

}  // namespace

void checkModels(const View& view, Findings& findings) { ModelChecker(view, findings).check(); }

}  // namespace ibis::checks
