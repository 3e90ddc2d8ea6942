#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "checks/view.h"

namespace ibis::checks {

/// A package model with its pins in the order of their numbers.
struct PackageModel {
  const View& view;
  const Section& part;
  std::string name = {};
  std::vector<std::string_view> pins = {};
  Places byName = {};
  bool hasTwice = false;  ///< Whether a pin stands in the list twice.

  std::size_t count() const { return pins.size(); }

  /// Its first block of a keyword, or null.
  const Block* find(std::string_view keyword) const;
};

}  // namespace ibis::checks
