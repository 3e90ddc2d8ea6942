#include "model/apply_input_defaults.h"

#include "harness/harness.h"

namespace ibis::testing {
namespace {

const std::string hysteresis =
    "Model 'X': Input hysteresis parameters not supported. Input model will behave like regular "
    "non-schmitt device";

struct Defaulted {
  explicit Defaulted(ModelType type, const IBISTriple& vinl = {}, const IBISTriple& vinh = {}) {
    model.name = "X";
    model.type = type;
    model.vinl = vinl;
    model.vinh = vinh;
    applyInputDefaults(model, told);
  }

  IBISModel model;
  Recorder told;
};

IBISTriple triple(bool present, double typ, double min, double max) {
  return {.present = present, .typ = typ, .max = max, .min = min};
}

constexpr ModelType ttlTypes[] = {
    ModelType::input,     ModelType::inputOutput,          ModelType::inputOutputOpenSource,
    ModelType::inputDiff, ModelType::inputOutputOpenDrain, ModelType::inputOutputDiff,
};

constexpr ModelType eclTypes[] = {ModelType::inputEcl, ModelType::inputOutputEcl};

constexpr ModelType otherTypes[] = {
    ModelType::unknown,   ModelType::output,     ModelType::threeState,   ModelType::openSource,
    ModelType::openDrain, ModelType::outputEcl,  ModelType::terminator,   ModelType::threeStateEcl,
    ModelType::series,    ModelType::outputDiff, ModelType::seriesSwitch, ModelType::threeStateDiff,
    ModelType::gnd,       ModelType::power,      ModelType::nc,
};

TEST(ApplyInputDefaults, LeavesTheHighDefaultInThreeSlotsIfBothAreMissing) {
  for (ModelType type : ttlTypes) {
    const Defaulted defaulted(type);
    EXPECT_MESSAGES(defaulted.told.warnings, "Model 'X': Vinl not defined using default 0.8V",
                    "Model 'X': Vinh not defined using default 2.0V");
    EXPECT_MESSAGES(defaulted.told.errors);
    EXPECT_EQ(defaulted.model.vinl, triple(false, 2.0, 2.0, 0.0));
    EXPECT_EQ(defaulted.model.vinh, triple(false, 0.0, 0.0, 2.0));
  }
}

TEST(ApplyInputDefaults, LeavesTheHighEclDefaultInThreeSlotsIfBothAreMissing) {
  for (ModelType type : eclTypes) {
    const Defaulted defaulted(type);
    EXPECT_MESSAGES(defaulted.told.warnings, "Model 'X': Vinl not defined using default -1.475V",
                    "Model 'X': Vinh not defined using default -1.165V");
    EXPECT_EQ(defaulted.model.vinl, triple(false, -1.165, -1.165, 0.0));
    EXPECT_EQ(defaulted.model.vinh, triple(false, 0.0, 0.0, -1.165));
  }
}

TEST(ApplyInputDefaults, OverwritesTheHighThresholdsMaximumIfOnlyTheLowOneIsMissing) {
  for (ModelType type : ttlTypes) {
    const Defaulted defaulted(type, {}, triple(true, 1.7, 1.6, 1.8));
    EXPECT_MESSAGES(defaulted.told.warnings, "Model 'X': Vinl not defined using default 0.8V");
    EXPECT_EQ(defaulted.model.vinl, triple(false, 0.8, 0.8, 0.0));
    EXPECT_EQ(defaulted.model.vinh, triple(true, 1.7, 1.6, 0.8));
  }
}

TEST(ApplyInputDefaults, WritesTheLowEclDefault) {
  for (ModelType type : eclTypes) {
    const Defaulted defaulted(type, {}, triple(true, -1.0, -1.1, -0.9));
    EXPECT_MESSAGES(defaulted.told.warnings, "Model 'X': Vinl not defined using default -1.475V");
    EXPECT_EQ(defaulted.model.vinl, triple(false, -1.475, -1.475, 0.0));
    EXPECT_EQ(defaulted.model.vinh, triple(true, -1.0, -1.1, -1.475));
  }
}

TEST(ApplyInputDefaults, ReplacesTheLowThresholdOfAnInputIfOnlyTheHighOneIsMissing) {
  const Defaulted defaulted(ModelType::input, triple(true, 0.9, 0.7, 1.0));
  EXPECT_MESSAGES(defaulted.told.warnings, "Model 'X': Vinh not defined using default 2.0V");
  EXPECT_EQ(defaulted.model.vinl, triple(true, 2.0, 2.0, 1.0));
  EXPECT_EQ(defaulted.model.vinh, triple(false, 0.0, 0.0, 2.0));
}

TEST(ApplyInputDefaults, ReplacesTheLowEclThresholdIfOnlyTheHighOneIsMissing) {
  const Defaulted defaulted(ModelType::inputOutputEcl, triple(true, -1.6, -1.7, -1.5));
  EXPECT_MESSAGES(defaulted.told.warnings, "Model 'X': Vinh not defined using default -1.165V");
  EXPECT_EQ(defaulted.model.vinl, triple(true, -1.165, -1.165, -1.5));
  EXPECT_EQ(defaulted.model.vinh, triple(false, 0.0, 0.0, -1.165));
}

TEST(ApplyInputDefaults, KeepsThresholdsThatTheFileGives) {
  const Defaulted defaulted(ModelType::input, triple(true, 0.9, 0.7, 1.0),
                            triple(true, 1.7, 1.6, 1.8));
  EXPECT_MESSAGES(defaulted.told.warnings);
  EXPECT_EQ(defaulted.model.vinl, triple(true, 0.9, 0.7, 1.0));
  EXPECT_EQ(defaulted.model.vinh, triple(true, 1.7, 1.6, 1.8));
}

TEST(ApplyInputDefaults, GivesOtherTypesNone) {
  for (ModelType type : otherTypes) {
    const Defaulted defaulted(type);
    EXPECT_MESSAGES(defaulted.told.warnings);
    EXPECT_EQ(defaulted.model.vinl, IBISTriple());
    EXPECT_EQ(defaulted.model.vinh, IBISTriple());
  }
}

/// Which hysteresis thresholds a model gives, and whether that is warned of.
struct Given {
  bool vinhPlus, vinhMinus, vinlPlus, vinlMinus, warned;
};

TEST(ApplyInputDefaults, WarnsOfHysteresisWithoutLookingAtVinlPlus) {
  const Given rows[] = {
      {true, true, true, true, true},     {true, true, false, true, true},
      {false, true, true, true, false},   {true, false, true, true, false},
      {true, true, true, false, false},   {true, true, false, false, false},
      {true, false, false, true, false},  {false, true, false, true, false},
      {false, false, true, false, false}, {false, false, false, false, false},
  };
  for (const Given& row : rows) {
    IBISModel model;
    model.name = "X";
    model.type = ModelType::output;
    model.vinhPlus.present = row.vinhPlus;
    model.vinhMinus.present = row.vinhMinus;
    model.vinlPlus.present = row.vinlPlus;
    model.vinlMinus.present = row.vinlMinus;
    Recorder told;
    applyInputDefaults(model, told);
    EXPECT_EQ(texts(told.warnings), row.warned ? proven({hysteresis}) : Texts());
    EXPECT_MESSAGES(told.errors);
  }
}

TEST(ApplyInputDefaults, WarnsOfHysteresisBehindTheDefaults) {
  Parsed parsed(
      "[Component] U1\n[Model] X\nModel_type Input\n[Model Spec]\nVinh+ 2 2 2\nVinh- 1 1 1\n"
      "Vinl- 0.5 0.5 0.5\n");
  parsed.resolve();
  EXPECT_MESSAGES(parsed.warnings(), "Model 'X': Vinl not defined using default 0.8V",
                  "Model 'X': Vinh not defined using default 2.0V", hysteresis);
}

}  // namespace
}  // namespace ibis::testing
