#include "component/component_reader.h"

#include <set>

#include "harness/harness.h"
#include "reader/vocabulary.h"

namespace ibis::testing {
namespace {

using Numbers = std::vector<double>;

Numbers typMinMax(const IBISTriple& triple) { return {triple.typ, triple.min, triple.max}; }

// What the reader makes of records alone, without the walk over the file's sections.
struct Read {
  explicit Read(IBISRecords records, std::int32_t start = 0) : index(start) {
    ended = readComponent(component, records, index, nameTable, recorder);
  }

  IBISComponent component;
  std::int32_t index;
  IBISNameTable nameTable;
  Recorder recorder;
  bool ended = false;
};

// Records by hand, for some keywords of the table never come out of a scan.
IBISRecord makeRecord(std::int32_t line, std::int32_t id, std::string_view text) {
  return {.begin = text.data(),
          .line = line,
          .keyword = static_cast<std::uint8_t>(id),
          .length = static_cast<std::uint8_t>(text.size())};
}

// A component with the keyword on line 7, a data line below it, and a manufacturer behind that.
struct ReadKeyword {
  explicit ReadKeyword(std::string_view name)
      : records{makeRecord(5, keyword::component, " Amplifier"),
                makeRecord(7, keywordId(name), " text"),
                makeRecord(8, keyword::dataLine, "Si_location Pin"),
                makeRecord(9, keyword::manufacturer, " Maker")},
        read(records) {}

  std::vector<IBISRecord> records;
  Read read;
};

struct KeywordMessage {
  const char* name;
  const char* message;
};

const KeywordMessage reportedKeywords[] = {
    {"IBIS Ver", "Line 7: Keyword 'IBIS Ver' expected in header definition only"},
    {"File Name", "Line 7: Keyword 'File Name' expected in header definition only"},
    {"File Rev", "Line 7: Keyword 'File Rev' expected in header definition only"},
    {"Date", "Line 7: Keyword 'Date' expected in header definition only"},
    {"Source", "Line 7: Keyword 'Source' expected in header definition only"},
    {"Notes", "Line 7: Keyword 'Notes' expected in header definition only"},
    {"Disclaimer", "Line 7: Keyword 'Disclaimer' expected in header definition only"},
    {"Copyright", "Line 7: Keyword 'Copyright' expected in header definition only"},
    {"Pin Mapping", "Line 7: Pin Mapping is not currently supported"},
    {"Series Pin Mapping", "Line 7: Series Pin Mapping is not currently supported"},
    {"Series Switch Groups", "Line 7: Series Switch Groups are not currently supported"},
    {"Model Spec", "Line 7: Keyword 'Model Spec' expected in [Model] definition only"},
    {"Driver Schedule", "Line 7: Keyword 'Driver Schedule' expected in [Model] definition only"},
    {"Temperature Range",
     "Line 7: Keyword 'Temperature Range' expected in [Model] definition only"},
    {"Voltage Range", "Line 7: Keyword 'Voltage Range' expected in [Model] definition only"},
    {"Pullup Reference", "Line 7: Keyword 'Pullup Reference' expected in [Model] definition only"},
    {"Pulldown Reference",
     "Line 7: Keyword 'Pulldown Reference' expected in [Model] definition only"},
    {"POWER Clamp Reference",
     "Line 7: Keyword 'POWER Clamp Reference' expected in [Model] definition only"},
    {"GND Clamp Reference",
     "Line 7: Keyword 'GND Clamp Reference' expected in [Model] definition only"},
    {"TTgnd", "Line 7: Keyword 'TTgnd' expected in [Model] definition only"},
    {"TTpower", "Line 7: Keyword 'TTpower' expected in [Model] definition only"},
    {"Pulldown", "Line 7: Keyword 'Pulldown' expected in [Model] definition only"},
    {"Pullup", "Line 7: Keyword 'Pullup' expected in [Model] definition only"},
    {"GND Clamp", "Line 7: Keyword 'GND Clamp' expected in [Model] definition only"},
    {"POWER Clamp", "Line 7: Keyword 'POWER Clamp' expected in [Model] definition only"},
    {"Rgnd", "Line 7: Keyword 'Rgnd' expected in [Model] definition only"},
    {"Rpower", "Line 7: Keyword 'Rpower' expected in [Model] definition only"},
    {"Rac", "Line 7: Keyword 'Rac' expected in [Model] definition only"},
    {"Cac", "Line 7: Keyword 'Cac' expected in [Model] definition only"},
    {"On", "Line 7: Keyword 'On' expected in [Model] definition only"},
    {"Off", "Line 7: Keyword 'Off' expected in [Model] definition only"},
    {"R Series", "Line 7: Keyword 'R Series' expected in [Model] definition only"},
    {"L Series", "Line 7: Keyword 'L Series' expected in [Model] definition only"},
    {"R1 Series", "Line 7: Keyword 'R1 Series' expected in [Model] definition only"},
    {"C_Series", "Line 7: Keyword 'C_Series' expected in [Model] definition only"},
    {"Lc Series", "Line 7: Keyword 'Lc Series' expected in [Model] definition only"},
    {"Series Current", "Line 7: Keyword 'Series Current' expected in [Model] definition only"},
    {"Series MOSFET", "Line 7: Keyword 'Series MOSFET' expected in [Model] definition only"},
    {"Ramp", "Line 7: Keyword 'Ramp' expected in [Model] definition only"},
    {"Rising Waveform", "Line 7: Keyword 'Rising Waveform' expected in [Model] definition only"},
    {"Falling Waveform", "Line 7: Keyword 'Falling Waveform' expected in [Model] definition only"},
    {"Add Submodel", "Line 7: Keyword 'Add Submodel' not supported nor expected in this context"},
    {"Submodel Spec", "Line 7: Keyword 'Submodel Spec' not supported nor expected in this context"},
    {"GND Pulse Table",
     "Line 7: Keyword 'GND Pulse Table' not supported nor expected in this context"},
    {"POWER_Pulse_Table",
     "Line 7: Keyword 'POWER_Pulse_Table' not supported nor expected in this context"},
    {"OEM", "Line 7: Keyword 'OEM' expected in [Package Model] definition only"},
    {"Description", "Line 7: Keyword 'Description' expected in [Package Model] definition only"},
    {"Number Of Sections",
     "Line 7: Keyword 'Number Of Sections' expected in [Package Model] definition only"},
    {"Number Of Pins",
     "Line 7: Keyword 'Number Of Pins' expected in [Package Model] definition only"},
    {"Pin Numbers", "Line 7: Keyword 'Pin Numbers' expected in [Package Model] definition only"},
    {"Model Data", "Line 7: Keyword 'Model Data' expected in [Package Model] definition only"},
    {"End Model Data",
     "Line 7: Keyword 'End Model Data' expected in [Package Model] definition only"},
    {"Resistance Matrix",
     "Line 7: Keyword 'Resistance Matrix' expected in [Package Model] definition only"},
    {"Inductance Matrix",
     "Line 7: Keyword 'Inductance Matrix' expected in [Package Model] definition only"},
    {"Capacitance Matrix",
     "Line 7: Keyword 'Capacitance Matrix' expected in [Package Model] definition only"},
    {"Row", "Line 7: Keyword 'Row' expected in [Package Model] definition only"},
    {"Bandwidth", "Line 7: Keyword 'Bandwidth' expected in [Package Model] definition only"},
    {"End Package Model",
     "Line 7: Keyword 'End Package Model' expected in [Package Model] definition only"},
    {"Node Declarations", "Line 7: Keyword 'Node Declarations' not currently supported"},
    {"Circuit Call", "Line 7: Keyword 'Circuit Call' not currently supported"},
};

const char* const endingKeywords[] = {"Component",       "Model Selector",       "Model",
                                      "Submodel",        "Define Package Model", "End",
                                      "External Circuit"};

const char* const readKeywords[] = {"Manufacturer", "Package", "Pin", "Package Model", "Diff Pin"};

const char* const silentKeywords[] = {"Comment Char",
                                      "External Reference",
                                      "Alternate Package Models",
                                      "End Alternate Package Models",
                                      "Receiver Thresholds",
                                      "Test Data",
                                      "Rising Waveform Near",
                                      "Falling Waveform Near",
                                      "Rising Waveform Far",
                                      "Falling Waveform Far",
                                      "Diff Rising Waveform Near",
                                      "Diff Falling Waveform Near",
                                      "Diff Rising Waveform Far",
                                      "Diff Falling Waveform Far",
                                      "Test Load",
                                      "End External Circuit",
                                      "External Model",
                                      "End External Model",
                                      "End Node Declarations",
                                      "End Circuit Call"};

TEST(ComponentKeywords, TablesOfTheTestsHoldEachKeywordOnce) {
  std::multiset<std::string> named(std::begin(endingKeywords), std::end(endingKeywords));
  named.insert(std::begin(readKeywords), std::end(readKeywords));
  named.insert(std::begin(silentKeywords), std::end(silentKeywords));
  for (const KeywordMessage& row : reportedKeywords) named.insert(row.name);
  std::multiset<std::string> known;
  for (const KeywordRow& row : keywordTable()) known.emplace(row.name);
  EXPECT_EQ(named, known);
}

TEST(ComponentKeywords, ReportedOnesAreToldWithTheirLineAndReadingGoesOn) {
  for (const KeywordMessage& row : reportedKeywords) {
    SCOPED_TRACE(row.name);
    const ReadKeyword result(row.name);
    EXPECT_MESSAGES(result.read.recorder.errors, row.message);
    EXPECT_MESSAGES(result.read.recorder.warnings);
    EXPECT_EQ(result.read.component.siLocation, 2);
    EXPECT_EQ(result.read.component.manufacturer, "Maker");
    EXPECT_FALSE(result.read.ended);
  }
}

TEST(ComponentKeywords, EndingOnesLeaveTheIndexOneAheadOfThem) {
  for (const char* name : endingKeywords) {
    SCOPED_TRACE(name);
    const ReadKeyword result(name);
    EXPECT_MESSAGES(result.read.recorder.errors);
    EXPECT_TRUE(result.read.ended);
    EXPECT_EQ(result.read.index, 0);
    EXPECT_EQ(result.read.component.manufacturer, "");
  }
}

TEST(ComponentKeywords, ReadOnesAreNotReported) {
  for (const char* name : readKeywords) {
    SCOPED_TRACE(name);
    const ReadKeyword result(name);
    EXPECT_MESSAGES(result.read.recorder.errors);
    EXPECT_MESSAGES(result.read.recorder.warnings);
    EXPECT_EQ(result.read.component.siLocation, 2);
    EXPECT_EQ(result.read.component.manufacturer, "Maker");
    EXPECT_FALSE(result.read.ended);
  }
}

TEST(ComponentKeywords, SilentOnesAreSkippedWithTheirLines) {
  for (const char* name : silentKeywords) {
    SCOPED_TRACE(name);
    const ReadKeyword result(name);
    EXPECT_MESSAGES(result.read.recorder.errors);
    EXPECT_MESSAGES(result.read.recorder.warnings);
    EXPECT_EQ(result.read.component.siLocation, 2);
    EXPECT_EQ(result.read.component.manufacturer, "Maker");
    EXPECT_FALSE(result.read.ended);
  }
}

TEST(ComponentKeywords, EachReportedOneCountsAgain) {
  Parsed parsed("[Component] A\n[Date] today\n[OEM] x\n\n[Date] tomorrow\n");
  EXPECT_MESSAGES(parsed.errors(), "Line 2: Keyword 'Date' expected in header definition only",
                  "Line 3: Keyword 'OEM' expected in [Package Model] definition only",
                  "Line 5: Keyword 'Date' expected in header definition only");
}

TEST(ComponentKeywords, WaveformIsReportedAndItsTableSkipped) {
  Parsed parsed(lines({"[Component] A", "[Rising Waveform]", "R_fixture = 50", "0 0 0 0",
                       "1n 1 1 1", "[Pin]", "1 S NC"}));
  EXPECT_MESSAGES(parsed.errors(),
                  "Line 2: Keyword 'Rising Waveform' expected in [Model] definition only");
  ASSERT_EQ(parsed.component().pins.size(), 1U);
  EXPECT_EQ(parsed.component().pins[0].name, "1");
}

TEST(ComponentKeywords, UnsupportedTablesAreReadAllTheSame) {
  Parsed parsed(lines({"[Component] A", "[Pin Mapping]", "1 A B C D", "[Series Pin Mapping]",
                       "1 2 M", "[Series Switch Groups]", "On 1 /"}));
  EXPECT_MESSAGES(parsed.errors(), "Line 2: Pin Mapping is not currently supported",
                  "Line 4: Series Pin Mapping is not currently supported",
                  "Line 6: Series Switch Groups are not currently supported");
  EXPECT_EQ(parsed.component().pinMappings.size(), 1U);
  EXPECT_EQ(parsed.component().seriesPinMappings.size(), 1U);
  EXPECT_EQ(parsed.component().seriesSwitchGroups.size(), 1U);
}

TEST(ComponentReader, DoesNothingAtAnyOtherRecord) {
  const Scanned scanned("[Manufacturer] Maker\nSi_location Pin\n[Component] A\n");
  for (const std::int32_t start : {0, 1, 3, -1}) {
    SCOPED_TRACE(start);
    const Read read(scanned.records(), start);
    EXPECT_FALSE(read.ended);
    EXPECT_EQ(read.index, start);
    EXPECT_EQ(read.component.name, "");
    EXPECT_EQ(read.component.manufacturer, "");
    EXPECT_MESSAGES(read.recorder.errors);
  }
}

TEST(ComponentReader, EmptyComponentEndsAtTheNextOne) {
  const Scanned scanned("[Component] A\n[Component] B\n[Manufacturer] Maker\n");
  const Read read(scanned.records());
  EXPECT_TRUE(read.ended);
  EXPECT_EQ(read.index, 0);
  EXPECT_EQ(read.component.name, "A");
  EXPECT_EQ(read.component.manufacturer, "");
  EXPECT_EQ(read.component.siLocation, 2);
  EXPECT_EQ(read.component.timingLocation, 2);
  EXPECT_TRUE(read.component.pins.empty());
}

TEST(ComponentReader, StopsOneAheadOfTheEndingKeywordBehindATable) {
  const Scanned scanned("[Component] A\n[Pin]\n1 S NC\n2 T NC\n[Model] M\n");
  const Read read(scanned.records());
  EXPECT_TRUE(read.ended);
  EXPECT_EQ(read.index, 3);
  EXPECT_EQ(read.component.pins.size(), 2U);
}

TEST(ComponentReader, GivesFalseWhenTheRecordsRunOutInATable) {
  const Scanned scanned("[Component] A\n[Pin]\n1 S NC");
  const Read read(scanned.records());
  EXPECT_FALSE(read.ended);
  EXPECT_EQ(read.component.pins.size(), 1U);
}

TEST(ComponentReader, LetsTheFileEndInATable) {
  Parsed parsed("[Component] A\n[Pin]\n1 S NC");
  EXPECT_MESSAGES(parsed.errors());
  EXPECT_EQ(parsed.data().components.size(), 1U);
  EXPECT_EQ(parsed.component().pins.size(), 1U);
}

TEST(ComponentHead, TakesTheTrimmedNameAndItsSpiceForm) {
  Parsed parsed("[Component] \tTop.Level-2 \t\n[End]\n");
  EXPECT_EQ(parsed.component().name, "Top.Level-2");
  EXPECT_EQ(parsed.component().spiceName, "Top_Level_2");
}

TEST(ComponentHead, ComponentsOfOneNameShareTheSpiceName) {
  Parsed parsed("[Component] A.B\n[Component] A-B\n[Component] A.B\n");
  ASSERT_EQ(parsed.data().components.size(), 3U);
  EXPECT_EQ(parsed.component(0).spiceName, "A_B");
  EXPECT_EQ(parsed.component(1).spiceName, "A_B_1");
  EXPECT_EQ(parsed.component(2).spiceName, "A_B");
}

TEST(ComponentHead, ReservedNameIsFoldedAndSharesTheBuiltInEntry) {
  Parsed parsed("[Component] gnd\n");
  EXPECT_EQ(parsed.component().name, "GND");
  EXPECT_EQ(parsed.component().spiceName, "GND");
}

struct LocationCase {
  const char* line;
  std::int32_t siLocation;
  std::int32_t timingLocation;
};

TEST(ComponentHead, ReadsTheLocations) {
  const LocationCase cases[] = {
      {"Si_location Pin", 1, 2},     {"Si_location Die", 0, 2},       {"Timing_location Pin", 2, 1},
      {"Timing_location Die", 2, 0}, {" \tSi_location\t Pin ", 1, 2}, {"Si_location Die Pin", 0, 2},
      {"si_location Pin", 2, 2},     {"Timing_Location Pin", 2, 2},   {"si_location nowhere", 2, 2},
      {"Si_location=Pin", 2, 2},     {"Location Pin", 2, 2},          {"Pin Si_location", 2, 2},
  };
  for (const LocationCase& item : cases) {
    SCOPED_TRACE(item.line);
    Parsed parsed(lines({"[Component] A", item.line}));
    EXPECT_EQ(parsed.component().siLocation, item.siLocation);
    EXPECT_EQ(parsed.component().timingLocation, item.timingLocation);
    EXPECT_MESSAGES(parsed.errors());
  }
}

TEST(ComponentHead, LaterLocationLineReplacesTheEarlier) {
  Parsed parsed(lines(
      {"[Component] A", "Si_location Pin", "Timing_location Pin", "a remark", "Si_location Die"}));
  EXPECT_EQ(parsed.component().siLocation, 0);
  EXPECT_EQ(parsed.component().timingLocation, 1);
}

struct BadLocation {
  const char* line;
  const char* message;
};

TEST(ComponentHead, ReportsAnyOtherLocationAndKeepsTheValue) {
  const BadLocation cases[] = {
      {"Si_location pin", "Line 3: Unexpected location name 'pin'"},
      {"Si_location DIE", "Line 3: Unexpected location name 'DIE'"},
      {"Si_location", "Line 3: Unexpected location name ''"},
      {"Timing_location Package Pin", "Line 3: Unexpected location name 'Package'"},
      {"Timing_location", "Line 3: Unexpected location name ''"},
      {"Si_location = Pin", "Line 3: Unexpected location name '='"},
  };
  for (const BadLocation& item : cases) {
    SCOPED_TRACE(item.line);
    Parsed parsed(lines({"[Component] A", "Si_location Die", item.line, "Timing_location Pin"}));
    EXPECT_MESSAGES(parsed.errors(), item.message);
    EXPECT_EQ(parsed.component().siLocation, 0);
    EXPECT_EQ(parsed.component().timingLocation, 1);
  }
}

TEST(ComponentHead, SeesNoLocationBehindItsFirstKeyword) {
  for (const char* name : {"[Manufacturer] M", "[Package]", "[Package Model] P", "[Diff Pin]",
                           "[Test Load] T", "[External Reference]"}) {
    SCOPED_TRACE(name);
    Parsed parsed(lines({"[Component] A", name, "Si_location Pin", "Timing_location nowhere"}));
    EXPECT_EQ(parsed.component().siLocation, 2);
    EXPECT_EQ(parsed.component().timingLocation, 2);
    EXPECT_MESSAGES(parsed.errors());
  }
}

TEST(ComponentTexts, AreTrimmedAndFoldedAndTheLastCounts) {
  Parsed parsed(lines({"[Component] A", "[Manufacturer] First", "[Package Model] nc",
                       "[Manufacturer]  Best Makers, Ltd.\t"}));
  EXPECT_EQ(parsed.component().manufacturer, "Best Makers, Ltd.");
  EXPECT_EQ(parsed.component().packageModelName, "NC");
}

TEST(ComponentTexts, BelongToTheirOwnComponent) {
  Parsed parsed(
      lines({"[Component] A", "[Manufacturer] MA", "[Component] B", "[Package Model] PB"}));
  EXPECT_EQ(parsed.component(0).manufacturer, "MA");
  EXPECT_EQ(parsed.component(0).packageModelName, "");
  EXPECT_EQ(parsed.component(1).manufacturer, "");
  EXPECT_EQ(parsed.component(1).packageModelName, "PB");
}

TEST(Package, StartsPresentWithZeros) {
  const IBISPackage package;
  for (const IBISTriple& triple : {package.R_pkg, package.L_pkg, package.C_pkg}) {
    EXPECT_TRUE(triple.present);
    EXPECT_EQ(typMinMax(triple), (Numbers{0, 0, 0}));
  }
}

struct PackageCase {
  const char* line;
  Numbers resistance;
};

TEST(Package, ReadsOneVariable) {
  const PackageCase cases[] = {
      {"R_pkg 1 2 4", {1, 2, 4}},
      {"\tR_pkg\t1 \t2  4\t", {1, 2, 4}},
      {"R_pkg 1m NA NA", {0.001, 0.001, 0.001}},
      {"R_pkg 5", {5, 0, 0}},
      {"R_pkg 5 NA NA", {5, 5, 5}},
      {"R_pkg 5 NA", {5, 5, 0}},
      {"R_pkg NA 2 NA", {0, 2, 0}},
      {"R_pkg NA NA NA", {0, 0, 0}},
      {"R_pkg 5 na Na", {5, 0, 0}},
      {"R_pkg 2mOhm 1m 4m ohms", {2 * 1e-3, 1e-3, 4 * 1e-3}},
      {"R_pkg", {0, 0, 0}},
      {"R_pkg none 1 2", {0, 1, 2}},
      {"R_pkg = 1 2", {0, 1, 2}},
      {"r_pkg 1 2 4", {0, 0, 0}},
      {"R_PKG 1 2 4", {0, 0, 0}},
      {"R_pin 1 2 4", {0, 0, 0}},
      {"R_pkg=1 2 4", {0, 0, 0}},
  };
  for (const PackageCase& item : cases) {
    SCOPED_TRACE(item.line);
    Parsed parsed(lines({"[Component] A", "[Package]", item.line}));
    EXPECT_EQ(typMinMax(parsed.component().package.R_pkg), item.resistance);
    EXPECT_TRUE(parsed.component().package.R_pkg.present);
    EXPECT_MESSAGES(parsed.errors());
  }
}

TEST(Package, KeepsItsThreeVariablesApart) {
  Parsed parsed(lines({"[Component] A", "[Package]", "| typ min max", "variable typ min max",
                       "C_pkg 1 2 4", "R_pkg 8 16 32", "L_pkg 64 128 256"}));
  const IBISPackage& package = parsed.component().package;
  EXPECT_EQ(typMinMax(package.R_pkg), (Numbers{8, 16, 32}));
  EXPECT_EQ(typMinMax(package.L_pkg), (Numbers{64, 128, 256}));
  EXPECT_EQ(typMinMax(package.C_pkg), (Numbers{1, 2, 4}));
}

TEST(Package, SecondSectionOverwritesOnlyWhatItNames) {
  Parsed parsed(lines({"[Component] A", "[Package]", "R_pkg 1 2 4", "L_pkg 8 16 32",
                       "C_pkg 64 128 256", "[Package]", "L_pkg 3 NA NA"}));
  const IBISPackage& package = parsed.component().package;
  EXPECT_EQ(typMinMax(package.R_pkg), (Numbers{1, 2, 4}));
  EXPECT_EQ(typMinMax(package.L_pkg), (Numbers{3, 3, 3}));
  EXPECT_EQ(typMinMax(package.C_pkg), (Numbers{64, 128, 256}));
}

TEST(Package, LaterLineOverwritesTheWholeVariable) {
  Parsed parsed(lines({"[Component] A", "[Package]", "R_pkg 1 2 4", "R_pkg 8"}));
  EXPECT_EQ(typMinMax(parsed.component().package.R_pkg), (Numbers{8, 0, 0}));
}

TEST(Package, TakesNothingFromTheKeywordsOwnLine) {
  Parsed parsed(lines({"[Component] A", "[Package] R_pkg 1 2 4"}));
  EXPECT_EQ(typMinMax(parsed.component().package.R_pkg), (Numbers{0, 0, 0}));
}

TEST(Package, EndsAtTheNextKeyword) {
  Parsed parsed(
      lines({"[Component] A", "[Package]", "R_pkg 1 2 4", "[Test Load]", "R_pkg 8 16 32"}));
  EXPECT_EQ(typMinMax(parsed.component().package.R_pkg), (Numbers{1, 2, 4}));
}

}  // namespace
}  // namespace ibis::testing
