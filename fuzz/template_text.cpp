// Any text as a template over one small file, for its component and for none.

#include <utility>

#include "fuzz.h"
#include "fuzz_sink.h"
#include "message_texts.h"
#include "output/template_engine.h"
#include "small_file.h"

namespace ibis::fuzz {
namespace {

// Errors and output files. The text stands behind a line that opens a file, so that its first words
// are written, too.
auto expand(std::string_view text, const IBISFile& file, const IBISComponent* component) {
  FuzzSink sink;
  IBISFile messages;
  TemplateEngine engine(file.data(), component, "root", messages, sink);
  TextBuffer buffer("%file% first\n" + std::string(text));
  REQUIRE(engine.expand(buffer));
  engine.finish();
  REQUIRE(sink.agreesWith(engine.generatedFiles(), messages.hasErrors()));
  return std::pair(messageTexts(messages.data().errors), sink.files());
}

}  // namespace
}  // namespace ibis::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ibis::fuzz;
  static const SmallFile small;
  const std::string_view text = textOf(data, size);
  const ibis::IBISComponent* const none = nullptr;
  for (const ibis::IBISComponent* component : {small.component(), none}) {
    const auto expansion = expand(text, small.file, component);
    REQUIRE(expand(text, small.file, component) == expansion);
  }
  return 0;
}
