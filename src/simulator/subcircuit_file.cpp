#include "simulator/subcircuit_file.h"

#include "simulator/device_notes.h"

namespace ibis {
namespace {

void writeHead(NetlistWriter& writer, const SubcircuitFile& file) {
  writer.comment("subcircuits for " + std::string(writer.dialect().title) + ", corner " +
                 file.word + ", made from the IBIS file " + file.source);
  if (!file.revision.empty()) writer.comment("file revision " + file.revision);
  writer.comment("drv and en: 0 or 1 V against node 0, threshold vth; mon: 0 or 1 V likewise");
  writer.comment(
      "pad, pu, pd, pc, gc: die pad and the references of pullup, pulldown, power clamp");
  writer.comment("and ground clamp; subcircuits that end in _v hold them as ideal sources");
  for (const std::string& text : file.warnings) writer.comment("warning: " + text);
  writer.blank();
}

// One at a time, since each holds all tables of its device.
void writeDelayed(NetlistWriter& writer, const SubcircuitFile& file) {
  for (const DelayedDevice& each : file.delayed) {
    DeviceNetlist copy = file.devices[each.device];
    copy.name = each.name;
    copy.delay = each.delay;
    copy.notes = {withNumber("the same, later by ", each.delay, " s")};
    writeDevice(writer, copy);
  }
}

}  // namespace

void writeSubcircuitFile(NetlistWriter& writer, const SubcircuitFile& file) {
  writeHead(writer, file);
  for (const DeviceNetlist& device : file.devices) writeDevice(writer, device);
  writeDelayed(writer, file);
  for (const PairNetlist& pair : file.pairs) writePair(writer, pair);
  for (const SeriesNetlist& series : file.series) writeSeries(writer, series);
  if (file.component) writeComponent(writer, *file.component);
}

}  // namespace ibis
