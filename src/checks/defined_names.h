#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "checks/view.h"

namespace ibis::checks {

/// Names of models and selectors, in front of [End] and behind it, for hints.
class DefinedNames {
 public:
  explicit DefinedNames(const View& view);

  /// Whether a model or a selector in front of [End] has the name.
  bool isDefined(std::string_view name) const {
    return view_.modelByName.contains(name) || view_.selectorByName.contains(name);
  }

  /// The line of a name behind [End], or null.
  const std::int32_t* lineAfterEnd(std::string_view name) const { return afterEnd_.find(name); }

  /// The defined name that is equal but for case, or empty.
  std::string_view equalButForCase(std::string_view name) const;

  /// The nearest name; empty where none is near or too many were asked for.
  std::string_view nearest(std::string_view name);

 private:
  void add(std::string_view name, std::int32_t line, bool isAfterEnd);

  const View& view_;
  NameMap<ExactCase, std::int32_t> afterEnd_;
  NameMap<IgnoringCase, std::string_view> ignoringCase_;
  std::vector<std::string_view> names_;
  std::size_t asked_ = 0;
};

}  // namespace ibis::checks
