#pragma once

#include <string>
#include <vector>

#include "ibis/component.h"
#include "ibis/diagnostic.h"

namespace ibis::cli {

/// Pins of a component that are not written, by the model that they name.
struct LeftOut {
  std::string component;
  std::string model;
  std::int32_t line = 0;  ///< Where the model begins; 0 for one that is not there.
  std::vector<std::string> pins;
};

/// Removes entries and models that cannot be converted from a component that was prepared.
void removeUnsoundModels(IBISComponent& component);

/// The wanted pins that no entry of the component has, by model in the order of the pins.
std::vector<LeftOut> pinsLeftOut(const IBISComponent& component,
                                 const std::vector<std::string>& wanted);

/// A warning for each model that is left out with pins.
std::vector<Diagnostic> tellLeftOut(const std::vector<LeftOut>& leftOut);

}  // namespace ibis::cli
