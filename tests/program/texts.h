#pragma once

#include <string>

namespace ibis::testing {

/// The start of a file with one component of two pins, A of model "in" and a ground; 13 lines.
inline const std::string partText = R"([IBIS Ver] 4.2
[File Name] buffer.ibs
[File Rev] 1.0
[Date] today
[Component] BUF-1
[Manufacturer] Exemplary
[Package]
R_pkg 0.5 NA NA
L_pkg 2n NA NA
C_pkg 1p NA NA
[Pin] signal_name model_name
1 A in
2 VSS GND
)";

/// A receiver with nothing to complain about.
inline const std::string receiverText = R"([Model] in
Model_type Input
Vinl = 0.8
Vinh = 2.0
C_comp 1p 1p 1p
)";

/// A file that every mode but symbol converts without a message.
inline const std::string bufferText = partText + receiverText + "[End]\n";

/// A receiver without thresholds, behind the part its model stands on line 14.
inline const std::string bareReceiverText = "[Model] in\nModel_type Input\nC_comp 1p 1p 1p\n";

/// A file with two warnings and no error.
inline const std::string warningText = partText + bareReceiverText + "[End]\n";

}  // namespace ibis::testing
