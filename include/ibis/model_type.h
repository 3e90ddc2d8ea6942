#pragma once

#include <cstdint>

namespace ibis {

/// The type of a model, [Model] Model_type, in the order of the standard's own list.
enum class ModelType : std::int32_t {
  unknown = 0,  ///< Model_type is missing or not a word of the standard.
  input,
  output,
  inputOutput,
  threeState,
  openSource,
  inputOutputOpenSource,
  openDrain,
  inputOutputOpenDrain,
  inputEcl,
  outputEcl,
  inputOutputEcl,
  threeStateEcl,
  terminator,
  series,
  seriesSwitch,
  inputDiff,
  outputDiff,
  inputOutputDiff,
  threeStateDiff,
  gnd,
  power,
  nc,
};

}  // namespace ibis
