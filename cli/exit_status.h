#pragma once

namespace ibis::cli {

/// The statuses with which the program ends.
namespace exitStatus {
inline constexpr int done = 0;
inline constexpr int failed = 1;
inline constexpr int wrongUse = 2;
}  // namespace exitStatus

}  // namespace ibis::cli
