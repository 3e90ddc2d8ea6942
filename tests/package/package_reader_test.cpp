#include "package/package_reader.h"

#include "harness/harness.h"

namespace ibis::testing {
namespace {

/// One entry of a matrix, comparable.
struct Entry {
  std::int32_t row;
  std::int32_t column;
  double value;
  friend bool operator==(const Entry&, const Entry&) = default;
};

std::ostream& operator<<(std::ostream& out, const Entry& entry) {
  return out << "(" << entry.row << ", " << entry.column << ") " << entry.value;
}

using Entries = std::vector<Entry>;

Entries entriesOf(const std::vector<IBISMatrixEntry>& matrix) {
  Entries entries;
  for (const IBISMatrixEntry& entry : matrix) {
    entries.push_back({entry.row, entry.column, entry.value});
  }
  return entries;
}

/// One section read by itself, from its own line 1.
struct Read {
  explicit Read(const std::string& text) : scanned("[Define Package Model] P\n" + text) {
    result = readPackageModel(model, scanned.records(), index, told);
  }

  Texts pinNames() const {
    Texts names;
    for (const IBISString name : model.pinNames) {
      names.push_back(name.str());
    }
    return names;
  }

  /// The keyword of the record at which a driver goes on.
  std::int32_t next() const { return recordAt(scanned.result.records, index + 1).keyword; }

  Scanned scanned;
  IBISPackageModel model;
  Recorder told;
  std::int32_t index = 0;
  bool result = false;
};

const std::string twoPins = "[Number Of Pins] 2\n[Pin Numbers]\nA1\nA2\n";  // lines 2 to 5

/// A section of two pins with matrices from line 7 on.
Read readMatrices(const std::string& matrices) {
  return Read(twoPins + "[Model Data]\n" + matrices + "[End Model Data]\n[End Package Model]\n");
}

TEST(PackageReader, KeepsTheTextsOfItsKeywords) {
  const Read read(
      "[Manufacturer]  Bench & Co \n[OEM] Oem 1\n[Description] Sixteen pins\n"
      "[Number Of Sections] 3\n[Number Of Pins] 16\n[End Package Model]\n");
  EXPECT_TRUE(read.result);
  EXPECT_MESSAGES(read.told.errors);
  EXPECT_EQ(read.model.line, 1);
  EXPECT_EQ(read.model.name, "P");
  EXPECT_EQ(read.model.manufacturer, "Bench & Co");
  EXPECT_EQ(read.model.oem, "Oem 1");
  EXPECT_EQ(read.model.description, "Sixteen pins");
  EXPECT_EQ(read.model.numberOfSections, 0);
  EXPECT_EQ(read.model.numberOfPins, 16);
}

TEST(PackageReader, TakesTheLastOfARepeatedKeyword) {
  const Read read("[OEM] a\n[Number Of Pins] 1\n[OEM] b\n[Number Of Pins] 2\n[OEM]\n");
  EXPECT_EQ(read.model.oem, "");
  EXPECT_EQ(read.model.numberOfPins, 2);
}

TEST(PackageReader, ReadsTheNumberOfPinsUpToItsFirstOtherCharacter) {
  const std::pair<const char*, std::int32_t> rows[] = {
      {" 16", 16}, {"16 pins", 16}, {"\t +7", 7}, {"1e3", 1},
      {"x", 0},    {"", 0},         {"-3", -3},   {"1000000", 1'000'000},
  };
  for (const auto& [text, number] : rows) {
    const Read read("[Number Of Pins]" + std::string(text) + "\n");
    EXPECT_MESSAGES(read.told.errors);
    EXPECT_EQ(read.model.numberOfPins, number) << text;
  }
}

TEST(PackageReader, RefusesMoreThanAMillionPins) {
  const Read read("[OEM] a\n[Number Of Pins] 1000001\n[Pin Numbers]\nA1\n");
  EXPECT_MESSAGES(read.told.errors, "Line 3: Number of pins 1000001 is above the limit of 1000000");
  EXPECT_EQ(read.model.numberOfPins, 0);
  EXPECT_EQ(read.pinNames(), Texts());
}

TEST(PackageReader, KeepsAnEarlierNumberOfPinsWhereOneIsRefused) {
  const Read read("[Number Of Pins] 2\n[Number Of Pins] 2147483647\n");
  EXPECT_MESSAGES(read.told.errors,
                  "Line 3: Number of pins 2147483647 is above the limit of 1000000");
  EXPECT_EQ(read.model.numberOfPins, 2);
}

TEST(PackageReader, EndsOnEndPackageModel) {
  const Read read("[OEM] a\n[End Package Model]\n[OEM] b\n");
  EXPECT_EQ(read.index, 2);
  EXPECT_EQ(read.model.oem, "a");
}

TEST(PackageReader, HandsTheKeywordsThatEndASectionBack) {
  for (const char* text : {"[Component]", "[Model Selector]", "[Model]", "[Submodel]",
                           "[Define Package Model]", "[End]", "[External Circuit]"}) {
    const Read read("[OEM] a\n" + std::string(text) + " x\n[OEM] b\n");
    EXPECT_TRUE(read.result) << text;
    EXPECT_MESSAGES(read.told.errors);
    EXPECT_EQ(read.index, 1) << text;
    EXPECT_EQ(read.model.oem, "a") << text;
  }
}

TEST(PackageReader, ReadsToTheLastRecordWithoutAnEnd) {
  const Read read("[OEM] a\n[Number Of Pins] 4");
  EXPECT_TRUE(read.result);
  EXPECT_MESSAGES(read.told.errors);
  EXPECT_EQ(read.next(), keyword::none);
  EXPECT_EQ(read.model.numberOfPins, 4);
}

TEST(PackageReader, IgnoresDataLinesAndOtherKeywords) {
  const Read read("stray 1 2\n[Package]\nR_pkg 1\n[Row] A1\n[End Model Data]\n[OEM] a\n");
  EXPECT_MESSAGES(read.told.errors);
  EXPECT_MESSAGES(read.told.warnings);
  EXPECT_EQ(read.model.oem, "a");
}

TEST(PackageReader, KeepsTheFirstNamesUpToTheNumberOfPins) {
  const Read read("[Number Of Pins] 2\n[Pin Numbers]\nA1 A2 A3\nA1 A4\n[End Package Model]\n");
  EXPECT_MESSAGES(read.told.errors);
  EXPECT_EQ(read.pinNames(), (Texts{"A1", "A2"}));
}

TEST(PackageReader, ReadsSeveralNamesOfALine) {
  const Read read("[Number Of Pins] 5\n[Pin Numbers]\n 1\t2  3 \n4\n[OEM] a\n");
  EXPECT_MESSAGES(read.told.errors);
  EXPECT_EQ(read.pinNames(), (Texts{"1", "2", "3", "4"}));
  EXPECT_EQ(read.model.oem, "a");
}

TEST(PackageReader, ReportsADuplicatePinThatUsesNoPlaceUp) {
  const Read read("[Number Of Pins] 3\n[Pin Numbers]\nA1 A1 A2\nA1 A3\n");
  EXPECT_MESSAGES(read.told.errors, "Line 4: duplicate pin 'A1'", "Line 5: duplicate pin 'A1'");
  EXPECT_EQ(read.pinNames(), (Texts{"A1", "A2", "A3"}));
}

TEST(PackageReader, KeepsNamesThatDifferInCaseApartButForReservedWords) {
  const Read read("[Number Of Pins] 4\n[Pin Numbers]\na1 A1 gnd\nGnd\n");
  EXPECT_MESSAGES(read.told.errors, "Line 5: duplicate pin 'GND'");
  EXPECT_EQ(read.pinNames(), (Texts{"a1", "A1", "GND"}));
}

TEST(PackageReader, DropsEveryNameAheadOfTheNumberOfPins) {
  const Read read(
      "[Pin Numbers]\nA1\nA1\n[Number Of Pins] 2\n[Model Data]\n"
      "[Resistance Matrix] Sparse_matrix\n[Row] A1\n");
  EXPECT_EQ(read.pinNames(), Texts());
  EXPECT_MESSAGES(read.told.errors, "Line 8: Unknown pin number 'A1'",
                  "Line 8: Unexpected row number 0 at ");
}

TEST(PackageReader, LeavesAllMatricesEmptyWithoutAMessage) {
  const Read read = readMatrices("");
  EXPECT_MESSAGES(read.told.errors);
  EXPECT_EQ(entriesOf(read.model.resistance), Entries());
  EXPECT_EQ(entriesOf(read.model.inductance), Entries());
  EXPECT_EQ(entriesOf(read.model.capacitance), Entries());
  EXPECT_EQ(read.next(), keyword::none);
}

TEST(PackageReader, FillsTheMatrixOfTheKeyword) {
  const Read read = readMatrices(
      "[Capacitance Matrix] Sparse_matrix\n[Row] A1\nA1 1p\n"
      "[Resistance Matrix]  Banded_matrix \n[Row] A1\n2m\n[Row] A2\n3m\n"
      "[Inductance Matrix] Sparse_matrix\n[Row] A2\nA2 4n\n");
  EXPECT_MESSAGES(read.told.errors);
  EXPECT_EQ(entriesOf(read.model.capacitance), (Entries{{1, 1, 1 * 1e-12}}));
  EXPECT_EQ(entriesOf(read.model.resistance), (Entries{{1, 1, 2 * 1e-3}, {2, 2, 3 * 1e-3}}));
  EXPECT_EQ(entriesOf(read.model.inductance), (Entries{{2, 2, 4 * 1e-9}}));
}

TEST(PackageReader, AddsAMatrixThatComesTwiceToTheSameList) {
  const Read read = readMatrices(
      "[Resistance Matrix] Sparse_matrix\n[Row] A1\nA1 1\n"
      "[Resistance Matrix] Banded_matrix\n[Row] A1\n2\n");
  EXPECT_MESSAGES(read.told.errors);
  EXPECT_EQ(entriesOf(read.model.resistance), (Entries{{1, 1, 1}, {1, 1, 2}}));
}

TEST(PackageReader, ReportsAMatrixFormInAnotherCaseAndSkipsTheRest) {
  const Read read = readMatrices(
      "[Resistance Matrix] sparse_matrix\n[Row] A1\nA1 1\n"
      "[Inductance Matrix] Sparse_matrix\n[Row] A1\nA1 1\n");
  EXPECT_MESSAGES(read.told.errors, "Unknown matrix type 'sparse_matrix' at line 7");
  EXPECT_EQ(entriesOf(read.model.resistance), Entries());
  EXPECT_EQ(entriesOf(read.model.inductance), Entries());
}

TEST(PackageReader, ReportsEveryOtherMatrixForm) {
  for (const std::string form : {"FULL_MATRIX", "Banded_Matrix", "Sparse_matrix x", "Full", ""}) {
    const Read read = readMatrices("[Inductance Matrix] " + form + "\n");
    EXPECT_MESSAGES(read.told.errors, "Unknown matrix type '" + form + "' at line 7");
  }
}

TEST(PackageReader, ReportsAnyOtherRecordOfTheModelDataAndSkipsTheRest) {
  const Read keyword = readMatrices("[OEM] x\n[Resistance Matrix] Sparse_matrix\n[Row] A1\nA1 1\n");
  EXPECT_MESSAGES(keyword.told.errors, "Unexpected keyword 'OEM' at line 7");
  EXPECT_EQ(entriesOf(keyword.model.resistance), Entries());
  EXPECT_EQ(keyword.model.oem, "");
  const Read dataLine = readMatrices("stray\n[Resistance Matrix] Sparse_matrix\n[Row] A1\nA1 1\n");
  EXPECT_MESSAGES(dataLine.told.errors, "Unexpected keyword '' at line 7");
  EXPECT_EQ(entriesOf(dataLine.model.resistance), Entries());
}

TEST(PackageReader, SkipsToTheEndOfTheModelDataAndGoesOnBehindIt) {
  const Read read(twoPins +
                  "[Model Data]\nstray\n[OEM] a\n[End Model Data]\n[OEM] b\n"
                  "[Model Data]\n[Resistance Matrix] Banded_matrix\n[Row] A1\n1\n"
                  "[End Model Data]\n");
  EXPECT_MESSAGES(read.told.errors, "Unexpected keyword '' at line 7");
  EXPECT_EQ(read.model.oem, "b");
  EXPECT_EQ(entriesOf(read.model.resistance), (Entries{{1, 1, 1}}));
}

TEST(PackageReader, LosesWhatFollowsModelDataWithoutAnEnd) {
  const Read read(twoPins +
                  "[Model Data]\n[Resistance Matrix] Sparse_matrix\n[Row] A1\nA1 1\n"
                  "[End Package Model]\n[Component] U1\n[End]\n");
  EXPECT_MESSAGES(read.told.errors, "Line 10: Unexpected keyword 70",
                  "Unexpected keyword 'Component' at line 11");
  EXPECT_EQ(read.next(), keyword::none);
  EXPECT_EQ(entriesOf(read.model.resistance), (Entries{{1, 1, 1}}));
}

TEST(PackageReader, ReportsAFullMatrixOnceAndReadsTheNext) {
  const Read read = readMatrices(
      "[Resistance Matrix] Full_matrix\n[Row] A1\n1 2\n[Row] nowhere\n2\n"
      "[Inductance Matrix] Banded_matrix\n[Row] A1\n5n\n");
  EXPECT_MESSAGES(read.told.errors, "Line 7: Full matrix not supported");
  EXPECT_EQ(entriesOf(read.model.resistance), Entries());
  EXPECT_EQ(entriesOf(read.model.inductance), (Entries{{1, 1, 5 * 1e-9}}));
}

TEST(PackageReader, ReportsAnUnexpectedKeywordOfAFullMatrix) {
  const Read read = readMatrices(
      "[Resistance Matrix] Full_matrix\n[Bandwidth] 0\n"
      "[Inductance Matrix] Banded_matrix\n[Row] A1\n5n\n");
  EXPECT_MESSAGES(read.told.errors, "Line 7: Full matrix not supported",
                  "Line 8: Unexpected keyword 69");
  EXPECT_EQ(entriesOf(read.model.inductance), (Entries{{1, 1, 5 * 1e-9}}));
}

TEST(PackageReader, ReadsTheDiagonalOfABandedMatrix) {
  const Read read = readMatrices(
      "[Resistance Matrix] Banded_matrix\n[Bandwidth] 0\n[Row] A2\n 1.5m \n2 3\nNA\n[Row] A1\nx\n");
  EXPECT_MESSAGES(read.told.errors);
  EXPECT_EQ(entriesOf(read.model.resistance),
            (Entries{{2, 2, 1.5 * 1e-3}, {2, 2, 2}, {2, 2, 0}, {1, 1, 0}}));
}

TEST(PackageReader, ReportsABandwidthAndReadsOn) {
  const Read read = readMatrices(
      "[Resistance Matrix] Banded_matrix\n[Bandwidth] 1\n[Row] A1\n1\n[Bandwidth] -1 x\n"
      "[Bandwidth] x\n[Bandwidth]\n[Row] A2\n2\n");
  EXPECT_MESSAGES(read.told.errors,
                  "Line 8: Non-zero bandwidth is not currently supported for banded matrix",
                  "Line 11: Non-zero bandwidth is not currently supported for banded matrix");
  EXPECT_EQ(entriesOf(read.model.resistance), (Entries{{1, 1, 1}, {2, 2, 2}}));
}

TEST(PackageReader, IgnoresADataLineOfABandedMatrixAheadOfItsFirstRow) {
  const Read read = readMatrices("[Resistance Matrix] Banded_matrix\n7\n[Row] A1\n1\n");
  EXPECT_MESSAGES(read.told.errors);
  EXPECT_EQ(entriesOf(read.model.resistance), (Entries{{1, 1, 1}}));
}

TEST(PackageReader, ReportsAnUnexpectedKeywordOfABandedMatrix) {
  const Read read = readMatrices(
      "[Resistance Matrix] Banded_matrix\n[Row] A1\n[OEM] a\n"
      "[Inductance Matrix] Banded_matrix\n[Row] A1\n5n\n");
  EXPECT_MESSAGES(read.told.errors, "Line 9: Unexpected keyword 58");
  EXPECT_EQ(entriesOf(read.model.inductance), (Entries{{1, 1, 5 * 1e-9}}));
}

TEST(PackageReader, EndsASparseMatrixAtABandwidth) {
  const Read read = readMatrices(
      "[Resistance Matrix] Sparse_matrix\n[Bandwidth] 0\n[Row] A1\n"
      "A1 1\n");
  EXPECT_MESSAGES(read.told.errors, "Line 8: Unexpected keyword 69",
                  "Unexpected keyword 'Row' at line 9");
  EXPECT_EQ(entriesOf(read.model.resistance), Entries());
}

TEST(PackageReader, ReportsARowOfAnUnknownPinTwiceWithoutACurrentRow) {
  for (const std::string form : {"Sparse_matrix", "Banded_matrix"}) {
    const Read read = readMatrices("[Resistance Matrix] " + form + "\n[Row] A3\n");
    EXPECT_MESSAGES(read.told.errors, "Line 8: Unknown pin number 'A3'",
                    "Line 8: Unexpected row number 0 at ");
  }
}

TEST(PackageReader, KeepsTheCurrentRowAtAnUnknownPin) {
  const Read read =
      readMatrices("[Resistance Matrix] Banded_matrix\n[Row] A2\n1\n[Row] a1\n2\n[Row]\n");
  EXPECT_MESSAGES(read.told.errors, "Line 10: Unknown pin number 'a1'",
                  "Line 12: Unknown pin number ''");
  EXPECT_EQ(entriesOf(read.model.resistance), (Entries{{2, 2, 1}, {2, 2, 2}}));
}

TEST(PackageReader, BeginsEveryMatrixWithoutARow) {
  const Read read = readMatrices(
      "[Resistance Matrix] Sparse_matrix\n[Row] A2\n"
      "[Inductance Matrix] Sparse_matrix\nA1 1\n"
      "[Capacitance Matrix] Banded_matrix\n1\n");
  EXPECT_MESSAGES(read.told.errors);
  EXPECT_EQ(entriesOf(read.model.inductance), Entries());
  EXPECT_EQ(entriesOf(read.model.capacitance), Entries());
}

TEST(PackageReader, ReportsRowAndColumnBeyondANumberOfPinsThatShrank) {
  const Read read(twoPins +
                  "[Number Of Pins] 1\n[Model Data]\n"
                  "[Resistance Matrix] Sparse_matrix\n[Row] A2\nA1 1\n[Row] A1\nA2 1\n"
                  "A1 2\n[Inductance Matrix] Banded_matrix\n[Row] A2\n3\n");
  EXPECT_MESSAGES(read.told.errors, "Line 9: Unexpected row number 2 at ",
                  "Line 12: Unexpected column number 2", "Line 15: Unexpected row number 2 at ");
  EXPECT_EQ(entriesOf(read.model.resistance), (Entries{{1, 1, 2}}));
  EXPECT_EQ(entriesOf(read.model.inductance), (Entries{{2, 2, 3}}));
}

TEST(PackageReader, YieldsOneEntryOnTheDiagonalAndTwoOffIt) {
  const Read read = readMatrices("[Resistance Matrix] Sparse_matrix\n[Row] A1\nA1 1\nA2 0.5\n");
  EXPECT_MESSAGES(read.told.errors);
  EXPECT_EQ(entriesOf(read.model.resistance), (Entries{{1, 1, 1}, {1, 2, 0.5}, {2, 1, 0.5}}));
}

TEST(PackageReader, KeepsBothTrianglesOfAFileThatGivesThem) {
  const Read read =
      readMatrices("[Resistance Matrix] Sparse_matrix\n[Row] A1\nA2 1\n[Row] A2\nA1 1\n");
  EXPECT_MESSAGES(read.told.errors);
  EXPECT_EQ(entriesOf(read.model.resistance),
            (Entries{{1, 2, 1}, {2, 1, 1}, {2, 1, 1}, {1, 2, 1}}));
}

TEST(PackageReader, ReportsASparseLineOfOneField) {
  const Read read = readMatrices("[Resistance Matrix] Sparse_matrix\n[Row] A1\nA2\nA2 1\n");
  EXPECT_MESSAGES(read.told.errors, "Line 9: Missing value");
  EXPECT_EQ(entriesOf(read.model.resistance), (Entries{{1, 2, 1}, {2, 1, 1}}));
}

TEST(PackageReader, DropsASparseLineOfAnUnknownColumn) {
  const Read read = readMatrices("[Resistance Matrix] Sparse_matrix\n[Row] A1\nA3 1\nA3\n");
  EXPECT_MESSAGES(read.told.errors, "Line 9: Unknown pin number 'A3'",
                  "Line 10: Unknown pin number 'A3'");
  EXPECT_EQ(entriesOf(read.model.resistance), Entries());
}

TEST(PackageReader, IgnoresTheFieldsBehindASparseValue) {
  const Read read = readMatrices("[Resistance Matrix] Sparse_matrix\n[Row] A1\n A1\t5m 7 A2 \n");
  EXPECT_MESSAGES(read.told.errors);
  EXPECT_EQ(entriesOf(read.model.resistance), (Entries{{1, 1, 5 * 1e-3}}));
}

TEST(PackageReader, FindsAPinOfAReservedWordInAnyCase) {
  const Read read(
      "[Number Of Pins] 1\n[Pin Numbers]\nPower\n[Model Data]\n"
      "[Resistance Matrix] Sparse_matrix\n[Row] pOWER\npower 1\n");
  EXPECT_MESSAGES(read.told.errors);
  EXPECT_EQ(entriesOf(read.model.resistance), (Entries{{1, 1, 1}}));
}

TEST(PackageReader, IsCalledForEachSectionOfAFile) {
  const Parsed parsed(
      "[IBIS Ver] 4.2\n[Define Package Model] P\n[Number Of Pins] 1\n"
      "[End Package Model]\n[Define Package Model] Q\n[Component] U1\n[End]\n");
  EXPECT_MESSAGES(parsed.errors());
  const auto& models = parsed.file.data().packageModels;
  ASSERT_EQ(models.size(), 2U);
  EXPECT_EQ(models[0]->name, "P");
  EXPECT_EQ(models[0]->line, 2);
  EXPECT_EQ(models[1]->name, "Q");
  EXPECT_EQ(models[1]->line, 5);
  EXPECT_EQ(parsed.file.data().components.size(), 1U);
}

}  // namespace
}  // namespace ibis::testing
