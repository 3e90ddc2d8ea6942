#pragma once

#include <string>
#include <vector>

#include "ibis/file.h"
#include "source_text.h"

namespace ibis::cli {

/// Adds notes to a load's errors: what was meant, what there is, and what a person can do.
class Adviser {
 public:
  /// Both must outlive it.
  Adviser(std::string_view text, const IBISFileData& file) : text_(text), file_(file) {}

  /// Adds notes to the first errors of a list; no list is too long for it.
  void advise(std::vector<Diagnostic>& errors) const;

  /// Names of the components, of the models and selectors, and of what selectors offer.
  std::vector<std::string> componentNames() const;
  std::vector<std::string> modelNames() const;
  std::vector<std::string> choices() const;

 private:
  std::string_view text_;
  const IBISFileData& file_;
};

/// Adds notes that a file without any component asks for.
void adviseOnNothing(Diagnostic& error, std::string_view text);

}  // namespace ibis::cli
