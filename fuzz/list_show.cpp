// A file read as far as it goes, what `list` and `show` print of it, and all that its names find.

#include <sstream>

#include "harness/temporary_folder.h"
#include "json_pieces.h"
#include "list_report.h"
#include "printed.h"
#include "report.h"
#include "show_report.h"

namespace ibis::fuzz {
namespace {

constexpr const char* sourceName = "fuzz.ibs";
constexpr std::size_t mostNames = 10;

template <class Print>
auto printedJson(Print print) {
  std::ostringstream out;
  cli::JsonObject object(out);
  print(object);
  object.finish();
  return checkJson(out.str() + '\n');
}

void checkFound(const cli::Found& found) {
  REQUIRE(isPlainText(cli::showText(found)));
  printedJson([&](cli::JsonObject& object) { cli::printFoundJson(object, found); });
}

void checkDocument(const cli::TolerantReading& reading) {
  const IBISFileData& file = reading.document->file();
  REQUIRE(isPlainText(
      cli::listText(sourceName, reading, cli::summarize(reading), cli::usualMessageLimit)));
  REQUIRE(isPlainText(cli::headerText(sourceName, file)));
  const auto list = printedJson([&](cli::JsonObject& object) {
    cli::printListJson(object, reading, cli::summarize(reading));
  });
  REQUIRE(list["components"].size() == file.components.size());
  REQUIRE(list["leftOut"].size() == reading.leftOut.size());
  const cli::FileSummary summary = cli::summarize(reading);
  checkFound(cli::findAll(file, summary));
  std::vector<std::string> names = cli::allNames(file);
  names.resize(std::min(names.size(), mostNames));
  for (const std::string& name : names) {
    const cli::Found found = cli::findByName(file, summary, name);
    REQUIRE(!found.empty());
    checkFound(found);
  }
}

void check(std::string_view text) {
  static const testing::TemporaryFolder folder;
  const cli::TolerantReading reading = cli::readTolerantly(folder.write(sourceName, text));
  REQUIRE(reading.document || !reading.errors.empty());
  if (reading.document) checkDocument(reading);
  for (const auto* list : {&reading.leftOut, &reading.errors}) {
    std::ostringstream messages;
    cli::printMessages(messages, sourceName, *list);
    checkMessages(messages.str(), sourceName);
    std::ostringstream array;
    cli::printDiagnostics(array, *list);
    array << '\n';
    REQUIRE(checkJson(array.str()).size() == list->size());
  }
}

}  // namespace
}  // namespace ibis::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ibis::fuzz::check(ibis::fuzz::textOf(data, size));
  return 0;
}
