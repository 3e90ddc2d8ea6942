#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "component/names/name_table.h"
#include "harness/message_ledger.h"
#include "harness/temporary_folder.h"
#include "host/load_sequence.h"
#include "output/keyword_registry.h"
#include "output/stream/memory_sink.h"
#include "output/template_engine.h"
#include "reader/file/parser.h"

/// Holds messages against whole texts, in order, and notes the texts as proven.
#define EXPECT_MESSAGES(actual, ...) \
  EXPECT_EQ(::ibis::testing::texts(actual), ::ibis::testing::proven({__VA_ARGS__}))

namespace ibis::testing {

/// An error handler that keeps what it is told.
class Recorder final : public IBISErrorHandler {
 public:
  void error(const char* format, ...) override IBIS_PRINTF_FORMAT(2, 3);
  void warning(const char* format, ...) override IBIS_PRINTF_FORMAT(2, 3);

  std::vector<Diagnostic> errors;
  std::vector<Diagnostic> warnings;
};

/// Joins lines, each with a line feed behind it.
std::string lines(std::initializer_list<std::string_view> items);

/// A scanned text with its records.
struct Scanned {
  explicit Scanned(std::string_view content) : text(content), result(scanIBISText(text)) {}

  std::string text;
  IBISScanResult result;
  IBISRecords records() const { return result.records; }
};

/// A text that went through scanner and parser.
struct Parsed {
  explicit Parsed(std::string_view content) : scanned(content) {
    parseFile(file, scanned.records(), index);
  }

  Scanned scanned;
  IBISFile file;
  std::int32_t index = 0;

  IBISFileData& data() { return file.data(); }
  Texts errors() const { return texts(file.data().errors); }
  Texts warnings() const { return texts(file.data().warnings); }
  IBISComponent& component(std::size_t place = 0) { return *file.data().components[place]; }

  /// The model at a place behind the three built-in ones.
  IBISModel& model(std::size_t place = 0) { return *file.data().models[place + 3]; }

  /// Runs the stage behind the parser, as a load does when there are no errors.
  void resolve(std::string_view componentName = {}, const Texts& pins = {}) {
    const std::vector<IBISString> filter(pins.begin(), pins.end());
    postParse(file, componentName, filter);
  }
};

/// Makes the points of a model's estimated waveforms, as they are made for the output.
void drawWaveforms(IBISModel& model);

/// What a whole load of a text left behind.
struct Loaded {
  Texts errors;
  Texts warnings;
  std::map<std::string, std::string> files;  ///< Output files by name.
  Texts written;                             ///< Names that the load gave, without the folder.
};

/// What a request asks beside the text and the folder.
struct LoadOptions {
  std::string mode = "model";
  std::string component = {};
  std::string subcircuit = "dut";
  Texts pins = {};
  Texts selections = {};
};

/// Runs a whole load of a text from a file into a fresh folder.
Loaded loadText(std::string_view text, const LoadOptions& options = {});

/// Expands a template into memory and gives what its file holds; other "%file%" lines are its own.
///
/// The text is put behind a line that opens the file, so its first line is line 2.
std::string expandTemplate(std::string_view text, const IBISFile& file,
                           const IBISComponent* component, IBISErrorHandler& errors);

}  // namespace ibis::testing
