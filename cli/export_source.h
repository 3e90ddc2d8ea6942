#pragma once

#include <optional>
#include <string>
#include <vector>

#include "reader/file/file.h"
#include "reader/scanner.h"
#include "reader/text/text_buffer.h"

namespace ibis::cli {

/// A file that was read for export, with all that its records point into.
struct ExportSource {
  TextBuffer text;
  std::optional<IBISScanner> scanner;
  IBISFile file;
  bool wasRead = false;  ///< Whether the file could be opened and read whole.

  const IBISFileData& data() const { return file.data(); }
};

/// Reads a file as far as it can be read; what was left out stands in its errors and warnings.
void readForExport(ExportSource& source, const std::string& path,
                   const std::vector<std::string>& selections);

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
