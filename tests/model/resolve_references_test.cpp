#include "model/resolve_references.h"

#include <cmath>
#include <limits>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

const std::string pullupDiffers =
    "Model 'X': Pullup reference does not match Power clamp reference. This is legal but not "
    "currently supported";
const std::string pulldownDiffers =
    "Model 'X': Pulldown reference does not match GND clamp reference. This is legal but not "
    "currently supported";

/// A triple as the file gives it, in the file's order of columns.
IBISTriple given(double typ, double min, double max) {
  return {.present = true, .typ = typ, .max = max, .min = min};
}

struct Resolved {
  explicit Resolved(const IBISModel& given) : model(given) {
    model.name = "X";
    result = resolveReferences(model, told);
  }

  IBISModel model;
  Recorder told;
  bool result = false;
};

TEST(ResolveReferences, FillsADriverFromItsVoltageRangeWithoutAMessage) {
  IBISModel model;
  model.type = ModelType::inputOutput;
  model.voltageRange = given(3.3, 3.0, 3.6);
  model.pulldown.present = model.pullup.present = true;
  model.gndClamp.present = model.powerClamp.present = true;
  const Resolved resolved(model);
  EXPECT_TRUE(resolved.result);
  EXPECT_MESSAGES(resolved.told.errors);
  EXPECT_MESSAGES(resolved.told.warnings);
  EXPECT_EQ(resolved.model.pullupReference, given(3.3, 3.0, 3.6));
  EXPECT_EQ(resolved.model.powerClampReference, given(3.3, 3.0, 3.6));
  EXPECT_EQ(resolved.model.pulldownReference, IBISTriple());
  EXPECT_EQ(resolved.model.gndClampReference, IBISTriple());
}

TEST(ResolveReferences, KeepsTheReferencesThatTheFileGives) {
  IBISModel model;
  model.voltageRange = given(3.3, 3.0, 3.6);
  model.pullupReference = model.powerClampReference = given(5.0, 4.5, 5.5);
  model.pulldownReference = model.gndClampReference = given(-2.0, -2.5, -1.5);
  const Resolved resolved(model);
  EXPECT_TRUE(resolved.result);
  EXPECT_MESSAGES(resolved.told.errors);
  EXPECT_EQ(resolved.model.pullupReference, given(5.0, 4.5, 5.5));
  EXPECT_EQ(resolved.model.powerClampReference, given(5.0, 4.5, 5.5));
  EXPECT_EQ(resolved.model.pulldownReference, given(-2.0, -2.5, -1.5));
  EXPECT_EQ(resolved.model.gndClampReference, given(-2.0, -2.5, -1.5));
}

TEST(ResolveReferences, MakesLowReferencesThatAreNotGivenZero) {
  IBISModel model;
  model.pulldownReference = {.present = false, .typ = 1.0, .max = 2.0, .min = 3.0};
  model.gndClampReference = {.present = false, .typ = 4.0, .max = 5.0, .min = 6.0};
  const Resolved resolved(model);
  EXPECT_TRUE(resolved.result);
  EXPECT_EQ(resolved.model.pulldownReference, IBISTriple());
  EXPECT_EQ(resolved.model.gndClampReference, IBISTriple());
}

struct TableRow {
  IBISTable IBISModel::*table;
  IBISTriple IBISModel::*reference;
  std::string message;
};

const TableRow tableRows[] = {
    {&IBISModel::pulldown, &IBISModel::pulldownReference,
     "Model 'X': No pulldown reference or voltage range defined"},
    {&IBISModel::pullup, &IBISModel::pullupReference,
     "Model 'X': No pullup reference or voltage range defined"},
    {&IBISModel::gndClamp, &IBISModel::gndClampReference,
     "Model 'X': No ground clamp reference or voltage range defined"},
    {&IBISModel::powerClamp, &IBISModel::powerClampReference,
     "Model 'X': No power clamp reference or voltage range defined"},
};

TEST(ResolveReferences, ReportsATableWithoutReferenceAndRange) {
  for (const TableRow& row : tableRows) {
    IBISModel model;
    (model.*row.table).present = true;
    const Resolved resolved(model);
    EXPECT_FALSE(resolved.result) << row.message;
    EXPECT_MESSAGES(resolved.told.errors, row.message);
    EXPECT_MESSAGES(resolved.told.warnings);
    EXPECT_EQ(resolved.model.*row.reference, IBISTriple()) << row.message;
  }
}

TEST(ResolveReferences, ReportsAllTablesWithoutReferenceInOrder) {
  IBISModel model;
  for (const TableRow& row : tableRows) (model.*row.table).present = true;
  const Resolved resolved(model);
  EXPECT_FALSE(resolved.result);
  EXPECT_MESSAGES(resolved.told.errors, tableRows[0].message, tableRows[1].message,
                  tableRows[2].message, tableRows[3].message);
}

TEST(ResolveReferences, TakesATableWhoseOwnReferenceIsGiven) {
  for (const TableRow& row : tableRows) {
    IBISModel model;
    (model.*row.table).present = true;
    model.*row.reference = given(0.0, 0.0, 0.0);
    const Resolved resolved(model);
    EXPECT_TRUE(resolved.result) << row.message;
    EXPECT_MESSAGES(resolved.told.errors);
  }
}

TEST(ResolveReferences, ReportsNothingWithoutRangeAndTables) {
  const Resolved resolved{IBISModel()};
  EXPECT_TRUE(resolved.result);
  EXPECT_MESSAGES(resolved.told.errors);
  EXPECT_EQ(resolved.model.pullupReference, IBISTriple());
  EXPECT_EQ(resolved.model.powerClampReference, IBISTriple());
}

TEST(ResolveReferences, ReportsAPowerClampReferenceThatDiffersFromThePullupReferenceOnce) {
  IBISModel model;
  model.pullupReference = given(3.3, 3.0, 3.6);
  model.powerClampReference = given(5.0, 4.5, 5.5);
  const Resolved resolved(model);
  EXPECT_TRUE(resolved.result);
  EXPECT_MESSAGES(resolved.told.errors, pullupDiffers);
  EXPECT_MESSAGES(resolved.told.warnings);
}

TEST(ResolveReferences, LetsTheRestOfAModelOfDifferingReferencesBeProcessed) {
  Parsed parsed(
      "[Component] U1\n[Model] X\nModel_type Input\n[Voltage Range] 3.3 3.0 3.6\n"
      "[Pullup Reference] 3.3 3.0 3.6\n[POWER Clamp Reference] 5 4.5 5.5\n");
  parsed.resolve();
  EXPECT_MESSAGES(parsed.errors(), pullupDiffers);
  EXPECT_MESSAGES(parsed.warnings(), "Model 'X': Vinl not defined using default 0.8V",
                  "Model 'X': Vinh not defined using default 2.0V");
  EXPECT_EQ(parsed.model().vinl.typ, 2.0);
}

TEST(ResolveReferences, ReportsAPullupReferenceWithoutRangeAndPowerClampReference) {
  IBISModel model;
  model.pullupReference = given(3.3, 3.0, 3.6);
  const Resolved resolved(model);
  EXPECT_TRUE(resolved.result);
  EXPECT_MESSAGES(resolved.told.errors, pullupDiffers);
  EXPECT_EQ(resolved.model.powerClampReference, IBISTriple());
}

TEST(ResolveReferences, TakesAPullupReferenceOfZeroWithoutRangeAndPowerClampReference) {
  IBISModel model;
  model.pullupReference = given(0.0, -0.0, 0.0);
  const Resolved resolved(model);
  EXPECT_TRUE(resolved.result);
  EXPECT_MESSAGES(resolved.told.errors);
  EXPECT_EQ(resolved.model.powerClampReference, IBISTriple());
}

TEST(ResolveReferences, ReportsLowReferencesThatDiffer) {
  IBISModel model;
  model.voltageRange = given(3.3, 3.0, 3.6);
  model.gndClampReference = given(-2.0, -2.0, -2.0);
  const Resolved resolved(model);
  EXPECT_TRUE(resolved.result);
  EXPECT_MESSAGES(resolved.told.errors, pulldownDiffers);
}

TEST(ResolveReferences, ComparesEveryCornerToTheLastBit) {
  for (const IBISTriple& other :
       {given(std::nextafter(5.0, 6.0), 4.5, 5.5), given(5.0, std::nextafter(4.5, 6.0), 5.5),
        given(5.0, 4.5, std::nextafter(5.5, 6.0))}) {
    IBISModel model;
    model.pullupReference = model.gndClampReference = given(5.0, 4.5, 5.5);
    model.powerClampReference = model.pulldownReference = other;
    const Resolved resolved(model);
    EXPECT_TRUE(resolved.result);
    EXPECT_MESSAGES(resolved.told.errors, pullupDiffers, pulldownDiffers);
  }
}

TEST(ResolveReferences, SaysThatReferencesOfNoNumberDiffer) {
  IBISModel model;
  model.voltageRange = given(notANumber, 3.0, 3.6);
  const Resolved resolved(model);
  EXPECT_TRUE(resolved.result);
  EXPECT_MESSAGES(resolved.told.errors, pullupDiffers);
}

TEST(ResolveReferences, ComparesReferencesAfterOneWasMissing) {
  IBISModel model;
  model.pullup.present = true;
  model.powerClampReference = given(5.0, 4.5, 5.5);
  model.gndClampReference = given(1.0, 1.0, 1.0);
  const Resolved resolved(model);
  EXPECT_FALSE(resolved.result);
  EXPECT_MESSAGES(resolved.told.errors, "Model 'X': No pullup reference or voltage range defined",
                  pullupDiffers, pulldownDiffers);
}

}  // namespace
}  // namespace ibis::testing
