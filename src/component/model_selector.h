#pragma once

#include "host/diagnostics/error_handler.h"
#include "ibis/file.h"
#include "reader/scanner.h"
#include "reader/text/name_index.h"

namespace ibis {

/// Appends the [Model Selector] at the index to the file; the index is left on its last row.
void readModelSelector(IBISFileData& file, IBISRecords records, std::int32_t& index);

/// The model that a selector stands for, given the user's selections, the most preferred first.
///
/// The first selection that some row describes decides; of several such rows the last counts.
/// Without one the selector's first row counts. A selector without rows has the empty name.
IBISString resolveSelector(const IBISModelSelector& selector,
                           std::span<const IBISString> modelSelections);

/// Finds models by the names in pins, through the file's selectors.
class ModelFinder {
 public:
  /// The file's selectors and models must not change while the finder is used.
  explicit ModelFinder(const IBISFileData& file);

  /// The first model of a name, or what a selector of that name stands for; null if there is none.
  IBISModel* find(std::string_view name) const;

 private:
  NameMap<ExactCase, IBISModel*> models_;
  NameMap<ExactCase, IBISString> selectedNames_;  // by the last selector of each name
};

/// ModelFinder::find for one name.
IBISModel* findModel(const IBISFileData& file, std::string_view name);

/// Reports each of the user's selections that no row of any selector describes.
void checkUserSelectors(const IBISFileData& file, IBISErrorHandler& errors);

}  // namespace ibis
