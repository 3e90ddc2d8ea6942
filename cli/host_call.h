#pragma once

#include <optional>
#include <string>
#include <vector>

#include "call_request.h"
#include "support/script_function.h"

namespace ibis::cli {

/// The slots of a result array; one that was not filled has no string.
using CallResult = std::vector<std::optional<std::string>>;

/// Calls a script function as the simulator does and returns a copy of its result.
CallResult callAsHost(ScriptFunction function, const CallArguments& arguments);

}  // namespace ibis::cli
