#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ibis/diagnostic.h"
#include "ibis/document.h"

namespace ibis::cli {

/// A file read as far as it goes: newer versions too, and past what a conversion refuses.
struct TolerantReading {
  std::optional<Document> document;  ///< None for a file that could not be read.
  std::vector<Diagnostic> leftOut;   ///< What is not in the document or not converted; once each.
  std::vector<Diagnostic> errors;    ///< Why there is nothing to tell of the file; else empty.
};

TolerantReading readTolerantly(const std::string& source);

/// Whether a message tells of something that is left out, and not only of a default or an estimate.
bool tellsOfLeftOut(const Diagnostic& diagnostic);

/// Removes each message that says of the same line what an earlier one says.
void removeRepeats(std::vector<Diagnostic>& list);

/// Why a conversion refuses models.
class Refusals {
 public:
  /// Both must outlive it; the messages are in the order of their lines.
  Refusals(const IBISFileData& file, const std::vector<Diagnostic>& leftOut);

  /// The reasons against a model, in the order of their lines; none for a sound one.
  std::vector<Diagnostic> against(const IBISModel& model) const;

 private:
  const std::vector<Diagnostic>& leftOut_;
  std::vector<std::int32_t> begins_;  // lines on which models and package models begin, sorted
};

}  // namespace ibis::cli
