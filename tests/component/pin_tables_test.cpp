#include "component/pin_tables.h"

#include "harness/harness.h"

namespace ibis::testing {
namespace {

using Numbers = std::vector<double>;
using ReadTable = void (*)(IBISComponent&, IBISRecords, std::int32_t&);

// A component with the rows of one table, and the index that its reader left.
struct Table {
  Table(ReadTable read, std::string_view text) : scanned(text) {
    read(component, scanned.records(), index);
  }

  Scanned scanned;
  IBISComponent component;
  std::int32_t index = 0;
};

struct DiffPins : Table {
  explicit DiffPins(std::string_view text) : Table(readDiffPins, text) {}
  const IBISDiffPin& operator[](std::size_t place) const { return component.diffPins[place]; }
};

// Threshold, then the delays in the file's order.
Numbers valuesOf(const IBISDiffPin& row) {
  return {row.vdiff, row.tdelay_typ, row.tdelay_min, row.tdelay_max};
}

Texts listOf(const std::vector<IBISString>& strings) {
  Texts texts;
  for (const IBISString& string : strings) texts.push_back(string.str());
  return texts;
}

Texts textsOf(const IBISPinMapping& row) {
  return listOf(
      {row.pin, row.pulldown_ref, row.pullup_ref, row.gnd_clamp_ref, row.power_clamp_ref});
}

Texts textsOf(const IBISSeriesPinMapping& row) {
  return listOf({row.pin, row.pin_2, row.model_name, row.function_table_group});
}

struct DiffPinCase {
  const char* row;
  const char* inverted;
  Numbers values;
};

TEST(DiffPins, ReadRowsInTheExpectedOrder) {
  const DiffPinCase cases[] = {
      {"A B", "B", {0.2, 0, 0, 0}},
      {"A", "NA", {0.2, 0, 0, 0}},
      {"A B 0.5", "B", {0.5, 0, 0, 0}},
      {"A B 0.5 2n", "B", {0.5, 2e-9, 2e-9, 2e-9}},
      {"A B 0.5 2n 1n", "B", {0.5, 2e-9, 1e-9, 2e-9}},
      {"A B 0.5 2n 1n 4n", "B", {0.5, 2e-9, 1e-9, 4e-9}},
      {"A\tB \t0.5 2n 1n 4n more 7", "B", {0.5, 2e-9, 1e-9, 4e-9}},
      {"A B NA NA NA NA", "B", {0.2, 0, 0, 0}},
      {"A B NA 2n NA NA", "B", {0.2, 2e-9, 2e-9, 2e-9}},
      {"A B NA NA 1n 4n", "B", {0.2, 0, 1e-9, 4e-9}},
      {"A B na 2n na Na", "B", {0, 2e-9, 0, 0}},
      {"A B none 2n - +", "B", {0, 2e-9, 0, 0}},
      {"A B 250mV", "B", {250 * 1e-3, 0, 0, 0}},
      {"A na", "NA", {0.2, 0, 0, 0}},
  };
  for (const DiffPinCase& item : cases) {
    SCOPED_TRACE(item.row);
    const DiffPins rows(lines({"[Diff Pin]", item.row}));
    ASSERT_EQ(rows.component.diffPins.size(), 1U);
    EXPECT_EQ(rows[0].pin, "A");
    EXPECT_EQ(rows[0].inv_pin, item.inverted);
    EXPECT_EQ(valuesOf(rows[0]), item.values);
    EXPECT_EQ(rows[0].line, 2);
  }
}

TEST(DiffPins, RowOfOneTokenIsReportedAsAnUndefinedInvertingPin) {
  Parsed parsed(lines({"[Component] X", "[Pin]", "A S NC", "[Diff Pin]", "A"}));
  parsed.resolve();
  EXPECT_MESSAGES(parsed.errors(), "Line 5: Inverting [Diff Pin] 'NA' is not defined");
}

TEST(DiffPins, HeaderMovesTheColumns) {
  const DiffPins rows(
      lines({"[Diff Pin] tdelay_max tdelay_min tdelay_typ vdiff inv_pin", "A 4n 1n 2n 0.5 B"}));
  EXPECT_EQ(rows[0].inv_pin, "B");
  EXPECT_EQ(valuesOf(rows[0]), (Numbers{0.5, 2e-9, 1e-9, 4e-9}));
}

TEST(DiffPins, PartialHeaderLeavesTheOtherColumnsInPlace) {
  const DiffPins rows(lines({"[Diff Pin] vdiff inv_pin", "A 0.5 B 2n 1n 4n"}));
  EXPECT_EQ(rows[0].inv_pin, "B");
  EXPECT_EQ(valuesOf(rows[0]), (Numbers{0.5, 2e-9, 1e-9, 4e-9}));
}

TEST(DiffPins, ColumnBeyondTheFillersReadsZero) {
  const DiffPins rows(lines({"[Diff Pin] inv_pin a b c d vdiff", "A B"}));
  EXPECT_EQ(rows[0].inv_pin, "B");
  EXPECT_EQ(valuesOf(rows[0]), (Numbers{0, 0, 0, 0}));
}

TEST(DiffPins, ReservedPinNamesAreFolded) {
  const DiffPins rows("[Diff Pin]\ngnd Nc\n");
  EXPECT_EQ(rows[0].pin, "GND");
  EXPECT_EQ(rows[0].inv_pin, "NC");
}

TEST(DiffPins, SecondTableAppendsUnderItsOwnHeader) {
  Parsed parsed(lines({"[Component] X", "[Diff Pin] vdiff inv_pin", "A 0.5 B", "[Diff Pin]",
                       "| remark", "C D 0.25"}));
  ASSERT_EQ(parsed.component().diffPins.size(), 2U);
  const IBISDiffPin& second = parsed.component().diffPins[1];
  EXPECT_EQ(parsed.component().diffPins[0].inv_pin, "B");
  EXPECT_EQ(second.pin, "C");
  EXPECT_EQ(second.inv_pin, "D");
  EXPECT_EQ(second.vdiff, 0.25);
  EXPECT_EQ(second.line, 6);
  EXPECT_MESSAGES(parsed.errors());
}

struct TextCase {
  const char* header;
  const char* row;
  Texts expected;
};

TEST(PinMappings, ReadEachColumn) {
  const TextCase cases[] = {
      {"", "1 A B C D", {"1", "A", "B", "C", "D"}},
      {"", "1 A B C D E F", {"1", "A", "B", "C", "D"}},
      {"", "1", {"1", "NC", "NC", "NC", "NC"}},
      {"", "1 A B", {"1", "A", "B", "NC", "NC"}},
      {"", "1 gnd nc na power", {"1", "GND", "NC", "NA", "POWER"}},
      {"pulldown_ref pullup_ref gnd_clamp_ref power_clamp_ref",
       "1 A B C D",
       {"1", "A", "B", "C", "D"}},
      {"power_clamp_ref gnd_clamp_ref pullup_ref pulldown_ref",
       "1 A B C D",
       {"1", "D", "C", "B", "A"}},
      {"pullup_ref", "1 A B C D", {"1", "A", "A", "C", "D"}},
      {"a b c d pullup_ref", "1 A", {"1", "A", "", "NC", "NC"}},
  };
  for (const TextCase& item : cases) {
    SCOPED_TRACE(std::string(item.header) + "/" + item.row);
    const Table table(readPinMappings,
                      lines({"[Pin Mapping] " + std::string(item.header), item.row}));
    ASSERT_EQ(table.component.pinMappings.size(), 1U);
    EXPECT_EQ(textsOf(table.component.pinMappings[0]), item.expected);
  }
}

TEST(SeriesPinMappings, ReadEachColumn) {
  const TextCase cases[] = {
      {"", "1 2 M G", {"1", "2", "M", "G"}},
      {"", "1 2 M G more and more", {"1", "2", "M", "G"}},
      {"", "1", {"1", "NA", "NA", "NA"}},
      {"", "1 2 nc", {"1", "2", "NC", "NA"}},
      {"pin_2 model_name function_table_group", "1 2 M G", {"1", "2", "M", "G"}},
      {"function_table_group pin_2 model_name", "1 G 2 M", {"1", "2", "M", "G"}},
      {"a b c d function_table_group", "1 2", {"1", "2", "NA", "NA"}},
      {"a b c d e function_table_group", "1 2", {"1", "2", "NA", ""}},
  };
  for (const TextCase& item : cases) {
    SCOPED_TRACE(std::string(item.header) + "/" + item.row);
    const Table table(readSeriesPinMappings,
                      lines({"[Series Pin Mapping] " + std::string(item.header), item.row}));
    ASSERT_EQ(table.component.seriesPinMappings.size(), 1U);
    EXPECT_EQ(textsOf(table.component.seriesPinMappings[0]), item.expected);
  }
}

struct SwitchGroups : Table {
  explicit SwitchGroups(std::string_view rows)
      : Table(readSeriesSwitchGroups, "[Series Switch Groups]\n" + std::string(rows)) {}

  std::vector<Texts> pins() const {
    std::vector<Texts> all;
    for (const IBISSeriesSwitchGroup& group : component.seriesSwitchGroups) {
      all.push_back(listOf(group.pins));
    }
    return all;
  }
};

struct GroupCase {
  const char* rows;
  std::vector<Texts> pins;
};

TEST(SeriesSwitchGroups, HoldThePinsOfTheirFirstLine) {
  const GroupCase cases[] = {
      {"On 1 2 /\n", {{"1", "2"}}},
      {"\tOff  1\t2 \t/ \n", {{"1", "2"}}},
      {"On /\n", {{}}},
      {"On 1 / 2 3\n", {{"1"}}},
      {"On 1 /\nOff 2 /\nOn 3 /\n", {{"1"}, {"2"}, {"3"}}},
      {"On 1 2\n", {{"1", "2"}}},
      {"On 1\n2 3\n4 /\nOff 5 /\n", {{"1"}, {"5"}}},
      {"On 1\nOff 2 /\nOff 3 /\n", {{"1"}, {"3"}}},
      {"On\n1 2 /\n", {{}}},
      {"On 1 2/\n3 /\n", {{"1", "2/"}}},
      {"On 1 /2 / 3\n", {{"1", "/2"}}},
      {"On gnd nc /\n", {{"GND", "NC"}}},
      {"on 1 2\nOff 3 /\n", {{}, {"3"}}},
      {"ON 1 /\nOn 2 /\n", {{}, {"2"}}},
      {"/ On 1 /\nOn 2 /\n", {{}, {"2"}}},
      {"", {}},
  };
  for (const GroupCase& item : cases) {
    EXPECT_EQ(SwitchGroups(item.rows).pins(), item.pins) << item.rows;
  }
}

TEST(SeriesSwitchGroups, KnowTheirState) {
  const SwitchGroups groups("Off 1 /\nOn 1 /\n");
  ASSERT_EQ(groups.component.seriesSwitchGroups.size(), 2U);
  EXPECT_EQ(groups.component.seriesSwitchGroups[0].state, 1);
  EXPECT_EQ(groups.component.seriesSwitchGroups[1].state, 0);
}

TEST(SeriesSwitchGroups, LowerCaseStateIsNoErrorOfItsOwn) {
  Parsed parsed(lines({"[Component] X", "[Series Switch Groups]", "on 1 2 /"}));
  EXPECT_MESSAGES(parsed.errors(), "Line 2: Series Switch Groups are not currently supported");
  ASSERT_EQ(parsed.component().seriesSwitchGroups.size(), 1U);
  EXPECT_TRUE(parsed.component().seriesSwitchGroups[0].pins.empty());
}

TEST(SeriesSwitchGroups, OpenGroupEndsAtTheNextKeyword) {
  Parsed parsed(lines({"[Component] X", "[Series Switch Groups]", "On 1", "2", "[Manufacturer] M",
                       "[Series Switch Groups]", "Off 3 /"}));
  EXPECT_EQ(parsed.component().manufacturer, "M");
  ASSERT_EQ(parsed.component().seriesSwitchGroups.size(), 2U);
  EXPECT_EQ(listOf(parsed.component().seriesSwitchGroups[0].pins), Texts{"1"});
  EXPECT_EQ(listOf(parsed.component().seriesSwitchGroups[1].pins), Texts{"3"});
}

TEST(PinTables, LeaveTheIndexOnTheirLastLine) {
  const std::string text = lines({"[X]", "[Date]", "A B C D", "On 1", "2", "[Date]", "3"});
  for (const ReadTable read :
       {readDiffPins, readPinMappings, readSeriesPinMappings, readSeriesSwitchGroups}) {
    EXPECT_EQ(Table(read, text).index, 3);
  }
}

TEST(PinTables, WithoutRowsLeaveTheIndexOnTheirKeyword) {
  for (const ReadTable read :
       {readDiffPins, readPinMappings, readSeriesPinMappings, readSeriesSwitchGroups}) {
    EXPECT_EQ(Table(read, "[Date]\n[Date]\n1 2\n").index, 0);
  }
}

}  // namespace
}  // namespace ibis::testing
