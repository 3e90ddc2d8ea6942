#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ibis/read_options.h"
#include "output/outputs.h"
#include "reader/file/file.h"
#include "reader/scanner.h"
#include "reader/text/text_buffer.h"

namespace ibis {

/// The arguments of one load.
struct LoadRequest {
  std::string source = {};             ///< Name of the IBIS file, as the caller gives it.
  std::string mode = {};               ///< Text of the output mode.
  std::string component = {};          ///< Empty to check all components and write the first.
  std::string rootDirectory = {};      ///< Where output files go.
  std::string subcircuit = {};         ///< Name of the subcircuit; empty if the caller gives none.
  std::vector<std::string> pins = {};  ///< Names of the pins wanted; empty for all.
  std::vector<std::string> selections = {};  ///< Descriptions of selector rows, with escapes.
  ReadOptions reading = {};                  ///< What a person may allow and no host asks for.
  std::optional<std::string> text = {};      ///< In place of the file's own; none for a host.
  /// Called once between reading and resolving; none for a host.
  std::function<void(IBISFileData&)> adapt = {};
};

/// One load: the file with its faults, and the text that its records point into.
class Load {
 public:
  explicit Load(LoadRequest request);

  /// Reads and checks the file, once; afterwards its errors decide whether anything may be written.
  void read();

  /// Writes the mode's files if there is no error, and returns the names of those that were opened.
  std::vector<std::string> write();

  /// The same into a sink.
  std::vector<std::string> write(Sink& sink);

  IBISFile& file() { return file_; }
  const IBISFile& file() const { return file_; }
  OutputMode mode() const { return mode_; }

  /// Whether the source could be opened and read whole.
  bool sourceWasRead() const { return sourceWasRead_; }

  /// The text of the source, as far as it was read.
  std::string_view text() const { return text_.text(); }

  /// Names of the files written that hold a number that is not finite.
  const std::vector<std::string>& nonFiniteFiles() const { return nonFiniteFiles_; }

  /// The component that write() writes: the last of the name, or the file's first without a name.
  const IBISComponent* chosenComponent() const;

 private:
  void takeOptions();
  void readSource();
  void checkComponent();

  LoadRequest request_;
  OutputMode mode_;
  IBISString component_;
  std::vector<IBISString> pinFilter_;
  TextBuffer text_;
  std::optional<IBISScanner> scanner_;  // owns the lines that it rewrote
  bool wasRead_ = false;
  bool sourceWasRead_ = false;
  std::vector<std::string> nonFiniteFiles_;
  IBISFile file_;
};

/// A user's selection without its backslash escapes, cut to 255 characters.
std::string withoutEscapes(std::string_view text);

}  // namespace ibis
