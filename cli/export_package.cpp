#include "export_package.h"

#include <algorithm>

#include "messages.h"

namespace ibis::cli {
namespace {

constexpr std::size_t mostCoupledPins = 24;  // without a choice of pins or of couplings

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
  std::vector<std::int32_t> rows;
  for (const NamedPad& each : namedPads(choice, file)) {
    const auto found = std::ranges::find(model.pinNames, each.name);
    if (found == model.pinNames.end()) {
      warn(result, file,
           tell(Severity::warning, message::pinNotInPackage, each.name.str().c_str()));
      continue;
    }
    const auto row = static_cast<std::int32_t>(found - model.pinNames.begin()) + 1;
    // Of pins that share a name by mistake the first has the row.
    if (std::ranges::find(rows, row) != rows.end()) continue;
    each.pad->coupled = rows.size();
    rows.push_back(row);
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
  if (package.hasBadDiagonal) {
    warn(result, file, tell(warning, message::packageDiagonalNegative, n));
  }
}

void refuseTooMany(const ExportRequest& request, const CoupledPackage& package, Export& result) {
  const std::size_t pins = package.resistance.size();
  const bool isChosen = !request.pins.empty() || request.hasSmallestCoupling;
  if (pins <= mostCoupledPins || isChosen) return;
  result.errors.push_back(tell(Severity::error, message::tooManyCoupledPins, static_cast<int>(pins),
                               static_cast<int>(package.couplings.size())));
}

}  // namespace

void warn(Export& result, SubcircuitFile& file, Diagnostic diagnostic) {
  file.warnings.push_back(diagnostic.text);
  result.warnings.push_back(std::move(diagnostic));
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
  CoupledPackage package = coupledPackage(*model, rowsOf(choice, *model, file, result), smallest);
  refuseTooMany(choice.request, package, result);
  tellCoupled(result, file, model->name.str(), package, smallest);
  file.component->coupled = std::move(package);
}

}  // namespace ibis::cli
