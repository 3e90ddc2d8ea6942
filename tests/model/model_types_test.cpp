#include "model/model_types.h"

#include "harness/harness.h"

namespace ibis::testing {
namespace {

// Traits: I input, O output, E enable, 2 two waveforms an edge, 1 one waveform an edge,
// P polarity, D needs pulldown, U needs pullup, B built in.
struct TypeRow {
  ModelType type;
  std::string_view traits;
  std::string_view text;
  std::string_view device;
  std::string_view alternative;
};

using enum ModelType;

const TypeRow types[] = {
    {unknown, "P", "unknown", "unknown", "unknown"},
    {input, "IP", "Input", "Input", "Input"},
    {output, "O2PDU", "Output", "Output", "Output"},
    {inputOutput, "IOE2PDU", "I_O", "I/O", "I_O"},
    {threeState, "OE2PDU", "3_state", "3-state", "3_state"},
    {openSource, "O1PU", "Open_source", "Open_switch", "Open_switch"},
    {inputOutputOpenSource, "IO1PU", "I_O_open_source", "I/O_open_switch", "I_O_open_switch"},
    {openDrain, "O1PD", "Open_drain", "Open_switch", "Open_switch"},
    {inputOutputOpenDrain, "IO1PD", "I_O_open_drain", "I/O_open_switch", "I_O_open_switch"},
    {inputEcl, "IP", "Input_ECL", "Input_ECL", "Input_ECL"},
    {outputEcl, "O1PDU", "Output_ECL", "Output_ECL", "Output_ECL"},
    {inputOutputEcl, "IOE1PDU", "I_O_ECL", "I/O_ECL", "I_O_ECL"},
    {threeStateEcl, "OE1PDU", "3_state_ECL", "3-state_ECL", "3_state_ECL"},
    {terminator, "", "Terminator", "Terminator", "Terminator"},
    {series, "P", "Series", "Series", "Series"},
    {seriesSwitch, "P", "Series_switch", "Series_switch", "Series_switch"},
    {inputDiff, "IP", "Input_diff", "Input_diff", "Input_diff"},
    {outputDiff, "O2PDU", "Output_diff", "Output_diff", "Output_diff"},
    {inputOutputDiff, "IOE2PDU", "I_O_diff", "I/O_diff", "I_O_diff"},
    {threeStateDiff, "OE2PDU", "3_state_diff", "3-state_diff", "3_state_diff"},
    {gnd, "B", "GND", "GND", "GND"},
    {power, "B", "POWER", "POWER", "POWER"},
    {nc, "B", "NC", "NC", "NC"},
};

std::string traitsOf(ModelType type) {
  std::string traits;
  const auto add = [&traits](bool holds, char letter) {
    if (holds) traits += letter;
  };
  add(hasInput(type), 'I');
  add(hasOutput(type), 'O');
  add(hasEnable(type), 'E');
  add(hasPushPullOutput(type), '2');
  add(hasOneSidedOutput(type), '1');
  add(hasPolarity(type), 'P');
  add(needsPulldown(type), 'D');
  add(needsPullup(type), 'U');
  add(isBuiltIn(type), 'B');
  return traits;
}

TEST(ModelTypes, AreAllInTheTableByTheirId) {
  ASSERT_EQ(std::size(types), 23U);
  for (std::size_t i = 0; i < std::size(types); ++i) {
    EXPECT_EQ(static_cast<std::size_t>(types[i].type), i);
  }
}

TEST(ModelTypes, HaveTheirTraits) {
  for (const TypeRow& row : types) EXPECT_EQ(traitsOf(row.type), row.traits) << row.text;
}

TEST(ModelTypes, AreWrittenWithUnderscores) {
  for (const TypeRow& row : types) EXPECT_EQ(typeText(row.type), row.text);
}

TEST(ModelTypes, ShareTheDeviceOfTheOpenTypes) {
  for (const TypeRow& row : types) {
    EXPECT_EQ(modelTypeText(row.type), row.device) << row.text;
    EXPECT_EQ(alternativeTypeText(row.type), row.alternative) << row.text;
  }
}

}  // namespace
}  // namespace ibis::testing
