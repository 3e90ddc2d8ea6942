// The program's conversion of a text: its files, the messages that it prints and its JSON.
//
// The first line gives mode, component, pins and choices as that of a load does. A text of an even
// number of bytes is written as a load would write it, with a check; one of an odd number in all
// modes at once, as far as a file of any version goes.

#include <array>
#include <set>
#include <sstream>

#include "call_line.h"
#include "conversion.h"
#include "harness/library_lines.h"
#include "harness/temporary_folder.h"
#include "large_output.h"
#include "limited_sink.h"
#include "printed.h"
#include "report.h"

namespace ibis::fuzz {
namespace {

using Files = std::map<std::string, std::string>;

constexpr const char* sourceName = "fuzz.ibs";
constexpr std::array<std::string_view, 3> modes = {"model", "package", "script"};

const testing::TemporaryFolder& folder() {
  static const testing::TemporaryFolder only;
  return only;
}

// The program takes no other subcircuit.
std::string subcircuitOf(const std::string& name) {
  return name.find_first_of(" \t\n/%") == name.npos ? name : "dut";
}

std::string modeOf(const std::string& word) {
  return std::ranges::find(modes, word) == modes.end() ? std::string(modes.front()) : word;
}

cli::ConversionRequest requestFor(std::string_view text) {
  LoadRequest load = requestOf(callArrays(text));
  return {.source = sourceName,
          .mode = modeOf(load.mode),
          .component = std::move(load.component),
          .folder = folder().path(),
          .subcircuit = subcircuitOf(load.subcircuit),
          .pins = std::move(load.pins),
          .selections = std::move(load.selections),
          .text = std::make_shared<const std::string>(text)};
}

// What was written, which is gone afterwards.
Files takeFiles() {
  Files files = folder().contents();
  for (const auto& [name, content] : files) std::filesystem::remove(folder().file(name));
  return files;
}

std::set<std::string> namesTold(const cli::Conversion& conversion) {
  std::set<std::string> names;
  for (const std::string& each : conversion.files) {
    REQUIRE(each.starts_with(folder().path() + '/'));
    names.insert(each.substr(folder().path().size() + 1));
  }
  return names;
}

void checkLines(std::string_view text) {
  while (!text.empty()) {
    REQUIRE(testing::beginsAsTemplatesDo(text));
    text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
  }
}

// The limit holds of each conversion, of which there may be several.
void checkFiles(const Files& files, std::size_t textSize) {
  for (const auto& [name, content] : files) {
    REQUIRE(content.size() <= cli::usualOutputLimit(textSize));
    if (name.ends_with(".lb")) checkLines(content);
  }
}

void checkReports(const cli::Conversion& conversion) {
  std::ostringstream messages;
  cli::printMessages(messages, sourceName, conversion);
  checkMessages(messages.str(), sourceName);
  std::ostringstream line;
  cli::printJson(line, conversion, cli::exitStatusOf(conversion, false));
  const auto json = checkJson(line.str());
  REQUIRE(json["files"].size() == conversion.files.size());
  REQUIRE(json["errors"].size() == conversion.errors.size());
  REQUIRE(json["warnings"].size() == conversion.warnings.size());
}

// Everything that can be written, in place of what a load would write.
void goFar(cli::ConversionRequest& request) {
  request.mode = modes.front();
  request.furtherModes = {modes.begin() + 1, modes.end()};
  request.allComponents = request.component.empty();
  request.reading = {.newerVersions = true, .keepGoing = true};
  request.isChecked = false;
}

void check(const cli::ConversionRequest& request) {
  const cli::Conversion conversion = cli::convert(request);
  const Files files = takeFiles();
  std::set<std::string> names;
  for (const auto& [name, content] : files) names.insert(name);
  REQUIRE(names == namesTold(conversion));
  REQUIRE(!request.furtherModes.empty() || conversion.errors.empty() || files.empty());
  checkFiles(files, request.text->size());
  checkReports(conversion);
}

}  // namespace
}  // namespace ibis::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ibis::fuzz;
  const std::string_view text = textOf(data, size);
  if (asksForLargeOutput(text)) return 0;
  ibis::cli::ConversionRequest request = requestFor(text);
  if (text.size() % 2 != 0) goFar(request);
  check(request);
  return 0;
}
