#pragma once

#include <complex>
#include <string>
#include <vector>

#include "export_files.h"
#include "ngspice.h"

/// Skips a test, with the reason, where there is no simulator.
#define SKIP_WITHOUT_NGSPICE()                       \
  try {                                              \
    ibis::cli::requireNgspice();                     \
  } catch (const ibis::cli::SimulatorFault& fault) { \
    GTEST_SKIP() << fault.what();                    \
  }

namespace ibis::cli {

/// An export of an IBIS text, with the text of the one file that it wrote; empty if it wrote none.
struct ExportedText {
  Export result;
  std::string text;
};

/// Exports an IBIS text; source and folder of the request are set here.
ExportedText exportText(const std::string& ibis, ExportRequest wanted);

/// The subcircuits of all models of an IBIS text at one corner.
std::string modelsOf(const std::string& ibis, const std::string& corner);

/// Runs a deck from its title to its analysis; the end is added here.
RawPlot runDeck(const std::string& deck);

/// The complex values of some vectors, frequency by frequency, in the order in which they are
/// named.
///
/// The deck has neither analysis nor end. `vectors` holds them separated by blanks.
std::vector<std::vector<std::complex<double>>> runAc(const std::string& deck,
                                                     const std::vector<double>& frequencies,
                                                     const std::string& vectors);

}  // namespace ibis::cli
