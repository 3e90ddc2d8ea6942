// A text scanned and read in the smallest pieces, against the same at once.

#include "fuzz.h"
#include "message_texts.h"
#include "reader/file/parser.h"

namespace ibis::fuzz {
namespace {

void checkRecords(std::string_view text, IBISRecords whole) {
  IBISScanner scanner(text, 1);
  std::size_t count = 0;
  for (IBISRecords piece = scanner.nextPiece(); !piece.empty(); piece = scanner.nextPiece()) {
    for (const IBISRecord& record : piece) {
      REQUIRE(count < whole.size());
      REQUIRE(record.keyword == whole[count].keyword && record.line == whole[count].line);
      REQUIRE(record.text() == whole[count].text());
      ++count;
    }
  }
  REQUIRE(count == whole.size());
}

void checkReading(std::string_view text, IBISRecords whole) {
  IBISFile atOnce;
  std::int32_t index = 0;
  parseFile(atOnce, whole, index);
  IBISFile inPieces;
  IBISScanner scanner(text, 1);
  parseFile(inPieces, scanner);
  REQUIRE(messageTexts(inPieces.data().errors) == messageTexts(atOnce.data().errors));
  REQUIRE(messageTexts(inPieces.data().warnings) == messageTexts(atOnce.data().warnings));
  REQUIRE(inPieces.data().components.size() == atOnce.data().components.size());
  REQUIRE(inPieces.data().models.size() == atOnce.data().models.size());
  REQUIRE(inPieces.data().packageModels.size() == atOnce.data().packageModels.size());
}

}  // namespace
}  // namespace ibis::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = ibis::fuzz::textOf(data, size);
  const ibis::IBISScanResult whole = ibis::scanIBISText(text);
  ibis::fuzz::checkRecords(text, whole.records);
  ibis::fuzz::checkReading(text, whole.records);
  return 0;
}
