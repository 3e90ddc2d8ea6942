#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ibis/document.h"

namespace ibis::cli {

/// A file read for its models, or why there is nothing to export in it.
struct ExportSource {
  std::optional<Document> document;  ///< What was left out stands in its warnings.
  std::uintmax_t size = 0;           ///< Of the text, in bytes; 0 if it is not known.
  std::optional<Diagnostic> refusal;
};

/// Reads a file as far as it can be read, standard input or packed data too.
ExportSource readForExport(const std::string& source, const std::vector<std::string>& selections);

/// The refusal of a name that no model has.
Diagnostic refuseModel(const IBISFileData& data, const std::string& name);

/// The models of a file that stand for a device, in file order.
std::vector<const IBISModel*> devicesOf(const IBISFileData& data);

/// The models of these names, or all devices for no name; unknown names go to `unknown`.
std::vector<const IBISModel*> devicesNamed(const IBISFileData& data,
                                           const std::vector<std::string>& names,
                                           std::vector<std::string>& unknown);

/// Whether a model can be exported: a driver, a receiver or a terminator.
bool isDevice(const IBISModel& model);

/// The words of the corners, in the order of a file's columns.
std::vector<std::string> cornerWords();

/// The index of a corner's word, which must be one.
int cornerIndex(const std::string& word);

/// The word of a corner's index.
std::string cornerWord(int corner);

}  // namespace ibis::cli
