#pragma once

#include "analysis/findings.h"
#include "ibis/diagnostic.h"
#include "ibis/model.h"

namespace ibis::cli {

/// A warning that tells what was found about a model at a corner.
Diagnostic tellFinding(const IBISModel& model, int corner, const Finding& finding);

}  // namespace ibis::cli
