#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ibis/model.h"
#include "ngspice.h"
#include "simulator/device_netlist.h"

namespace ibis::cli {

/// How one waveform of the file compares with the simulated one.
struct WaveformResult {
  Edge edge = Edge::rising;
  std::size_t index = 0;  ///< In the model's list of the edge, from 0.
  bool isUsed = false;    ///< The coefficients were made from it.
  double error = 0.0;     ///< Rms at the file's points over their time, share of the swing.
  double mismatch = 0.0;  ///< Its levels against the tables' load line, share of the swing.
};

/// One model at one corner, exported and simulated.
struct ModelResult {
  std::string model;
  int corner = 0;
  EdgeMethod rising = EdgeMethod::none;
  EdgeMethod falling = EdgeMethod::none;
  bool isFromTyp = false;
  std::vector<WaveformResult> waveforms;
  double dcError = 0.0;        ///< Largest distance from a load line, in volts.
  double exportSeconds = 0.0;  ///< Of the extraction and the text.
  double runSeconds = 0.0;     ///< Of the simulator.
  std::size_t textSize = 0;    ///< Of the subcircuits, in characters.
  std::string fault;           ///< Why a run was not complete; empty for a complete one.
  Findings findings;
};

/// How the simulator runs.
struct RunOptions {
  std::string_view line = ".options reltol=1e-4 trtol=1";
  unsigned seconds = usualRunSeconds;  ///< Processor time, at most.
};

/// Exports a model, runs it in the simulator and compares it with the file's own data.
///
/// Each waveform's fixture hangs on a driver of its own, and each rail hangs on the settled device
/// through 50 ohm. The references are the file's points and the operating points of the load line.
ModelResult verifyModel(const IBISModel& model, int corner, const RunOptions& options);

/// The word of an edge.
std::string_view edgeText(Edge edge);

}  // namespace ibis::cli
