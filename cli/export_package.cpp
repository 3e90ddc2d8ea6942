#include "export_package.h"

#include <cmath>
#include <set>

#include "messages.h"
#include "reader/text/name_index.h"
#include "simulator/component_assembly.h"

namespace ibis::cli {
namespace {

constexpr std::size_t mostCoupledPins = 24;   // without a choice of pins or of couplings
constexpr std::size_t mostChosenPins = 1000;  // whose matrices are factorised in seconds

// The pads of a component with their pins' names, in the order of the entries.
struct NamedPad {
  PadNetlist* pad;
  IBISString name;
};

std::vector<NamedPad> namedPads(const ExportChoice& choice, SubcircuitFile& file) {
  std::vector<NamedPad> pads;
  for (std::size_t i = 0; i < choice.entries.size(); ++i) {
    std::vector<PadNetlist>& list = file.component->pins[i].pads;
    pads.push_back({&list[0], choice.entries[i]->pin->name});
    if (list.size() > 1) pads.push_back({&list[1], choice.entries[i]->invertedPin->name});
  }
  for (std::size_t i = 0; i < choice.barePins.size(); ++i) {
    PinNetlist& pin = file.component->pins[choice.entries.size() + i];
    pads.push_back({&pin.pads[0], choice.barePins[i]->name});
  }
  return pads;
}

// The rows of the pads' pins in a package model, from 1; a pin without one is told.
std::vector<std::int32_t> rowsOf(const ExportChoice& choice, const IBISPackageModel& model,
                                 SubcircuitFile& file, Export& result) {
  NameMap<ExactCase, std::int32_t> rowOf;  // of pins that share a name by mistake the first
  std::int32_t number = 0;
  for (const IBISString name : model.pinNames) rowOf.add(name.view(), ++number);
  std::vector<std::int32_t> rows;
  std::set<std::int32_t> taken;
  for (const NamedPad& each : namedPads(choice, file)) {
    const std::int32_t* row = rowOf.find(each.name.view());
    if (row == nullptr) {
      warn(result, file,
           tell(Severity::warning, message::pinNotInPackage, each.name.str().c_str()));
      continue;
    }
    // Of pads that share a name by mistake the first has the row.
    if (!taken.insert(*row).second) continue;
    each.pad->coupled = rows.size();
    rows.push_back(*row);
  }
  return rows;
}

void tellCoupled(Export& result, SubcircuitFile& file, const std::string& name,
                 const CoupledPackage& package, double smallest) {
  const auto count = [](std::size_t n) { return static_cast<int>(n); };
  const char* n = name.c_str();
  constexpr Severity warning = Severity::warning;
  if (package.droppedCouplings != 0) {
    warn(result, file,
         tell(warning, message::couplingsDropped, n, smallest, count(package.droppedCouplings)));
  }
  if (package.droppedResistances != 0) {
    warn(result, file,
         tell(warning, message::resistancesDropped, n, count(package.droppedResistances)));
  }
  if (package.inductanceScale != 1.0) {
    warn(result, file, tell(warning, message::inductancesScaled, n, package.inductanceScale));
  }
  if (package.droppedCapacitances != 0) {
    warn(result, file,
         tell(warning, message::capacitancesDropped, n, count(package.droppedCapacitances)));
  }
  if (package.droppedEntries != 0) {
    warn(result, file, tell(warning, message::entriesNotFinite, n, count(package.droppedEntries)));
  }
  if (package.hasBadDiagonal) {
    warn(result, file, tell(warning, message::packageDiagonalNegative, n));
  }
}

bool hasOddPair(const IBISPinEntry& entry) {
  const IBISDiffPin* pair = entry.isPair() ? entry.diffPin : nullptr;
  return pair != nullptr && !(std::isfinite(pair->vdiff) && std::isfinite(pair->tdelay_typ) &&
                              std::isfinite(pair->tdelay_min) && std::isfinite(pair->tdelay_max));
}

bool areTooMany(const ExportRequest& request, std::size_t pins) {
  const bool isChosen = !request.pins.empty() || request.hasSmallestCoupling;
  return pins > (isChosen ? mostChosenPins : mostCoupledPins);
}

}  // namespace

void warn(Export& result, SubcircuitFile& file, Diagnostic diagnostic) {
  file.warnings.push_back(diagnostic.text);
  result.warnings.push_back(std::move(diagnostic));
}

void tellPinValues(const ExportChoice& choice, SubcircuitFile& file, Export& result) {
  const IBISComponent& component = *choice.component;
  const auto isOdd = [&](const IBISPin& pin) {
    return file.component->hasPackage && hasUnusablePackage(component, pin, file.corner);
  };
  std::vector<IBISString> odd;
  for (const IBISPinEntry* entry : choice.entries) {
    if (isOdd(*entry->pin) || hasOddPair(*entry)) odd.push_back(entry->pin->name);
    if (entry->isPair() && isOdd(*entry->invertedPin)) odd.push_back(entry->invertedPin->name);
  }
  for (const IBISPin* pin : choice.barePins) {
    if (isOdd(*pin)) odd.push_back(pin->name);
  }
  if (odd.empty()) return;
  warn(result, file,
       tell(Severity::warning, message::pinValuesLeftOut, component.name.str().c_str(),
            static_cast<int>(odd.size()), odd.front().str().c_str()));
}

void couplePins(const ExportChoice& choice, SubcircuitFile& file, Export& result) {
  const IBISComponent& component = *choice.component;
  const IBISPackageModel* model = findPackageModel(choice.data, component.packageModelName.view());
  if (model == nullptr) {
    warn(result, file,
         tell(Severity::warning, message::noPackageModel, component.name.str().c_str()));
    return;
  }
  const double smallest = choice.request.smallestCoupling;
  const std::vector<std::int32_t> rows = rowsOf(choice, *model, file, result);
  if (areTooMany(choice.request, rows.size())) {
    result.errors.push_back(tell(Severity::error, message::tooManyCoupledPins,
                                 static_cast<int>(rows.size()),
                                 static_cast<int>(countCouplings(*model, rows, smallest))));
    return;
  }
  CoupledPackage package = coupledPackage(*model, rows, smallest);
  tellCoupled(result, file, model->name.str(), package, smallest);
  file.component->coupled = std::move(package);
}

}  // namespace ibis::cli
