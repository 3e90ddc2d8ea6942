#pragma once

#include <string>
#include <vector>

#include "host/diagnostics/format_message.h"
#include "ibis/diagnostic.h"

namespace ibis::fuzz {

/// Each message with its id and its line.
inline std::vector<std::string> messageTexts(const std::vector<Diagnostic>& diagnostics) {
  std::vector<std::string> texts;
  for (const Diagnostic& each : diagnostics) {
    texts.push_back(std::string(each.id) + ':' + std::to_string(each.line) + ' ' +
                    messageText(each));
  }
  return texts;
}

}  // namespace ibis::fuzz
