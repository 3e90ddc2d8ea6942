#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ibis/diagnostic.h"

namespace ibis::checks {

/// What a check knows of a file beside its text.
struct CheckOptions {
  std::string fileName = {};  ///< Without folders; empty where the text comes from no file.
  std::vector<std::string> packageModels = {};  ///< Names in the .pkg file beside it.
};

/// All findings about a text, by line; notes are among them.
///
/// A finding's id is one of the table of rules. What follows from another finding is left out.
std::vector<Diagnostic> check(std::string_view text, const CheckOptions& options = {});

/// The names of the package models that a text defines.
std::vector<std::string> packageModelsOf(std::string_view text);

}  // namespace ibis::checks
