#include "output/file_name.h"

#include "package/netlist/netlist.h"

namespace ibis {
namespace {

constexpr std::string_view componentWord = "%spicecomponentname%";
constexpr std::string_view rootWord = "%rootdir%";

}  // namespace

std::string fileName(std::string_view word, const OutputPlace& place) {
  std::string name = replaceFirst(std::string(word), subcircuitWord, place.subcircuit);
  name = replaceFirst(std::move(name), componentWord, place.spiceComponentName);
  return replaceFirst(std::move(name), rootWord, place.rootDirectory);
}

}  // namespace ibis
