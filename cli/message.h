#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "reader/file/file.h"
#include "reader/text/name_index.h"

namespace ibis::cli {

/// A message for a person, without line end.
struct Message {
  std::optional<std::int32_t> line;  ///< Line of the IBIS file that it speaks of.
  std::string text;
};

/// Finds the line of the IBIS file that a load's message speaks of.
class MessageLocator {
 public:
  /// The file must outlive it.
  explicit MessageLocator(const IBISFileData& file);

  /// The message with its line, taken out of the front of the text if it stands there.
  Message locate(std::string_view text) const;

 private:
  std::optional<std::int32_t> modelLine(std::string_view text) const;

  NameIndex<ExactCase> models_;
  std::vector<std::int32_t> lines_;  // of the models; 0 for a name of several
};

}  // namespace ibis::cli
