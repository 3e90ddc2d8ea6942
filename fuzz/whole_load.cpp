// A load from the file's bytes to its output, in the mode and with the choices of its first line.
//
// However the line ends are spelled, whatever blank lines and comments stand between: the outcome
// is the same. What a load wrote is what it says, and nothing at all where an error stands.

#include <tuple>

#include "call_line.h"
#include "fuzz.h"
#include "fuzz_sink.h"
#include "harness/temporary_folder.h"
#include "host/load_sequence.h"
#include "large_output.h"
#include "message_texts.h"

namespace ibis::fuzz {
namespace {

// Line numbers are all that blank lines may change.
Strings withoutDigits(const std::vector<Diagnostic>& diagnostics) {
  Strings texts = messageTexts(diagnostics);
  for (std::string& text : texts) std::erase_if(text, [](char c) { return c >= '0' && c <= '9'; });
  return texts;
}

// Errors, warnings, output files.
auto load(LoadRequest request, std::string_view text) {
  static const testing::TemporaryFolder folder;
  request.source = folder.write("input.ibs", text);
  Load load(std::move(request));
  load.read();
  REQUIRE(load.sourceWasRead());
  const bool mayWrite = !load.file().hasErrors();
  FuzzSink sink;
  const Strings names = load.write(sink);
  REQUIRE(sink.agreesWith(names, load.file().hasErrors()));
  REQUIRE(mayWrite || names.empty());
  const IBISFileData& data = load.file().data();
  return std::tuple(withoutDigits(data.errors), withoutDigits(data.warnings), sink.files());
}

}  // namespace
}  // namespace ibis::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ibis::fuzz;
  const std::string_view text = textOf(data, size);
  if (asksForLargeOutput(text)) return 0;
  const ibis::LoadRequest request = requestOf(callArrays(text));
  const auto outcome = load(request, text);
  const std::string lines = replaceAll(replaceAll(text, "\r\n", "\n"), "\r", "\n");
  REQUIRE(load(request, replaceAll(lines, "\n", "\r")) == outcome);
  REQUIRE(load(request, "| comment\n" + replaceAll(lines, "\n", "\r\n \t\r\n")) == outcome);
  return 0;
}
