#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "ibis/diagnostic.h"
#include "ibis/read_options.h"
#include "input_files.h"
#include "left_out.h"

namespace ibis::cli {

/// What a user asks of one conversion.
struct ConversionRequest {
  std::string source;
  std::string mode;
  std::string component;   ///< Empty for the file's first.
  std::string folder;      ///< Folder of the output; made if absent.
  std::string subcircuit;  ///< Empty for the component's SPICE name.
  std::vector<std::string> pins;
  std::vector<std::string> selections;           ///< Plain texts, without escapes.
  ReadOptions reading = {};                      ///< What may be read beyond what a load reads.
  std::vector<std::string> furtherModes = {};    ///< Written too, after the mode.
  std::string suffix = {};                       ///< Behind the subcircuit's name.
  std::shared_ptr<const std::string> text = {};  ///< In place of the source's own.
  bool allComponents = false;                    ///< Each of the file, in place of one.
  bool keepsFiles = false;                       ///< Replaces no file that is there.
  bool isRehearsal = false;                      ///< Tells what it would write.
  bool isLimited = true;                         ///< Writes no more than the usual limit of output.
  bool isChecked = true;                         ///< Tells the errors that a check finds.
  std::shared_ptr<std::set<std::string>> taken = {};  ///< Outputs so far, in small letters.
  std::shared_ptr<std::uint64_t> written = {};        ///< Bytes of those outputs.
  std::shared_ptr<const InputFiles> inputs = {};      ///< No output replaces one of them.
};

/// The files and messages of one conversion.
struct Conversion {
  std::vector<std::string> files;
  std::vector<Diagnostic> warnings;
  std::vector<Diagnostic> errors;
  std::vector<Diagnostic> findings =
      {};                             ///< Errors of a check; they keep no file from being written.
  std::vector<LeftOut> leftOut = {};  ///< Only where the request keeps going.
  std::vector<Note> notes = {};       ///< What a person may have overlooked.
};

/// A conversion that wrote nothing.
Conversion failure(Diagnostic reason);

/// Reads the file and writes what the mode asks for, unless an error stands.
Conversion convert(const ConversionRequest& request);

}  // namespace ibis::cli
