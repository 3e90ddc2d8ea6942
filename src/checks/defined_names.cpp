#include "checks/defined_names.h"

#include <algorithm>

namespace ibis::checks {
namespace {

constexpr std::size_t searchedNames = 2000;  // names that a hint is looked for among
constexpr std::size_t hints = 20;            // hints of one kind in a file

}  // namespace

DefinedNames::DefinedNames(const View& view) : view_(view) {
  for (const ModelView& model : view.models) add(model.name, model.spot.line, model.isAfterEnd);
  for (const SelectorView& each : view.selectors) add(each.name, each.spot.line, each.isAfterEnd);
}

std::string_view DefinedNames::nearest(std::string_view name) {
  if (++asked_ > hints) return {};
  return nearestWord(name, std::span(names_).first(std::min(names_.size(), searchedNames)));
}

std::string_view DefinedNames::equalButForCase(std::string_view name) const {
  const std::string_view* found = ignoringCase_.find(name);
  return found == nullptr ? std::string_view() : *found;
}

void DefinedNames::add(std::string_view name, std::int32_t line, bool isAfterEnd) {
  if (isAfterEnd) {
    afterEnd_.add(name, line);
  } else {
    ignoringCase_.add(name, name);
    names_.push_back(name);
  }
}

}  // namespace ibis::checks
