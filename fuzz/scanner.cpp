// A scan in itself, against the same text with other line ends and blank lines between, and against
// a scan and a reading in the smallest pieces.

#include "reader/scanner.h"

#include "fuzz.h"
#include "reader/parser.h"

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

bool sameRecord(const IBISRecord& a, const IBISRecord& b) {
  return a.keyword == b.keyword && a.line == b.line && a.text() == b.text();
}

void checkPieces(std::string_view text, const IBISScanResult& whole) {
  IBISScanner scanner(text, 1);
  std::size_t count = 0;
  for (IBISRecords piece = scanner.nextPiece(); !piece.empty(); piece = scanner.nextPiece()) {
    for (const IBISRecord& record : piece) {
      REQUIRE(count < whole.records.size() && sameRecord(record, whole.records[count]));
      ++count;
    }
  }
  REQUIRE(count == whole.records.size());
}

void checkReading(std::string_view text, const IBISScanResult& whole) {
  IBISFile atOnce;
  std::int32_t index = 0;
  parseFile(atOnce, whole.records, index);
  IBISFile inPieces;
  IBISScanner scanner(text, 1);
  parseFile(inPieces, scanner);
  REQUIRE(inPieces.data().errors == atOnce.data().errors);
  REQUIRE(inPieces.data().warnings == atOnce.data().warnings);
  REQUIRE(inPieces.data().components.size() == atOnce.data().components.size());
  REQUIRE(inPieces.data().modelSelectors.size() == atOnce.data().modelSelectors.size());
  REQUIRE(inPieces.data().models.size() == atOnce.data().models.size());
  REQUIRE(inPieces.data().packageModels.size() == atOnce.data().packageModels.size());
}

}  // namespace
}  // namespace ibis::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ibis;
  const IBISScanResult scan = scanIBISText(fuzz::textOf(data, size));
  fuzz::checkRecords(scan);
  fuzz::checkPieces(fuzz::textOf(data, size), scan);
  fuzz::checkReading(fuzz::textOf(data, size), scan);
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
