#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "checks/check.h"
#include "ibis/diagnostic.h"

namespace ibis::cli {

/// What a check may know of a file by its name: the name, and the package models of a .pkg file
/// beside it.
checks::CheckOptions checkOptionsOf(const std::string& source);

/// The errors that a check finds in the text of a source, by line.
///
/// Left out are those on a line that an error told already names, and that a file without any
/// component is no IBIS file.
std::vector<Diagnostic> checkErrors(std::string_view text, const std::string& source,
                                    const std::vector<Diagnostic>& told);

}  // namespace ibis::cli
