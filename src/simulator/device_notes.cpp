#include "simulator/device_notes.h"

#include <algorithm>

#include "model/model_types.h"
#include "output/stream/number_text.h"

namespace ibis {
namespace {

std::string edgesNote(const DeviceNetlist& netlist) {
  const double span = std::max(netlist.rising.span, netlist.falling.span);
  const double deadTime = std::min(netlist.rising.deadTime, netlist.falling.deadTime);
  return "rising from " + std::string(methodText(netlist.rising.method)) + ", falling from " +
         std::string(methodText(netlist.falling.method)) + withNumber("; span ", span, " s") +
         withNumber(", dead time ", deadTime, " s");
}

}  // namespace

std::string_view methodText(EdgeMethod method) {
  switch (method) {
    case EdgeMethod::twoWaveforms:
      return "two waveforms";
    case EdgeMethod::oneWaveform:
      return "one waveform";
    case EdgeMethod::estimatedWaveforms:
      return "estimated waveforms";
    case EdgeMethod::ramp:
      return "ramp";
    case EdgeMethod::none:
      break;
  }
  return "none";
}

std::string withNumber(std::string_view text, double value, std::string_view unit) {
  return std::string(text) + numberText(value, 4) + std::string(unit);
}

std::vector<std::string> deviceNotes(const DeviceNetlist& netlist, const IBISModel& model,
                                     std::string_view corner, const Dialect& dialect) {
  const Rails& rails = netlist.device.rails;
  std::vector<std::string> notes;
  notes.push_back("model " + model.name.str() + ", " + typeText(model.type) + ", corner " +
                  std::string(corner));
  notes.push_back(withNumber("rails: pu ", rails.pu, " V") + withNumber(", pd ", rails.pd, " V") +
                  withNumber(", pc ", rails.pc, " V") + withNumber(", gc ", rails.gc, " V"));
  if (netlist.device.driver == DriverKind::none) return notes;
  notes.push_back(edgesNote(netlist));
  notes.push_back(
      withNumber("recommended: .tran step of at most ", recommendedStep(netlist), " s, ") +
      std::string(dialect.options));
  return notes;
}

}  // namespace ibis
