// Every package section of a text, and its netlist.

#include <algorithm>
#include <vector>

#include "fuzz.h"
#include "large_output.h"
#include "output/stream/memory_sink.h"
#include "package/netlist/netlist.h"
#include "package/package_reader.h"
#include "reader/file/file.h"

namespace ibis::fuzz {
namespace {

std::string netlist(const IBISPackageModel& model, std::span<const std::string_view> nodes) {
  MemorySink sink;
  const std::unique_ptr<OutputStream> out = OutputStream::open(sink, "out");
  writePackageNetlist(*out, model, nodes);
  REQUIRE(out->close() && sink.keep("out"));
  return sink.files().at("out");
}

void checkNetlist(const IBISPackageModel& model) {
  std::vector<std::string_view> nodes;
  for (const IBISString name : model.pinNames) nodes.push_back(name);
  const std::string text = netlist(model, nodes);
  REQUIRE(std::ranges::count(text, '\n') == 3 * std::max(model.numberOfPins, 0) + 1);
  REQUIRE(text == netlist(model, nodes));
}

}  // namespace
}  // namespace ibis::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ibis;
  const IBISScanResult scan = scanIBISText(fuzz::textOf(data, size));
  if (fuzz::promisesManyPins(scan.records)) return 0;
  IBISFile file;
  for (std::int32_t i = 0; i < static_cast<std::int32_t>(scan.records.size()); ++i) {
    if (recordAt(scan.records, i).keyword != keyword::definePackageModel) continue;
    const std::int32_t begin = i;
    IBISPackageModel model;
    REQUIRE(readPackageModel(model, scan.records, i, file));
    REQUIRE(i >= begin);
    fuzz::checkNetlist(model);
  }
  return 0;
}
