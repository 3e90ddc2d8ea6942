#pragma once

#include "harness/fake_host.h"
#include "harness/harness.h"

namespace ibis::testing {

/// The arguments of a call that asks what the request asks.
inline FakeArguments argumentsOf(const LoadRequest& request) {
  return FakeArguments(
      {Texts({request.source}),
       Texts({request.mode, request.component, request.rootDirectory, request.subcircuit}),
       request.pins, request.selections});
}

inline ScriptFunction loadFunction() { return findScriptFunction("IBIS_Load")->function(); }

/// The result array of one call that a host makes.
inline Texts callLoad(const LoadRequest& request) {
  FakeResult result;
  EXPECT_EQ(callAsHost(loadFunction(), argumentsOf(request), result), FUNC_ERROR::success);
  EXPECT_EQ(result.finishCalls, 1);
  return result.strings();
}

/// The modes that write files.
inline const Texts writingModes = {"model", "package", "script"};

/// The text of an example.
inline std::string exampleText(const std::string& name) {
  return readWholeFile(std::string(IBIS_SOURCE_DIR) + "/examples/" + name);
}

inline const Texts exampleNames = {"differential_link.ibs", "oddities.ibs", "package_60.ibs",
                                   "push_pull_buffer.ibs"};

/// A small file of every kind of section, with one warning in model mode.
inline const std::string smallText = R"([IBIS Ver] 4.2
[File Name] small.ibs
[Source] nobody
[Notes] two
lines
[Component] Part
[Manufacturer] Maker
[Package Model] frame
[Package]
R_pkg 0.5 NA NA
[Pin] signal_name model_name
1 data driver
2 data- driver
3 strobe choice
4 ground GND
5 supply POWER
[Diff Pin] inv_pin vdiff
1 2 0.2
[Model Selector] choice
receiver "as it comes"
other by choice
[Model] driver
Model_type Output
C_comp 1p 1p 1p
[Voltage Range] 3 3 3
[Pulldown]
-3 -1m
6 2m
[Pullup]
-3 1m
6 -2m
[Ramp]
dV/dt_r 1/1n NA NA
dV/dt_f 1/1n NA NA
[Model] receiver
Model_type Input
Vinl = 0.8
Vinh = 2.0
[Model] other
Model_type Input
Vinl = 0.8
Vinh = 2.0
[Define Package Model] frame
[Number Of Pins] 2
[Pin Numbers]
1
2
[Model Data]
[Resistance Matrix] Banded_matrix
[Row] 1
0.1
[Row] 2
0.2
[Inductance Matrix] Sparse_matrix
[Row] 1
1 1n
2 0.1n
[Row] 2
2 1n
[End Model Data]
[End Package Model]
[End]
)";

inline const std::string smallWarning =
    "Model driver: Estimated waveform as no waveform data in model file. Waveform may deviate "
    "substantially from actual device";

}  // namespace ibis::testing
