#include "component/pin_resolution.h"

#include <initializer_list>

#include "harness/harness.h"

namespace ibis::testing {
namespace {

constexpr const char* twoModels = "[Model] A\nModel_type Input\n[Model] B\nModel_type Input\n";

/// A component whose pin rows begin on line 3 and are followed by the header of the pairs.
std::string source(const Texts& pins, const Texts& pairs = {}, const std::string& rest = {}) {
  std::string text = "[Component] U1\n[Pin]\n";
  for (const std::string& row : pins) text += row + "\n";
  text += "[Diff Pin]\n";
  for (const std::string& row : pairs) text += row + "\n";
  return text + rest + twoModels;
}

/// A source whose first component has been prepared, without the checks of models behind that.
struct Prepared {
  explicit Prepared(const std::string& text, const Texts& wanted = {}) : parsed(text) {
    EXPECT_MESSAGES(parsed.errors());
    const std::vector<IBISString> names(wanted.begin(), wanted.end());
    prepareComponent(component(), ModelFinder(parsed.data()), PinFilter(names), told);
  }

  IBISComponent& component() { return parsed.component(); }
  const IBISPinEntry& entry(std::size_t place) { return component().pinEntries.at(place); }

  /// Each entry as "pin:model", or as "pin+inverted:model" for a pair.
  Texts entries() {
    Texts texts;
    for (const IBISPinEntry& entry : component().pinEntries) {
      std::string text = entry.pin->name.str();
      if (entry.isPair()) text += "+" + entry.invertedPin->name.str();
      texts.push_back(text + ":" + entry.model->name.str());
    }
    return texts;
  }

  Texts models() {
    Texts names;
    for (const IBISModel* model : component().models) names.push_back(model->name.str());
    return names;
  }

  Parsed parsed;
  Recorder told;
};

TEST(ResolvePinModels, GivesEachPinTheModelOfItsName) {
  Prepared prepared(source({"1 S1 B", "2 S2 A"}));
  EXPECT_EQ(prepared.component().pins[0].model, &prepared.parsed.model(1));
  EXPECT_EQ(prepared.component().pins[1].model, &prepared.parsed.model(0));
  EXPECT_MESSAGES(prepared.told.errors);
  EXPECT_MESSAGES(prepared.told.warnings);
}

TEST(ResolvePinModels, FindsTheBuiltInModelsInWhateverCase) {
  Prepared prepared(source({"1 S1 GND", "2 S2 gnd", "3 S3 Power", "4 S4 POWER", "5 S5 nC"}));
  EXPECT_EQ(prepared.entries(), (Texts{"1:GND", "2:GND", "3:POWER", "4:POWER", "5:NC"}));
  EXPECT_EQ(prepared.models(), (Texts{"GND", "POWER", "NC"}));
  EXPECT_EQ(prepared.entry(1).model->type, ModelType::gnd);
  EXPECT_EQ(prepared.entry(2).model->type, ModelType::power);
  EXPECT_EQ(prepared.entry(4).model->type, ModelType::nc);
  EXPECT_MESSAGES(prepared.told.errors);
}

TEST(ResolvePinModels, ReportsNaAsUndefined) {
  Prepared prepared(source({"7 S1 NA", "8 S2 na", "9 S3 A"}));
  EXPECT_MESSAGES(prepared.told.errors, "Line 3: Model referenced by pin '7' has not been defined",
                  "Line 4: Model referenced by pin '8' has not been defined");
  EXPECT_EQ(prepared.component().pins[0].model, nullptr);
  EXPECT_EQ(prepared.entries(), Texts{"9:A"});
}

TEST(ResolvePinModels, ReportsAnUnknownModelAnEmptyNameAndAnotherCase) {
  Prepared prepared(source({"1 S1 C", "2 S2", "3 S3 a"}));
  EXPECT_MESSAGES(prepared.told.errors, "Line 3: Model referenced by pin '1' has not been defined",
                  "Line 4: Model referenced by pin '2' has not been defined",
                  "Line 5: Model referenced by pin '3' has not been defined");
  EXPECT_EQ(prepared.entries(), Texts{});
  EXPECT_EQ(prepared.models(), Texts{});
}

TEST(ResolvePinModels, GoesThroughASelectorAndLeavesTheNameAsItIs) {
  Prepared prepared(source({"1 S1 choice"}, {}, "[Model Selector] choice\nB fast\nA slow\n"));
  EXPECT_EQ(prepared.entries(), Texts{"1:B"});
  EXPECT_EQ(prepared.component().pins[0].model_name, "choice");
}

TEST(BuildPinEntries, MakesASingleWithPinAndModelAlone) {
  Prepared prepared(source({"1 S1 A"}));
  ASSERT_EQ(prepared.entries(), Texts{"1:A"});
  const IBISPinEntry& entry = prepared.entry(0);
  EXPECT_EQ(entry.pin, &prepared.component().pins[0]);
  EXPECT_EQ(entry.model, &prepared.parsed.model(0));
  EXPECT_EQ(entry.invertedPin, nullptr);
  EXPECT_EQ(entry.invertedModel, nullptr);
  EXPECT_EQ(entry.diffPin, nullptr);
  EXPECT_FALSE(entry.isPair());
}

TEST(BuildPinEntries, MakesAPairWithBothPinsModelsAndTheRow) {
  Prepared prepared(source({"1 S1 A", "2 S2 A"}, {"2 1 0.25 1n 2n 3n"}));
  ASSERT_EQ(prepared.entries(), Texts{"2+1:A"});
  const IBISPinEntry& entry = prepared.entry(0);
  EXPECT_EQ(entry.pin, &prepared.component().pins[1]);
  EXPECT_EQ(entry.invertedPin, &prepared.component().pins[0]);
  EXPECT_EQ(entry.model, &prepared.parsed.model(0));
  EXPECT_EQ(entry.invertedModel, &prepared.parsed.model(0));
  EXPECT_EQ(entry.diffPin->pin, "2");
  EXPECT_EQ(entry.diffPin->inv_pin, "1");
  EXPECT_EQ(entry.diffPin->vdiff, 0.25);
  EXPECT_EQ(entry.diffPin->line, 6);
}

TEST(BuildPinEntries, IsAPairOnlyWithInvertedPinAndInvertedModel) {
  const IBISPin pin;
  const IBISModel model;
  EXPECT_FALSE((IBISPinEntry{.pin = &pin, .invertedPin = &pin, .model = &model}).isPair());
  EXPECT_FALSE((IBISPinEntry{.pin = &pin, .model = &model, .invertedModel = &model}).isPair());
  EXPECT_TRUE((IBISPinEntry{.invertedPin = &pin, .invertedModel = &model}).isPair());
}

TEST(BuildPinEntries, ListsAModelOfTwoPinsOnce) {
  Prepared prepared(source({"1 S1 B", "2 S2 B", "3 S3 A", "4 S4 B"}));
  EXPECT_EQ(prepared.models(), (Texts{"B", "A"}));
}

TEST(BuildPinEntries, ListsModelsOfPairsFirstAndThenThoseOfSinglesInFileOrder) {
  Prepared prepared(source({"9 S1 GND", "8 S2 B", "3 S3 A", "4 S4 A"}, {"3 4"}));
  EXPECT_EQ(prepared.models(), (Texts{"A", "GND", "B"}));
}

TEST(BuildPinEntries, ListsModelsOfWantedPinsAlone) {
  Prepared prepared(source({"1 S1 A", "2 S2 B", "3 S3 GND"}), {"2"});
  EXPECT_EQ(prepared.entries(), Texts{"2:B"});
  EXPECT_EQ(prepared.models(), Texts{"B"});
  EXPECT_EQ(prepared.component().pins[0].model, &prepared.parsed.model(0));
}

TEST(BuildPinEntries, ReportsADuplicatePinOnceForEachExtraRow) {
  Prepared prepared(source({"1 S A", "2 S A", "1 S A", "1 S B"}));
  EXPECT_MESSAGES(prepared.told.errors, "Line 5: Duplicate pin '1' previously defined on line 3",
                  "Line 6: Duplicate pin '1' previously defined on line 3");
  EXPECT_EQ(prepared.entries(), (Texts{"1:A", "1:A", "1:B", "2:A"}));
  EXPECT_EQ(prepared.entry(0).pin->signal_name, "S");
  EXPECT_EQ(prepared.entry(1).pin->signal_name, "S_2");
  EXPECT_EQ(prepared.entry(2).pin->signal_name, "S_3");
}

TEST(BuildPinEntries, PairsTheFirstOfDuplicatePins) {
  Prepared prepared(source({"1 S1 A", "2 S2 A", "1 S3 A"}, {"1 2"}));
  EXPECT_MESSAGES(prepared.told.errors, "Line 5: Duplicate pin '1' previously defined on line 3");
  ASSERT_EQ(prepared.entries(), Texts{"1+2:A"});
  EXPECT_EQ(prepared.entry(0).pin, &prepared.component().pins[0]);
}

TEST(BuildPinEntries, TellsPinsApartByCase) {
  Prepared prepared(source({"a1 S1 A", "A1 S2 A"}), {"A1"});
  EXPECT_MESSAGES(prepared.told.errors);
  EXPECT_EQ(prepared.entries(), Texts{"A1:A"});
}

TEST(BuildPinEntries, FoldsReservedWordsInWantedNamesAsInPins) {
  Prepared prepared(source({"gnd S1 A", "1 S2 A"}), {"Gnd"});
  EXPECT_EQ(prepared.entries(), Texts{"GND:A"});
}

TEST(BuildPinEntries, PassesOverAWantedNameThatNoPinBears) {
  Prepared one(source({"1 S1 A", "2 S2 B"}), {"X", "2"});
  EXPECT_EQ(one.entries(), Texts{"2:B"});
  EXPECT_MESSAGES(one.told.errors);
  EXPECT_MESSAGES(one.told.warnings);

  Prepared none(source({"1 S1 A", "2 S2 B"}), {"X"});
  EXPECT_EQ(none.entries(), Texts{});
  EXPECT_MESSAGES(none.told.errors);
}

TEST(DiffPinRow, IsMadeWhenTheInvertingPinAloneIsWanted) {
  Prepared prepared(source({"1 S1 A", "2 S2 A", "3 S3 B"}, {"1 2"}), {"2"});
  EXPECT_EQ(prepared.entries(), Texts{"1+2:A"});
  EXPECT_EQ(prepared.models(), Texts{"A"});
}

TEST(DiffPinRow, IsMadeWhenTheNoninvertingPinAloneIsWanted) {
  Prepared prepared(source({"1 S1 A", "2 S2 A", "3 S3 B"}, {"1 2"}), {"1"});
  EXPECT_EQ(prepared.entries(), Texts{"1+2:A"});
}

TEST(DiffPinRow, IsLeftOutWhenNeitherPinIsWanted) {
  Prepared prepared(source({"1 S1 A", "2 S2 A", "3 S3 B"}, {"1 2"}), {"3"});
  EXPECT_EQ(prepared.entries(), Texts{"3:B"});
  EXPECT_EQ(prepared.models(), Texts{"B"});
  EXPECT_MESSAGES(prepared.told.warnings);
}

TEST(DiffPinRow, OfTwoModelsFallsApartInSilenceWhenAllPinsAreWanted) {
  Prepared prepared(source({"1 S1 A", "2 S2 B"}, {"1 2"}));
  EXPECT_EQ(prepared.entries(), (Texts{"1:A", "2:B"}));
  EXPECT_MESSAGES(prepared.told.errors);
  EXPECT_MESSAGES(prepared.told.warnings);
}

TEST(DiffPinRow, OfTwoModelsWarnsWhenOnePinIsNamed) {
  const std::string text = source({"1 S1 A", "2 S2 B"}, {"1 2"});
  const std::string warning =
      "Line 6: Diff Pin's 1 and 2. Differential pins only supported if both pins reference the "
      "same model. Both pins will be treated as if independent";
  Prepared first(text, {"1"});
  EXPECT_MESSAGES(first.told.warnings, warning);
  EXPECT_EQ(first.entries(), Texts{"1:A"});

  Prepared second(text, {"2"});
  EXPECT_MESSAGES(second.told.warnings, warning);
  EXPECT_EQ(second.entries(), Texts{"2:B"});
  EXPECT_MESSAGES(second.told.errors);
}

TEST(DiffPinRow, OfTwoModelsWarnsOnceWhenBothPinsAreNamed) {
  Prepared prepared(source({"1 S1 A", "2 S2 B"}, {"1 2"}), {"2", "1"});
  EXPECT_MESSAGES(prepared.told.warnings,
                  "Line 6: Diff Pin's 1 and 2. Differential pins only supported if both pins "
                  "reference the same model. Both pins will be treated as if independent");
  EXPECT_EQ(prepared.entries(), (Texts{"1:A", "2:B"}));
}

TEST(DiffPinRow, OfTwoModelsIsSilentWhenOthersAreNamed) {
  Prepared prepared(source({"1 S1 A", "2 S2 B", "3 S3 B"}, {"1 2"}), {"3"});
  EXPECT_MESSAGES(prepared.told.warnings);
  EXPECT_EQ(prepared.entries(), Texts{"3:B"});
}

TEST(DiffPinRow, WithAnUnknownModelLosesBothPins) {
  for (const Texts& pins : {Texts{"1 S1 A", "2 S2 X"}, Texts{"2 S2 A", "1 S1 X"}}) {
    Prepared prepared(source(pins, {"1 2"}));
    EXPECT_MESSAGES(prepared.told.errors, "Line 4: Model referenced by pin '" +
                                              pins[1].substr(0, 1) + "' has not been defined");
    EXPECT_EQ(prepared.entries(), Texts{});
    EXPECT_EQ(prepared.models(), Texts{});
  }
}

TEST(DiffPinRow, WithAnUndefinedPinLosesTheOtherOneToo) {
  Prepared prepared(source({"1 S1 A", "2 S2 A", "3 S3 A"}, {"1 X", "Y 2"}));
  EXPECT_MESSAGES(prepared.told.errors, "Line 7: Inverting [Diff Pin] 'X' is not defined",
                  "Line 8: Noninverting [Diff Pin] 'Y' is not defined");
  EXPECT_EQ(prepared.entries(), Texts{"3:A"});
}

TEST(DiffPinRow, ReportsTheNoninvertingPinFirst) {
  Prepared prepared(source({"1 S1 A"}, {"X Y"}));
  EXPECT_MESSAGES(prepared.told.errors, "Line 5: Noninverting [Diff Pin] 'X' is not defined",
                  "Line 5: Inverting [Diff Pin] 'Y' is not defined");
  EXPECT_EQ(prepared.entries(), Texts{"1:A"});
}

TEST(DiffPinRow, OfOneTokenNamesTheInvertingPinNa) {
  Prepared prepared(source({"1 S1 A"}, {"1"}));
  EXPECT_MESSAGES(prepared.told.errors, "Line 5: Inverting [Diff Pin] 'NA' is not defined");
  EXPECT_EQ(prepared.entries(), Texts{});
}

TEST(DiffPinRow, FindsPinsByTheirExactNames) {
  Prepared prepared(source({"a S1 A", "b S2 A"}, {"A b"}));
  EXPECT_MESSAGES(prepared.told.errors, "Line 6: Noninverting [Diff Pin] 'A' is not defined");
  EXPECT_EQ(prepared.entries(), Texts{"a:A"});
}

TEST(DiffPinRow, MayShareAPinWithAnother) {
  Prepared prepared(source({"1 S1 A", "2 S2 A", "3 S3 A"}, {"1 3", "1 2", "1 3"}));
  EXPECT_EQ(prepared.entries(), (Texts{"1+2:A", "1+3:A", "1+3:A"}));
  EXPECT_MESSAGES(prepared.told.errors);
}

TEST(DiffPinRow, MayNameOnePinTwice) {
  Prepared prepared(source({"1 S1 A"}, {"1 1"}));
  EXPECT_EQ(prepared.entries(), Texts{"1+1:A"});
}

TEST(DiffPinRow, OfTwoModelsFreesItsPinsFromOtherRowsToo) {
  const Texts pins = {"1 S1 A", "2 S2 A", "3 S3 B"};
  const Texts expected = {"1+2:A", "1:A", "3:B"};
  EXPECT_EQ(Prepared(source(pins, {"1 2", "1 3"})).entries(), expected);
  EXPECT_EQ(Prepared(source(pins, {"1 3", "1 2"})).entries(), expected);
}

TEST(DiffPinRow, PairsPinsWhoseSelectorsLeadToOneModel) {
  Prepared prepared(source({"1 S1 choice", "2 S2 A"}, {"1 2"}, "[Model Selector] choice\nA x\n"));
  EXPECT_EQ(prepared.entries(), Texts{"1+2:A"});
}

TEST(PrepareComponent, ReportsModelsThenDuplicatesThenPairs) {
  Prepared prepared(source({"1 S1 A", "1 S2 X", "2 S3 Y"}, {"1 9", "8 2"}));
  EXPECT_MESSAGES(prepared.told.errors, "Line 4: Model referenced by pin '1' has not been defined",
                  "Line 5: Model referenced by pin '2' has not been defined",
                  "Line 4: Duplicate pin '1' previously defined on line 3",
                  "Line 7: Inverting [Diff Pin] '9' is not defined",
                  "Line 8: Noninverting [Diff Pin] '8' is not defined");
}

TEST(PrepareComponent, TakesAComponentWithoutPins) {
  Prepared prepared(source({}));
  EXPECT_EQ(prepared.entries(), Texts{});
  EXPECT_EQ(prepared.models(), Texts{});
  EXPECT_MESSAGES(prepared.told.errors);
}

TEST(ApplyPackageDefaults, GivesPinsWithoutOwnValuesThePackageBehindThem) {
  Prepared prepared(source({"1 S1 A", "2 S2 A 1 2 3", "3 S3 X"}, {},
                           "[Package]\nR_pkg 5 4 6\nL_pkg 1n\nC_pkg 2p NA NA\n"));
  const std::vector<IBISPin>& pins = prepared.component().pins;
  for (const IBISPin* pin : {&pins[0], &pins[2]}) {
    EXPECT_EQ(pin->R_pin(), (IBISTriple{true, 5.0, 6.0, 4.0}));
    EXPECT_EQ(pin->L_pin(), (IBISTriple{true, 1 * 1e-9, 0.0, 0.0}));
    EXPECT_EQ(pin->C_pin(), (IBISTriple{true, 2 * 1e-12, 2 * 1e-12, 2 * 1e-12}));
  }
  EXPECT_EQ(pins[1].R_pin(), (IBISTriple{true, 1.0, 1.0, 1.0}));
  EXPECT_EQ(pins[1].L_pin(), (IBISTriple{true, 2.0, 2.0, 2.0}));
  EXPECT_EQ(pins[1].C_pin(), (IBISTriple{true, 3.0, 3.0, 3.0}));
}

TEST(ApplyPackageDefaults, ReachesPinsWithoutAnEntryAndCopiesPresence) {
  Parsed parsed(source({"1 S1 A", "2 S2 A"}));
  parsed.component().package.L_pkg = {.present = false, .typ = 7.0};
  Recorder told;
  const std::vector<IBISString> wanted = {"2"};
  prepareComponent(parsed.component(), ModelFinder(parsed.data()), PinFilter(wanted), told);
  EXPECT_EQ(parsed.component().pins[0].L_pin(), (IBISTriple{false, 7.0, 0.0, 0.0}));
  EXPECT_EQ(parsed.component().pins[1].L_pin(), (IBISTriple{false, 7.0, 0.0, 0.0}));
}

}  // namespace
}  // namespace ibis::testing
