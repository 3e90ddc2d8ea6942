#pragma once

#include <cstdint>

#include "checks/view.h"

namespace ibis::checks {

/// Which models and submodels a file uses and defines.
struct ModelUses {
  explicit ModelUses(const View& view);

  NameIndex<ExactCase> used;       ///< Models that pins, selectors and other models name.
  NameIndex<ExactCase> submodels;  ///< Those that the file defines.
  std::int32_t asked = 0;          ///< Hints that were looked for.
};

// Each tells a part of the rules of one model.

void checkModelValues(const ModelView& model, Findings& findings);
void checkModelSwitching(const View& view, const ModelView& model, Findings& findings);
void checkModelParts(const View& view, const ModelView& model, ModelUses& uses, Findings& findings);
void checkFitOfType(const View& view, const ModelView& model, Findings& findings);

}  // namespace ibis::checks
