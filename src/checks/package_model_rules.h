#pragma once

#include <vector>

#include "checks/view.h"

namespace ibis::checks {

/// The components that name a package model.
using PackageUsers = std::vector<const ComponentView*>;

/// Tells the rules of one package model; without users none of pins of components.
void checkPackageModel(const View& view, const Section& part, const PackageUsers* users,
                       Findings& findings);

}  // namespace ibis::checks
