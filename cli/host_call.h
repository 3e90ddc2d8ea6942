#pragma once

#include <optional>
#include <string>
#include <vector>

#include "call_request.h"
#include "support/script_function.h"

namespace ibis::cli {

/// Strings of a result array; a slot that was not filled has none.
using CallResult = std::vector<std::optional<std::string>>;

/// Calls a script function as the simulator does and gives a copy of its result.
CallResult callAsHost(ScriptFunction function, const CallArguments& arguments);

}  // namespace ibis::cli
