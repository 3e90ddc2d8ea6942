// The rules about [Package] and about the names of package models.

#include <algorithm>
#include <cmath>

#include "checks/families.h"
#include "checks/package_model_rules.h"

namespace ibis::checks {
namespace {

struct PackageLimit {
  std::string_view name;
  std::string_view unit;
  double least;
  double most;
  std::string_view plausible;
};

constexpr PackageLimit limits[] = {{"R_pkg", "ohm", 0.0, 10.0, "up to 10 ohm"},
                                   {"L_pkg", "H", 1e-12, 100e-9, "1 pH to 100 nH"},
                                   {"C_pkg", "F", 1e-15, 100e-12, "1 fF to 100 pF"}};

constexpr std::int32_t hints = 20;           // hints of a file
constexpr std::int32_t searchedNames = 200;  // names that a hint is looked for among

class PackageChecker {
 public:
  PackageChecker(const View& view, Findings& findings) : view_(view), findings_(findings) {
    for (const Section& part : view.syntax.sections()) {
      if (part.kind == section::package && !part.isAfterEnd) names_.findOrAdd(part.name);
    }
  }

  void check() {
    for (const ComponentView& component : view_.components) {
      if (component.isAfterEnd) continue;
      users_[component.packageModel].push_back(&component);
      checkValues(component);
      checkModelName(component);
    }
    for (const Section& part : view_.syntax.sections()) {
      if (part.kind != section::package || part.isAfterEnd) continue;
      checkPackageModel(view_, part, users_.find(part.name), findings_);
    }
  }

 private:
  void checkValues(const ComponentView& component) {
    const std::string name(component.name);
    if (component.package == Spot::nowhere) {
      findings_.add(Rule::packageMissing, component.spot, {name});
      return;
    }
    const Spot head = view_.spotOf(view_.block(component.package));
    const bool isWrong = findings_.hasWrongNumber(component.package) ||
                         findings_.wasTold(Rule::numericMissingValue, component.section);
    std::vector<std::string> missing;
    for (const PackageLimit& limit : limits) {
      const auto value = component.packageValues.find(limit.name);
      if (value == component.packageValues.end()) {
        missing.emplace_back(limit.name);
      } else if (!isWrong && value->second.given) {
        checkValue(limit, value->second, name);
      }
    }
    if (!missing.empty() && !isWrong) {
      findings_.add(Rule::packageRlcMissing, head, {name, joined(missing)});
    }
  }

  void checkValue(const PackageLimit& limit, const Triple& value, const std::string& owner) {
    const std::string label(limit.name);
    for (std::size_t c = 0; c < corners; ++c) {
      const double each = value.at[c];
      if (each < 0.0) {
        findings_.add(Rule::packageNegative, value.spots[c], {label, quantity(each, limit.unit)});
        return;
      }
      const bool isSmall = each < limit.least && each != 0.0;
      if (!(each > limit.most) && !isSmall) continue;
      findings_.add(Rule::packageImplausible, value.spots[c],
                    {label, quantity(each, limit.unit), std::string(limit.plausible)});
      return;
    }
    const double low = value.at[min];
    const double high = value.at[max];
    if (std::isnan(low) || std::isnan(high) || std::isnan(value.at[typ])) return;
    if (value.at[typ] < std::min(low, high) || value.at[typ] > std::max(low, high)) {
      findings_.add(Rule::packageTypOutside, value.spot,
                    {label, quantity(value.at[typ], limit.unit), quantity(low, limit.unit),
                     quantity(high, limit.unit)});
    } else if (low > high) {
      findings_.add(Rule::modelMinAboveMax, value.spots[min],
                    {label, owner, quantity(low, limit.unit), quantity(high, limit.unit)});
    }
  }

  void checkModelName(const ComponentView& component) {
    const std::string_view name = component.packageModel;
    if (name.empty() || names_.contains(name)) return;
    std::vector<std::string_view> first;
    const std::int32_t count = ++asked_ > hints ? 0 : std::min(names_.size(), searchedNames);
    for (std::int32_t i = 0; i < count; ++i) first.push_back(names_.name(i));
    const bool isBeside = std::ranges::find(view_.packageModels, name) != view_.packageModels.end();
    Finding& told =
        findings_.add(Rule::packageModelUndefined, component.packageModelSpot,
                      {std::string(name), isBeside ? " here; the .pkg file beside this one has it"
                                                   : didYouMean(nearestWord(name, first))});
    if (isBeside) told.diagnostic.severity = Severity::note;
  }

  const View& view_;
  Findings& findings_;
  NameIndex<ExactCase> names_;
  NameMap<ExactCase, PackageUsers> users_;
  std::int32_t asked_ = 0;
};

}  // namespace

void checkPackages(const View& view, Findings& findings) { PackageChecker(view, findings).check(); }

}  // namespace ibis::checks
