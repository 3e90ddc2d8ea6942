#include "component/pin_reader.h"

#include "harness/harness.h"

namespace ibis::testing {
namespace {

using Places = std::vector<std::int32_t>;
using Numbers = std::vector<double>;

Numbers typMinMax(const IBISTriple& triple) { return {triple.typ, triple.min, triple.max}; }

// A component whose package has the typ values 8, 64 and 512.
std::string withPackage(std::string_view pins) {
  return lines({"[Component] A", "[Package]", "R_pkg 8 16 32", "L_pkg 64 128 256",
                "C_pkg 512 1024 2048"}) +
         std::string(pins);
}

// The pins of a component with nothing but its pins' lines, header included.
struct Pins : Parsed {
  explicit Pins(std::string_view text) : Parsed("[Component] A\n" + std::string(text)) {}
  const IBISPin& operator[](std::size_t place) { return component().pins[place]; }
  std::size_t size() { return component().pins.size(); }
};

void expectOwnValues(const IBISPin& pin, double resistance, double inductance, double capacitance) {
  EXPECT_TRUE(pin.hasOwnRLC);
  EXPECT_EQ(pin.R_pin(), (IBISTriple{true, resistance, resistance, resistance}));
  EXPECT_EQ(pin.L_pin(), (IBISTriple{true, inductance, inductance, inductance}));
  EXPECT_EQ(pin.C_pin(), (IBISTriple{true, capacitance, capacitance, capacitance}));
}

void expectPackageValues(const IBISPin& pin) {
  EXPECT_FALSE(pin.hasOwnRLC);
  EXPECT_EQ(typMinMax(pin.R_pin()), (Numbers{8, 16, 32}));
  EXPECT_EQ(typMinMax(pin.L_pin()), (Numbers{64, 128, 256}));
  EXPECT_EQ(typMinMax(pin.C_pin()), (Numbers{512, 1024, 2048}));
}

struct HeaderCase {
  const char* header;
  Places expected;
};

TEST(MapColumns, FindsThePinColumns) {
  const std::string_view names[] = {"signal_name", "model_name", "R_pin", "L_pin", "C_pin"};
  const HeaderCase cases[] = {
      {"", {0, 1, 2, 3, 4}},
      {" \t ", {0, 1, 2, 3, 4}},
      {"signal_name model_name R_pin L_pin C_pin", {0, 1, 2, 3, 4}},
      {" signal_name\tmodel_name \t R_pin L_pin C_pin ", {0, 1, 2, 3, 4}},
      {"C_pin L_pin R_pin model_name signal_name", {4, 3, 2, 1, 0}},
      {"model_name signal_name", {1, 0, 2, 3, 4}},
      {"SIGNAL_NAME MODEL_NAME R_PIN", {0, 1, 2, 3, 4}},
      {"MODEL_NAME signal_name", {1, 1, 2, 3, 4}},
      {"model_name", {0, 0, 2, 3, 4}},
      {"C_pin", {0, 1, 2, 3, 0}},
      {"x y z signal_name", {3, 1, 2, 3, 4}},
      {"a b c d e f g R_pin", {0, 1, 7, 3, 4}},
      {"signal_name signal_name model_name", {1, 2, 2, 3, 4}},
      {"R_pin signal_name R_pin", {1, 1, 2, 3, 4}},
      {"signal_names model_name= R_pin", {0, 1, 2, 3, 4}},
  };
  for (const HeaderCase& item : cases) {
    EXPECT_EQ(mapColumns(item.header, names), item.expected) << item.header;
  }
}

TEST(MapColumns, GivesOnePlaceForEachExpectedName) {
  const std::string_view names[] = {"pin_2", "model_name"};
  EXPECT_EQ(mapColumns("pin pin_2 function_table_group", names), (Places{1, 1}));
  EXPECT_EQ(mapColumns("model_name", {}), Places{});
}

TEST(PinRecord, StartsUnreadAndWithoutValues) {
  const IBISPin pin;
  EXPECT_FALSE(pin.parsed);
  EXPECT_EQ(pin.name, "");
  EXPECT_EQ(pin.signal_name, "");
  EXPECT_EQ(pin.model_name, "");
  EXPECT_EQ(pin.spiceName, "");
  EXPECT_FALSE(pin.hasOwnRLC);
  for (const IBISTriple& triple : {pin.R_pin(), pin.L_pin(), pin.C_pin()}) {
    EXPECT_EQ(triple, (IBISTriple{.present = true}));
  }
  EXPECT_EQ(pin.model, nullptr);
}

TEST(Pins, ReadEachColumnOfAFullRow) {
  Pins pins("[Pin] signal_name model_name R_pin L_pin C_pin\nA1 data-1 Driver 200m 5n 2pF\n");
  ASSERT_EQ(pins.size(), 1U);
  EXPECT_TRUE(pins[0].parsed);
  EXPECT_EQ(pins[0].name, "A1");
  EXPECT_EQ(pins[0].signal_name, "data-1");
  EXPECT_EQ(pins[0].model_name, "Driver");
  EXPECT_EQ(pins[0].spiceName, "data_1");
  expectOwnValues(pins[0], 200 * 1e-3, 5 * 1e-9, 2 * 1e-12);
  EXPECT_EQ(pins[0].line, 3);
  EXPECT_EQ(pins[0].model, nullptr);
}

TEST(Pins, HeaderInAnotherOrderPutsEachValueInItsField) {
  Pins pins("[Pin] C_pin model_name L_pin signal_name R_pin\n1 4 Driver 2 data 1\n");
  EXPECT_EQ(pins[0].name, "1");
  EXPECT_EQ(pins[0].signal_name, "data");
  EXPECT_EQ(pins[0].model_name, "Driver");
  expectOwnValues(pins[0], 1, 2, 4);
}

TEST(Pins, EmptyHeaderMeansTheExpectedOrder) {
  Pins pins("[Pin]\n1 data Driver 1 2 4\n");
  EXPECT_EQ(pins[0].signal_name, "data");
  EXPECT_EQ(pins[0].model_name, "Driver");
  expectOwnValues(pins[0], 1, 2, 4);
}

TEST(Pins, HeaderInCapitalsFallsBackToTheExpectedOrder) {
  Pins pins("[Pin] MODEL_NAME SIGNAL_NAME C_PIN L_PIN R_PIN\n1 data Driver 1 2 4\n");
  EXPECT_EQ(pins[0].signal_name, "data");
  EXPECT_EQ(pins[0].model_name, "Driver");
  expectOwnValues(pins[0], 1, 2, 4);
}

TEST(Pins, TwoColumnsMayReadOneToken) {
  Pins pins("[Pin] model_name\n1 both other\n");
  EXPECT_EQ(pins[0].signal_name, "both");
  EXPECT_EQ(pins[0].model_name, "both");
}

TEST(Pins, RowOfFiveTokensTakesThePackageValues) {
  Parsed parsed(withPackage("[Pin] signal_name model_name R_pin L_pin C_pin\n1 S NC 1 2\n"));
  expectPackageValues(parsed.component().pins[0]);
}

TEST(Pins, RowOfSixTokensHasItsOwnValues) {
  Parsed parsed(withPackage("[Pin]\n1 S NC 1 2 4\n"));
  expectOwnValues(parsed.component().pins[0], 1, 2, 4);
}

TEST(Pins, TokensThatNoColumnPointsToAreIgnored) {
  Pins pins("[Pin] signal_name remark model_name\n1 S 77 NC\n");
  EXPECT_EQ(pins[0].signal_name, "S");
  EXPECT_EQ(pins[0].model_name, "NC");
  Pins longRow("[Pin]\n1 S NC 1 2 4 8 16 32 64\n");
  expectOwnValues(longRow[0], 1, 2, 4);
}

TEST(Pins, IgnoredTokensCountTowardsTheSix) {
  Parsed parsed(withPackage("[Pin] signal_name model_name a b c\n1 S NC 1 2 x\n"));
  expectOwnValues(parsed.component().pins[0], 1, 2, 0);
}

TEST(Pins, ModelColumnInTheFifthPlaceGivesShortRowsTheirOwnZeros) {
  Parsed parsed(withPackage("[Pin] signal_name R_pin L_pin C_pin model_name\n1 S\n2 T 1 2\n"));
  ASSERT_EQ(parsed.component().pins.size(), 2U);
  expectOwnValues(parsed.component().pins[0], 0, 0, 0);
  expectOwnValues(parsed.component().pins[1], 1, 2, 0);
  EXPECT_EQ(parsed.component().pins[1].model_name, "");
}

TEST(Pins, SignalColumnInTheFifthPlaceGivesShortRowsTheirOwnZeros) {
  Parsed parsed(withPackage("[Pin] model_name R_pin L_pin C_pin signal_name\n1 NC\n"));
  expectOwnValues(parsed.component().pins[0], 0, 0, 0);
  EXPECT_EQ(parsed.component().pins[0].signal_name, "");
  EXPECT_EQ(parsed.component().pins[0].model_name, "NC");
}

TEST(Pins, ModelColumnInTheFourthPlaceLeavesShortRowsThePackageValues) {
  Parsed parsed(withPackage("[Pin] signal_name R_pin L_pin model_name C_pin\n1 S\n"));
  expectPackageValues(parsed.component().pins[0]);
}

TEST(Pins, FarValueColumnDoesNotLengthenAShortRow) {
  Parsed parsed(withPackage("[Pin] signal_name model_name a b c d R_pin L_pin C_pin\n1 S NC\n"));
  expectPackageValues(parsed.component().pins[0]);
}

TEST(Pins, ValueColumnBeyondAFullRowReadsZero) {
  Parsed parsed(withPackage("[Pin] signal_name model_name a b c d R_pin\n1 S NC 1 2 4\n"));
  expectOwnValues(parsed.component().pins[0], 0, 2, 4);
}

TEST(Pins, LonePinNameHasEmptyNamesThatAreMadeUnique) {
  Pins pins("[Pin]\n1\n2\n");
  EXPECT_EQ(pins[0].name, "1");
  EXPECT_EQ(pins[0].signal_name, "");
  EXPECT_EQ(pins[0].model_name, "");
  EXPECT_EQ(pins[0].spiceName, "");
  EXPECT_EQ(pins[1].signal_name, "_1");
  EXPECT_EQ(pins[1].spiceName, "_1");
  EXPECT_MESSAGES(pins.errors());
}

TEST(Pins, SignalsOfOneNameAreNumbered) {
  Pins pins("[Pin]\n1 S NC\n2 S NC\n3 S NC\n");
  EXPECT_EQ(pins[0].signal_name, "S");
  EXPECT_EQ(pins[1].signal_name, "S_1");
  EXPECT_EQ(pins[2].signal_name, "S_2");
  EXPECT_EQ(pins[2].spiceName, "S_2");
}

TEST(Pins, NumberThatIsTakenIsPassedOver) {
  Pins pins("[Pin]\n1 S_1 NC\n2 S NC\n3 S NC\n");
  EXPECT_EQ(pins[1].signal_name, "S");
  EXPECT_EQ(pins[2].signal_name, "S_2");
}

TEST(Pins, GroundSignalsFoldAndAreNumbered) {
  Pins pins("[Pin]\n1 gnd NC\n2 Gnd NC\n");
  EXPECT_EQ(pins[0].signal_name, "GND");
  EXPECT_EQ(pins[0].spiceName, "GND");
  EXPECT_EQ(pins[1].signal_name, "GND_1");
  EXPECT_EQ(pins[1].spiceName, "GND_1");
}

TEST(Pins, ReservedModelNamesFoldAndReachTheBuiltInModels) {
  Pins pins("[Pin]\n1 A gnd\n2 B Power\n3 C nC\n");
  pins.resolve();
  EXPECT_MESSAGES(pins.errors());
  EXPECT_EQ(pins[0].model_name, "GND");
  EXPECT_EQ(pins[1].model_name, "POWER");
  EXPECT_EQ(pins[2].model_name, "NC");
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(pins[i].model, pins.data().models[i].get());
}

TEST(Pins, SignalsThatDifferInCaseStayApartInSpiceToo) {
  Pins pins("[Pin]\n1 clk NC\n2 CLK NC\n");
  EXPECT_EQ(pins[0].signal_name, "clk");
  EXPECT_EQ(pins[1].signal_name, "CLK");
  EXPECT_EQ(pins[0].spiceName, "clk");
  EXPECT_EQ(pins[1].spiceName, "CLK_1");
}

TEST(Pins, ReservedPinNameIsFolded) {
  Pins pins("[Pin]\nnc S NC\n");
  EXPECT_EQ(pins[0].name, "NC");
}

TEST(Pins, SignalNamesBelongToTheirComponent) {
  Parsed parsed("[Component] A\n[Pin]\n1 S NC\n[Component] B\n[Pin]\n1 S NC\n");
  EXPECT_EQ(parsed.component(0).pins[0].signal_name, "S");
  EXPECT_EQ(parsed.component(1).pins[0].signal_name, "S");
}

TEST(Pins, UnavailableValueIsThePackagesTypicalOne) {
  Parsed parsed(withPackage("[Pin]\n1 S NC 1 NA 4\n2 T NC NA 2 NA\n"));
  expectOwnValues(parsed.component().pins[0], 1, 64, 4);
  expectOwnValues(parsed.component().pins[1], 8, 2, 512);
}

TEST(Pins, LowerCaseNaIsNoUnavailableValue) {
  Parsed parsed(withPackage("[Pin]\n1 S NC na 2 Na\n"));
  expectOwnValues(parsed.component().pins[0], 0, 2, 0);
}

TEST(Pins, UnavailableValueKeepsThePackageOfTheMoment) {
  Parsed parsed(lines({"[Component] A", "[Package]", "L_pkg 2 1 4", "[Pin]", "1 S NC 1 NA 4",
                       "[Package]", "L_pkg 3 3 3"}));
  expectOwnValues(parsed.component().pins[0], 1, 2, 4);
  parsed.resolve();
  expectOwnValues(parsed.component().pins[0], 1, 2, 4);
}

TEST(Pins, FirstTakeThePackageOfTheMoment) {
  Parsed parsed(
      lines({"[Component] A", "[Pin]", "1 S NC", "[Package]", "R_pkg 1 2 4", "[Pin]", "2 T NC"}));
  EXPECT_EQ(typMinMax(parsed.component().pins[0].R_pin()), (Numbers{0, 0, 0}));
  EXPECT_EQ(typMinMax(parsed.component().pins[1].R_pin()), (Numbers{1, 2, 4}));
}

TEST(Pins, PackageBehindThemCountsInTheEnd) {
  Parsed parsed(lines({"[Component] A", "[Pin]", "1 S NC", "[Package]", "R_pkg 1 2 4"}));
  parsed.resolve();
  EXPECT_EQ(typMinMax(parsed.component().pins[0].R_pin()), (Numbers{1, 2, 4}));
}

TEST(Pins, OfOneNameBothStandInTheList) {
  Pins pins("[Pin]\n1 S NC\n1 T NC\n");
  ASSERT_EQ(pins.size(), 2U);
  EXPECT_EQ(pins[0].name, "1");
  EXPECT_EQ(pins[1].name, "1");
  EXPECT_MESSAGES(pins.errors());
  pins.resolve();
  EXPECT_MESSAGES(pins.errors(), "Line 4: Duplicate pin '1' previously defined on line 3");
}

TEST(Pins, SecondTableAppendsUnderItsOwnHeader) {
  Pins pins("[Pin] model_name signal_name\n1 NC S\n[Pin]\n2 S GND\n");
  ASSERT_EQ(pins.size(), 2U);
  EXPECT_EQ(pins[0].signal_name, "S");
  EXPECT_EQ(pins[0].model_name, "NC");
  EXPECT_EQ(pins[1].name, "2");
  EXPECT_EQ(pins[1].signal_name, "S_1");
  EXPECT_EQ(pins[1].model_name, "GND");
  EXPECT_EQ(pins[1].line, 5);
}

TEST(Pins, LinesCountAllLinesOfTheFile) {
  Pins pins("| remark\n[Pin]\n\n1 S NC\n| remark\n2 T NC | more\n");
  EXPECT_EQ(pins[0].line, 5);
  EXPECT_EQ(pins[1].line, 7);
}

TEST(Pins, ReaderLeavesTheIndexOnItsLastRow) {
  const Scanned scanned("[Pin]\n1 S NC\n2 T NC\n[Diff Pin]\n1 2\n");
  IBISComponent component;
  std::int32_t index = 0;
  readPins(component, scanned.records(), index);
  EXPECT_EQ(index, 2);
  EXPECT_EQ(component.pins.size(), 2U);
}

TEST(Pins, TableWithoutRowsLeavesTheIndexOnTheKeyword) {
  const Scanned scanned("[Pin] signal_name\n[Diff Pin]\n1 2\n");
  IBISComponent component;
  std::int32_t index = 0;
  readPins(component, scanned.records(), index);
  EXPECT_EQ(index, 0);
  EXPECT_TRUE(component.pins.empty());
}

}  // namespace
}  // namespace ibis::testing
