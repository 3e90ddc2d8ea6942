#pragma once

#include <string>

#include "component/model_selector.h"

namespace ibis {

/// The pins that the caller wants; empty means all of them.
class PinFilter {
 public:
  PinFilter() = default;
  explicit PinFilter(std::span<const IBISString> names) {
    for (IBISString name : names) names_.findOrAdd(name);
  }

  bool empty() const { return names_.size() == 0; }
  bool names(std::string_view pin) const { return names_.contains(pin); }
  bool wants(std::string_view pin) const { return empty() || names(pin); }

 private:
  NameIndex<ExactCase> names_;
};

/// Resolves the models of a component's pins and fills its lists of entries and models.
///
/// Runs once on a component, after the whole file has been read.
void prepareComponent(IBISComponent& component, const ModelFinder& models,
                      const PinFilter& pinFilter, IBISErrorHandler& errors);

/// Whether one pin name sorts before another: numbers by value, anything else by bytes.
bool naturalLess(std::string_view a, std::string_view b);

}  // namespace ibis
