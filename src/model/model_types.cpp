#include "model/model_types.h"

#include <algorithm>
#include <initializer_list>

#include "reader/vocabulary.h"

namespace ibis {
namespace {

using enum ModelType;

bool isOneOf(ModelType type, std::initializer_list<ModelType> types) {
  return std::ranges::find(types, type) != types.end();
}

std::string withUnderscores(std::string_view word) {
  std::string text(word);
  std::ranges::replace(text, '/', '_');
  std::ranges::replace(text, '-', '_');
  return text;
}

}  // namespace

bool hasOutput(ModelType type) { return hasPushPullOutput(type) || hasOneSidedOutput(type); }

bool hasInput(ModelType type) {
  return isOneOf(type, {input, inputOutput, inputOutputOpenSource, inputOutputOpenDrain, inputEcl,
                        inputOutputEcl, inputDiff, inputOutputDiff});
}

bool hasEnable(ModelType type) {
  return isOneOf(type, {inputOutput, threeState, inputOutputEcl, threeStateEcl, inputOutputDiff,
                        threeStateDiff});
}

bool hasPushPullOutput(ModelType type) {
  return isOneOf(type,
                 {output, inputOutput, threeState, outputDiff, inputOutputDiff, threeStateDiff});
}

bool hasOneSidedOutput(ModelType type) {
  return isOneOf(type, {openSource, inputOutputOpenSource, openDrain, inputOutputOpenDrain,
                        outputEcl, inputOutputEcl, threeStateEcl});
}

bool hasPolarity(ModelType type) { return !isBuiltIn(type) && type != terminator; }

bool needsPulldown(ModelType type) {
  return hasOutput(type) && !isOneOf(type, {openSource, inputOutputOpenSource});
}

bool needsPullup(ModelType type) {
  return hasOutput(type) && !isOneOf(type, {openDrain, inputOutputOpenDrain});
}

bool isBuiltIn(ModelType type) { return isOneOf(type, {gnd, power, nc}); }

std::string typeText(ModelType type) { return withUnderscores(modelTypeRow(type).name); }

IBISString modelTypeText(ModelType type) {
  if (isOneOf(type, {openSource, openDrain})) return "Open_switch";
  if (isOneOf(type, {inputOutputOpenSource, inputOutputOpenDrain})) return "I/O_open_switch";
  return modelTypeRow(type).name;
}

std::string alternativeTypeText(ModelType type) { return withUnderscores(modelTypeText(type)); }

}  // namespace ibis
