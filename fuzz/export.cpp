// Every device of a file at every corner: its curves, its coefficients and its text for simulators.

#include <algorithm>
#include <cmath>
#include <set>

#include "fuzz.h"
#include "model/model_types.h"
#include "output/stream/memory_sink.h"
#include "reader/file/parser.h"
#include "simulator/component_netlist.h"
#include "simulator/device_netlist.h"
#include "simulator/names.h"

namespace ibis::fuzz {
namespace {

constexpr std::string_view statementStarts = "*+.BCRVX\n";

void checkCurve(const Curve& curve) {
  REQUIRE(curve.x.size() == curve.y.size());
  for (std::size_t i = 0; i < curve.size(); ++i) {
    REQUIRE(std::isfinite(curve.x[i]) && std::isfinite(curve.y[i]));
    REQUIRE(i == 0 || spiceNumber(curve.x[i - 1]) != spiceNumber(curve.x[i]));
    REQUIRE(i == 0 || curve.x[i - 1] < curve.x[i]);
  }
}

void checkEdge(const EdgeCoefficients& edge, DriverKind driver) {
  const CoefficientTable& table = edge.table;
  REQUIRE((edge.method == EdgeMethod::none) == (driver == DriverKind::none));
  for (std::size_t i = 0; i < table.size(); ++i) {
    REQUIRE(std::isfinite(table.time[i]) && (i == 0 || table.time[i - 1] < table.time[i]));
    REQUIRE(std::isfinite(table.up[i]) && std::isfinite(table.down[i]));
  }
  if (table.size() == 0) return;
  REQUIRE(table.time.front() == 0.0);
  REQUIRE(std::fabs(table.up.back() - table.up.front()) <= 1.0);
}

// Whatever a file holds, a line is a statement that the writer began, a comment or a continuation.
void checkText(const std::string& text) {
  for (std::size_t begin = 0; begin < text.size(); begin = text.find('\n', begin) + 1) {
    REQUIRE(statementStarts.find(text[begin]) != statementStarts.npos);
    const std::string_view line =
        std::string_view(text).substr(begin, text.find('\n', begin) - begin);
    if (line.starts_with('*')) continue;
    REQUIRE(!line.starts_with('.') || line.starts_with(".subckt ") || line.starts_with(".ends "));
    // The model's name may be anything, as "nan" is, but stands where subcircuits begin, end and
    // are called.
    if (line.starts_with('.') || line.starts_with('X')) continue;
    REQUIRE(line.find("nan") == line.npos && line.find(",inf") == line.npos);
  }
}

std::string textOf(const DeviceNetlist& netlist, const Dialect& dialect) {
  MemorySink sink;
  const auto out = OutputStream::open(sink, "text");
  NetlistWriter writer(*out, dialect);
  writeDevice(writer, netlist);
  REQUIRE(out->close() && sink.keep("text"));
  return sink.files().at("text");
}

void checkModel(const IBISModel& model, int corner) {
  Findings findings;
  DeviceNetlist netlist = makeDeviceNetlist(model, corner, spiceWord(model.name), findings);
  netlist.notes.push_back(model.name.str());
  const Device& device = netlist.device;
  for (const Curve* curve :
       {&device.pullup, &device.pulldown, &device.powerClamp, &device.gndClamp}) {
    checkCurve(*curve);
  }
  for (const EdgeCoefficients* edge : {&netlist.rising, &netlist.falling}) {
    checkEdge(*edge, device.driver);
    if (edge->table.size() == 0) continue;
    const double unit = clockUnit(netlist.rising, netlist.falling);
    checkCurve(clockCurve(edge->table, edge->table.up, unit, 0.0));
    checkCurve(clockCurve(edge->table, edge->table.down, unit, edge->span));
  }
  for (const Dialect& dialect : dialectTable()) checkText(textOf(netlist, dialect));
}

}  // namespace
}  // namespace ibis::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ibis;
  const IBISScanResult scan = scanIBISText(fuzz::textOf(data, size));
  IBISFile file;
  std::int32_t index = 0;
  parseFile(file, scan.records, index);
  postParse(file, {}, {});
  for (const auto& model : file.data().models) {
    if (isBuiltIn(model->type)) continue;
    for (int corner = 0; corner < corner::count; ++corner) fuzz::checkModel(*model, corner);
  }
  return 0;
}
