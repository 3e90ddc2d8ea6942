#include <cmath>
#include <random>

#include "harness/harness.h"
#include "model/iv_table.h"
#include "model/numbers/numbers.h"
#include "model/waveform.h"

namespace ibis::testing {
namespace {

// The corners that are missing, in the order of the file's columns.
std::string shown(MissingCorners missing) {
  std::string text;
  if (missing.at(corner::typ)) text += "typ ";
  if (missing.at(corner::min)) text += "min ";
  if (missing.at(corner::max)) text += "max ";
  return text;
}

MissingCorners cornersOf(std::initializer_list<int> corners) {
  MissingCorners missing;
  for (const int corner : corners) missing.set(corner);
  return missing;
}

TEST(MissingCorners, AreNoneUntilTheyAreSet) {
  MissingCorners missing;
  EXPECT_FALSE(missing.any());
  EXPECT_EQ(shown(missing), "");
  missing.set(corner::min);
  EXPECT_TRUE(missing.any());
  EXPECT_EQ(shown(missing), "min ");
  missing.set(corner::min);
  missing.set(corner::typ);
  missing.set(corner::max);
  EXPECT_EQ(shown(missing), "typ min max ");
}

TEST(MissingCells, AreKnownByRowAndCorner) {
  MissingCells cells;
  EXPECT_FALSE(cells.any());
  cells.set(7, {});
  EXPECT_FALSE(cells.any());
  cells.set(2, cornersOf({corner::min}));
  cells.set(4, cornersOf({corner::typ, corner::max}));
  EXPECT_TRUE(cells.any());
  const char* const rows[] = {"", "", "min ", "", "typ max ", "", ""};
  for (std::int32_t row = 0; row < 7; ++row) {
    EXPECT_EQ(shown(cells.row(row)), rows[row]) << row;
    for (int corner = 0; corner < corner::count; ++corner) {
      EXPECT_EQ(cells.at(row, corner), cells.row(row).at(corner)) << row << ' ' << corner;
    }
  }
}

TEST(MissingCells, ForgetARowThatIsSetAnewOrDropped) {
  MissingCells cells;
  for (std::int32_t row = 0; row < 4; ++row) cells.set(row, cornersOf({corner::typ}));
  cells.set(1, {});
  cells.shorten(3);
  EXPECT_EQ(shown(cells.row(0)) + '|' + shown(cells.row(1)) + '|' + shown(cells.row(2)) + '|' +
                shown(cells.row(3)),
            "typ ||typ |");
  cells.shorten(9);
  EXPECT_TRUE(cells.at(2, corner::typ));
  cells.shorten(0);
  EXPECT_FALSE(cells.any());
}

struct Line {
  const char* text;
  const char* missing;
};

TEST(MissingValues, OfATripleAreThoseThatSayNaOrNothing) {
  const Line lines[] = {
      {"1 2 3", ""},
      {"1 2 3 NA", ""},
      {"NA 2 3", "typ "},
      {"1 NA 3", "min "},
      {"1 2 NA", "max "},
      {"1 2", "max "},
      {"1", "min max "},
      {"", "typ min max "},
      {" \t ", "typ min max "},
      {"NA NA NA", "typ min max "},
      {"na 0 nonsense", ""},
      {"nan inf 0", ""},
      {"NAN 0 0", ""},
      {"1\tNA\t", "min max "},
  };
  for (const auto& [text, missing] : lines) {
    IBISTriple triple;
    readTriple(text, triple);
    EXPECT_EQ(shown(triple.missing), missing) << text;
  }
}

TEST(MissingValues, OfATripleAreForgottenByTheNextReading) {
  IBISTriple triple;
  readTriple("1", triple);
  readTriple("1 2 3", triple);
  EXPECT_FALSE(triple.missing.any());
}

TEST(MissingValues, OfASingleValueAreThoseOfAllCorners) {
  const Line lines[] = {{"1", ""},
                        {"= 1", ""},
                        {"NA", "typ min max "},
                        {"= NA 1", "typ min max "},
                        {"", "typ min max "},
                        {"0", ""}};
  for (const auto& [text, missing] : lines) {
    IBISTriple triple;
    readSingleAsTriple(text, triple);
    EXPECT_EQ(shown(triple.missing), missing) << text;
  }
}

TEST(MissingValues, OfARowAreThoseOfItsCorners) {
  const Line lines[] = {
      {"0 1 2 3", ""},          {"0 NA 2 3", "typ "},    {"0 1 NA 3", "min "},
      {"0 1 2 NA", "max "},     {"0 1 2", "max "},       {"0 1", "min max "},
      {"0", "typ min max "},    {"NA 1 2 3", ""},        {"", "typ min max "},
      {"0 NA", "typ min max "}, {"0 1V 2mA NA", "max "}, {"0 1e400 nan x", ""},
  };
  for (const auto& [text, missing] : lines) {
    for (const std::string_view filler : {std::string_view("NA"), std::string_view()}) {
      EXPECT_EQ(shown(readCornerRow(text, filler).missing), missing) << text << '|' << filler;
    }
  }
}

TEST(MissingValues, OfAPackageLineAreThoseOfItsCorners) {
  Parsed parsed(
      "[Component] A\n[Package]\nR_pkg 1 NA 3\nL_pkg 1n\nC_pkg NA 2p NA\n[Pin] signal_name "
      "model_name\n1 a GND\n");
  const IBISPackage& package = parsed.component().package;
  EXPECT_EQ(shown(package.R_pkg.missing), "min ");
  EXPECT_EQ(shown(package.L_pkg.missing), "min max ");
  EXPECT_EQ(shown(package.C_pkg.missing), "typ max ");
}

TEST(MissingValues, OfAPackageLineAreForgottenByTheNextOne) {
  Parsed parsed("[Component] A\n[Package]\nR_pkg 1\nR_pkg 1 2 3\n");
  EXPECT_EQ(shown(parsed.component().package.R_pkg.missing), "");
}

TEST(MissingValues, OfAPinAreThoseOfItsColumns) {
  Parsed parsed(
      "[Component] A\n[Pin] signal_name model_name R_pin L_pin C_pin\n1 a GND 1 2n 3p\n"
      "2 b GND NA 2n 3p\n3 c GND 1 NA NA\n4 d GND 1 2n NA\n");
  const auto flags = [&](std::size_t place) {
    const IBISPin& pin = parsed.component().pins.at(place);
    return std::string(pin.missingR ? "R" : "") + (pin.missingL ? "L" : "") +
           (pin.missingC ? "C" : "");
  };
  EXPECT_EQ(Texts({flags(0), flags(1), flags(2), flags(3)}), Texts({"", "R", "LC", "C"}));
}

TEST(MissingValues, OfAPinWithoutColumnsAreNone) {
  Parsed parsed("[Component] A\n[Pin] signal_name model_name\n1 a GND\n");
  const IBISPin& pin = parsed.component().pins.at(0);
  EXPECT_FALSE(pin.missingR || pin.missingL || pin.missingC);
}

TEST(MissingValues, OfARampAreTheRatiosThatSayNaOrNothing) {
  const Line lines[] = {
      {"1/1n 1/2n 1/3n", ""},   {"1/1n NA NA", "min max "}, {"1/1n", "min max "},
      {"1/1n NA 1/3n", "min "}, {"NA 1/2n 1/3n", "typ "},   {"", "typ min max "},
  };
  for (const auto& [text, missing] : lines) {
    Parsed parsed(std::string("[Component] U\n[Model] M\nModel_type Output\n[Ramp]\ndV/dt_r ") +
                  text + "\ndV/dt_f 1/1n 1/1n 1/1n\n");
    const IBISModel& model = parsed.model();
    EXPECT_EQ(shown(model.rampDvRise.missing), missing) << text;
    EXPECT_EQ(shown(model.rampDtRise.missing), missing) << text;
    EXPECT_EQ(shown(model.rampDvFall.missing), "") << text;
    EXPECT_EQ(shown(model.rampDtFall.missing), "") << text;
  }
}

TEST(MissingValues, OfTheLoadOfARampAreKnown) {
  for (const char* value : {"NA", "50", "0"}) {
    Parsed parsed(std::string("[Component] U\n[Model] M\nModel_type Output\n[Ramp]\nR_load = ") +
                  value + '\n');
    EXPECT_EQ(parsed.model().rLoad.isNA, std::string_view(value) == "NA") << value;
  }
}

TEST(MissingValues, OfAWaveformStayWithTheirRowsAndFixtures) {
  Parsed parsed(
      "[Component] U\n[Model] M\nModel_type Output\n[Rising Waveform]\nR_fixture = 50\nV_fixture = "
      "NA\n0 1 2 3\n"
      "1n 1\n2n NA 2 3\n3n 1 2 3\n4n 1 NA 3\n");
  const IBISWaveform& waveform = parsed.model().risingWaveforms.at(0);
  EXPECT_FALSE(waveform.rFixture.isNA);
  EXPECT_TRUE(waveform.vFixture.isNA);
  EXPECT_TRUE(waveform.vFixture.present);
  const char* const rows[] = {"", "min max ", "typ ", "", "min "};
  ASSERT_EQ(waveform.time.size(), 5);
  for (std::int32_t row = 0; row < 5; ++row) {
    EXPECT_EQ(shown(waveform.missing.row(row)), rows[row]) << row;
  }
}

TEST(MissingValues, OfAMatrixAreItsEntriesOfNa) {
  Parsed parsed(
      "[Component] U\n[Define Package Model] P\n[Number Of Pins] 2\n[Pin Numbers]\nA\nB\n[Model "
      "Data]\n"
      "[Resistance Matrix] Banded_matrix\n[Row] A\nNA\n[Row] B\n0\n"
      "[Inductance Matrix] Sparse_matrix\n[Row] A\nA 1n\nB NA\n[End Model Data]\n"
      "[End Package Model]\n");
  EXPECT_MESSAGES(parsed.errors());
  const IBISPackageModel& model = *parsed.data().packageModels.at(0);
  const auto entries = [](const std::vector<IBISMatrixEntry>& matrix) {
    std::vector<std::tuple<int, int, double, bool>> all;
    for (const IBISMatrixEntry& each : matrix) {
      all.emplace_back(each.row, each.column, each.value, each.isNA);
    }
    return all;
  };
  using Entries = std::vector<std::tuple<int, int, double, bool>>;
  EXPECT_EQ(entries(model.resistance), Entries({{1, 1, 0.0, true}, {2, 2, 0.0, false}}));
  // An entry of NA is there, as 0, on both sides of the diagonal.
  EXPECT_EQ(entries(model.inductance),
            Entries({{1, 1, 1 * 1e-9, false}, {1, 2, 0.0, true}, {2, 1, 0.0, true}}));
}

// A row of a table as a file has it, with the values that a load makes of it.
struct Row {
  double voltage;
  double values[3];  // by column
  MissingCorners missing;
};

constexpr int columnCorners[] = {corner::typ, corner::min, corner::max};

// Rows whose voltages go back and forth, some of whose cells are left out.
std::vector<Row> randomRows(std::mt19937& dice) {
  std::vector<Row> rows(1 + dice() % 12);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    Row& row = rows[i];
    row.voltage = static_cast<double>(dice() % 20);
    for (int column = 0; column < 3; ++column) {
      row.values[column] = static_cast<double>(10 * i + static_cast<std::size_t>(column) + 1);
      if (dice() % 4 != 0) continue;
      row.missing.set(columnCorners[column]);
      row.values[column] = column == 0 ? 0.0 : row.values[0];
    }
  }
  return rows;
}

std::string textOf(const Row& row, bool endsEarly) {
  std::string text = std::to_string(static_cast<int>(row.voltage));
  for (int column = 0; column < 3; ++column) {
    const bool isMissing = row.missing.at(columnCorners[column]);
    text += ' ' + (isMissing ? "NA" : std::to_string(static_cast<int>(row.values[column])));
  }
  while (endsEarly && text.ends_with(" NA")) text.resize(text.size() - 3);
  return text + '\n';
}

// Each row is held against the latest that was kept.
std::vector<Row> rowsInOrder(const std::vector<Row>& rows) {
  const bool descends = rows.back().voltage < rows.front().voltage;
  std::vector<Row> kept;
  for (const Row& row : rows) {
    if (kept.empty() ||
        (descends ? row.voltage < kept.back().voltage : row.voltage > kept.back().voltage)) {
      kept.push_back(row);
    }
  }
  return kept;
}

void expectRows(const IBISTable& table, const std::vector<Row>& rows, const std::string& text) {
  ASSERT_EQ(table.voltage.size(), static_cast<std::int32_t>(rows.size())) << text;
  for (std::int32_t i = 0; i < table.voltage.size(); ++i) {
    const Row& row = rows[static_cast<std::size_t>(i)];
    EXPECT_EQ(table.voltage[i], row.voltage) << text;
    EXPECT_EQ(table.typ[i], row.values[0]) << text;
    EXPECT_EQ(table.min[i], row.values[1]) << text;
    EXPECT_EQ(table.max[i], row.values[2]) << text;
    EXPECT_EQ(shown(table.missing.row(i)), shown(row.missing)) << text;
  }
  EXPECT_FALSE(table.missing.row(table.voltage.size()).any()) << text;
}

TEST(MissingValues, OfATableStayWithTheirRowsWhenPointsAreDropped) {
  std::mt19937 dice(4711);
  for (int turn = 0; turn < 5000; ++turn) {
    const std::vector<Row> rows = randomRows(dice);
    std::string text = "[Pulldown]\n";
    for (const Row& row : rows) text += textOf(row, dice() % 2 == 0);
    const Scanned scanned(text);
    IBISTable table;
    Recorder told;
    std::int32_t cursor = 0;
    readTable(table, scanned.records(), cursor, told, "Pulldown");
    expectRows(table, rowsInOrder(rows), text);
    if (HasFailure()) return;
  }
}

// A repeated keyword adds its rows to those that were kept.
TEST(MissingValues, OfATableStayWithTheirRowsWhenItIsContinued) {
  std::mt19937 dice(97);
  for (int turn = 0; turn < 5000; ++turn) {
    IBISTable table;
    std::vector<Row> kept;
    std::string text;
    for (int part = 0; part < 3; ++part) {
      const std::vector<Row> rows = randomRows(dice);
      std::string section = "[Pulldown]\n";
      for (const Row& row : rows) section += textOf(row, dice() % 2 == 0);
      kept.insert(kept.end(), rows.begin(), rows.end());
      kept = rowsInOrder(kept);
      const Scanned scanned(section);
      Recorder told;
      std::int32_t cursor = 0;
      readTable(table, scanned.records(), cursor, told, "Pulldown");
      text += section;
    }
    expectRows(table, kept, text);
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace ibis::testing
