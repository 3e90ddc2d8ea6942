#pragma once

#include <vector>

#include "tolerant_reading.h"

namespace ibis::cli {

/// Pins of one component.
struct PinGroup {
  const IBISComponent* component = nullptr;
  std::vector<const IBISPin*> pins;
};

/// A model of the file and who uses it.
struct ModelSummary {
  const IBISModel* model = nullptr;
  std::vector<const IBISModelSelector*> selectors;  ///< Those that offer it.
  std::vector<PinGroup> users;                      ///< Pins that name it.
  std::vector<Diagnostic> reasons;                  ///< Why no conversion takes it; else none.
};

/// A selector of the file and who uses it.
struct SelectorSummary {
  const IBISModelSelector* selector = nullptr;
  std::vector<PinGroup> users;
};

/// What a file holds; it refers to the reading that it was made from.
struct FileSummary {
  std::vector<ModelSummary> models;  ///< Without the built-in ones.
  std::vector<SelectorSummary> selectors;
};

FileSummary summarize(const TolerantReading& reading);

/// How many pins there are in groups.
std::size_t pinCount(const std::vector<PinGroup>& groups);

/// Pins that a conversion leaves out, as their model is refused or not there.
std::vector<const IBISPin*> pinsWithoutModel(const IBISComponent& component);

/// How a model got its waveforms: "given", "estimated" or "none".
const char* waveformOrigin(const IBISModel& model);

/// The supply of a model: its voltage range, else its pullup or power clamp reference.
const IBISTriple* supplyOf(const IBISModel& model);

}  // namespace ibis::cli
