// A scan in itself, and against the same text with other line ends and blank lines between.

#include "reader/scanner.h"

#include "fuzz.h"

namespace ibis::fuzz {
namespace {

void checkRecords(const IBISScanResult& scan) {
  std::int32_t line = 0;
  for (const IBISRecord& record : scan.records) {
    REQUIRE(record.line > line);
    line = record.line;
    REQUIRE(record.length <= IBISRecord::maximumLength);
    REQUIRE(record.text().find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos);
    REQUIRE(record.keyword != keyword::dataLine || !trimBlanks(record.text()).empty());
    REQUIRE(record.keyword != keyword::none);
  }
}

}  // namespace
}  // namespace ibis::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ibis;
  const IBISScanResult scan = scanIBISText(fuzz::textOf(data, size));
  fuzz::checkRecords(scan);
  const std::string spelled = fuzz::replaceAll(fuzz::textOf(data, size), "\n", "\r\n \t\r\n");
  const IBISScanResult again = scanIBISText(spelled);
  REQUIRE(again.records.size() == scan.records.size());
  for (std::size_t i = 0; i < scan.records.size(); ++i) {
    REQUIRE(again.records[i].keyword == scan.records[i].keyword);
    REQUIRE(again.records[i].text() == scan.records[i].text());
  }
  REQUIRE(again.warnings.size() == scan.warnings.size());
  REQUIRE(again.errors.size() == scan.errors.size());
  return 0;
}
