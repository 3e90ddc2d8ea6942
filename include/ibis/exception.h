#pragma once

#include <cstddef>
#include <cstdint>

#include "ibis/api.h"

namespace ibis {

/// The host family's exception; it reports a fault of the program, never one of the input.
struct IBIS_API KelvrantException {
  std::int32_t code = 8;    ///< The host family's code for a fault of the program.
  char message[1000] = {};  ///< Ends in a NUL.

  /// Keeps the first 999 characters of the text.
  explicit KelvrantException(const char* text) {
    for (std::size_t i = 0; i + 1 < sizeof message && text[i] != '\0'; ++i) message[i] = text[i];
  }
};

}  // namespace ibis
