#include "model/iv_table.h"

#include <cmath>
#include <limits>
#include <random>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

// One table keyword read by itself; its keyword is line 1 of the text.
struct Read {
  explicit Read(const std::string& rows) : scanned("[Pulldown]\n" + rows) {
    readTable(table, scanned.records(), cursor, sink, "Pulldown");
  }

  Scanned scanned;
  IBISTable table;
  std::int32_t cursor = 0;
  Recorder sink;
};

std::string modelAnd(const std::string& rest) {
  return "[Component] U\n[Model] M\nModel_type Output\n" + rest;
}

// The voltages that are beyond the latest one kept, in the direction of the ends.
std::vector<std::string> inOrder(const std::vector<std::string>& voltages) {
  const bool falls = std::stod(voltages.back()) < std::stod(voltages.front());
  std::vector<std::string> kept{voltages.front()};
  for (std::size_t i = 1; i < voltages.size(); ++i) {
    const double voltage = std::stod(voltages[i]);
    const double last = std::stod(kept.back());
    if (falls ? voltage >= last : voltage <= last) continue;
    kept.push_back(voltages[i]);
  }
  return kept;
}

std::vector<std::string> texts(const YVector<double>& voltages) {
  std::vector<std::string> list;
  for (const double voltage : voltages) {
    list.push_back(std::isnan(voltage) ? "nan" : std::to_string(static_cast<int>(voltage)));
  }
  return list;
}

const char* const removed =
    "Non-monotonic or constant points removed from Pulldown table starting line 1";

TEST(IvTable, ReadsColumnsInTheOrderTypMinMax) {
  Read read(" -1 2m 1m 3m\n1\t5 4 6 7 x\n");
  EXPECT_TRUE(read.table.present);
  EXPECT_EQ(read.table.direction, IBISTable::ascending);
  EXPECT_EQ(read.table.voltage, (YVector<double>{-1.0, 1.0}));
  EXPECT_EQ(read.table.typ, (YVector<double>{2 * 1e-3, 5.0}));
  EXPECT_EQ(read.table.min, (YVector<double>{1 * 1e-3, 4.0}));
  EXPECT_EQ(read.table.max, (YVector<double>{3 * 1e-3, 6.0}));
  EXPECT_MESSAGES(read.sink.warnings);
}

TEST(IvTable, TakesAnEqualSignForAPartOfAField) {
  Read read("0 = 5\n1=2 3\n");
  EXPECT_EQ(read.table.voltage, (YVector<double>{0.0, 1.0}));
  EXPECT_EQ(read.table.typ, (YVector<double>{0.0, 3.0}));
  EXPECT_EQ(read.table.min, (YVector<double>{5.0, 3.0}));
}

TEST(IvTable, LeavesTheCursorOnTheLastRow) {
  Read rows("0 1\n1 2\n[Rac] 5\n9 9\n");
  EXPECT_EQ(rows.cursor, 2);
  EXPECT_EQ(rows.table.voltage, (YVector<double>{0.0, 1.0}));
  Read none("[Rac] 5\n9 9\n");
  EXPECT_EQ(none.cursor, 0);
}

TEST(IvTable, WithoutRowsIsPresentEmptyAndAscending) {
  for (const std::string rows : {"", "|\n \n", "[Rac] 5\n"}) {
    Read read(rows);
    EXPECT_TRUE(read.table.present);
    EXPECT_EQ(read.table.direction, IBISTable::ascending);
    EXPECT_TRUE(read.table.voltage.empty());
    EXPECT_TRUE(read.table.typ.empty());
    EXPECT_TRUE(read.table.min.empty());
    EXPECT_TRUE(read.table.max.empty());
    EXPECT_MESSAGES(read.sink.warnings);
  }
}

TEST(IvTable, IsAscendingUnlessItEndsBelowItsFirstVoltage) {
  EXPECT_EQ(Read("5 0\n").table.direction, 1);
  EXPECT_EQ(Read("1 0\n2 0\n").table.direction, 1);
  EXPECT_EQ(Read("1 0\n2 0\n1 0\n").table.direction, 1);
  EXPECT_EQ(Read("1 0\n0.999999 0\n").table.direction, 2);
  EXPECT_EQ(Read("1 0\n5 0\n0 0\n").table.direction, 2);
}

// voltages of the file, direction, voltages that stay
struct FilterCase {
  std::vector<const char*> voltages;
  std::int32_t direction;
  YVector<double> kept;
};

// The currents name the rows, so a value that stays with the wrong voltage shows.
void expectFiltered(const FilterCase& row, const YVector<double>& keptRows) {
  std::string text;
  int number = 0;
  for (const std::string voltage : row.voltages) {
    const int typ = ++number;
    text += voltage + " " + std::to_string(typ) + " " + std::to_string(10 * typ) + " " +
            std::to_string(100 * typ) + "\n";
  }
  Read read(text);
  EXPECT_EQ(read.table.direction, row.direction) << text;
  EXPECT_EQ(read.table.voltage, row.kept) << text;
  EXPECT_EQ(read.table.typ, keptRows) << text;
  for (std::int32_t i = 0; i < keptRows.size(); ++i) {
    EXPECT_EQ(read.table.min[i], 10 * keptRows[i]) << text;
    EXPECT_EQ(read.table.max[i], 100 * keptRows[i]) << text;
  }
  EXPECT_EQ(read.table.min.size(), keptRows.size()) << text;
  EXPECT_EQ(read.table.max.size(), keptRows.size()) << text;
  if (keptRows.size() == number) {
    EXPECT_MESSAGES(read.sink.warnings);
  } else {
    EXPECT_MESSAGES(read.sink.warnings, removed);
  }
  EXPECT_MESSAGES(read.sink.errors);
}

TEST(IvTable, DropsARepeatedVoltage) {
  expectFiltered({{"0", "1", "1", "2"}, 1, {0, 1, 2}}, {1, 2, 4});
}

TEST(IvTable, DropsAPointThatFallsBack) {
  expectFiltered({{"0", "2", "1", "3"}, 1, {0, 2, 3}}, {1, 2, 4});
}

TEST(IvTable, DropsAPointThatRisesInADescendingTable) {
  expectFiltered({{"3", "2", "2.5", "1"}, 2, {3, 2, 1}}, {1, 2, 4});
}

TEST(IvTable, TurnsDescendingByItsLastVoltageAlone) {
  expectFiltered({{"1", "2", "0"}, 2, {1, 0}}, {1, 3});
}

TEST(IvTable, DropsARunUntilTheVoltagePassesTheKeptPoint) {
  expectFiltered({{"0", "5", "1", "2", "4", "5", "6"}, 1, {0, 5, 6}}, {1, 2, 7});
  expectFiltered({{"9", "3", "8", "7", "3", "1"}, 2, {9, 3, 1}}, {1, 2, 6});
}

TEST(IvTable, KeepsOnePointOfEqualVoltages) { expectFiltered({{"2", "2", "2"}, 1, {2}}, {1}); }

TEST(IvTable, ComparesWithoutATolerance) {
  expectFiltered({{"1", "1.0000000000000002", "1.00000000000000021"}, 1, {1, 1 + 0x1p-52}}, {1, 2});
}

TEST(IvTable, ReadsARowWithoutNumbersAsZeros) {
  Read read("-1 5\nvoltage current\n1 6\n");
  EXPECT_EQ(read.table.voltage, (YVector<double>{-1.0, 0.0, 1.0}));
  EXPECT_EQ(read.table.typ, (YVector<double>{5.0, 0.0, 6.0}));
  expectFiltered({{"0", "x", "1"}, 1, {0, 1}}, {1, 3});
}

TEST(IvTable, NeverDropsBesideAVoltageThatIsNotANumber) {
  Read read("0 1\nnan 2\n-5 3\n-7 4\n1 5\n");
  EXPECT_EQ(read.table.direction, IBISTable::ascending);
  EXPECT_EQ(read.table.typ, (YVector<double>{1.0, 2.0, 3.0, 5.0}));
  EXPECT_MESSAGES(read.sink.warnings, removed);
}

TEST(IvTable, IsNamedInTheWarningByItsKeyword) {
  const std::string rows = "1 0\n1 0\n1 0\n";
  Parsed parsed(modelAnd("[Pulldown]\n" + rows + "[Pullup]\n" + rows + "[GND Clamp]\n" + rows +
                         "[POWER Clamp]\n" + rows + "[Series Current]\n" + rows +
                         "[On]\n[Series Current]\n" + rows + "[Series MOSFET]\n" + rows));
  EXPECT_MESSAGES(
      parsed.warnings(),
      "Non-monotonic or constant points removed from Pulldown table starting line 4",
      "Non-monotonic or constant points removed from Pullup table starting line 8",
      "Non-monotonic or constant points removed from GND_Clamp table starting line 12",
      "Non-monotonic or constant points removed from POWER_Clamp table starting line 16",
      "Non-monotonic or constant points removed from Series Current table starting line 20",
      "Non-monotonic or constant points removed from Series Current table starting line 25",
      "Non-monotonic or constant points removed from Series MOSFET table starting line 29");
  EXPECT_MESSAGES(parsed.errors());
}

TEST(IvTable, OfATransistorStartsAtTheLineOfItsDrainVoltage) {
  Parsed parsed(modelAnd("[Series MOSFET]\nVds 1\n1 0\n1 0\n"));
  EXPECT_MESSAGES(
      parsed.warnings(),
      "Non-monotonic or constant points removed from Series MOSFET table starting line 5");
}

TEST(IvTable, OfARepeatedKeywordGrows) {
  Parsed parsed(modelAnd("[Pulldown]\n0 1\n1 2\n[Pullup]\n[Pulldown]\n2 3\n3 4\n"));
  EXPECT_EQ(parsed.model().pulldown.voltage, (YVector<double>{0.0, 1.0, 2.0, 3.0}));
  EXPECT_EQ(parsed.model().pulldown.typ, (YVector<double>{1.0, 2.0, 3.0, 4.0}));
  EXPECT_MESSAGES(parsed.warnings());
}

TEST(IvTable, OfARepeatedKeywordIsFilteredAsAWhole) {
  Parsed again(modelAnd("[Pulldown]\n0 1\n1 2\n[Pulldown]\n1 3\n0.5 4\n2 5\n"));
  EXPECT_EQ(again.model().pulldown.typ, (YVector<double>{1.0, 2.0, 5.0}));
  EXPECT_MESSAGES(again.warnings(),
                  "Non-monotonic or constant points removed from Pulldown table starting line 7");
  Parsed turned(modelAnd("[Pulldown]\n0 1\n1 2\n2 3\n[Pulldown]\n-1 4\n-2 5\n"));
  EXPECT_EQ(turned.model().pulldown.direction, IBISTable::descending);
  EXPECT_EQ(turned.model().pulldown.typ, (YVector<double>{1.0, 4.0, 5.0}));
  EXPECT_MESSAGES(turned.warnings(),
                  "Non-monotonic or constant points removed from Pulldown table starting line 8");
}

// A row of a random table; its current is its number.
struct ReferenceRow {
  double voltage;
  double current;
};

// Every row is held against the latest one kept, from the first row on, each time.
bool filterAll(std::vector<ReferenceRow>& rows, std::int32_t& direction) {
  direction = !rows.empty() && rows.back().voltage < rows.front().voltage ? 2 : 1;
  std::vector<ReferenceRow> kept;
  for (const ReferenceRow& row : rows) {
    const bool breaks = !kept.empty() && (direction == 1 ? row.voltage <= kept.back().voltage
                                                         : row.voltage >= kept.back().voltage);
    if (!breaks) kept.push_back(row);
  }
  const bool dropped = kept.size() < rows.size();
  rows = kept;
  return dropped;
}

std::string printed(const YVector<double>& list) {
  std::string text;
  for (double value : list) text += std::to_string(value) + " ";
  return text;
}

// A few sections of a few rows around a drift, so that all kinds of disorder occur.
class RandomTable {
 public:
  explicit RandomTable(std::uint32_t seed) : random_(seed), drift_(pick(5) - 2) {}

  void check() {
    for (int sections = pick(5) + 1; sections > 0; --sections) addSection();
    Parsed parsed(modelAnd(text_));
    const IBISTable& table = parsed.model().pulldown;
    YVector<double> voltage;
    YVector<double> current;
    for (const ReferenceRow& row : rows_) {
      voltage.append(row.voltage);
      current.append(row.current);
    }
    EXPECT_EQ(table.direction, direction_) << text_;
    EXPECT_EQ(printed(table.voltage), printed(voltage)) << text_;
    EXPECT_EQ(table.typ, current) << text_;
    EXPECT_EQ(table.min, current) << text_;
    EXPECT_EQ(table.max, current) << text_;
    EXPECT_EQ(parsed.warnings(), warnings_) << text_;
  }

 private:
  int pick(int count) { return static_cast<int>(random_() % static_cast<std::uint32_t>(count)); }

  void addSection() {
    const int head = ++line_;
    text_ += "[Pulldown]\n";
    for (int count = pick(8); count > 0; --count) addRow();
    if (!filterAll(rows_, direction_)) return;
    warnings_.push_back(
        "Non-monotonic or constant points removed from Pulldown table starting line " +
        std::to_string(head));
  }

  void addRow() {
    voltage_ += drift_ + pick(3) - 1;
    const bool isNumber = pick(30) != 0;
    const double voltage = isNumber ? voltage_ : std::numeric_limits<double>::quiet_NaN();
    rows_.push_back({voltage, static_cast<double>(++line_)});
    text_ += (isNumber ? std::to_string(voltage_) : "nan") + " " + std::to_string(line_) + "\n";
  }

  std::mt19937 random_;
  int drift_;
  int voltage_ = 0;
  int line_ = 3;
  std::int32_t direction_ = 0;
  std::vector<ReferenceRow> rows_;
  std::string text_;
  Texts warnings_;
};

TEST(IvTable, OfRepeatedKeywordsEqualsAFilterOverAllRows) {
  for (std::uint32_t seed = 1; seed <= 2000 && !::testing::Test::HasFailure(); ++seed) {
    RandomTable(seed).check();
  }
}

// Voltages of several sections of one table, which turns with each, against a plain second look at
// every point.
TEST(IvTable, ThatTurnsKeepsWhatASecondLookWouldKeep) {
  constexpr const char* words[] = {"nan", "-2", "-1", "0", "1", "2"};
  std::mt19937 dice(7);
  for (int round = 0; round < 2000; ++round) {
    IBISTable table;
    std::vector<std::string> kept;
    for (int section = 0; section < 6; ++section) {
      std::string rows;
      for (std::size_t row = 0; row < 1 + dice() % 3; ++row) {
        kept.emplace_back(words[dice() % std::size(words)]);
        rows += kept.back() + " 0\n";
      }
      const Scanned scanned("[Pulldown]\n" + rows);
      std::int32_t cursor = 0;
      Recorder sink;
      readTable(table, scanned.records(), cursor, sink, "Pulldown");
      kept = inOrder(kept);
      EXPECT_EQ(texts(table.voltage), kept);
    }
  }
}

}  // namespace
}  // namespace ibis::testing
