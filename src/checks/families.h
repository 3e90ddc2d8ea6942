#pragma once

#include <string_view>

#include "checks/findings.h"
#include "checks/load_line.h"
#include "checks/view.h"

namespace ibis::checks {

/// Whether the first bytes are those of another kind of file; tells what they look like.
bool isForeign(std::string_view text, const Syntax& syntax, Findings& findings);

// Each family reads the view and tells what its rules find.

void checkBytes(std::string_view text, const View& view, Findings& findings);
void checkKeywords(const View& view, Findings& findings);
void checkHeader(const View& view, Findings& findings);
void checkComponents(const View& view, Findings& findings);
void checkSelectors(const View& view, Findings& findings);
void checkModels(const View& view, Findings& findings);
void checkPackages(const View& view, Findings& findings);
void checkStyle(const View& view, Findings& findings);

// These read one model, with its curves.

void checkTables(const View& view, const ModelView& model, const ModelCurves& curves,
                 Findings& findings);
void checkWaveforms(const View& view, const ModelView& model, const ModelCurves& curves,
                    Findings& findings);
void checkConsistency(const View& view, const ModelView& model, const ModelCurves& curves,
                      Findings& findings);

}  // namespace ibis::checks
