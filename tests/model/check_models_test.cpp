#include "model/check_models.h"

#include <cstdarg>

#include "harness/harness.h"
#include "host/diagnostics/format_message.h"

namespace ibis::testing {
namespace {

/// Keeps errors and warnings in one list, in the order in which they were told.
class Sequence final : public IBISErrorHandler {
 public:
  void error(const char* format, ...) override IBIS_PRINTF_FORMAT(2, 3);
  void warning(const char* format, ...) override IBIS_PRINTF_FORMAT(2, 3);

  std::vector<Diagnostic> messages;
};

void Sequence::error(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  messages.push_back(makeDiagnostic(Severity::error, format, arguments));
  va_end(arguments);
}

void Sequence::warning(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  messages.push_back(makeDiagnostic(Severity::error, format, arguments));
  va_end(arguments);
}

constexpr std::int32_t invalidWord = 2;

/// A model with all that any type needs, whose every message is a fault of the test's own making.
IBISModel completeModel(ModelType type) {
  IBISModel model;
  model.lineNumber = 7;
  model.name = "X";
  model.type = type;
  model.voltageRange = {.present = true, .typ = 3.3, .max = 3.6, .min = 3.0};
  model.vinl = {.present = true, .typ = 0.8, .max = 0.8, .min = 0.8};
  model.vinh = {.present = true, .typ = 2.0, .max = 2.0, .min = 2.0};
  model.pulldown.present = true;
  model.pullup.present = true;
  model.risingWaveforms.resize(1);
  return model;
}

Texts errorsOf(IBISModel model) {
  IBISModel* const models[] = {&model};
  Recorder told;
  checkModels(models, told);
  EXPECT_MESSAGES(told.warnings);
  return texts(told.errors);
}

constexpr ModelType allTypes[] = {
    ModelType::input,          ModelType::output,
    ModelType::inputOutput,    ModelType::threeState,
    ModelType::openSource,     ModelType::inputOutputOpenSource,
    ModelType::openDrain,      ModelType::inputOutputOpenDrain,
    ModelType::inputEcl,       ModelType::outputEcl,
    ModelType::inputOutputEcl, ModelType::threeStateEcl,
    ModelType::terminator,     ModelType::series,
    ModelType::seriesSwitch,   ModelType::inputDiff,
    ModelType::outputDiff,     ModelType::inputOutputDiff,
    ModelType::threeStateDiff, ModelType::gnd,
    ModelType::power,          ModelType::nc,
};

/// The types for which a change of a complete model brings exactly one message.
std::vector<ModelType> typesThatTell(const std::string& message, void (*change)(IBISModel&)) {
  std::vector<ModelType> types;
  for (ModelType type : allTypes) {
    IBISModel model = completeModel(type);
    change(model);
    const Texts errors = errorsOf(model);
    if (errors == proven({message})) {
      types.push_back(type);
    } else {
      EXPECT_MESSAGES(errors);
    }
  }
  return types;
}

TEST(CheckModels, SayNothingOfACompleteModelOfAnyType) {
  for (ModelType type : allTypes) EXPECT_MESSAGES(errorsOf(completeModel(type)));
}

TEST(CheckModels, ReportAnUnknownType) {
  EXPECT_MESSAGES(errorsOf(completeModel(ModelType::unknown)), "Line 7: Model 'X' type is unknown");
}

TEST(CheckModels, ReportAnInvalidPolarityOfEveryType) {
  const std::vector<ModelType> types = typesThatTell(
      "Line 7: Model 'X' polarity type is invalid; expected 'Non-Inverting' or 'Inverting'",
      [](IBISModel& model) { model.polarity = invalidWord; });
  EXPECT_EQ(types, std::vector<ModelType>(std::begin(allTypes), std::end(allTypes)));
}

TEST(CheckModels, TakeBothPolaritiesAndBothEnables) {
  for (std::int32_t word : {0, 1}) {
    IBISModel model = completeModel(ModelType::threeState);
    model.polarity = word;
    model.enable = word;
    EXPECT_MESSAGES(errorsOf(model));
  }
}

TEST(CheckModels, ReportAnInvalidEnableOfTypesThatCanBeSwitchedOff) {
  const std::vector<ModelType> types = typesThatTell(
      "Line 7: Model 'X' enable polarity type is invalid; expected 'Active-High' or 'Active-Low'",
      [](IBISModel& model) { model.enable = invalidWord; });
  EXPECT_EQ(types, (std::vector<ModelType>{ModelType::inputOutput, ModelType::threeState,
                                           ModelType::inputOutputEcl, ModelType::threeStateEcl,
                                           ModelType::inputOutputDiff, ModelType::threeStateDiff}));
}

TEST(CheckModels, ReportAMissingPulldownOfTypesThatNeedOne) {
  const std::vector<ModelType> types =
      typesThatTell("Line 7: Model 'X' no pulldown definition has been provided",
                    [](IBISModel& model) { model.pulldown.present = false; });
  EXPECT_EQ(types, (std::vector<ModelType>{
                       ModelType::output, ModelType::inputOutput, ModelType::threeState,
                       ModelType::openDrain, ModelType::inputOutputOpenDrain, ModelType::outputEcl,
                       ModelType::inputOutputEcl, ModelType::threeStateEcl, ModelType::outputDiff,
                       ModelType::inputOutputDiff, ModelType::threeStateDiff}));
}

TEST(CheckModels, ReportAMissingPullupOfTypesThatNeedOne) {
  const std::vector<ModelType> types =
      typesThatTell("Line 7: Model 'X' no pullup definition has been provided",
                    [](IBISModel& model) { model.pullup.present = false; });
  EXPECT_EQ(types,
            (std::vector<ModelType>{
                ModelType::output, ModelType::inputOutput, ModelType::threeState,
                ModelType::openSource, ModelType::inputOutputOpenSource, ModelType::outputEcl,
                ModelType::inputOutputEcl, ModelType::threeStateEcl, ModelType::outputDiff,
                ModelType::inputOutputDiff, ModelType::threeStateDiff}));
}

TEST(CheckModels, ReportAnOpenDrainWithoutPulldown) {
  IBISModel model = completeModel(ModelType::openDrain);
  model.pulldown.present = false;
  EXPECT_MESSAGES(errorsOf(model), "Line 7: Model 'X' no pulldown definition has been provided");
}

TEST(CheckModels, TakeAnOpenDrainWithoutPullup) {
  IBISModel model = completeModel(ModelType::openDrain);
  model.pullup.present = false;
  EXPECT_MESSAGES(errorsOf(model));
}

TEST(CheckModels, ReportEveryFaultOfAModelInOrder) {
  IBISModel model = completeModel(ModelType::inputOutput);
  model.polarity = invalidWord;
  model.enable = invalidWord;
  model.pulldown.present = false;
  model.pullup.present = false;
  EXPECT_MESSAGES(
      errorsOf(model),
      "Line 7: Model 'X' polarity type is invalid; expected 'Non-Inverting' or 'Inverting'",
      "Line 7: Model 'X' enable polarity type is invalid; expected 'Active-High' or 'Active-Low'",
      "Line 7: Model 'X' no pulldown definition has been provided",
      "Line 7: Model 'X' no pullup definition has been provided");
}

TEST(CheckModels, ReportATypeAndAPolarityTogether) {
  IBISModel model = completeModel(ModelType::unknown);
  model.polarity = invalidWord;
  model.enable = invalidWord;  // no type, no enable
  EXPECT_MESSAGES(
      errorsOf(model), "Line 7: Model 'X' type is unknown",
      "Line 7: Model 'X' polarity type is invalid; expected 'Non-Inverting' or 'Inverting'");
}

/// A driver for which every completing pass would change something.
IBISModel unfinishedModel(ModelType type) {
  IBISModel model;
  model.type = type;
  model.voltageRange = {.present = true, .typ = 3.3, .max = 3.6, .min = 3.0};
  model.pulldownReference.typ = 9.0;  // not given, so it would become 0
  model.pulldown.present = true;
  model.pullup.present = true;
  return model;
}

struct Fault {
  const char* name;
  void (*make)(IBISModel&);
};

constexpr Fault faults[] = {
    {"type", [](IBISModel& model) { model.type = ModelType::unknown; }},
    {"polarity", [](IBISModel& model) { model.polarity = invalidWord; }},
    {"enable", [](IBISModel& model) { model.enable = invalidWord; }},
    {"pulldown", [](IBISModel& model) { model.pulldown.present = false; }},
    {"pullup", [](IBISModel& model) { model.pullup.present = false; }},
};

TEST(CheckModels, LeaveAModelWithAnErrorUnresolved) {
  for (const Fault& fault : faults) {
    IBISModel model = unfinishedModel(ModelType::inputOutput);
    fault.make(model);
    IBISModel* const models[] = {&model};
    Recorder told;
    checkModels(models, told);
    EXPECT_EQ(told.errors.size(), 1U) << fault.name;
    EXPECT_MESSAGES(told.warnings);
    EXPECT_EQ(model.pullupReference, IBISTriple()) << fault.name;
    EXPECT_EQ(model.pulldownReference.typ, 9.0) << fault.name;
    EXPECT_EQ(model.vinl, IBISTriple()) << fault.name;
    EXPECT_TRUE(model.risingWaveforms.empty()) << fault.name;
  }
}

TEST(CheckModels, LeaveTheWaveformsOfAModelWithAnErrorInFileOrder) {
  IBISModel model = completeModel(ModelType::openSource);
  model.risingWaveforms.resize(2);
  model.risingWaveforms[0].rFixture = {true, 75.0};
  model.risingWaveforms[1].rFixture = {true, 50.0};
  model.polarity = invalidWord;
  IBISModel* const models[] = {&model};
  Recorder told;
  checkModels(models, told);
  EXPECT_EQ(model.risingWaveforms[0].rFixture.value, 75.0);
  model.polarity = 1;
  checkModels(models, told);
  EXPECT_EQ(model.risingWaveforms[0].rFixture.value, 50.0);
}

TEST(CheckModels, LeaveTheBuiltInTypesAsTheyAre) {
  for (ModelType type : {ModelType::gnd, ModelType::power, ModelType::nc}) {
    IBISModel model = unfinishedModel(type);
    EXPECT_MESSAGES(errorsOf(model));
    IBISModel* const models[] = {&model};
    Recorder told;
    checkModels(models, told);
    EXPECT_EQ(model.pullupReference, IBISTriple());
    EXPECT_EQ(model.pulldownReference.typ, 9.0);
  }
}

TEST(CheckModels, GoOnWithTheNextModel) {
  IBISModel first = unfinishedModel(ModelType::unknown);
  IBISModel second = unfinishedModel(ModelType::terminator);
  IBISModel third = unfinishedModel(ModelType::unknown);
  third.lineNumber = 9;
  third.name = "Z";
  IBISModel* const models[] = {&first, &second, &third};
  Recorder told;
  checkModels(models, told);
  EXPECT_MESSAGES(told.errors, "Line 0: Model '' type is unknown",
                  "Line 9: Model 'Z' type is unknown");
  EXPECT_EQ(second.pullupReference, second.voltageRange);
}

TEST(CheckModels, RunTheCompletingPassesInOrder) {
  IBISModel model = unfinishedModel(ModelType::inputOutputOpenDrain);
  model.name = "X";
  model.powerClampReference = {.present = true, .typ = 5.0, .max = 5.0, .min = 5.0};
  IBISModel* const models[] = {&model};
  Sequence told;
  checkModels(models, told);
  EXPECT_MESSAGES(told.messages,
                  "Model 'X': Pullup reference does not match Power clamp reference. This is legal "
                  "but not currently supported",
                  "Model 'X': Vinl not defined using default 0.8V",
                  "Model 'X': Vinh not defined using default 2.0V",
                  "Model X: Estimated waveform as no waveform data in model file. Waveform may "
                  "deviate substantially from actual device");
}

TEST(CheckModels, EstimateFromReferencesThatAreResolved) {
  IBISModel model = unfinishedModel(ModelType::output);
  IBISModel* const models[] = {&model};
  Recorder told;
  checkModels(models, told);
  ASSERT_EQ(model.risingWaveforms.size(), 2U);
  EXPECT_EQ(model.risingWaveforms[0].vFixture.value, 0.0);
  EXPECT_EQ(model.risingWaveforms[1].vFixture.value, 3.3);
}

TEST(CheckModels, GoOnWithTheModelWhenAReferenceIsMissing) {
  IBISModel model = unfinishedModel(ModelType::input);
  model.name = "X";
  model.voltageRange.present = false;
  IBISModel* const models[] = {&model};
  Sequence told;
  checkModels(models, told);
  EXPECT_MESSAGES(told.messages, "Model 'X': No pulldown reference or voltage range defined",
                  "Model 'X': No pullup reference or voltage range defined",
                  "Model 'X': Vinl not defined using default 0.8V",
                  "Model 'X': Vinh not defined using default 2.0V");
}

TEST(CheckModels, WarnOnlyOfTheDefaultsOfAnInputWithoutRangeAndTables) {
  const Loaded loaded = loadText(
      "[Component] U1\n[Pin]\n1 S1 In\n[Model] In\nModel_type Input\nC_comp 1pF NA NA\n[End]\n");
  EXPECT_MESSAGES(loaded.errors);
  EXPECT_MESSAGES(loaded.warnings, "Model 'In': Vinl not defined using default 0.8V",
                  "Model 'In': Vinh not defined using default 2.0V");
}

IBISModel unfinishedDriver(const char* name) {
  IBISModel model = unfinishedModel(ModelType::output);
  model.lineNumber = 7;
  model.name = name;
  model.rampDtRise = {.present = true, .typ = 1e-9, .max = 1e-9, .min = 1e-9};
  model.rampDtFall = model.rampDtRise;
  return model;
}

std::int32_t countPoints(const IBISModel& model) {
  std::int32_t count = 0;
  for (const auto* list : {&model.risingWaveforms, &model.fallingWaveforms}) {
    for (const IBISWaveform& waveform : *list) count += waveform.time.size();
  }
  return count;
}

constexpr char estimatedX[] =
    "Model X: Estimated waveform as no waveform data in model file. Waveform may deviate "
    "substantially from actual device";
constexpr char estimatedY[] =
    "Model Y: Estimated waveform as no waveform data in model file. Waveform may deviate "
    "substantially from actual device";

TEST(CheckModels, KeepNoPointsOfEstimatedWaveforms) {
  IBISModel x = unfinishedDriver("X");
  IBISModel y = unfinishedDriver("Y");
  IBISModel* const models[] = {&x, &y};
  Sequence told;
  checkModels(models, told);
  EXPECT_MESSAGES(told.messages, estimatedX, estimatedY);
  EXPECT_EQ(countPoints(x) + countPoints(y), 0);
  EXPECT_EQ(x.risingWaveforms.size() + x.fallingWaveforms.size(), 4U);
}

TEST(CheckModels, TellTheLineOfTheModelThatTheyMean) {
  Parsed parsed("[Component] U1\n[Model] A\nModel_type Input\n[Model] A: B\nModel_type Input\n");
  parsed.resolve();
  const auto& warnings = parsed.data().warnings;
  ASSERT_EQ(warnings.size(), 4U);
  EXPECT_EQ(warnings[0].text, "Model 'A': Vinl not defined using default 0.8V");
  EXPECT_EQ(warnings[0].line, 2);
  EXPECT_EQ(warnings[2].text, "Model 'A: B': Vinl not defined using default 0.8V");
  EXPECT_EQ(warnings[2].line, 4);
}

TEST(CheckModels, TakeNamesAndLinesFromTheFile) {
  const Loaded loaded = loadText(
      "[Component] U1\n[Pin]\n1 S1 Drv\n[Model] Drv\nModel_type I/O\nPolarity none\nEnable high\n");
  EXPECT_MESSAGES(
      loaded.errors,
      "Line 4: Model 'Drv' polarity type is invalid; expected 'Non-Inverting' or 'Inverting'",
      "Line 4: Model 'Drv' enable polarity type is invalid; expected 'Active-High' or 'Active-Low'",
      "Line 4: Model 'Drv' no pulldown definition has been provided",
      "Line 4: Model 'Drv' no pullup definition has been provided");
  EXPECT_MESSAGES(loaded.warnings);
  EXPECT_EQ(loaded.written, Texts());
}

}  // namespace
}  // namespace ibis::testing
