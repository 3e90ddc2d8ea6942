#pragma once

#include <cstdint>

namespace ibis {

/// Ids of the model types, in the order of the standard's own list.
enum class ModelType : std::int32_t {
  unknown = 0,
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
